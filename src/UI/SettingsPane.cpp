// SPDX-License-Identifier: MIT
#include "UI/SettingsPane.h"

#include <array>

#include "Localization.h"

namespace tovi::SettingsPanes {

namespace {

struct Row
{
    const char *rawValue;
    Str title;
    const char *symbol;
};

/// In the order of the cases.
constexpr auto rows = std::to_array<Row>({
    {"general", Str::paneGeneral, "gearshape"},
    {"translation", Str::paneTranslation, "character.bubble"},
    {"shortcuts", Str::paneShortcuts, "keyboard"},
    {"permissions", Str::panePermissions, "lock.shield"},
    {"about", Str::paneAbout, "info.circle"},
});

const Row &row(SettingsPane pane)
{
    return rows.at(static_cast<size_t>(pane));
}

} // namespace

const QList<SettingsPane> &all()
{
    static const QList<SettingsPane> panes{SettingsPane::general, SettingsPane::translation,
                                           SettingsPane::shortcuts, SettingsPane::permissions,
                                           SettingsPane::about};
    return panes;
}

QString rawValue(SettingsPane pane)
{
    return QString::fromLatin1(row(pane).rawValue);
}

QString title(SettingsPane pane)
{
    return Localization::shared().t(row(pane).title);
}

QString symbol(SettingsPane pane)
{
    return QString::fromLatin1(row(pane).symbol);
}

QString toolbarItemIdentifier(SettingsPane pane)
{
    return QStringLiteral("com.brevoll.tovi.settings.") + rawValue(pane);
}

std::optional<SettingsPane> fromToolbarItemIdentifier(const QString &identifier)
{
    for (const SettingsPane pane : all()) {
        if (toolbarItemIdentifier(pane) == identifier)
            return pane;
    }
    return std::nullopt;
}

} // namespace tovi::SettingsPanes
