// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <memory>
#include <utility>

#include <QByteArray>
#include <QFuture>
#include <QList>
#include <QUrl>
#include <qcorotask.h>

#include "Platform/Clock.h"

namespace tovi {

/// Why a web request failed before or beside its HTTP status.
class URLError : public std::exception
{
public:
    enum class Code {
        unknown,
        cancelled,
        badURL,
        timedOut,
        cannotFindHost,
        cannotConnectToHost,
        dnsLookupFailed,
        notConnectedToInternet,
        networkConnectionLost,
        dataNotAllowed,
        badServerResponse,
        httpTooManyRedirects,
        secureConnectionFailed,
        serverCertificateUntrusted,
        cannotDecodeContentData,
        dataLengthExceedsMaximum,
        requestNotSendable, ///< a header holds what no header may
        unavailable,        ///< this machine lacks what web requests need
    };

    explicit URLError(Code code)
        : m_code(code)
    {}
    Code code() const { return m_code; }
    const char *what() const noexcept override { return "URLError"; }

private:
    Code m_code;
};

struct URLRequest
{
    enum class Method { get, post };

    QUrl url; ///< http or https
    Method method = Method::get;
    QList<std::pair<QByteArray, QByteArray>> headers; ///< sent as they are
    QByteArray body;                                  ///< of a post
};

struct URLResponse
{
    int statusCode = 0;

    bool isSuccess() const { return statusCode >= 200 && statusCode <= 299; }
};

/// One request under way. Its destruction ends it: before the answer's head it is cut off; after it the rest
/// of the body is swallowed for a moment, so that the connection can serve again. Any thread, but one caller.
class URLTask
{
public:
    virtual ~URLTask() = default;

    /// The head of the answer, redirects followed; or a URLError. To be asked for once.
    virtual QFuture<URLResponse> response() = 0;
    /// The next piece of the decoded body as it came, empty at its end; or a URLError. What nobody reads is
    /// left with the server beyond a few hundred kilobytes. One read at a time.
    virtual QFuture<QByteArray> read() = 0;

    // The task must outlive these; limits in bytes.
    /// The whole body; dataLengthExceedsMaximum beyond the limit.
    QCoro::Task<QByteArray> readAll(qsizetype limit);
    /// The beginning of the body.
    QCoro::Task<QByteArray> readAtMost(qsizetype limit);
};

/// Web requests with common limits. Keeps no cookies, no cache and nothing on the disk; verifies TLS always;
/// follows redirects, never with credentials to another host. Any thread.
class URLSession
{
public:
    struct Configuration
    {
        Clock::Duration requestTimeout{};  ///< the longest silence of the server
        Clock::Duration resourceTimeout{}; ///< the longest time for the whole
    };

    virtual ~URLSession() = default;
    /// Never blocks; failures arrive through the task.
    virtual std::unique_ptr<URLTask> start(const URLRequest &request) = 0;
};

/// Makes sessions; connections are shared between them.
class URLLoading
{
public:
    virtual ~URLLoading() = default;
    virtual std::unique_ptr<URLSession> makeSession(const URLSession::Configuration &configuration) = 0;
};

} // namespace tovi
