// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "Platform/Clock.h"
#include "Platform/Linux/SpeechDispatcherConnection.h"
#include "Platform/SpeechSynthesizer.h"

namespace tovi {

class SystemLog;

/// Reading by speech-dispatcher. A worker, which starts with the first utterance, does all that waits for the
/// daemon. The clock bounds every answer, since without audio the daemon swallows texts or hangs.
class SpeechDispatcherSynthesizer final : public SpeechSynthesizer
{
public:
    SpeechDispatcherSynthesizer(Clock &clock, SystemLog &log);
    /// Stops the reading; nothing is reported any more.
    ~SpeechDispatcherSynthesizer() override;

    void speak(const Utterance &utterance) override;
    void stop() override;

private:
    struct Reading;
    struct Worker;
    using ReadingPtr = std::shared_ptr<Reading>;
    using Event = SpeechDispatcherConnection::Event;

    using Action = void (SpeechDispatcherSynthesizer::*)(const ReadingPtr &);

    Worker &worker();
    void handle(const ReadingPtr &reading, Event event);
    void arm(const ReadingPtr &reading, Clock::Duration delay, Action action);
    void watch(const ReadingPtr &reading);
    void giveUp(const ReadingPtr &reading);
    void endCancelled(const ReadingPtr &reading);
    void end(const ReadingPtr &reading, Handler handler);
    void cancelOnWorker();

    Clock &m_clock;
    SystemLog &m_log;
    std::vector<ReadingPtr> m_readings; ///< not ended; all but the last are being stopped
    Subscription m_cancelLimit;
    std::unique_ptr<Worker> m_worker;
    std::shared_ptr<SpeechDispatcherSynthesizer *> m_self; ///< what comes later holds it weakly
};

} // namespace tovi
