// SPDX-License-Identifier: MIT
#include "DemoSettings.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>

#include "DesktopSession.h"

namespace tovi {

namespace {

QJsonObject engine(const QString &name, const QString &kind)
{
    return {{QStringLiteral("id"), QStringLiteral("7D2B6C1E-52B4-4A57-9B0E-0C6E1B1C9A01")},
            {QStringLiteral("name"), name},
            {QStringLiteral("kind"), kind},
            {QStringLiteral("baseURL"), QString()},
            {QStringLiteral("model"), QString()},
            {QStringLiteral("temperature"), 0.2},
            {QStringLiteral("systemPrompt"), QString()},
            {QStringLiteral("fallbackToGoogle"), false}};
}

} // namespace

QJsonObject onDeviceEngine()
{
    return engine(QStringLiteral("On this machine"), QStringLiteral("apple"));
}

QJsonObject chatEngine(const QString &baseURL)
{
    QJsonObject chat = engine(QStringLiteral("Chat"), QStringLiteral("openAI"));
    chat[QStringLiteral("baseURL")] = baseURL;
    chat[QStringLiteral("model")] = QStringLiteral("demo");
    chat[QStringLiteral("systemPrompt")] = QStringLiteral("Translate into {{target}}.");
    chat[QStringLiteral("fallbackToGoogle")] = true;
    return chat;
}

void writeDemoSettings(const DesktopSession &desktop, const QJsonObject &engine)
{
    writeDemoSettings(desktop, QJsonArray{engine});
}

void writeDemoSettings(const DesktopSession &desktop, const QJsonArray &engines, const QJsonObject &more)
{
    QJsonObject settings{{QStringLiteral("targetLanguage"), QStringLiteral("es")},
                         {QStringLiteral("ocrEnabled"), false},
                         {QStringLiteral("hasCompletedOnboarding"), true},
                         {QStringLiteral("currentProviderID"), engines[0][QLatin1String("id")]},
                         {QStringLiteral("providers"), engines}};
    for (auto it = more.begin(); it != more.end(); ++it)
        settings[it.key()] = it.value();
    QDir().mkpath(desktop.home() + QStringLiteral("/config/tovi"));
    desktop.writeFile(QStringLiteral("config/tovi/defaults.json"),
                      QString::fromUtf8(QJsonDocument(settings).toJson()));
}

} // namespace tovi
