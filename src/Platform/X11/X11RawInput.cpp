// SPDX-License-Identifier: MIT
#include "Platform/X11/X11RawInput.h"

#include <array>

#include <QCoreApplication>
#include <xcb/xinput.h>

namespace tovi {

namespace {

struct EventOfKind
{
    uint16_t type;
    uint32_t mask;
};

constexpr std::array<EventOfKind, 3> events{
    EventOfKind{XCB_INPUT_RAW_KEY_PRESS, XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS},
    EventOfKind{XCB_INPUT_RAW_KEY_RELEASE, XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE},
    EventOfKind{XCB_INPUT_RAW_BUTTON_PRESS, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS}};

} // namespace

struct X11RawInput::Watchers
{
    std::array<Subject<quint32>, events.size()> subjects;
    X11RawInput *owner;
};

X11RawInput::X11RawInput()
    : m_watchers(std::make_shared<Watchers>())
{
    m_watchers->owner = this;
    auto *connection = QtXcb::connection();
    if (const auto *input = xcb_get_extension_data(connection, &xcb_input_id); input && input->present)
        m_opcode = input->major_opcode;
    QCoreApplication::instance()->installNativeEventFilter(this);
}

Subscription X11RawInput::watch(Kind kind, Handler handler)
{
    const auto index = static_cast<size_t>(kind);
    const bool isFirst = m_watchers->subjects[index].isEmpty();
    auto entry = std::make_shared<Subscription>(m_watchers->subjects[index].subscribe(std::move(handler)));
    if (isFirst)
        select();
    return Subscription([weak = std::weak_ptr(m_watchers), index, entry] {
        entry->reset();
        const auto watchers = weak.lock();
        if (watchers && watchers->subjects[index].isEmpty())
            watchers->owner->select();
    });
}

void X11RawInput::select() const
{
    if (!m_opcode)
        return;
    // Qt's own choice of events is made for all devices, and stays.
    struct
    {
        xcb_input_event_mask_t head;
        uint32_t mask;
    } choice{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, 0};
    for (size_t i = 0; i < events.size(); ++i)
        choice.mask |= m_watchers->subjects[i].isEmpty() ? 0 : events[i].mask;
    xcb_input_xi_select_events(QtXcb::connection(), QtXcb::root(), 1, &choice.head);
    xcb_flush(QtXcb::connection());
}

bool X11RawInput::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    // The raw events of keys and buttons have the same layout.
    const auto *raw = static_cast<const xcb_input_raw_key_press_event_t *>(message);
    if (!m_opcode || eventType != "xcb_generic_event_t" || (raw->response_type & ~0x80) != XCB_GE_GENERIC ||
        raw->extension != m_opcode)
        return false;
    const auto watchers = m_watchers;
    for (size_t i = 0; i < events.size(); ++i) {
        if (raw->event_type == events[i].type)
            watchers->subjects[i].emitToAll(raw->detail);
    }
    return false;
}

} // namespace tovi
