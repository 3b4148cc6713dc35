// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

#include "Platform/Linux/CurlLibrary.h"

namespace tovi {

class CurlTransfer;

/// The one thread that drives all transfers, and the connections that they share. Sleeps while nothing
/// moves.
class CurlNetwork
{
public:
    explicit CurlNetwork(const CurlLibrary &curl);
    ~CurlNetwork();
    CurlNetwork(const CurlNetwork &) = delete;

    const CurlLibrary &curl() const { return m_curl; }

    /// Runs work on the network thread, in order; false after end(). Any thread.
    bool post(std::function<void()> work);
    /// Ends all transfers as cancelled, and the thread. Not on the network thread.
    void end();

    /// Network thread. A transfer that was added is kept until it ended.
    void add(const std::shared_ptr<CurlTransfer> &transfer);
    void remove(CurlTransfer &transfer);

private:
    void run();
    bool runPosted();
    void endFinished();

    const CurlLibrary &m_curl;
    CURLM *m_multi;
    std::unordered_map<CURL *, std::shared_ptr<CurlTransfer>> m_transfers; // network thread
    std::mutex m_mutex;                                                    // guards the rest
    std::vector<std::function<void()>> m_posted;
    bool m_hasEnded = false;
    std::thread m_thread;
};

} // namespace tovi
