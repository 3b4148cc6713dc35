// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Application.h"

#include <unistd.h>

#include <QApplication>

#include "Platform/X11/X11PanelHost.h"
#include "Platform/X11/Xcb.h"

namespace tovi {

namespace {

struct Atoms
{
    xcb_atom_t state, skipTaskbar, skipPager, hidden, clientList, pid, type, dock, desktop, changeState;
};

const Atoms &atoms()
{
    static const Atoms values = [] {
        auto *connection = QtXcb::connection();
        return Atoms{.state = internAtom(connection, "_NET_WM_STATE"),
                     .skipTaskbar = internAtom(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                     .skipPager = internAtom(connection, "_NET_WM_STATE_SKIP_PAGER"),
                     .hidden = internAtom(connection, "_NET_WM_STATE_HIDDEN"),
                     .clientList = internAtom(connection, "_NET_CLIENT_LIST"),
                     .pid = internAtom(connection, "_NET_WM_PID"),
                     .type = internAtom(connection, "_NET_WM_WINDOW_TYPE"),
                     .dock = internAtom(connection, "_NET_WM_WINDOW_TYPE_DOCK"),
                     .desktop = internAtom(connection, "_NET_WM_WINDOW_TYPE_DESKTOP"),
                     .changeState = internAtom(connection, "WM_CHANGE_STATE")};
    }();
    return values;
}

QList<quint32> itemsOf(xcb_window_t window, xcb_atom_t name)
{
    constexpr quint32 longest = 4096;
    auto *connection = QtXcb::connection();
    const XcbOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, name, XCB_ATOM_ANY, 0, longest), nullptr));
    return propertyItems(reply.get());
}

/// The kind that a taskbar lists: no panel, menu or tool tip.
bool isRegularWindow(const QWidget &widget)
{
    return widget.isWindow() && (widget.windowType() == Qt::Window || widget.windowType() == Qt::Dialog);
}

xcb_window_t idOf(const QWidget &window)
{
    return static_cast<xcb_window_t>(window.winId());
}

/// Window managers take the states of a window that is shown from it, and Qt leaves the ones it does not
/// know.
void setListed(const QWidget &window, bool isListed)
{
    QList<quint32> states = itemsOf(idOf(window), atoms().state);
    for (const xcb_atom_t state : {atoms().skipTaskbar, atoms().skipPager}) {
        states.removeAll(state);
        if (!isListed)
            states << state;
    }
    xcb_change_property(QtXcb::connection(), XCB_PROP_MODE_REPLACE, idOf(window), atoms().state,
                        XCB_ATOM_ATOM, 32, static_cast<uint32_t>(states.size()), states.constData());
}

bool isOfOtherApplication(xcb_window_t window)
{
    if (itemsOf(window, atoms().pid).value(0) == quint32(::getpid()))
        return false;
    const auto types = itemsOf(window, atoms().type);
    if (types.contains(atoms().dock) || types.contains(atoms().desktop))
        return false;
    // Hidden windows are hidden already; the unlisted ones could not be brought back by anybody else.
    const auto states = itemsOf(window, atoms().state);
    return !states.contains(atoms().hidden) && !states.contains(atoms().skipTaskbar);
}

} // namespace

X11Application::X11Application()
{
    QCoreApplication::instance()->installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive && m_panelHost)
            m_panelHost->unhidePanels();
    });
    const auto announce = [this] { m_statusBarChanged.emitToAll(); };
    m_statusBar.onChange = announce;
    m_preference = m_desktopPreferenceChanged.subscribe(announce);
}

void X11Application::setActivationPolicy(ActivationPolicy policy)
{
    m_policy = policy;
    if (policy == ActivationPolicy::Accessory)
        return;
    constexpr quint32 remove = 0;
    constexpr quint32 fromApplication = 1;
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (isRegularWindow(*window) && window->isVisible())
            QtXcb::requestOfWindowManager(idOf(*window), atoms().state,
                                          {remove, atoms().skipTaskbar, atoms().skipPager, fromApplication});
    }
    xcb_flush(QtXcb::connection());
}

bool X11Application::eventFilter(QObject *receiver, QEvent *event)
{
    const bool isShow = event->type() == QEvent::Show && !event->spontaneous();
    const bool isActivation = event->type() == QEvent::WindowActivate;
    if ((!isShow && !isActivation) || !receiver->isWidgetType())
        return false;
    const auto &widget = *static_cast<QWidget *>(receiver);
    if (!isRegularWindow(widget))
        return false;
    // The native window exists and is not mapped yet.
    if (isShow)
        setListed(widget, m_policy == ActivationPolicy::Regular);
    // A panel is no reason to bring windows back, which would take its keyboard.
    if (isActivation)
        unhide();
    return false;
}

void X11Application::hide()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (isRegularWindow(*window) && window->isVisible() && !window->isMinimized()) {
            m_hiddenWindows.emplace_back(window);
            window->showMinimized();
        }
    }
    if (m_panelHost)
        m_panelHost->hidePanels();
}

void X11Application::unhide()
{
    QWidget *active = QApplication::activeWindow();
    bool hasBroughtBack = false;
    for (const auto &window : std::exchange(m_hiddenWindows, {})) {
        if (!window || !window->isVisible() || !window->isMinimized())
            continue;
        window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
        hasBroughtBack = true;
    }
    // Window managers activate what comes back.
    if (active && hasBroughtBack) {
        active->raise();
        active->activateWindow();
    }
    if (m_panelHost)
        m_panelHost->unhidePanels();
}

void X11Application::hideOtherApplications()
{
    constexpr quint32 iconic = 3;
    for (const xcb_window_t window : itemsOf(QtXcb::root(), atoms().clientList)) {
        if (isOfOtherApplication(window)) {
            QtXcb::requestOfWindowManager(window, atoms().changeState, {iconic});
            m_hiddenOthers.push_back(window);
        }
    }
    xcb_flush(QtXcb::connection());
}

void X11Application::unhideAllApplications()
{
    QWidget *active = QApplication::activeWindow();
    const auto present = itemsOf(QtXcb::root(), atoms().clientList);
    for (const xcb_window_t window : std::exchange(m_hiddenOthers, {})) {
        // A window that the user has brought back meanwhile stays where he put it.
        if (present.contains(window) && itemsOf(window, atoms().state).contains(atoms().hidden))
            xcb_map_window(QtXcb::connection(), window);
    }
    unhide();
    // Window managers activate what comes back.
    if (active)
        active->activateWindow();
    xcb_flush(QtXcb::connection());
}

Application::StatusBar X11Application::statusBar()
{
    const std::optional<bool> preference = desktopPrefersDark();
    return m_statusBar.state(preference);
}

Subscription X11Application::watchStatusBar(std::function<void()> changed)
{
    return m_statusBarChanged.subscribe(std::move(changed));
}

} // namespace tovi
