// SPDX-License-Identifier: MIT
#include "Platform/X11/X11PanelHost.h"

#include <utility>

#include <QApplication>
#include <QLabel>

#include <xcb/xfixes.h>

#include "Platform/X11/FrontWindow.h"
#include "Platform/X11/PanelWindow.h"
#include "Platform/X11/ScreenGeometry.h"
#include "Platform/X11/X11Overlay.h"

namespace tovi {

namespace {

// One on the screen and one behind it: a panel is often replaced in the same moment.
constexpr size_t mostIdleWindows = 2;
constexpr Clock::Duration restTime = std::chrono::milliseconds(500);

/// The first widget that draws text loads the fonts and the style, which takes longer than showing a panel.
void drawSomeText()
{
    QWidget window;
    QLabel label(QStringLiteral("Ab"), &window);
    window.grab();
}

} // namespace

struct X11PanelHost::Windows
{
    struct Idle
    {
        std::unique_ptr<PanelWindow> window;
        Clock::Time hiddenAt;
    };
    FrontWindow &frontWindow;
    Clock &clock;
    std::vector<Idle> idle; // the longest hidden first
    std::vector<PanelWindow *> all;
    std::vector<PanelWindow *> hidden; // by the user's wish to hide the program

    /// An idle window, or a new one. One that the window manager may still be busy hiding, or even showing,
    /// would come back in a confused state.
    std::unique_ptr<PanelWindow> take(bool compositing)
    {
        const auto ready = std::ranges::find_if(idle, [&](const Idle &entry) {
            return clock.now() - entry.hiddenAt >= restTime &&
                   frontWindow.isWithdrawn(static_cast<quint32>(entry.window->winId()));
        });
        if (ready == idle.end())
            return make(compositing);
        auto window = std::move(ready->window);
        idle.erase(ready);
        return window;
    }
    std::unique_ptr<PanelWindow> make(bool compositing)
    {
        auto window = std::make_unique<PanelWindow>(compositing);
        frontWindow.addPanel(static_cast<quint32>(window->winId()));
        all.push_back(window.get());
        return window;
    }
    void forget(PanelWindow *window)
    {
        frontWindow.removePanel(static_cast<quint32>(window->winId()));
        std::erase(all, window);
    }
};

class X11PanelHost::X11Panel final : public Panel
{
public:
    X11Panel(std::weak_ptr<Windows> windows, std::unique_ptr<PanelWindow> window)
        : m_windows(std::move(windows))
        , m_window(std::move(window))
    {
        m_window->onEscape = [this] {
            if (const auto handler = onEscape)
                handler();
        };
    }
    ~X11Panel() override
    {
        m_window->release();
        const auto windows = m_windows.lock();
        if (windows)
            std::erase(windows->hidden, m_window.get());
        if (windows && windows->idle.size() < mostIdleWindows) {
            windows->idle.push_back({std::move(m_window), windows->clock.now()});
        } else {
            if (windows)
                windows->forget(m_window.get());
            m_window.release()->deleteLater(); // one of its events may be what ends us
        }
    }

    QRectF frame() const override { return ScreenGeometry::current().fromQt(QRectF(m_window->panelRect())); }
    void setFrame(const QRectF &frame) override
    {
        m_window->setPanelRect(ScreenGeometry::current().toQt(frame));
    }
    void orderFrontRegardless() override
    {
        if (const auto windows = m_windows.lock())
            std::erase(windows->hidden, m_window.get());
        m_window->present();
    }
    void makeKey() override
    {
        const auto windows = m_windows.lock();
        const bool managed = windows && windows->frontWindow.takesActivationRequests();
        m_window->makeKey(managed ? windows->frontWindow.serverTime() : 0);
    }
    void orderOut() override
    {
        if (const auto windows = m_windows.lock())
            std::erase(windows->hidden, m_window.get());
        m_window->hide();
    }
    bool isVisible() const override { return m_window->isVisible(); }

private:
    std::weak_ptr<Windows> m_windows;
    std::unique_ptr<PanelWindow> m_window;
};

X11PanelHost::X11PanelHost(FrontWindow &frontWindow, Clock &clock, ScreenCapture &screenCapture)
    : m_clock(clock)
    , m_screenCapture(screenCapture)
    , m_windows(new Windows{frontWindow, clock, {}, {}})
{
    setUpCompositing();
    QCoreApplication::instance()->installNativeEventFilter(this);
    prepareLater(std::chrono::milliseconds(400)); // let the start of the program finish first
}

X11PanelHost::~X11PanelHost() = default;

int X11PanelHost::idleWindows() const
{
    return static_cast<int>(m_windows->idle.size());
}

std::unique_ptr<Panel> X11PanelHost::makePanel(std::unique_ptr<QWidget> content)
{
    auto window = m_windows->take(m_compositing);
    window->setContent(std::move(content));
    if (m_windows->idle.empty())
        prepareLater(std::chrono::seconds(1));
    return std::make_unique<X11Panel>(m_windows, std::move(window));
}

std::unique_ptr<Panel> X11PanelHost::makeOverlay(std::unique_ptr<QWidget> content)
{
    QList<quint32> hidden;
    for (const PanelWindow *window : m_windows->all) {
        if (!window->isVisible())
            hidden << static_cast<quint32>(window->winId());
    }
    const X11Overlay::Surroundings surroundings{m_compositing, m_compositorEnded, m_screenCapture, m_clock,
                                                hidden};
    return std::make_unique<X11Overlay>(std::move(content), surroundings);
}

void X11PanelHost::hidePanels()
{
    for (PanelWindow *window : m_windows->all) {
        if (window->isVisible()) {
            m_windows->hidden.push_back(window);
            window->hide();
        }
    }
}

void X11PanelHost::unhidePanels()
{
    for (PanelWindow *window : std::exchange(m_windows->hidden, {}))
        window->present();
}

void X11PanelHost::prepareLater(Clock::Duration delay)
{
    m_preparation = m_clock.after(delay, [this] {
        if (m_windows->idle.empty())
            m_windows->idle.push_back({m_windows->make(m_compositing), Clock::distantPast()});
        if (!std::exchange(m_hasDrawnText, true))
            drawSomeText();
    });
}

void X11PanelHost::setUpCompositing()
{
    auto *connection = QtXcb::connection();
    m_compositorAtom = internAtom(connection, "_NET_WM_CM_S0");
    const auto *fixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (fixes && fixes->present) {
        m_fixesEvent = fixes->first_event;
        // The same mask as Qt's own for this selection: the later request replaces the earlier one.
        xcb_xfixes_select_selection_input(connection, QtXcb::root(), m_compositorAtom,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    const XcbOwned<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, m_compositorAtom), nullptr));
    m_compositing = owner && owner->owner != XCB_WINDOW_NONE;
}

bool X11PanelHost::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const int type = static_cast<const xcb_generic_event_t *>(message)->response_type & ~0x80;
    if (type == XCB_FOCUS_IN) {
        const auto *event = static_cast<const xcb_focus_in_event_t *>(message);
        for (PanelWindow *window : m_windows->all) {
            if (event->event == window->winId() && event->detail != XCB_NOTIFY_DETAIL_POINTER)
                window->focusCame();
        }
    } else if (m_fixesEvent && type == m_fixesEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto *event = static_cast<const xcb_xfixes_selection_notify_event_t *>(message);
        if (event->selection == m_compositorAtom) {
            m_compositing = event->owner != XCB_WINDOW_NONE;
            for (PanelWindow *window : m_windows->all)
                window->setCompositing(m_compositing);
            if (!m_compositing)
                m_compositorEnded.emitToAll();
        }
    }
    return false;
}

} // namespace tovi
