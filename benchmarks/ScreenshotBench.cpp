// SPDX-License-Identifier: MIT
#include <QElapsedTimer>

#include <xcb/composite.h>

#include "Bench.h"
#include "DesktopSession.h"
#include "Platform/X11/ScreenComposer.h"

namespace tovi::bench {

namespace {

constexpr int rounds = 50;

template <class Take>
Samples times(const Take &take)
{
    Samples samples;
    for (int i = 0; i < rounds; ++i) {
        QElapsedTimer timer;
        timer.start();
        take();
        samples.add(double(timer.nsecsElapsed()) / 1e6);
    }
    return samples;
}

} // namespace

void benchScreenshots(DesktopSession &desktop)
{
    printHeading("Pictures of the screen, put together from its windows without some of them");
    for (const char *geometry : {"90x30+10+10", "90x30+300+200", "90x30+500+400"})
        desktop.start(QStringLiteral("xterm"), {QStringLiteral("-T"), QStringLiteral("window"),
                                                QStringLiteral("-geometry"), QString::fromLatin1(geometry)});
    desktop.waitForWindow(QStringLiteral("window"));
    XcbSession session;
    xcb_connection_t *connection = session.connection();
    ScreenComposer composer(session);
    xcb_composite_redirect_subwindows(connection, session.root(), XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    const QSize screen = desktop.screenshot().size();
    const auto listWindows = [&] { return stackedWindows(session, session.root()).value(); };
    const auto isLeftOut = [](const StackedWindow &) { return false; };
    for (const QRect &area : {QRect(200, 200, 720, 260), QRect(QPoint(0, 0), screen)}) {
        const Samples ours = times([&] { composer.compose(area, listWindows, isLeftOut); });
        const Samples plain = times([&] {
            session.reply<xcb_get_image_reply_t>(
                xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, session.root(), int16_t(area.x()),
                              int16_t(area.y()), uint16_t(area.width()), uint16_t(area.height()), ~0u));
        });
        const QString size = QStringLiteral("%1 x %2").arg(area.width()).arg(area.height());
        printRow(size, ours, "ms");
        printRow(size + QStringLiteral(", what is on the screen, by GetImage"), plain, "ms");
    }
}

} // namespace tovi::bench
