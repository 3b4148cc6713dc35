// SPDX-License-Identifier: MIT
#include "DesktopSession.h"

#include <csignal>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QStandardPaths>
#include <QThread>

#include <sys/prctl.h>
#include <unistd.h>
#include <xcb/xtest.h>

namespace tovi {

namespace {

template <class T>
using Reply = std::unique_ptr<T, decltype([](T *reply) { std::free(reply); })>;

constexpr std::chrono::milliseconds betweenKeys{15};
constexpr std::chrono::milliseconds fingerOnKey{90};

/// One line that a starting program prints; empty when it did not.
QString readLine(QProcess &process)
{
    const bool ready = DesktopSession::eventually(
        [&] { return process.canReadLine() || process.state() == QProcess::NotRunning; });
    return ready ? QString::fromUtf8(process.readLine()).trimmed() : QString();
}

} // namespace

DesktopSession::DesktopSession()
    : DesktopSession(Options{})
{}

DesktopSession::DesktopSession(const Options &options)
{
    for (const char *name : {"runtime", "config", "data", "cache"})
        QDir(home()).mkdir(QString::fromLatin1(name));
    QFile::setPermissions(home() + QStringLiteral("/runtime"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("HOME", home().toUtf8());
    qputenv("XDG_RUNTIME_DIR", (home() + QStringLiteral("/runtime")).toUtf8());
    qputenv("XDG_CONFIG_HOME", (home() + QStringLiteral("/config")).toUtf8());
    qputenv("XDG_DATA_HOME", (home() + QStringLiteral("/data")).toUtf8());
    qputenv("XDG_CACHE_HOME", (home() + QStringLiteral("/cache")).toUtf8());
    qputenv("GSETTINGS_BACKEND", "memory");
    qputenv("LIBGL_ALWAYS_SOFTWARE", "1");
    qputenv("LC_ALL", "C.UTF-8");
    for (const char *name :
         {"WAYLAND_DISPLAY", "AT_SPI_BUS_ADDRESS", "SESSION_MANAGER", "DBUS_SESSION_BUS_ADDRESS"})
        qunsetenv(name);
    if (startDisplay(options) && startBus(options) && connectToDisplay())
        startRest(options);
}

DesktopSession::~DesktopSession()
{
    if (m_keySymbols)
        xcb_key_symbols_free(m_keySymbols);
    if (m_connection)
        xcb_disconnect(m_connection);
    while (!m_processes.empty())
        end(m_processes.back().get());
}

bool DesktopSession::startDisplay(const Options &options)
{
    const QString screen =
        QStringLiteral("%1x%2x24").arg(options.screenSize.width()).arg(options.screenSize.height());
    QProcess *server =
        start(QStringLiteral("Xvfb"),
              {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
               QStringLiteral("0"), screen, QStringLiteral("-dpi"), QString::number(options.dotsPerInch),
               QStringLiteral("-nolisten"), QStringLiteral("tcp"), QStringLiteral("-noreset")});
    const QString number = server ? readLine(*server) : QString();
    if (number.isEmpty()) {
        m_error = QStringLiteral("Xvfb did not start");
        return false;
    }
    m_display = QLatin1Char(':') + number;
    qputenv("DISPLAY", m_display.toUtf8());
    return true;
}

bool DesktopSession::startBus(const Options &options)
{
    const QString services =
        options.accessibilityServices ? QStringLiteral("<standard_session_servicedirs/>") : QString();
    const QString configuration = writeFile(QStringLiteral("bus.conf"), QStringLiteral(R"(<busconfig>
  <type>session</type>
  <listen>unix:dir=%1/runtime</listen>
  <auth>EXTERNAL</auth>
  %2
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)")
                                                                            .arg(home(), services));
    QProcess *daemon =
        start(QStringLiteral("dbus-daemon"), {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                                              QStringLiteral("--config-file=") + configuration});
    const QString address = daemon ? readLine(*daemon) : QString();
    if (address.isEmpty()) {
        m_error = QStringLiteral("the session bus did not start");
        return false;
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());
    return true;
}

bool DesktopSession::connectToDisplay()
{
    m_connection = xcb_connect(m_display.toUtf8().constData(), nullptr);
    if (xcb_connection_has_error(m_connection)) {
        m_error = QStringLiteral("the display does not answer");
        return false;
    }
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_keySymbols = xcb_key_symbols_alloc(m_connection);
    return true;
}

void DesktopSession::startRest(const Options &options)
{
    struct Part
    {
        bool wanted;
        const char *program;
        QStringList arguments;
        const char *sign; ///< a property or selection owner that appears when it is ready
        QByteArray input = {};
    };
    const Part parts[] = {
        {options.windowManager, "openbox", {QStringLiteral("--sm-disable")}, "_NET_SUPPORTING_WM_CHECK"},
        {options.compositor, "xcompmgr", {}, "_NET_WM_CM_S0"},
        {options.trayHost,
         "trayer",
         {QStringLiteral("--edge"), QStringLiteral("bottom"), QStringLiteral("--align"),
          QStringLiteral("right"), QStringLiteral("--width"), QStringLiteral("10"),
          QStringLiteral("--height"), QStringLiteral("28")},
         "_NET_SYSTEM_TRAY_S0"},
        {options.keyring,
         "gnome-keyring-daemon",
         {QStringLiteral("--foreground"), QStringLiteral("--unlock"), QStringLiteral("--components=secrets")},
         nullptr,
         "test\n"},
    };
    for (const Part &part : parts) {
        if (!part.wanted)
            continue;
        QProcess *process = start(QString::fromLatin1(part.program), part.arguments);
        if (process && !part.input.isEmpty()) {
            process->write(part.input);
            process->closeWriteChannel();
        }
        const auto ready = [&] {
            if (!part.sign)
                return process->bytesAvailable() > 0;
            const Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
                m_connection, xcb_get_selection_owner(m_connection, atom(part.sign)), nullptr));
            return (owner && owner->owner) || !readProperty(m_screen->root, part.sign).isEmpty();
        };
        if (!process || !eventually(ready)) {
            m_error = QString::fromLatin1(part.program) + QStringLiteral(" did not start");
            return;
        }
    }
}

QString DesktopSession::writeFile(const QString &name, const QString &text) const
{
    const QString path = home() + QLatin1Char('/') + name;
    QFile file(path);
    if (!file.open(QFile::WriteOnly) || file.write(text.toUtf8()) < 0)
        qWarning("cannot write %s", qPrintable(path));
    return path;
}

bool DesktopSession::isInstalled(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

QProcess *DesktopSession::start(const QString &program, const QStringList &arguments,
                                const QStringList &environment)
{
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const QString &line : environment)
        variables.insert(line.section(QLatin1Char('='), 0, 0), line.section(QLatin1Char('='), 1));
    if (program != QLatin1String("Xvfb"))
        variables.remove(QStringLiteral("QT_QPA_PLATFORM"));
    process->setProcessEnvironment(variables);
    process->setWorkingDirectory(home());
    // Its own group, so that its children end with it; and it ends if this process dies first.
    process->setChildProcessModifier([] {
        ::setpgid(0, 0);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    });
    // What desktop programs say on their standard error would drown the test's own output.
    if (qEnvironmentVariableIsEmpty("TOVI_TEST_VERBOSE"))
        process->setStandardErrorFile(QProcess::nullDevice());
    else
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(program, arguments);
    if (!process->waitForStarted())
        return nullptr;
    m_processes.push_back(std::move(process));
    return m_processes.back().get();
}

void DesktopSession::end(QProcess *process)
{
    if (process->state() != QProcess::NotRunning)
        ::kill(-static_cast<pid_t>(process->processId()), SIGKILL);
    process->waitForFinished();
    std::erase_if(m_processes, [process](const auto &each) { return each.get() == process; });
}

xcb_atom_t DesktopSession::atom(const char *name) const
{
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, false, static_cast<uint16_t>(qstrlen(name)), name),
        nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

QByteArray DesktopSession::readProperty(xcb_window_t window, const char *name) const
{
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, false, window, atom(name), XCB_ATOM_ANY, 0, 4096),
        nullptr));
    if (!reply)
        return {};
    return QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

xcb_window_t DesktopSession::activeWindow() const
{
    const QByteArray value = readProperty(m_screen->root, "_NET_ACTIVE_WINDOW");
    return value.size() == 4 ? *reinterpret_cast<const xcb_window_t *>(value.constData())
                             : xcb_window_t(XCB_WINDOW_NONE);
}

QString DesktopSession::title(xcb_window_t window) const
{
    const QByteArray value = readProperty(window, "_NET_WM_NAME");
    return QString::fromUtf8(value.isEmpty() ? readProperty(window, "WM_NAME") : value);
}

QRect DesktopSession::geometry(xcb_window_t window) const
{
    const Reply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr));
    const Reply<xcb_translate_coordinates_reply_t> origin(xcb_translate_coordinates_reply(
        m_connection, xcb_translate_coordinates(m_connection, window, m_screen->root, 0, 0), nullptr));
    return size && origin ? QRect(origin->dst_x, origin->dst_y, size->width, size->height) : QRect();
}

xcb_window_t DesktopSession::waitForWindow(const QString &titlePart) const
{
    xcb_window_t window = XCB_WINDOW_NONE;
    const bool found = eventually([&] {
        window = activeWindow();
        return window != XCB_WINDOW_NONE && title(window).contains(titlePart);
    });
    return found ? window : xcb_window_t(XCB_WINDOW_NONE);
}

void DesktopSession::activate(xcb_window_t window) const
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom("_NET_ACTIVE_WINDOW");
    event.data.data32[0] = 2; // as a pager asks
    xcb_send_event(m_connection, false, m_screen->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&event));
    xcb_flush(m_connection);
    eventually([&] { return activeWindow() == window; });
}

void DesktopSession::fake(quint8 type, quint8 detail, QPoint position) const
{
    xcb_test_fake_input(m_connection, type, detail, XCB_CURRENT_TIME, m_screen->root,
                        static_cast<int16_t>(position.x()), static_cast<int16_t>(position.y()), 0);
    xcb_flush(m_connection);
}

void DesktopSession::setKey(xcb_keysym_t key, bool down) const
{
    const Reply<xcb_keycode_t> codes(xcb_key_symbols_get_keycode(m_keySymbols, key));
    if (codes)
        fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, *codes);
    else
        qWarning("the keyboard has no key for keysym %u", key);
}

void DesktopSession::pressKey(xcb_keysym_t key, const std::vector<xcb_keysym_t> &modifiers) const
{
    // Toolkits take events of the same instant for something else than a person's typing.
    for (const xcb_keysym_t modifier : modifiers) {
        setKey(modifier, true);
        rest(betweenKeys);
    }
    setKey(key, true);
    rest(betweenKeys);
    setKey(key, false);
    for (auto modifier = modifiers.rbegin(); modifier != modifiers.rend(); ++modifier)
        setKey(*modifier, false);
    rest(betweenKeys);
}

qint64 DesktopSession::pressKeyTimed(xcb_keysym_t key, xcb_keysym_t modifier) const
{
    setKey(modifier, true);
    rest(betweenKeys);
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    setKey(key, true);
    rest(fingerOnKey);
    setKey(key, false);
    setKey(modifier, false);
    return std::chrono::nanoseconds(time).count();
}

void DesktopSession::movePointer(QPoint position) const
{
    fake(XCB_MOTION_NOTIFY, 0, position);
}

void DesktopSession::click(QPoint position, int times, int button) const
{
    movePointer(position);
    for (int i = 0; i < times; ++i) {
        fake(XCB_BUTTON_PRESS, static_cast<quint8>(button));
        fake(XCB_BUTTON_RELEASE, static_cast<quint8>(button));
        rest(betweenKeys);
    }
}

void DesktopSession::drag(QPoint from, QPoint to) const
{
    movePointer(from);
    fake(XCB_BUTTON_PRESS, 1);
    // In steps: some applications take a single jump for a click.
    for (int step = 1; step <= 8; ++step)
        movePointer(from + (to - from) * step / 8);
    fake(XCB_BUTTON_RELEASE, 1);
}

QImage DesktopSession::screenshot() const
{
    const uint16_t width = m_screen->width_in_pixels;
    const uint16_t height = m_screen->height_in_pixels;
    const Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
        m_connection,
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, 0, 0, width, height, ~0U),
        nullptr));
    if (!reply)
        return {};
    return QImage(xcb_get_image_data(reply.get()), width, height, QImage::Format_RGB32).copy();
}

bool DesktopSession::eventually(const std::function<bool()> &condition, std::chrono::seconds limit)
{
    const QDeadlineTimer deadline(limit);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(5);
    }
    return true;
}

void DesktopSession::rest(std::chrono::milliseconds time)
{
    const QDeadlineTimer end(time);
    eventually([&] { return end.hasExpired(); });
}

} // namespace tovi
