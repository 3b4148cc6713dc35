// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "Platform/Pasteboard.h"
#include "Platform/X11/XcbSession.h"

namespace tovi {

class SelectionServer;

/// The CLIPBOARD selection from its owner's side: counts its changes and serves what this program puts there,
/// on a connection and a thread of its own, so that no busy or waiting part of the program holds up others.
/// Any thread. Made in a few round trips to the server. Ending it leaves the contents to the clipboard
/// manager, if there is one, which may take a second.
class XcbClipboard
{
public:
    XcbClipboard();
    ~XcbClipboard();
    XcbClipboard(const XcbClipboard &) = delete;

    qint64 changeCount() const { return m_changeCount; }
    /// What this program put there, while it is there.
    std::shared_ptr<const QList<PasteboardItem>> ownContents() const;
    void write(QList<PasteboardItem> items);

    /// The label of an item: the names of the property's type and format.
    static QString labelOf(const QByteArray &type, int format);

private:
    using Contents = std::shared_ptr<const QList<PasteboardItem>>;

    void run();
    void handle(const xcb_generic_event_t &event);
    void takeOwnership(const Contents &contents);
    void dropContents();
    void handOver();
    void wait(std::optional<std::chrono::steady_clock::time_point> until);
    void wake() const;

    XcbSession m_session; // the thread's, once that runs
    xcb_window_t m_window = XCB_WINDOW_NONE;
    uint8_t m_xfixesEvent = 0;
    std::unique_ptr<SelectionServer> m_server;
    bool m_handedOver = false;

    std::atomic<qint64> m_changeCount = 0;
    std::atomic<bool> m_ending = false;
    int m_wakeDescriptor = -1;
    mutable std::mutex m_mutex; ///< guards what follows
    Contents m_contents;
    bool m_isPending = false; ///< written, but not yet announced to the server
    bool m_isOwner = false;
    std::thread m_thread;
};

} // namespace tovi
