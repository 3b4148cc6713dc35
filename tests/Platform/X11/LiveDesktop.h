// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <QByteArray>
#include <QProcess>
#include <QStringList>

#include "Platform/X11/XcbSession.h"

namespace tovi {

/// A virtual X server with a window manager, for this process's own use. Made before the application object.
class LiveDesktop
{
public:
    LiveDesktop();
    ~LiveDesktop();

    /// Starts a program on the desktop; it ends with the returned object.
    static std::unique_ptr<QProcess> start(const QString &program, const QStringList &arguments);
    /// Runs a program to its end and answers its output.
    static QString run(const QString &program, const QStringList &arguments);

private:
    QProcess m_server;
    QProcess m_windowManager;
};

/// Another client of the server: the user at the keyboard, and other programs.
class OtherClient
{
public:
    /// Key codes are the server's.
    void key(uint8_t keycode, bool down);
    bool isDown(uint8_t keycode);
    void press(std::initializer_list<uint8_t> chord);
    /// Takes the combination for itself; false when the server refuses.
    bool grab(uint8_t keycode, uint16_t state);
    /// Takes the whole keyboard and gives it back; false while somebody else has it.
    bool takeKeyboard();
    /// Whether nobody holds the combination.
    bool isFree(uint8_t keycode, uint16_t state);
    QList<quint32> property(xcb_window_t window, const char *name);
    QRect frameOf(xcb_window_t window);
    /// The window that gets the keys.
    xcb_window_t focus();
    void setFocus(xcb_window_t window);
    xcb_window_t root() const { return m_session.root(); }
    xcb_atom_t atom(const char *name) { return m_session.atom(name); }

private:
    XcbSession m_session;
};

} // namespace tovi
