// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

#include "UI/Controls/IconImage.h"

/// Logos of translation engines.
namespace tovi::ProviderLogo {

struct DisplayName
{
    QString logo;
    QString name;
};

/// In the order of menus.
const QList<DisplayName> &displayNames();
/// The table's name, else the logo's name capitalized word by word.
QString displayName(const QString &logo);
/// 16 × 16 points; none when missing.
IconImage image(const QString &logo);

} // namespace tovi::ProviderLogo
