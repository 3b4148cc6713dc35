// SPDX-License-Identifier: MIT
#include "Platform/Linux/ApertiumPipeline.h"

#include "Platform/DispatchQueue.h"
#include "Platform/Linux/ApertiumProcess.h"
#include "Platform/Platform.h"
#include "Platform/TranslationFramework.h"

namespace tovi {

namespace {

// Sent and not answered at any time: keeps the programs busy without piling up a long text inside them.
constexpr qsizetype sendAhead = 16 * 1024;

} // namespace

struct ApertiumPipeline::Request
{
    QString text;
    QList<ApertiumPiece> pieces;
    qsizetype sent = 0;       // pieces
    qsizetype answered = 0;   // pieces
    qsizetype unanswered = 0; // UTF-16 units
    bool isWaiting = false;   // the timer runs for this request
    bool hasFailedBefore = false;
    QString translation;
    QPromise<QString> promise;

    QStringView piece(qsizetype index) const
    {
        return QStringView(text).mid(pieces.at(index).start, pieces.at(index).length);
    }
    /// Takes over what needs no translation, up to the next piece that does.
    void skipUntranslatable()
    {
        while (answered < pieces.size() && !pieces.at(answered).isTranslatable)
            translation += piece(answered++);
    }
};

ApertiumPipeline::ApertiumPipeline(DispatchQueue &queue, const QString &modePath, const QString &source)
    : m_modePath(modePath)
    , m_source(source)
    , m_timer(queue, [this] { timerFired(); })
{}

ApertiumPipeline::~ApertiumPipeline()
{
    for (const auto &request : m_requests) {
        request->promise.setException(
            std::make_exception_ptr(TranslationFrameworkError(QStringLiteral("The translation was ended"))));
        request->promise.finish();
    }
}

QFuture<QString> ApertiumPipeline::translate(const QString &text)
{
    auto request = std::make_unique<Request>();
    request->text = text;
    request->pieces = ApertiumText::split(text, m_source);
    request->promise.start();
    auto future = request->promise.future();
    m_requests.push_back(std::move(request));
    if (m_requests.size() == 1)
        work();
    return future;
}

void ApertiumPipeline::work()
{
    while (!m_requests.empty()) {
        Request &request = *m_requests.front();
        request.skipUntranslatable();
        if (request.answered < request.pieces.size()) {
            sendMore(request);
            return;
        }
        request.promise.addResult(std::move(request.translation));
        request.promise.finish();
        m_requests.pop_front();
    }
    if (m_process)
        m_timer.start(idleLimit);
    else
        m_timer.stop();
}

void ApertiumPipeline::sendMore(Request &request)
{
    if (!m_process)
        m_process = std::make_unique<ApertiumProcess>(
            ApertiumProcess::commandOfMode(m_modePath),
            ApertiumProcess::Handlers{
                [this](const QByteArray &reply) { receive(reply); },
                [this] { processFailed(QStringLiteral("The translation programs ended unexpectedly")); }});
    if (request.unanswered == 0) {
        request.sent = request.answered;
        if (!std::exchange(request.isWaiting, true)) {
            m_lastReply = Platform::current().clock().now();
            m_timer.start(replyLimit);
        }
    }
    for (; request.sent < request.pieces.size() && request.unanswered < sendAhead; ++request.sent) {
        if (!request.pieces.at(request.sent).isTranslatable)
            continue;
        m_process->send(ApertiumText::encoded(request.piece(request.sent)));
        request.unanswered += request.pieces.at(request.sent).length;
    }
}

void ApertiumPipeline::receive(const QByteArray &reply)
{
    if (m_requests.empty() || m_requests.front()->unanswered == 0)
        return;
    Request &request = *m_requests.front();
    m_lastReply = Platform::current().clock().now();
    request.translation += ApertiumText::decoded(reply, request.piece(request.answered));
    request.unanswered -= request.pieces.at(request.answered).length;
    ++request.answered;
    work();
}

void ApertiumPipeline::processFailed(const QString &description)
{
    m_process.reset();
    if (!m_requests.empty()) {
        Request &request = *m_requests.front();
        request.unanswered = 0;
        request.isWaiting = false;
        if (std::exchange(request.hasFailedBefore, true)) {
            request.promise.setException(std::make_exception_ptr(TranslationFrameworkError(description)));
            request.promise.finish();
            m_requests.pop_front();
        }
    }
    work();
}

void ApertiumPipeline::timerFired()
{
    if (m_requests.empty()) {
        m_process.reset();
        return;
    }
    const Clock::Duration left = m_lastReply + replyLimit - Platform::current().clock().now();
    if (left > Clock::Duration::zero())
        m_timer.start(left);
    else
        processFailed(QStringLiteral("The translation programs do not answer"));
}

} // namespace tovi
