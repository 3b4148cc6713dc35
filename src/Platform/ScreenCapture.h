// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <stdexcept>

#include <QFuture>
#include <QImage>
#include <QList>
#include <QRectF>
#include <QSize>
#include <QString>

namespace tovi {

/// No picture could be taken; the description is fit for the log.
class ScreenCaptureError : public std::runtime_error
{
public:
    explicit ScreenCaptureError(const QString &description)
        : std::runtime_error(description.toStdString())
    {}
    QString localizedDescription() const { return QString::fromUtf8(what()); }
};

/// What can be captured at one moment: what is on the screen.
struct ShareableContent
{
    struct Window
    {
        quint32 windowID = 0;
        qint64 processIdentifier = 0; ///< of its program; 0 where the desktop does not tell
    };

    QList<quint32> displays;    ///< as Screen::displayNumber
    QList<qint64> applications; ///< process identifiers; this program's is always there
    QList<Window> windows;      ///< the lowest first
};

/// One display without some of its windows. Windows that come after the filter was made follow it, too.
struct ContentFilter
{
    quint32 display = 0;
    std::optional<qint64> excludedApplication = {}; ///< process identifier
    QList<quint32> excludedWindows = {};
};

struct StreamConfiguration
{
    QRectF sourceRect; ///< points, origin at the display's top-left corner, y down
    QSize size;        ///< of the picture, pixels
};

/// Pictures of the screen, without the pointer. Main thread; nothing here waits, and the futures finish with
/// a value or with a ScreenCaptureError.
class ScreenCapture
{
public:
    virtual ~ScreenCapture() = default;

    /// Whether this process may record the screen; never prompts.
    virtual bool preflightAccess() = 0;
    /// Asks for access where the desktop asks; returns at once.
    virtual void requestAccess() = 0;
    virtual QFuture<ShareableContent> shareableContent() = 0;
    virtual QFuture<QImage> captureImage(ContentFilter filter, StreamConfiguration configuration) = 0;
};

} // namespace tovi
