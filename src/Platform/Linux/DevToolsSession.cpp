// SPDX-License-Identifier: MIT
#include "Platform/Linux/DevToolsSession.h"

#include <algorithm>

#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

namespace tovi {

namespace {

constexpr qsizetype mostPages = 40;
constexpr qsizetype versionLimit = 64 << 10;

/// The browser's own path, asked of its server.
QByteArray askForPath(quint16 port, const QDeadlineTimer &deadline)
{
    LoopbackConnection connection(deadline);
    if (!connection.open(port) || !connection.write("GET /json/version HTTP/1.1\r\nHost: 127.0.0.1:" +
                                                    QByteArray::number(port) + "\r\n\r\n"))
        return {};
    QByteArray answer;
    while (answer.size() < versionLimit) {
        const QByteArray bytes = connection.read();
        if (bytes.isEmpty())
            break;
        answer += bytes;
        // The server keeps the connection, so the end of the object is the end of the answer.
        const qsizetype head = answer.indexOf("\r\n\r\n");
        const QJsonObject version =
            head < 0 ? QJsonObject() : QJsonDocument::fromJson(answer.mid(head + 4)).object();
        if (!version.isEmpty())
            return QUrl(version[QLatin1String("webSocketDebuggerUrl")].toString())
                .path(QUrl::FullyEncoded)
                .toLatin1();
    }
    return {};
}

/// The longest title of a page that the window's begins with, as browsers' windows do, or ends with, as
/// installed web applications do.
template <class Pages>
QString titleWithin(const QString &windowTitle, const Pages &pages)
{
    QString longest;
    for (const auto &page : pages) {
        if (page.title.size() > longest.size() &&
            (windowTitle.startsWith(page.title) || windowTitle.endsWith(page.title)))
            longest = page.title;
    }
    return longest;
}

} // namespace

bool DevToolsSession::open(const DevToolsEndpoint &endpoint)
{
    const QByteArray path = endpoint.path.isEmpty() ? askForPath(endpoint.port, m_deadline) : endpoint.path;
    return !path.isEmpty() && m_client.open(endpoint.port, path) &&
           (endpoint.processes.isEmpty() || isOneOf(endpoint.processes));
}

bool DevToolsSession::isOneOf(const QList<qint64> &processes)
{
    const auto answer = call(QStringLiteral("SystemInfo.getProcessInfo"), {});
    const QJsonArray running = answer ? (*answer)[QLatin1String("processInfo")].toArray() : QJsonArray();
    return std::any_of(running.begin(), running.end(), [&](const QJsonValue &process) {
        return process[QLatin1String("type")].toString() == QLatin1String("browser") &&
               processes.contains(process[QLatin1String("id")].toInteger());
    });
}

std::optional<QString> DevToolsSession::selectedText(const QString &windowTitle)
{
    QList<Page> candidates = pages();
    const QString title = titleWithin(windowTitle, candidates);
    const auto others = std::stable_partition(candidates.begin(), candidates.end(), [&](const Page &page) {
        return !title.isEmpty() && page.title == title;
    });
    const qsizetype named = others - candidates.begin();
    std::optional<QString> firstVisible;
    for (qsizetype i = 0; i < std::min(candidates.size(), mostPages); ++i) {
        // A page that sleeps in the background might not answer, so only who has to be is asked.
        if (i == named && firstVisible)
            break;
        const auto answer = state(candidates[i]);
        if (!m_client.isOpen())
            break; // out of time, or the browser went
        if (!answer || !answer->isVisible)
            continue;
        if (answer->hasFocus)
            return answer->selectedText;
        if (!firstVisible)
            firstVisible = answer->selectedText;
    }
    return firstVisible;
}

QList<DevToolsSession::Page> DevToolsSession::pages()
{
    QList<Page> pages;
    const auto answer = call(QStringLiteral("Target.getTargets"), {});
    const QJsonArray targets = answer ? (*answer)[QLatin1String("targetInfos")].toArray() : QJsonArray();
    for (const QJsonValue target : targets) {
        if (target[QLatin1String("type")].toString() == QLatin1String("page"))
            pages.append(
                {target[QLatin1String("targetId")].toString(), target[QLatin1String("title")].toString()});
    }
    return pages;
}

std::optional<DevToolsSession::PageState> DevToolsSession::state(const Page &page)
{
    const auto attached = call(QStringLiteral("Target.attachToTarget"),
                               {{QStringLiteral("targetId"), page.id}, {QStringLiteral("flatten"), true}});
    if (!attached)
        return std::nullopt;
    const QString session = (*attached)[QLatin1String("sessionId")].toString();
    const QJsonValue value = evaluate(page, session);
    send(QStringLiteral("Target.detachFromTarget"), {{QStringLiteral("sessionId"), session}});
    if (!value.isObject())
        return std::nullopt;
    return PageState{value[QLatin1String("visible")].toBool(), value[QLatin1String("focused")].toBool(),
                     value[QLatin1String("text")].toString()};
}

QJsonValue DevToolsSession::evaluate(const Page &page, const QString &session)
{
    // In the page's own world its scripts may have replaced what is asked. The main frame is called as its
    // target is.
    const auto world =
        call(QStringLiteral("Page.createIsolatedWorld"), {{QStringLiteral("frameId"), page.id}}, session);
    if (!world)
        return {};
    const auto evaluated =
        call(QStringLiteral("Runtime.evaluate"),
             {{QStringLiteral("contextId"), world->value(QLatin1String("executionContextId"))},
              {QStringLiteral("expression"),
               QStringLiteral("(visible => ({visible, focused: document.hasFocus(), "
                              "text: visible ? window.getSelection().toString() : ''}))"
                              "(document.visibilityState === 'visible')")},
              {QStringLiteral("returnByValue"), true},
              {QStringLiteral("silent"), true},
              {QStringLiteral("timeout"), double(m_deadline.remainingTime())}},
             session);
    return evaluated ? evaluated->value(QLatin1String("result"))[QLatin1String("value")] : QJsonValue();
}

bool DevToolsSession::send(const QString &method, const QJsonObject &parameters, const QString &session)
{
    QJsonObject message{{QStringLiteral("id"), ++m_lastCall},
                        {QStringLiteral("method"), method},
                        {QStringLiteral("params"), parameters}};
    if (!session.isEmpty())
        message.insert(QStringLiteral("sessionId"), session);
    return m_client.send(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

std::optional<QJsonObject> DevToolsSession::call(const QString &method, const QJsonObject &parameters,
                                                 const QString &session)
{
    if (!send(method, parameters, session))
        return std::nullopt;
    // Events and answers to what nobody waits for come in between.
    while (const auto message = m_client.receive()) {
        const QJsonObject answer = QJsonDocument::fromJson(*message).object();
        if (answer[QLatin1String("id")].toInt() != m_lastCall)
            continue;
        const QJsonValue result = answer[QLatin1String("result")];
        return result.isObject() ? std::optional(result.toObject()) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace tovi
