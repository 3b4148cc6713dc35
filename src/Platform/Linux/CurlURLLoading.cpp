// SPDX-License-Identifier: MIT
#include "Platform/Linux/CurlURLLoading.h"

#include "Platform/Linux/CurlNetwork.h"
#include "Platform/Linux/CurlTransfer.h"
#include "Platform/SystemLog.h"

namespace tovi {

namespace {

template <class T>
QFuture<T> failed()
{
    return QtFuture::makeExceptionalFuture<T>(std::make_exception_ptr(URLError(URLError::Code::unavailable)));
}

} // namespace

class CurlURLLoading::Task final : public URLTask
{
public:
    explicit Task(const std::shared_ptr<CurlTransfer> &transfer)
        : m_transfer(transfer)
    {}
    ~Task() override
    {
        if (m_transfer)
            m_transfer->abandon();
    }
    QFuture<URLResponse> response() override
    {
        return m_transfer ? m_transfer->response() : failed<URLResponse>();
    }
    QFuture<QByteArray> read() override { return m_transfer ? m_transfer->read() : failed<QByteArray>(); }

private:
    std::shared_ptr<CurlTransfer> m_transfer; // null without libcurl
};

class CurlURLLoading::Session final : public URLSession
{
public:
    Session(CurlURLLoading &loading, const Configuration &configuration)
        : m_loading(loading)
        , m_configuration(configuration)
    {}
    std::unique_ptr<URLTask> start(const URLRequest &request) override
    {
        std::shared_ptr<CurlTransfer> transfer;
        if (const auto network = m_loading.network()) {
            transfer = std::make_shared<CurlTransfer>(network, m_loading.m_clock, request, m_configuration);
            transfer->start();
        }
        return std::make_unique<Task>(transfer);
    }

private:
    CurlURLLoading &m_loading;
    const Configuration m_configuration;
};

CurlURLLoading::CurlURLLoading(Clock &clock, SystemLog &log)
    : m_clock(clock)
    , m_log(log)
{}

CurlURLLoading::~CurlURLLoading()
{
    if (m_network)
        m_network->end();
}

std::unique_ptr<URLSession> CurlURLLoading::makeSession(const URLSession::Configuration &configuration)
{
    return std::make_unique<Session>(*this, configuration);
}

std::shared_ptr<CurlNetwork> CurlURLLoading::network()
{
    const std::scoped_lock lock(m_mutex);
    if (!m_network) {
        if (const CurlLibrary *curl = CurlLibrary::load())
            m_network = std::make_shared<CurlNetwork>(*curl);
        else if (!std::exchange(m_hasLogged, true))
            m_log.write(QStringLiteral("libcurl is not installed: the web engines cannot work"));
    }
    return m_network;
}

} // namespace tovi
