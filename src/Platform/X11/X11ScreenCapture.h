// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "Platform/DispatchQueue.h"
#include "Platform/ScreenCapture.h"

namespace tovi {

/// The screen as it is without the windows that a filter leaves out. For that the server must keep the
/// contents of windows that are covered: it is asked to at the start, since a window that hangs would have
/// lost by the time of a picture what lies under a panel of ours. Access is refused by servers that keep
/// extensions from clients they do not trust.
class X11ScreenCapture final : public ScreenCapture
{
public:
    X11ScreenCapture();
    ~X11ScreenCapture() override;

    bool preflightAccess() override { return m_canCompose; }
    void requestAccess() override {}
    QFuture<ShareableContent> shareableContent() override;
    QFuture<QImage> captureImage(ContentFilter filter, StreamConfiguration configuration) override;

private:
    class Worker;

    bool m_canCompose = false;
    std::unique_ptr<Worker> m_worker; // of the queue alone; its connection opens with the first picture
    DispatchQueue m_queue{QStringLiteral("com.brevoll.tovi.screencapture")};
};

} // namespace tovi
