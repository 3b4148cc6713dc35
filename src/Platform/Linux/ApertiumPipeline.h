// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <memory>

#include <QFuture>
#include <QPromise>
#include <QString>

#include "Platform/Clock.h"
#include "Platform/Linux/ApertiumText.h"
#include "Platform/Linux/QueueTimer.h"

namespace tovi {

class ApertiumProcess;

/// Translates along one Apertium mode. Its programs start with the first text, serve one text after the
/// other, are replaced when they die or hang, and end when nobody has asked for a while. Used and destroyed
/// on its queue.
class ApertiumPipeline
{
public:
    /// Without a reply for this long the programs count as hung.
    static constexpr Clock::Duration replyLimit = std::chrono::seconds(10);
    /// The programs hold about 100 MB, so they do not stay for long.
    static constexpr Clock::Duration idleLimit = std::chrono::minutes(3);

    /// `source` is the program's code of the language that the mode file translates from.
    ApertiumPipeline(DispatchQueue &queue, const QString &modePath, const QString &source);
    /// Fails the texts that are not finished.
    ~ApertiumPipeline();
    ApertiumPipeline(const ApertiumPipeline &) = delete;

    /// Finishes with the translation or with a TranslationFrameworkError.
    QFuture<QString> translate(const QString &text);

private:
    struct Request;

    void work();
    void sendMore(Request &request);
    void receive(const QByteArray &reply);
    void processFailed(const QString &description);
    void timerFired();

    const QString m_modePath;
    const QString m_source;
    std::deque<std::unique_ptr<Request>> m_requests; // the first one is under way
    std::unique_ptr<ApertiumProcess> m_process;
    QueueTimer m_timer;
    Clock::Time m_lastReply;
};

} // namespace tovi
