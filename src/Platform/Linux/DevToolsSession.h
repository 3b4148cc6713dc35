// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>

#include "Platform/Linux/DevToolsEndpoint.h"
#include "Platform/Linux/WebSocketClient.h"

namespace tovi {

/// A conversation with a browser's DevTools server, for a thread that may block; it ends at the deadline.
/// Nothing that a page's own scripts see changes.
class DevToolsSession
{
public:
    explicit DevToolsSession(const QDeadlineTimer &deadline)
        : m_deadline(deadline)
        , m_client(deadline)
    {}

    /// False when the browser does not answer, and when it is another one than the endpoint's.
    bool open(const DevToolsEndpoint &endpoint);
    /// What is selected in the page that the user sees: the visible one with the focus, else the first
    /// visible one, the pages asked first that the window's title names. May be empty; none when no page is
    /// visible. What fails or takes too long costs only the pages that have not answered yet.
    std::optional<QString> selectedText(const QString &windowTitle);

private:
    struct Page
    {
        QString id;
        QString title;
    };
    struct PageState
    {
        bool isVisible;
        bool hasFocus;
        QString selectedText;
    };
    bool isOneOf(const QList<qint64> &processes);
    QList<Page> pages();
    std::optional<PageState> state(const Page &page);
    /// Asks the page itself; no object after any failure.
    QJsonValue evaluate(const Page &page, const QString &session);
    bool send(const QString &method, const QJsonObject &parameters, const QString &session = {});
    std::optional<QJsonObject> call(const QString &method, const QJsonObject &parameters,
                                    const QString &session = {});

    QDeadlineTimer m_deadline;
    WebSocketClient m_client;
    int m_lastCall = 0;
};

} // namespace tovi
