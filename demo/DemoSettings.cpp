// SPDX-License-Identifier: MIT
#include "DemoSettings.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "DesktopSession.h"

namespace tovi {

void writeDemoSettings(const DesktopSession &desktop)
{
    const QString engine = QStringLiteral("7D2B6C1E-52B4-4A57-9B0E-0C6E1B1C9A01");
    const QJsonObject onDevice{{QStringLiteral("id"), engine},
                               {QStringLiteral("name"), QStringLiteral("On this machine")},
                               {QStringLiteral("kind"), QStringLiteral("apple")},
                               {QStringLiteral("baseURL"), QString()},
                               {QStringLiteral("model"), QString()},
                               {QStringLiteral("temperature"), 0.2},
                               {QStringLiteral("systemPrompt"), QString()},
                               {QStringLiteral("fallbackToGoogle"), false}};
    const QJsonObject settings{{QStringLiteral("targetLanguage"), QStringLiteral("es")},
                               {QStringLiteral("ocrEnabled"), false},
                               {QStringLiteral("hasCompletedOnboarding"), true},
                               {QStringLiteral("currentProviderID"), engine},
                               {QStringLiteral("providers"), QJsonArray{onDevice}}};
    QDir().mkpath(desktop.home() + QStringLiteral("/config/tovi"));
    desktop.writeFile(QStringLiteral("config/tovi/defaults.json"),
                      QString::fromUtf8(QJsonDocument(settings).toJson()));
}

} // namespace tovi
