// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>

#include "Platform/URLSession.h"

namespace tovi {

class CurlNetwork;
class SystemLog;

/// Web requests by libcurl on one thread, which starts with the first request.
class CurlURLLoading final : public URLLoading
{
public:
    CurlURLLoading(Clock &clock, SystemLog &log);
    /// Ends what is under way as cancelled.
    ~CurlURLLoading() override;

    std::unique_ptr<URLSession> makeSession(const URLSession::Configuration &configuration) override;

private:
    class Session;
    class Task;

    std::shared_ptr<CurlNetwork> network();

    Clock &m_clock;
    SystemLog &m_log;
    std::mutex m_mutex;
    std::shared_ptr<CurlNetwork> m_network;
    bool m_hasLogged = false; ///< that there can be none
};

} // namespace tovi
