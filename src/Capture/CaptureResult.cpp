// SPDX-License-Identifier: MIT
#include "Capture/CaptureResult.h"

#include "Localization.h"

namespace tovi {

namespace {

Str textKey(CaptureSource source)
{
    switch (source) {
    case CaptureSource::accessibility:
        return Str::sourceAccessibility;
    case CaptureSource::browserScript:
        return Str::sourceBrowser;
    case CaptureSource::menuBarCopy:
        return Str::sourceMenuBarCopy;
    case CaptureSource::clipboard:
        return Str::sourceClipboard;
    case CaptureSource::ocr:
        return Str::sourceOCR;
    case CaptureSource::pasteboard:
        return Str::sourcePasteboard;
    case CaptureSource::manual:
        break;
    }
    return Str::sourceManual;
}

} // namespace

QString localizedName(CaptureSource source)
{
    return Localization::shared().t(textKey(source));
}

QString CaptureResult::sourceDescription() const
{
    const QString name = localizedName(source);
    if (!appName || appName->isEmpty())
        return name;
    return name + QStringLiteral(" \u00B7 ") + *appName;
}

} // namespace tovi
