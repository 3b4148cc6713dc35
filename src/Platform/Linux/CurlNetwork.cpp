// SPDX-License-Identifier: MIT
#include "Platform/Linux/CurlNetwork.h"

#include <csignal>
#include <limits>

#include <pthread.h>

#include "Platform/Linux/CurlTransfer.h"

namespace tovi {

CurlNetwork::CurlNetwork(const CurlLibrary &curl)
    : m_curl(curl)
    , m_multi(curl.multiInit())
{
    if (!m_multi)
        throw std::bad_alloc();
    m_thread = std::thread([this] { run(); });
}

CurlNetwork::~CurlNetwork()
{
    end();
    m_curl.multiCleanup(m_multi);
}

bool CurlNetwork::post(std::function<void()> work)
{
    const std::scoped_lock lock(m_mutex);
    if (m_hasEnded)
        return false;
    m_posted.push_back(std::move(work));
    m_curl.multiWakeup(m_multi);
    return true;
}

void CurlNetwork::end()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_hasEnded = true;
        m_curl.multiWakeup(m_multi);
    }
    if (m_thread.joinable())
        m_thread.join();
}

void CurlNetwork::add(const std::shared_ptr<CurlTransfer> &transfer)
{
    if (m_curl.multiAdd(m_multi, transfer->handle()) == CURLM_OK)
        m_transfers.emplace(transfer->handle(), transfer);
    else
        transfer->end(URLError::Code::unknown);
}

void CurlNetwork::remove(CurlTransfer &transfer)
{
    const auto kept = m_transfers.extract(transfer.handle());
    if (kept)
        m_curl.multiRemove(m_multi, transfer.handle());
}

void CurlNetwork::run()
{
    ::pthread_setname_np(::pthread_self(), "tovi.network");
    // A peer that has gone is an error of its transfer, whatever layer writes to it.
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
    while (runPosted()) {
        int running = 0;
        m_curl.multiPerform(m_multi, &running);
        endFinished();
        m_curl.multiPoll(m_multi, nullptr, 0, std::numeric_limits<int>::max(), nullptr);
    }
    while (!m_transfers.empty()) {
        const auto transfer = m_transfers.begin()->second;
        remove(*transfer);
        transfer->end(URLError::Code::cancelled);
    }
}

/// False at the end.
bool CurlNetwork::runPosted()
{
    std::vector<std::function<void()>> work;
    bool hasEnded = false;
    {
        const std::scoped_lock lock(m_mutex);
        work.swap(m_posted);
        hasEnded = m_hasEnded;
    }
    for (const auto &piece : work)
        piece();
    return !hasEnded;
}

void CurlNetwork::endFinished()
{
    int left = 0;
    while (const CURLMsg *message = m_curl.multiInfoRead(m_multi, &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        const CURLcode code = message->data.result;
        const auto found = m_transfers.find(message->easy_handle);
        if (found == m_transfers.end())
            continue;
        const auto transfer = found->second;
        remove(*transfer);
        transfer->finished(code);
    }
}

} // namespace tovi
