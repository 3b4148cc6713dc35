// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

namespace tovi {

/// A desktop of its own for a test: virtual display, session bus, window manager and, if wanted, the rest;
/// with a home folder that goes away at the end, as do all its processes. The calling process joins it by its
/// environment, so make it before anything that connects to a display or a bus. Main thread.
class DesktopSession
{
public:
    struct Options
    {
        QSize screenSize{1280, 900};
        int dotsPerInch = 96;
        bool windowManager = true;
        bool compositor = false;
        bool keyring = false;
        bool trayHost = false;
        bool accessibilityServices = true; ///< whether the session bus can start the accessibility bus
    };

    explicit DesktopSession(const Options &options);
    DesktopSession();
    ~DesktopSession();
    DesktopSession(const DesktopSession &) = delete;

    /// Empty when everything started; else what did not.
    QString error() const { return m_error; }
    QString display() const { return m_display; }
    QString home() const { return m_directory.path(); }
    /// Writes a file into the home folder and returns its path.
    QString writeFile(const QString &name, const QString &text) const;

    static bool isInstalled(const QString &program);
    /// Starts a program; the session ends it. Null if it did not start. `environment` holds NAME=value lines.
    QProcess *start(const QString &program, const QStringList &arguments = {},
                    const QStringList &environment = {});
    /// Ends a program with its children and waits for that.
    void end(QProcess *process);

    /// The window that the window manager calls active; 0 for none.
    xcb_window_t activeWindow() const;
    QString title(xcb_window_t window) const;
    /// The window with its decorations' contents only: the client area in screen pixels.
    QRect geometry(xcb_window_t window) const;
    /// Waits for a window whose title contains the text to be active, and returns it; 0 when none appeared.
    xcb_window_t waitForWindow(const QString &titlePart) const;
    void activate(xcb_window_t window) const;

    /// Presses and releases a key with modifiers held (keysyms of both), as a keyboard does.
    void pressKey(xcb_keysym_t key, const std::vector<xcb_keysym_t> &modifiers = {}) const;
    /// The same as long as a finger takes, which a grab of the key lasts, too. The modifier is held before,
    /// and the time of the key's going down is returned, in nanoseconds of CLOCK_MONOTONIC.
    qint64 pressKeyTimed(xcb_keysym_t key, xcb_keysym_t modifier) const;
    /// A key alone: down or up.
    void setKey(xcb_keysym_t key, bool down) const;
    void movePointer(QPoint position) const;
    void click(QPoint position, int times = 1, int button = 1) const;
    void drag(QPoint from, QPoint to) const;

    QImage screenshot() const;

    /// Delivers events until the condition holds; false when it did not within a generous time.
    static bool eventually(const std::function<bool()> &condition, std::chrono::seconds limit = defaultLimit);
    static constexpr std::chrono::seconds defaultLimit{90};
    /// Gives other programs time as a person does between two keys; delivers events meanwhile.
    static void rest(std::chrono::milliseconds time);

private:
    bool startDisplay(const Options &options);
    bool startBus(const Options &options);
    bool connectToDisplay();
    void startRest(const Options &options);
    QByteArray readProperty(xcb_window_t window, const char *name) const;
    xcb_atom_t atom(const char *name) const;
    void fake(quint8 type, quint8 detail, QPoint position = {}) const;

    QTemporaryDir m_directory;
    std::vector<std::unique_ptr<QProcess>> m_processes;
    QString m_display;
    QString m_error;
    xcb_connection_t *m_connection = nullptr;
    xcb_screen_t *m_screen = nullptr;
    xcb_key_symbols_t *m_keySymbols = nullptr;
};

} // namespace tovi
