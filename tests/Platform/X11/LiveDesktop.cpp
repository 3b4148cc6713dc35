// SPDX-License-Identifier: MIT
#include "Platform/X11/LiveDesktop.h"

#include <QApplication>
#include <QRect>
#include <gtest/gtest.h>

#include <unistd.h>
#include <xcb/xtest.h>

namespace tovi {

LiveDesktop::LiveDesktop()
{
    int ends[2];
    if (pipe(ends) != 0)
        qFatal("no pipe");
    m_server.setStandardErrorFile(QProcess::nullDevice());
    m_server.start(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QString::number(ends[1]), QStringLiteral("-screen"),
                    QStringLiteral("0"), QStringLiteral("1600x900x24"), QStringLiteral("-nolisten"),
                    QStringLiteral("tcp"), QStringLiteral("-noreset")});
    if (!m_server.waitForStarted())
        qFatal("Xvfb does not start");
    close(ends[1]);
    QByteArray display;
    for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';)
        display += c;
    close(ends[0]);
    if (display.isEmpty())
        qFatal("Xvfb gave no display");
    qputenv("DISPLAY", ":" + display);
    qputenv("QT_QPA_PLATFORM", "xcb");
    m_windowManager.setStandardErrorFile(QProcess::nullDevice());
    m_windowManager.start(QStringLiteral("openbox"), {});
    XcbSession session;
    // The last thing it announces; a window that asks to be shown before is forgotten.
    const xcb_atom_t check = session.atom("_NET_CLIENT_LIST");
    const auto isAnnounced = [&] {
        const auto list = session.reply(session.requestProperty(session.root(), check));
        return list && list->type != XCB_ATOM_NONE;
    };
    while (!isAnnounced()) {
        if (m_windowManager.state() == QProcess::NotRunning || !session.isOpen())
            qFatal("no window manager");
        usleep(2000);
    }
    // Under load even then; so until it has taken one.
    const xcb_window_t probe = xcb_generate_id(session.connection());
    xcb_create_window(session.connection(), XCB_COPY_FROM_PARENT, probe, session.root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const xcb_atom_t state = session.atom("WM_STATE");
    const auto isManaged = [&] {
        return !propertyItems(session.reply(session.requestProperty(probe, state)).get()).isEmpty();
    };
    for (int i = 0; i < 1000 && !isManaged(); ++i) {
        xcb_map_window(session.connection(), probe);
        usleep(10000);
    }
}

LiveDesktop::~LiveDesktop()
{
    for (QProcess *process : {&m_windowManager, &m_server}) {
        process->terminate();
        process->waitForFinished();
    }
}

std::unique_ptr<QProcess> LiveDesktop::start(const QString &program, const QStringList &arguments)
{
    auto process = std::make_unique<QProcess>();
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(program, arguments);
    EXPECT_TRUE(process->waitForStarted()) << program.toStdString();
    return process;
}

QString LiveDesktop::run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0) << program.toStdString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

void OtherClient::key(uint8_t keycode, bool down)
{
    auto *connection = m_session.connection();
    // Two milliseconds apart on the server, so that no two events have the same time.
    xcb_test_fake_input(connection, down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keycode, 2, XCB_NONE, 0, 0, 0);
    // A round trip: the server has taken the key when this returns.
    m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection));
}

bool OtherClient::isDown(uint8_t keycode)
{
    const auto keys = m_session.reply<xcb_query_keymap_reply_t>(xcb_query_keymap(m_session.connection()));
    return keys && (keys->keys[keycode / 8] & (1 << keycode % 8));
}

void OtherClient::press(std::initializer_list<uint8_t> chord)
{
    for (const uint8_t keycode : chord)
        key(keycode, true);
    for (auto it = std::rbegin(chord); it != std::rend(chord); ++it)
        key(*it, false);
}

bool OtherClient::grab(uint8_t keycode, uint16_t state)
{
    auto *connection = m_session.connection();
    const auto cookie =
        xcb_grab_key_checked(connection, 0, root(), state, keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    return !XcbOwned<xcb_generic_error_t>(xcb_request_check(connection, cookie));
}

bool OtherClient::takeKeyboard()
{
    auto *connection = m_session.connection();
    const auto reply = m_session.reply<xcb_grab_keyboard_reply_t>(
        xcb_grab_keyboard(connection, 0, root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    xcb_ungrab_keyboard(connection, XCB_CURRENT_TIME);
    m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

bool OtherClient::isFree(uint8_t keycode, uint16_t state)
{
    if (!grab(keycode, state))
        return false;
    xcb_ungrab_key(m_session.connection(), keycode, root(), state);
    m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(m_session.connection()));
    return true;
}

QList<quint32> OtherClient::property(xcb_window_t window, const char *name)
{
    return propertyItems(m_session.reply(m_session.requestProperty(window, m_session.atom(name))).get());
}

xcb_window_t OtherClient::focus()
{
    const auto reply =
        m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(m_session.connection()));
    return reply ? reply->focus : 0;
}

void OtherClient::setFocus(xcb_window_t window)
{
    xcb_set_input_focus(m_session.connection(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    focus();
}

QRect OtherClient::frameOf(xcb_window_t window)
{
    auto *connection = m_session.connection();
    const auto size = m_session.reply<xcb_get_geometry_reply_t>(xcb_get_geometry(connection, window));
    const auto corner = m_session.reply<xcb_translate_coordinates_reply_t>(
        xcb_translate_coordinates(connection, window, root(), 0, 0));
    return size && corner ? QRect(corner->dst_x, corner->dst_y, size->width, size->height) : QRect();
}

} // namespace tovi

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    tovi::LiveDesktop desktop;
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
