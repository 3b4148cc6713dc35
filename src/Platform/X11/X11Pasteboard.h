// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <optional>

#include "Platform/Pasteboard.h"
#include "Platform/X11/XcbClipboard.h"
#include "Platform/X11/XcbSelectionTransfer.h"

namespace tovi {

/// The CLIPBOARD selection. Connects to the server at its first use.
class X11Pasteboard final : public Pasteboard
{
public:
    qint64 changeCount() override;
    Answer<QStringList> types(Clock::Duration limit) override;
    Answer<PasteboardItem> item(const QString &type, Clock::Duration limit) override;
    Answer<Text> text(Clock::Duration limit) override;
    bool isPlainText(const QString &type) const override;
    void write(const QList<PasteboardItem> &items) override;
    void setString(const QString &text) override;

private:
    XcbClipboard &clipboard();
    template <class T, class Read>
    Answer<T> transfer(Clock::Duration limit, Read read);
    Answer<Text> foreignText(Clock::Duration limit);
    QStringList names(const QList<xcb_atom_t> &atoms);

    std::once_flag m_opened;
    std::optional<XcbClipboard> m_clipboard;
    std::timed_mutex m_mutex; ///< guards the connection that reads
    std::optional<XcbSession> m_session;
};

} // namespace tovi
