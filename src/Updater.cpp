// SPDX-License-Identifier: MIT
#include "Updater.h"

#include <QPointer>
#include <qcorofuture.h>

#include "BundleInformation.h"
#include "Platform/Platform.h"

namespace tovi {

namespace {

using Phase = UpdateController::State::Phase;
constexpr URLSession::Configuration limits{.requestTimeout = std::chrono::seconds(15),
                                           .resourceTimeout = std::chrono::seconds(60)};
constexpr qsizetype longestFeed = 1024 * 1024;
constexpr qsizetype longestNotes = 256 * 1024;
constexpr std::chrono::hours interval{24};

/// Why the server's answer is of no use.
struct BadStatus
{
    int code;
};

UpdateController::State failed(UpdateController::Failure failure, int httpStatus = 0)
{
    return {.phase = Phase::failed, .item = std::nullopt, .failure = failure, .httpStatus = httpStatus};
}

} // namespace

UpdateController &Updater::controller()
{
    return Platform::current().shared<UpdateController>();
}

UpdateController::UpdateController()
    : state(this, {})
{}

void UpdateController::checkForUpdates()
{
    m_isForUser = true;
    start();
    wantsAttention.emitToAll();
}

void UpdateController::start()
{
    if (m_isForUser && state->phase != Phase::checking)
        state = {.phase = Phase::checking};
    schedule();
    if (!std::exchange(m_isChecking, true))
        check();
}

void UpdateController::schedule()
{
    if (BundleInformation::looksForUpdates())
        m_schedule = Platform::current().clock().after(interval, [this] { start(); });
}

QCoro::Task<> UpdateController::check()
{
    const QPointer self(this);
    auto looking = look();
    State found = failed(Failure::unreachable);
    try {
        found = co_await looking;
    } catch (...) {
        // Whatever it was, nobody may wait for it for ever.
    }
    if (!self)
        co_return;
    m_isChecking = false;
    const bool isForUser = std::exchange(m_isForUser, false);
    const bool isNews = found.phase == Phase::available &&
                        std::exchange(m_announcedVersion, found.item->version) != found.item->version;
    if (isForUser || found.phase != Phase::failed)
        state = found;
    if (!isForUser && isNews)
        wantsAttention.emitToAll();
}

QCoro::Task<UpdateController::State> UpdateController::look()
{
    if (!BundleInformation::looksForUpdates())
        co_return failed(Failure::switchedOff);
    const QUrl address(BundleInformation::updateFeedURL(), QUrl::StrictMode);
    if (address.isEmpty())
        co_return failed(Failure::noFeed);
    if (!Appcast::mayBeLoaded(address))
        co_return failed(Failure::insecure);

    const QPointer self(this);
    QByteArray feed;
    try {
        auto loading = load(address, longestFeed);
        feed = co_await loading;
    } catch (const URLError &error) {
        const bool isTooLong = error.code() == URLError::Code::dataLengthExceedsMaximum;
        co_return failed(isTooLong ? Failure::unreadable : Failure::unreachable);
    } catch (const BadStatus &status) {
        co_return failed(Failure::unreachable, status.code);
    }
    const auto items = Appcast::parse(feed, address);
    if (!items)
        co_return failed(Failure::unreadable);
    auto item = Appcast::newest(*items, BundleInformation::shortVersion(), BundleInformation::version());
    if (!item)
        co_return State{.phase = Phase::upToDate};
    if (self && !item->notesLink.isEmpty()) {
        try {
            auto loading = load(item->notesLink, longestNotes);
            const QByteArray page = co_await loading;
            item->notes = Appcast::plainText(QString::fromUtf8(page));
        } catch (const URLError &) {
            // The version itself is the news; its own description stays.
        } catch (const BadStatus &) {
        }
    }
    co_return State{.phase = Phase::available, .item = item};
}

QCoro::Task<QByteArray> UpdateController::load(QUrl url, qsizetype limit)
{
    if (!m_session)
        m_session = Platform::current().urlLoading().makeSession(limits);
    const auto task = m_session->start({.url = url});
    auto answer = task->response();
    const URLResponse response = co_await answer;
    if (!response.isSuccess())
        throw BadStatus{response.statusCode};
    auto reading = task->readAll(limit);
    const QByteArray body = co_await reading;
    co_return body;
}

} // namespace tovi
