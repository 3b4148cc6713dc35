// SPDX-License-Identifier: MIT
// The smallest tray program of the toolkit: what start-up time and memory of Tovi are measured against. With
// --windows N it then shows so many new windows with a text, one after the other, and marks their first
// paints.
#include <QApplication>
#include <QIcon>
#include <QLabel>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

#include "Platform/Trace.h"

namespace {

class Window final : public QLabel
{
public:
    explicit Window(int remaining)
        : QLabel(QStringLiteral("The weather has been unusually warm this week."))
        , m_remaining(remaining)
    {
        setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_DeleteOnClose);
        setGeometry(100, 100, 380, 280);
        tovi::Trace::mark("windowWanted");
        show();
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QLabel::paintEvent(event);
        if (m_isPainted)
            return;
        m_isPainted = true;
        tovi::Trace::mark("windowPainted");
        QMetaObject::invokeMethod(
            qApp,
            [remaining = m_remaining - 1] { remaining > 0 ? void(new Window(remaining)) : qApp->quit(); },
            Qt::QueuedConnection);
        QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
    }

private:
    int m_remaining;
    bool m_isPainted = false;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QPixmap picture(22, 22);
    picture.fill(Qt::blue);
    QMenu menu;
    menu.addAction(QStringLiteral("Quit"), &app, &QApplication::quit);
    QSystemTrayIcon icon{QIcon(picture)};
    icon.setContextMenu(&menu);
    icon.show();
    tovi::Trace::mark("ready");
    if (const qsizetype flag = app.arguments().indexOf(QStringLiteral("--windows")); flag > 0)
        new Window(app.arguments().value(flag + 1).toInt());
    return QApplication::exec();
}
