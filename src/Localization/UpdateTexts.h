// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include "Localization.h"

namespace tovi {

/// The words of the update window, which is a guest in the program and brings its own.
struct UpdateTexts
{
    QString title, checking;
    QString upToDate;  ///< with the version
    QString available; ///< with the new version, then the present one
    QString download, close, notes;
    QString switchedOff, noFeed, insecure, unreachable, unreadable;

    static UpdateTexts in(AppLanguage language);
};

} // namespace tovi
