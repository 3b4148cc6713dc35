// SPDX-License-Identifier: MIT
#include "Platform/Linux/SpeechDispatcherSynthesizer.h"

#include <atomic>
#include <csignal>
#include <map>

#include <QSemaphore>

#include "Platform/DispatchQueue.h"
#include "Platform/SystemLog.h"

namespace tovi {

namespace {

using namespace std::chrono_literals;

constexpr Clock::Duration beginLimit = 10s; ///< a daemon starts meanwhile, or another program is being read
constexpr Clock::Duration cancelLimit = 2s;
constexpr Clock::Duration watchInterval = 1s;
constexpr int silentLimit = 10; ///< intervals
constexpr int quitLimitMilliseconds = 500;

/// No voice is slower, so a reading that lasts longer hangs.
Clock::Duration longestDuration(const QString &text)
{
    return 10s + std::chrono::seconds(text.size());
}

} // namespace

struct SpeechDispatcherSynthesizer::Reading
{
    Utterance utterance;
    std::atomic<bool> isStopped = false;
    std::atomic<bool> isUnreachable = false; ///< no daemon took it
    std::atomic<int> silentIntervals = 0;    ///< since the daemon was asked for a sign of life
    Clock::Time latestEnd;                   ///< or latest beginning; main thread
    Subscription limit;                      ///< main thread
};

/// Lives on its queue, but for breakOff().
struct SpeechDispatcherSynthesizer::Worker
{
    using Report = std::function<void(const ReadingPtr &, Event)>;

    explicit Worker(Report toReport)
        : report(std::move(toReport))
    {
        queue.async([] {
            // A daemon that has gone is an error of the call that finds out.
            sigset_t brokenPipe;
            sigemptyset(&brokenPipe);
            sigaddset(&brokenPipe, SIGPIPE);
            ::pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
        });
    }

    bool open()
    {
        if (connection.isOpen())
            return true;
        spoken.clear();
        const int number = ++connectionNumber;
        return connection.open([this, number](int message, Event event) {
            queue.async([this, number, message, event] {
                const auto it = spoken.find(message);
                if (number != connectionNumber || it == spoken.end())
                    return;
                const ReadingPtr reading = it->second;
                if (event != Event::began)
                    spoken.erase(it);
                report(reading, event);
            });
        });
    }

    void watch(const ReadingPtr &reading)
    {
        if (connection.answers())
            reading->silentIntervals = 0;
        else
            report(reading, Event::ended);
    }

    void speak(const ReadingPtr &reading)
    {
        const bool isPossible = !reading->isStopped && open();
        if (reading->isStopped) {
            report(reading, Event::cancelled);
            return;
        }
        const auto message = isPossible ? connection.say(*reading->utterance) : std::nullopt;
        if (message) {
            spoken[*message] = reading; // its events wait on the queue
        } else {
            reading->isUnreachable = true;
            report(reading, Event::ended);
        }
    }

    Report report;
    SpeechDispatcherConnection connection;
    std::map<int, ReadingPtr> spoken; ///< by the message's number
    int connectionNumber = 0;
    DispatchQueue queue{QStringLiteral("tovi.speech")};
};

SpeechDispatcherSynthesizer::SpeechDispatcherSynthesizer(Clock &clock, SystemLog &log)
    : m_clock(clock)
    , m_log(log)
    , m_self(std::make_shared<SpeechDispatcherSynthesizer *>(this))
{}

SpeechDispatcherSynthesizer::~SpeechDispatcherSynthesizer()
{
    if (!m_worker)
        return;
    for (const auto &reading : m_readings) {
        reading->isStopped = true;
        reading->limit.reset();
    }
    auto done = std::make_shared<QSemaphore>();
    m_worker->queue.async([worker = m_worker.get(), done] {
        if (!worker->spoken.empty() && worker->connection.isOpen())
            worker->connection.cancel();
        worker->connection.close();
        done->release();
    });
    if (done->tryAcquire(1, quitLimitMilliseconds))
        return;
    m_worker->connection.breakOff();
    if (!done->tryAcquire(1, quitLimitMilliseconds))
        static_cast<void>(m_worker.release()); // its thread hangs in the library; the process takes it along
}

SpeechDispatcherSynthesizer::Worker &SpeechDispatcherSynthesizer::worker()
{
    if (!m_worker) {
        m_worker = std::make_unique<Worker>([self = std::weak_ptr(m_self)](const auto &reading, Event event) {
            asyncOnMain([self, reading, event] {
                if (const auto alive = self.lock())
                    (*alive)->handle(reading, event);
            });
        });
    }
    return *m_worker;
}

void SpeechDispatcherSynthesizer::speak(const Utterance &utterance)
{
    stop();
    const auto reading = std::make_shared<Reading>();
    reading->utterance = utterance;
    reading->latestEnd = m_clock.now() + beginLimit;
    arm(reading, watchInterval, &SpeechDispatcherSynthesizer::watch);
    m_readings.push_back(reading);
    worker().queue.async([&worker = worker(), reading] { worker.speak(reading); });
}

void SpeechDispatcherSynthesizer::stop()
{
    bool isReading = false;
    for (const auto &reading : m_readings) {
        if (reading->isStopped.exchange(true))
            continue;
        isReading = true;
        arm(reading, cancelLimit, &SpeechDispatcherSynthesizer::endCancelled);
    }
    if (isReading)
        cancelOnWorker();
}

void SpeechDispatcherSynthesizer::cancelOnWorker()
{
    auto isDone = std::make_shared<std::atomic<bool>>(false);
    m_worker->queue.async([worker = m_worker.get(), isDone] {
        if (worker->connection.isOpen())
            worker->connection.cancel();
        *isDone = true;
    });
    m_cancelLimit = m_clock.after(cancelLimit, [this, isDone] {
        if (!*isDone)
            m_worker->connection.breakOff();
    });
}

void SpeechDispatcherSynthesizer::arm(const ReadingPtr &reading, Clock::Duration delay, Action action)
{
    reading->limit = m_clock.after(delay, [this, weak = std::weak_ptr(reading), action] {
        if (const auto alive = weak.lock())
            (this->*action)(alive);
    });
}

void SpeechDispatcherSynthesizer::handle(const ReadingPtr &reading, Event event)
{
    switch (event) {
    case Event::began:
        reading->latestEnd = m_clock.now() + longestDuration(reading->utterance->text);
        return;
    case Event::ended:
        if (reading->isUnreachable)
            m_log.write(QStringLiteral("Speech: speech-dispatcher took no text"));
        end(reading, onFinish);
        return;
    case Event::cancelled:
        endCancelled(reading);
        return;
    }
}

void SpeechDispatcherSynthesizer::watch(const ReadingPtr &reading)
{
    if (m_clock.now() >= reading->latestEnd || reading->silentIntervals > silentLimit) {
        giveUp(reading);
        return;
    }
    if (reading->silentIntervals++ == 0)
        m_worker->queue.async([worker = m_worker.get(), reading] { worker->watch(reading); });
    arm(reading, watchInterval, &SpeechDispatcherSynthesizer::watch);
}

void SpeechDispatcherSynthesizer::giveUp(const ReadingPtr &reading)
{
    reading->isStopped = true;
    cancelOnWorker();
    end(reading, onFinish);
}

void SpeechDispatcherSynthesizer::endCancelled(const ReadingPtr &reading)
{
    end(reading, onCancel);
}

void SpeechDispatcherSynthesizer::end(const ReadingPtr &reading, Handler handler)
{
    if (std::erase(m_readings, reading) == 0)
        return;
    reading->limit.reset();
    if (handler)
        handler(reading->utterance);
}

} // namespace tovi
