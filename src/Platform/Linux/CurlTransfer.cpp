// SPDX-License-Identifier: MIT
#include "Platform/Linux/CurlTransfer.h"

#include <cerrno>

#include <ifaddrs.h>
#include <net/if.h>

#include "Platform/DispatchQueue.h"
#include "Platform/Linux/CurlNetwork.h"
#include "Platform/Linux/SystemProxy.h"

namespace tovi {

namespace {

constexpr qsizetype longestHeaders = 256 * 1024;
constexpr qsizetype longestBuffer = 256 * 1024;
// What is left after the last useful byte: the end of the chunks, rarely more.
constexpr qsizetype longestRest = 64 * 1024;
constexpr std::chrono::seconds restTimeout{2};
constexpr long mostRedirects = 20;

/// Whether any network but the machine's own is there.
bool hasNetwork()
{
    ifaddrs *list = nullptr;
    if (::getifaddrs(&list) != 0)
        return true;
    bool hasAddress = false;
    for (const ifaddrs *entry = list; entry; entry = entry->ifa_next) {
        const bool isUp = (entry->ifa_flags & IFF_UP) && (entry->ifa_flags & IFF_RUNNING);
        const bool isInternet = entry->ifa_addr && (entry->ifa_addr->sa_family == AF_INET ||
                                                    entry->ifa_addr->sa_family == AF_INET6);
        if (isUp && isInternet && !(entry->ifa_flags & IFF_LOOPBACK))
            hasAddress = true;
    }
    ::freeifaddrs(list);
    return hasAddress;
}

bool isSendable(const QByteArray &headerPart)
{
    return std::none_of(headerPart.begin(), headerPart.end(),
                        [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

template <class T>
void finishWith(QPromise<T> &promise, const T &value)
{
    promise.addResult(value);
    promise.finish();
}

template <class T>
void finishWith(QPromise<T> &promise, URLError::Code failure)
{
    promise.setException(std::make_exception_ptr(URLError(failure)));
    promise.finish();
}

} // namespace

CurlTransfer::CurlTransfer(const std::shared_ptr<CurlNetwork> &network, Clock &clock,
                           const URLRequest &request, const URLSession::Configuration &limits)
    : m_network(network)
    , m_clock(clock)
    , m_request(request)
    , m_url(request.url.toEncoded())
    , m_limits(limits)
    , m_started(clock.now())
    , m_lastActivity(m_started)
{
    m_head.start();
}

CurlTransfer::~CurlTransfer()
{
    if (m_handle)
        m_network->curl().easyCleanup(m_handle);
    if (m_headers)
        m_network->curl().listFree(m_headers);
}

void CurlTransfer::start()
{
    if (!prepare()) {
        end(m_refusal.value_or(URLError::Code::unknown));
        return;
    }
    asyncOnMain([weak = weak_from_this()] { watch(weak); });
    SystemProxy::find(m_request.url, [self = shared_from_this()](const std::optional<QByteArray> &proxy) {
        const bool isTaken = self->m_network->post([self, proxy] {
            if (proxy)
                self->m_network->curl().easySetOption(self->m_handle, CURLOPT_PROXY, proxy->constData());
            bool hasEnded = false;
            {
                const std::scoped_lock lock(self->m_mutex);
                hasEnded = self->m_hasEnded;
            }
            if (!hasEnded)
                self->m_network->add(self);
        });
        if (!isTaken)
            self->end(URLError::Code::cancelled);
    });
}

bool CurlTransfer::prepare()
{
    const CurlLibrary &curl = m_network->curl();
    m_handle = curl.easyInit();
    if (!m_handle)
        return false;
    // An option that the library does not know may be the one that keeps a request safe.
    bool isComplete = true;
    const auto set = [&](CURLoption option, auto value) {
        isComplete &= curl.easySetOption(m_handle, option, value) == CURLE_OK;
    };
    set(CURLOPT_URL, m_url.constData());
    if (!isComplete)
        m_refusal = URLError::Code::badURL; // too long
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_REDIR_PROTOCOLS_STR,
        m_request.url.scheme() == QLatin1String("https") ? "https" : "http,https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, mostRedirects);
    // A stream of one connection ends with that connection or in its framing, which is easy to tell apart.
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    set(CURLOPT_ACCEPT_ENCODING, "");
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // a name server that hangs must not hold up the other transfers
    set(CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
    // Further authorities, as OpenSSL's own programs find them.
    if (const QByteArray file = qgetenv("SSL_CERT_FILE"); !file.isEmpty())
        set(CURLOPT_CAINFO, file.constData());
    if (const QByteArray folder = qgetenv("SSL_CERT_DIR"); !folder.isEmpty())
        set(CURLOPT_CAPATH, folder.constData());
    set(CURLOPT_HEADERFUNCTION, &CurlTransfer::receiveHeader);
    set(CURLOPT_HEADERDATA, static_cast<void *>(this));
    set(CURLOPT_WRITEFUNCTION, &CurlTransfer::receiveBody);
    set(CURLOPT_WRITEDATA, static_cast<void *>(this));
    set(CURLOPT_XFERINFOFUNCTION, &CurlTransfer::reportProgress);
    set(CURLOPT_XFERINFODATA, static_cast<void *>(this));
    set(CURLOPT_NOPROGRESS, 0L);
    // A server need not say first that it wants the body.
    m_headers = curl.listAppend(nullptr, "Expect:");
    for (const auto &[name, value] : m_request.headers) {
        if (!isSendable(name) || !isSendable(value)) {
            m_refusal = URLError::Code::requestNotSendable;
            return false;
        }
        m_headers = curl.listAppend(m_headers, (name + ": " + value).constData());
    }
    set(CURLOPT_HTTPHEADER, m_headers);
    if (m_request.method == URLRequest::Method::post) {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t{m_request.body.size()});
        set(CURLOPT_POSTFIELDS, m_request.body.constData());
    }
    return isComplete;
}

QFuture<URLResponse> CurlTransfer::response()
{
    const std::scoped_lock lock(m_mutex);
    return m_head.future();
}

QFuture<QByteArray> CurlTransfer::read()
{
    QPromise<QByteArray> promise;
    promise.start();
    const auto future = promise.future();
    const std::scoped_lock lock(m_mutex);
    if (!m_buffer.isEmpty() || (m_hasEnded && !m_failure)) {
        if (const auto since = std::exchange(m_unreadSince, std::nullopt)) {
            m_lastActivity = m_clock.now();
            m_unread += m_lastActivity - *since;
        }
        finishWith(promise, std::exchange(m_buffer, {}));
        if (m_isPaused)
            m_network->post([self = shared_from_this()] { self->resume(); });
    } else if (m_failure) {
        finishWith(promise, *m_failure);
    } else {
        m_reader = std::move(promise);
    }
    return future;
}

void CurlTransfer::abandon()
{
    m_network->post([self = shared_from_this()] {
        bool hasHead = false;
        {
            const std::scoped_lock lock(self->m_mutex);
            if (self->m_hasEnded)
                return;
            hasHead = self->m_hasHead;
            self->m_abandoned = self->m_clock.now();
            self->m_buffer.clear();
        }
        if (!hasHead) {
            self->cancel(URLError::Code::cancelled);
            return;
        }
        asyncOnMain([weak = std::weak_ptr(self)] { watch(weak); });
        self->resume();
    });
}

size_t CurlTransfer::receiveHeader(char *, size_t size, size_t count, void *self)
{
    auto *transfer = static_cast<CurlTransfer *>(self);
    transfer->keepAlive();
    transfer->m_headerBytes += qsizetype(size * count);
    if (transfer->m_headerBytes <= longestHeaders)
        return size * count;
    transfer->m_refusal = URLError::Code::badServerResponse;
    return 0;
}

size_t CurlTransfer::receiveBody(char *data, size_t size, size_t count, void *self)
{
    return static_cast<CurlTransfer *>(self)->take(QByteArrayView(data, qsizetype(size * count)));
}

int CurlTransfer::reportProgress(void *self, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent)
{
    auto *transfer = static_cast<CurlTransfer *>(self);
    if (std::exchange(transfer->m_sent, sent) != sent)
        transfer->keepAlive();
    return 0;
}

void CurlTransfer::keepAlive()
{
    const std::scoped_lock lock(m_mutex);
    m_lastActivity = m_clock.now();
}

size_t CurlTransfer::take(QByteArrayView data)
{
    announceHead();
    const auto size = size_t(data.size());
    std::optional<QPromise<QByteArray>> reader;
    {
        const std::scoped_lock lock(m_mutex);
        m_lastActivity = m_clock.now();
        if (m_abandoned) {
            m_swallowed += data.size();
            return m_swallowed > longestRest ? 0 : size;
        }
        if (!m_reader) {
            if (m_buffer.size() >= longestBuffer) {
                m_isPaused = true;
                return CURL_WRITEFUNC_PAUSE;
            }
            if (!m_unreadSince)
                m_unreadSince = m_lastActivity;
            m_buffer += data;
            return size;
        }
        reader = std::exchange(m_reader, std::nullopt);
    }
    finishWith(*reader, data.toByteArray());
    return size;
}

void CurlTransfer::announceHead()
{
    {
        const std::scoped_lock lock(m_mutex);
        if (std::exchange(m_hasHead, true))
            return;
    }
    long status = 0;
    m_network->curl().easyGetInfo(m_handle, CURLINFO_RESPONSE_CODE, &status);
    finishWith(m_head, URLResponse{int(status)});
}

void CurlTransfer::resume()
{
    {
        const std::scoped_lock lock(m_mutex);
        if (m_hasEnded || !std::exchange(m_isPaused, false))
            return;
        m_lastActivity = m_clock.now();
    }
    m_network->curl().easyPause(m_handle, CURLPAUSE_CONT);
}

void CurlTransfer::cancel(URLError::Code reason)
{
    m_network->remove(*this);
    end(reason);
}

void CurlTransfer::finished(CURLcode code)
{
    if (code == CURLE_OK)
        announceHead();
    end(code == CURLE_OK ? std::nullopt : std::optional(errorCode(code)));
}

void CurlTransfer::end(std::optional<URLError::Code> failure)
{
    bool hadHead = false;
    std::optional<QPromise<QByteArray>> reader;
    {
        const std::scoped_lock lock(m_mutex);
        if (std::exchange(m_hasEnded, true))
            return;
        m_failure = failure;
        hadHead = std::exchange(m_hasHead, true);
        reader = std::exchange(m_reader, std::nullopt);
    }
    if (!hadHead)
        finishWith(m_head, failure.value_or(URLError::Code::unknown));
    if (reader && failure)
        finishWith(*reader, *failure);
    else if (reader)
        finishWith(*reader, QByteArray());
}

URLError::Code CurlTransfer::errorCode(CURLcode code) const
{
    using Code = URLError::Code;
    long systemError = 0;
    m_network->curl().easyGetInfo(m_handle, CURLINFO_OS_ERRNO, &systemError);
    switch (code) {
    case CURLE_URL_MALFORMAT:
    case CURLE_BAD_FUNCTION_ARGUMENT:
        return Code::badURL;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return hasNetwork() ? Code::cannotFindHost : Code::notConnectedToInternet;
    case CURLE_COULDNT_CONNECT:
    case CURLE_PROXY:
        return systemError == ENETUNREACH || systemError == ENETDOWN ? Code::notConnectedToInternet
                                                                     : Code::cannotConnectToHost;
    case CURLE_OPERATION_TIMEDOUT:
        return Code::timedOut;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        return lostConnection();
    case CURLE_OUT_OF_MEMORY: // its own limits end so, too
        return Code::dataLengthExceedsMaximum;
    case CURLE_TOO_MANY_REDIRECTS:
        return Code::httpTooManyRedirects;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
        return Code::serverCertificateUntrusted;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CIPHER:
    case CURLE_USE_SSL_FAILED:
        return Code::secureConnectionFailed;
    case CURLE_BAD_CONTENT_ENCODING:
        return Code::cannotDecodeContentData;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_HTTP_RETURNED_ERROR:
        return Code::badServerResponse;
    case CURLE_WRITE_ERROR:
        return m_refusal.value_or(Code::cancelled);
    default:
        return Code::unknown;
    }
}

/// A proxy that refuses to connect ends the connection, but it is no lost one.
URLError::Code CurlTransfer::lostConnection() const
{
    long proxyStatus = 0;
    m_network->curl().easyGetInfo(m_handle, CURLINFO_HTTP_CONNECTCODE, &proxyStatus);
    const bool isRefused = proxyStatus != 0 && (proxyStatus < 200 || proxyStatus > 299);
    return isRefused ? URLError::Code::cannotConnectToHost : URLError::Code::networkConnectionLost;
}

std::optional<Clock::Time> CurlTransfer::due() const
{
    const std::scoped_lock lock(m_mutex);
    if (m_hasEnded)
        return std::nullopt;
    if (m_abandoned)
        return *m_abandoned + restTimeout;
    const Clock::Time now = m_clock.now();
    const Clock::Time silentSince = m_unreadSince ? now : m_lastActivity;
    const Clock::Duration unread = m_unread + (m_unreadSince ? now - *m_unreadSince : Clock::Duration{});
    return std::min(m_started + m_limits.resourceTimeout + unread, silentSince + m_limits.requestTimeout);
}

/// Main thread.
void CurlTransfer::watch(const std::weak_ptr<CurlTransfer> &weak)
{
    const auto transfer = weak.lock();
    const auto due = transfer ? transfer->due() : std::nullopt;
    if (!due)
        return;
    const Clock::Time now = transfer->m_clock.now();
    if (now >= *due)
        transfer->m_network->post([transfer] { transfer->cancel(URLError::Code::timedOut); });
    else
        transfer->m_clock.afterDetached(*due - now, [weak] { watch(weak); });
}

} // namespace tovi
