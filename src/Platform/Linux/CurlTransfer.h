// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include <QPromise>

#include "Platform/Clock.h"
#include "Platform/Linux/CurlLibrary.h"
#include "Platform/URLSession.h"

namespace tovi {

class CurlNetwork;

/// One request on the network thread, and what its task has not read yet. The clock decides when it takes
/// too long.
class CurlTransfer : public std::enable_shared_from_this<CurlTransfer>
{
public:
    CurlTransfer(const std::shared_ptr<CurlNetwork> &network, Clock &clock, const URLRequest &request,
                 const URLSession::Configuration &limits);
    ~CurlTransfer();
    CurlTransfer(const CurlTransfer &) = delete;

    // The task's side, any thread.
    void start();
    QFuture<URLResponse> response();
    QFuture<QByteArray> read();
    /// Nobody reads any more.
    void abandon();

    // The network's side, on its thread.
    CURL *handle() const { return m_handle; }
    void finished(CURLcode code);
    void end(std::optional<URLError::Code> failure);

private:
    static size_t receiveHeader(char *data, size_t size, size_t count, void *self);
    static size_t receiveBody(char *data, size_t size, size_t count, void *self);
    static int reportProgress(void *self, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent);
    static void watch(const std::weak_ptr<CurlTransfer> &weak);

    bool prepare();
    size_t take(QByteArrayView data);
    void announceHead();
    void resume();
    void cancel(URLError::Code reason);
    void keepAlive();
    URLError::Code errorCode(CURLcode code) const;
    URLError::Code lostConnection() const;
    /// When it has taken too long, unless something happens before. Time in which the reader keeps us waiting
    /// does not count.
    std::optional<Clock::Time> due() const;

    const std::shared_ptr<CurlNetwork> m_network;
    Clock &m_clock;
    const URLRequest m_request;
    const QByteArray m_url;
    const URLSession::Configuration m_limits;
    const Clock::Time m_started;
    CURL *m_handle = nullptr;
    curl_slist *m_headers = nullptr;
    curl_off_t m_sent = 0;                   // network thread
    qsizetype m_swallowed = 0;               // network thread
    qsizetype m_headerBytes = 0;             // network thread
    std::optional<URLError::Code> m_refusal; // network thread; why we ended it ourselves

    mutable std::mutex m_mutex; // guards the rest
    QPromise<URLResponse> m_head;
    std::optional<QPromise<QByteArray>> m_reader; // waits only while nothing is buffered
    QByteArray m_buffer;
    std::optional<URLError::Code> m_failure;
    std::optional<Clock::Time> m_abandoned;
    Clock::Time m_lastActivity;
    std::optional<Clock::Time> m_unreadSince;
    Clock::Duration m_unread{}; // in earlier waits for the reader
    bool m_hasHead = false;
    bool m_isPaused = false;
    bool m_hasEnded = false;
};

} // namespace tovi
