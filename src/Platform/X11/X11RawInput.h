// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>

#include "Platform/Subscription.h"
#include "Platform/X11/Xcb.h"

namespace tovi {

/// The server's raw input events: key and button changes as they happen, whoever has the focus or a grab.
/// Asked for only while somebody watches. Works on Qt's connection. Main thread.
class X11RawInput final : public QAbstractNativeEventFilter
{
public:
    enum class Kind { KeyPress, KeyRelease, ButtonPress };
    /// `detail` is the server's key code or the button's number.
    using Handler = std::function<void(quint32 detail)>;

    X11RawInput();

    /// Whether the server has the input extension.
    bool isPresent() const { return m_opcode != 0; }
    [[nodiscard]] Subscription watch(Kind kind, Handler handler);

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    struct Watchers;
    void select() const;

    uint8_t m_opcode = 0;                 // 0 without the extension
    std::shared_ptr<Watchers> m_watchers; // subscriptions may outlive us
};

} // namespace tovi
