// SPDX-License-Identifier: MIT
#include "Platform/X11/XcbClipboard.h"

#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <poll.h>
#include <xcb/xfixes.h>

#include "Platform/X11/SelectionServer.h"

namespace tovi {

namespace {

constexpr std::chrono::milliseconds requestLimit{250};
constexpr std::chrono::seconds handOverLimit{1};

} // namespace

XcbClipboard::XcbClipboard()
{
    if (!m_session.isOpen())
        return;
    m_session.startDeadline(std::chrono::seconds(1));
    auto *connection = m_session.connection();
    m_window = xcb_generate_id(connection);
    xcb_create_window(connection, 0, m_window, m_session.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto *xfixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (xfixes && xfixes->present &&
        m_session.reply<xcb_xfixes_query_version_reply_t>(xcb_xfixes_query_version(connection, 1, 0))) {
        m_xfixesEvent = static_cast<uint8_t>(xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
        xcb_xfixes_select_selection_input(connection, m_window, m_session.atom("CLIPBOARD"),
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    // From here on no change is missed.
    m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection));
    m_server = std::make_unique<SelectionServer>(m_session, m_window);
    m_wakeDescriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_wakeDescriptor < 0)
        return;
    m_thread = std::thread([this] { run(); });
    pthread_setname_np(m_thread.native_handle(), "tovi.clipboard");
}

XcbClipboard::~XcbClipboard()
{
    if (m_thread.joinable()) {
        m_ending = true;
        wake();
        m_thread.join();
    }
    if (m_wakeDescriptor >= 0)
        close(m_wakeDescriptor);
}

QString XcbClipboard::labelOf(const QByteArray &type, int format)
{
    return QString::fromLatin1(type) + QLatin1Char('/') + QString::number(format);
}

std::shared_ptr<const QList<PasteboardItem>> XcbClipboard::ownContents() const
{
    const std::scoped_lock lock(m_mutex);
    return m_isPending || m_isOwner ? m_contents : nullptr;
}

void XcbClipboard::write(QList<PasteboardItem> items)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_contents = std::make_shared<const QList<PasteboardItem>>(std::move(items));
        m_isPending = true;
        ++m_changeCount;
    }
    wake();
}

void XcbClipboard::wake() const
{
    const uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_wakeDescriptor, &one, sizeof one);
}

void XcbClipboard::run()
{
    while (m_session.isOpen()) {
        m_server->dropStalled(); // first, since any request may take in events
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_session.connection())})
            handle(*event);
        Contents pending;
        {
            const std::scoped_lock lock(m_mutex);
            if (m_isPending)
                pending = m_contents;
        }
        if (pending) {
            takeOwnership(pending);
            continue;
        }
        if (m_ending)
            break;
        wait(m_server->nextTimeout());
    }
    handOver();
}

void XcbClipboard::takeOwnership(const Contents &contents)
{
    auto *connection = m_session.connection();
    m_server->setContents(*contents);
    m_session.startDeadline(requestLimit);
    xcb_set_selection_owner(connection, m_window, m_session.atom("CLIPBOARD"), XCB_CURRENT_TIME);
    // The announcement comes before the answer to what is asked after it.
    const auto answer = m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection));
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection)})
        handle(*event);
    const std::scoped_lock lock(m_mutex);
    if (m_contents != contents)
        return; // written anew meanwhile
    m_isPending = false;
    if (answer && !m_isOwner) // a server that is slow to answer may make us the owner yet
        dropContents();
}

/// What nobody can ask us for any more: large pictures, or somebody's password.
void XcbClipboard::dropContents()
{
    if (m_isPending)
        return;
    m_contents.reset();
    m_server->setContents({});
}

void XcbClipboard::handle(const xcb_generic_event_t &event)
{
    const uint8_t type = event.response_type & 0x7f;
    if (type == XCB_SELECTION_REQUEST) {
        m_server->handle(reinterpret_cast<const xcb_selection_request_event_t &>(event));
    } else if (type == XCB_PROPERTY_NOTIFY) {
        m_server->handle(reinterpret_cast<const xcb_property_notify_event_t &>(event));
    } else if (type == XCB_DESTROY_NOTIFY) {
        m_server->handle(reinterpret_cast<const xcb_destroy_notify_event_t &>(event));
    } else if (type == XCB_SELECTION_NOTIFY) {
        m_handedOver = true;
    } else if (m_xfixesEvent && type == m_xfixesEvent) {
        const auto &change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t &>(event);
        const std::scoped_lock lock(m_mutex);
        m_isOwner = change.owner == m_window;
        if (m_isOwner) {
            m_server->setTimestamp(change.selection_timestamp);
        } else {
            ++m_changeCount;
            dropContents();
        }
    }
}

/// Waits for the server, for a write and for the end.
void XcbClipboard::wait(std::optional<std::chrono::steady_clock::time_point> until)
{
    using namespace std::chrono;
    pollfd descriptors[] = {{xcb_get_file_descriptor(m_session.connection()), POLLIN, 0},
                            {m_wakeDescriptor, POLLIN, 0}};
    int milliseconds = -1;
    if (until)
        milliseconds = static_cast<int>(std::clamp<qint64>(
            ceil<std::chrono::milliseconds>(*until - steady_clock::now()).count(), 0, 60'000));
    poll(descriptors, 2, milliseconds);
    uint64_t count;
    [[maybe_unused]] const auto read = ::read(m_wakeDescriptor, &count, sizeof count);
}

/// Contents end with the program that owns them, unless a clipboard manager is asked to take a copy.
void XcbClipboard::handOver()
{
    const auto contents = ownContents();
    if (!contents || contents->isEmpty() || !m_session.isOpen())
        return;
    auto *connection = m_session.connection();
    m_session.startDeadline(requestLimit);
    const xcb_atom_t manager = m_session.atom("CLIPBOARD_MANAGER");
    const xcb_atom_t property = m_session.atom("TOVI_SELECTION");
    const auto owner =
        m_session.reply<xcb_get_selection_owner_reply_t>(xcb_get_selection_owner(connection, manager));
    if (!owner || owner->owner == XCB_WINDOW_NONE)
        return;
    const QList<xcb_atom_t> targets = m_server->targets();
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, m_window, property, XCB_ATOM_ATOM, 32,
                        static_cast<quint32>(targets.size()), targets.constData());
    xcb_convert_selection(connection, m_window, manager, m_session.atom("SAVE_TARGETS"), property,
                          XCB_CURRENT_TIME);
    xcb_flush(connection);
    m_handedOver = false;
    const auto end = std::chrono::steady_clock::now() + handOverLimit;
    while (!m_handedOver && m_session.isOpen() && std::chrono::steady_clock::now() < end) {
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection)})
            handle(*event);
        if (!m_handedOver)
            wait(end);
    }
}

} // namespace tovi
