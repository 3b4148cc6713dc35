// SPDX-License-Identifier: MIT
#include "Platform/Linux/LinuxApplication.h"

#include <QApplication>
#include <QDBusConnection>
#include <QPalette>

#include "Platform/Linux/DesktopAppearance.h"
#include "Platform/Linux/LocaleNames.h"

namespace tovi {

namespace {

struct Shades
{
    QRgb window, base, alternateBase, button, text, disabledText, placeholder, highlight, highlightedText,
        link;
};

constexpr Shades lightShades{.window = 0xfff2f2f4,
                             .base = 0xffffffff,
                             .alternateBase = 0xfff7f7f9,
                             .button = 0xfff2f2f4,
                             .text = 0xff1c1c1e,
                             .disabledText = 0xff9a9aa0,
                             .placeholder = 0xff8a8a90,
                             .highlight = 0xff2f6fde,
                             .highlightedText = 0xffffffff,
                             .link = 0xff1d5fd0};
constexpr Shades darkShades{.window = 0xff2a2a2d,
                            .base = 0xff1e1e20,
                            .alternateBase = 0xff252528,
                            .button = 0xff3a3a3e,
                            .text = 0xfff0f0f2,
                            .disabledText = 0xff7c7c82,
                            .placeholder = 0xff8e8e94,
                            .highlight = 0xff3b7ae4,
                            .highlightedText = 0xffffffff,
                            .link = 0xff7fb0ff};

QPalette paletteOf(const Shades &shades)
{
    // Derives the bevel shades from the two colours given here.
    QPalette palette(QColor(shades.button), QColor(shades.window));
    const auto set = [&](QRgb rgb, std::initializer_list<QPalette::ColorRole> roles) {
        for (const QPalette::ColorRole role : roles)
            palette.setColor(role, QColor(rgb));
    };
    set(shades.base, {QPalette::Base, QPalette::ToolTipBase});
    set(shades.alternateBase, {QPalette::AlternateBase});
    set(shades.text, {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText});
    set(shades.placeholder, {QPalette::PlaceholderText});
    set(shades.highlight, {QPalette::Highlight});
    set(shades.highlightedText, {QPalette::HighlightedText});
    set(shades.link, {QPalette::Link, QPalette::LinkVisited});
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(shades.disabledText));
    return palette;
}

} // namespace

LinuxApplication::LinuxApplication() = default;
LinuxApplication::~LinuxApplication() = default;

DesktopAppearance &LinuxApplication::desktop()
{
    if (!m_desktop)
        m_desktop = std::make_unique<DesktopAppearance>(QDBusConnection::sessionBus(), [this] {
            applyPalette();
            m_desktopPreferenceChanged.emitToAll();
        });
    return *m_desktop;
}

std::optional<bool> LinuxApplication::desktopPrefersDark()
{
    return desktop().prefersDark();
}

void LinuxApplication::setAppearance(Appearance appearance)
{
    m_appearance = appearance;
    applyPalette();
}

void LinuxApplication::applyPalette()
{
    const bool dark = m_appearance == Appearance::Dark ||
                      (m_appearance == Appearance::System && desktop().prefersDark().value_or(false));
    const QPalette palette = paletteOf(dark ? darkShades : lightShades);
    if (QApplication::palette() != palette)
        QApplication::setPalette(palette);
}

QStringList LinuxApplication::preferredLanguages() const
{
    QStringList codes;
    for (const QString &locale : LocaleNames::messageLocales())
        codes << LocaleNames::bcp47(locale);
    if (codes.isEmpty())
        codes << QStringLiteral("en");
    codes.removeDuplicates();
    return codes;
}

QStringList LinuxApplication::arguments() const
{
    return QCoreApplication::arguments();
}

void LinuxApplication::beep()
{
    QApplication::beep();
}

void LinuxApplication::terminate()
{
    // Not quit(): that asks each window, and a panel takes its closing for the user's wish to close it alone.
    QCoreApplication::exit();
}

} // namespace tovi
