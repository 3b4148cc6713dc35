// SPDX-License-Identifier: MIT
#include "WebDemo.h"

#include <atomic>
#include <cstdio>
#include <semaphore>

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include "DemoSettings.h"
#include "DemoStage.h"
#include "ScriptedServer.h"

namespace tovi {

namespace {

const QStringList lines{QStringLiteral("The river is still rising, and the bridge is closed."),
                        QStringLiteral("We will write again as soon as we know more."),
                        QStringLiteral("harvest")};
const QStringList growth{QStringLiteral("El río "), QStringLiteral("sigue "), QStringLiteral("creciendo, "),
                         QStringLiteral("y el puente "), QStringLiteral("está cerrado.")};

/// Plays the three services. It sends the next piece of a stream when it is told that the last was seen.
class Services
{
public:
    Services()
        : m_server([this](const ScriptedServer::Request &request, ScriptedServer::Reply &reply) {
            answer(request, reply);
        })
    {}
    ~Services() { m_seen.release(growth.size()); }

    QString origin() const { return m_server.origin(); }
    void seen() { m_seen.release(); }
    void refuseKeys() { m_refusesKeys = true; }

private:
    void answer(const ScriptedServer::Request &request, ScriptedServer::Reply &reply)
    {
        if (request.target.startsWith("/translate_a/single"))
            reply.answer(
                200,
                QStringLiteral(R"([[["Escribiremos de nuevo en cuanto sepamos más."]],null,"en"])").toUtf8());
        else if (request.target == "/api/v2/entries/en/harvest")
            reply.answer(200, QStringLiteral(R"([{"word":"harvest","phonetic":"/ˈhɑːvɪst/","meanings":[
                {"partOfSpeech":"noun","definitions":[{"definition":"The process of gathering the ripened crop."}]},
                {"partOfSpeech":"verb","definitions":[{"definition":"To bring in a harvest; reap."}]}]}])")
                                  .toUtf8());
        else if (request.target.startsWith("/api/"))
            reply.answer(404, R"({"title":"No Definitions Found"})");
        else if (request.body.contains("harvest"))
            stream(reply, {QStringLiteral("cosecha")}, false);
        else if (m_refusesKeys)
            reply.answer(401, R"({"error":{"message":"The key has expired"}})");
        else
            stream(reply, growth, true);
    }

    void stream(ScriptedServer::Reply &reply, const QStringList &pieces, bool waits)
    {
        reply.beginStream();
        for (const QString &piece : pieces) {
            const QJsonObject delta{
                {QStringLiteral("delta"), QJsonObject{{QStringLiteral("content"), piece}}}};
            const QJsonObject event{{QStringLiteral("choices"), QJsonArray{delta}}};
            reply.chunk("data: " + QJsonDocument(event).toJson(QJsonDocument::Compact) + "\n\n");
            if (waits)
                m_seen.acquire();
        }
        reply.chunk("data: [DONE]\n\n");
        reply.endStream();
    }

    std::counting_semaphore<> m_seen{0};
    std::atomic<bool> m_refusesKeys = false;
    ScriptedServer m_server;
};

} // namespace

QString demonstrateWeb(const QString &tovi, const QString &screenshot)
{
    Services services;
    const QFileInfo file(screenshot);
    const auto save = [&](const DemoStage &stage, const QString &scene) {
        const QString path =
            file.dir().filePath(file.completeBaseName() + u'-' + scene + QStringLiteral(".png"));
        std::printf("screenshot:         %s\n", qPrintable(path));
        return stage.saveScreenshot(path);
    };
    DemoStage stage(
        tovi, lines, chatEngine(services.origin()),
        {QStringLiteral("TOVI_GOOGLE_ORIGIN=") + services.origin(),
         QStringLiteral("TOVI_DICTIONARY_BASE_URL=%1/api/v2/entries/en/").arg(services.origin())});
    if (!stage.error().isEmpty())
        return stage.error();

    if (!stage.translateLine(0))
        return QStringLiteral("no piece of the streamed answer was painted");
    QString expected;
    int scene = 0;
    for (const QString &piece : growth) {
        expected += piece;
        const bool isSeen =
            stage.shows([&](const QString &text) { return text.trimmed() == expected.trimmed(); });
        std::printf("streamed so far:    %s\n", qPrintable(stage.texts().translation));
        if (!isSeen)
            return QStringLiteral("the panel did not show \"%1\"").arg(expected);
        if (!save(stage, QStringLiteral("streaming%1").arg(++scene)))
            return QStringLiteral("the screenshot could not be saved");
        services.seen();
    }
    if (!stage.dismiss())
        return QStringLiteral("Esc did not close the panel");

    services.refuseKeys();
    const QString note =
        QStringLiteral("OpenAI request failed, fell back to Google: API key is invalid or lacks "
                       "permission · The key has expired");
    if (!stage.translateLine(1) || !stage.shows([&](const QString &text) {
            return text.contains(QStringLiteral("Escribiremos de nuevo")) && text.contains(note);
        }))
        return QStringLiteral("the fallback or its note was not shown: ") + stage.texts().translation;
    std::printf("refused key:        %s\n", qPrintable(stage.texts().translation.simplified()));
    if (!save(stage, QStringLiteral("fallback")) || !stage.dismiss())
        return QStringLiteral("Esc did not close the panel");

    if (!stage.translateLine(2) || !stage.shows([](const QString &text) {
            return text.startsWith(QStringLiteral("cosecha")) &&
                   text.contains(QStringLiteral("/ˈhɑːvɪst/")) &&
                   text.contains(QStringLiteral("[noun] The process of gathering")) &&
                   text.contains(QStringLiteral("[verb] To bring in"));
        }))
        return QStringLiteral("the dictionary entry was not shown: ") + stage.texts().translation;
    std::printf("word:               %s\n", qPrintable(stage.texts().translation.simplified()));
    return save(stage, QStringLiteral("dictionary")) ? QString()
                                                     : QStringLiteral("the screenshot could not be saved");
}

} // namespace tovi
