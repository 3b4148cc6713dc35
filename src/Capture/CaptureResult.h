// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QRectF>
#include <QString>

namespace tovi {

/// Which road a text was captured by.
enum class CaptureSource { accessibility, browserScript, menuBarCopy, clipboard, ocr, pasteboard, manual };

QString localizedName(CaptureSource source);

struct CaptureResult
{
    QString text; ///< exactly as the strategy gave it, untrimmed
    CaptureSource source = CaptureSource::manual;
    std::optional<QRectF> bounds =
        {}; ///< the selection; points, origin bottom-left of the primary screen, y up
    std::optional<QString> appName = {};
    double duration = 0; ///< seconds

    bool operator==(const CaptureResult &) const = default;

    /// The source's name, and the application's where known.
    QString sourceDescription() const;
};

} // namespace tovi
