// SPDX-License-Identifier: MIT
#include "Platform/X11/X11ScreenCapture.h"

#include <cmath>

#include <QCoreApplication>

#include <xcb/composite.h>
#include <xcb/render.h>
#include <xcb/xfixes.h>

#include "Platform/X11/ScreenComposer.h"
#include "Platform/X11/ScreenGeometry.h"

namespace tovi {

namespace {

using namespace std::chrono_literals;

constexpr auto serverLimit = 2s;

ScreenCaptureError error(const char *description)
{
    return ScreenCaptureError(QString::fromLatin1(description));
}

/// In device pixels of the desktop.
QRect nativeRect(const ContentFilter &filter, const StreamConfiguration &configuration)
{
    const ScreenGeometry geometry = ScreenGeometry::current();
    const auto &screens = geometry.screens();
    const auto screen = std::ranges::find(screens, filter.display, &Screen::displayNumber);
    if (screen == screens.end())
        throw error("the display is gone");
    const double scale = screen->backingScaleFactor;
    const QRectF &source = configuration.sourceRect;
    const QPointF corner = geometry.toNative(screen->frame).topLeft();
    const QRectF rect(corner + source.topLeft() * scale, source.size() * scale);
    return {int(std::floor(rect.x())), int(std::floor(rect.y())), int(std::ceil(rect.width())),
            int(std::ceil(rect.height()))};
}

bool isLeftOut(const StackedWindow &window, const ContentFilter &filter)
{
    return filter.excludedApplication == window.processIdentifier ||
           filter.excludedWindows.contains(window.id) || filter.excludedWindows.contains(window.client);
}

} // namespace

class X11ScreenCapture::Worker
{
public:
    /// A number that the toolkit's connection may give to what it makes.
    explicit Worker(quint32 ownResource)
        : m_ownResource(ownResource)
    {}

    ShareableContent content()
    {
        // We run, whether or not a window of ours is up: one may come before the picture is taken.
        ShareableContent content{.applications = {QCoreApplication::applicationPid()}};
        const ScreenGeometry geometry = ScreenGeometry::current();
        for (const Screen &screen : geometry.screens())
            content.displays << screen.displayNumber;
        link();
        for (const StackedWindow &window : windows()) {
            content.windows.append({window.id, window.processIdentifier});
            if (window.processIdentifier && !content.applications.contains(window.processIdentifier))
                content.applications << window.processIdentifier;
        }
        return content;
    }

    QImage capture(const ContentFilter &filter, const StreamConfiguration &configuration)
    {
        const QRect area = nativeRect(filter, configuration);
        link();
        const QImage image = m_link->composer->compose(
            area, [this] { return windows(); },
            [&filter](const StackedWindow &window) { return isLeftOut(window, filter); });
        if (image.isNull())
            throw error("the display server gave no picture");
        if (image.size() == configuration.size)
            return image;
        return image.scaled(configuration.size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }

private:
    struct Link
    {
        XcbSession session;
        std::optional<ScreenComposer> composer;
    };

    /// For one request, whose time begins here.
    void link()
    {
        if (!m_link || !m_link->session.isOpen())
            m_link = std::make_unique<Link>();
        XcbSession &session = m_link->session;
        session.startDeadline(serverLimit);
        if (!m_link->composer)
            m_link->composer.emplace(session);
        if (!m_link->composer->isPossible()) {
            m_link.reset();
            throw error("the display server refuses to compose windows");
        }
    }

    /// Over the link that there is.
    QList<StackedWindow> windows()
    {
        XcbSession &session = m_link->session;
        auto list = stackedWindows(session, m_ownResource);
        if (!list)
            throw error("the display server does not answer");
        // The server may count processes from elsewhere (a container): we know which windows are ours.
        const qint64 ownProcess = QCoreApplication::applicationPid();
        for (StackedWindow &window : *list) {
            if (session.isSameClient(window.client, m_ownResource))
                window.processIdentifier = ownProcess;
            else if (window.processIdentifier == ownProcess)
                window.processIdentifier = 0;
        }
        return *list;
    }

    const quint32 m_ownResource;
    std::unique_ptr<Link> m_link;
};

X11ScreenCapture::X11ScreenCapture()
{
    auto *connection = QtXcb::connection();
    m_worker = std::make_unique<Worker>(xcb_generate_id(connection));
    const auto *composite = xcb_get_extension_data(connection, &xcb_composite_id);
    const auto *render = xcb_get_extension_data(connection, &xcb_render_id);
    const auto *fixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    m_canCompose = composite && composite->present && render && render->present && fixes && fixes->present;
    if (!m_canCompose)
        return;
    xcb_discard_reply(connection, xcb_composite_query_version(connection, 0, 4).sequence);
    xcb_composite_redirect_subwindows(connection, QtXcb::root(), XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_flush(connection);
}

X11ScreenCapture::~X11ScreenCapture() = default;

QFuture<ShareableContent> X11ScreenCapture::shareableContent()
{
    return m_queue.run([worker = m_worker.get()] { return worker->content(); });
}

QFuture<QImage> X11ScreenCapture::captureImage(ContentFilter filter, StreamConfiguration configuration)
{
    return m_queue.run([worker = m_worker.get(), filter = std::move(filter), configuration] {
        return worker->capture(filter, configuration);
    });
}

} // namespace tovi
