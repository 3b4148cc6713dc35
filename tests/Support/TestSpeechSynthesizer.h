// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

#include "Platform/DispatchQueue.h"
#include "Platform/SpeechSynthesizer.h"

namespace tovi {

/// Reads until the test says that it finished; the end of what is stopped comes later on the main queue.
class TestSpeechSynthesizer final : public SpeechSynthesizer
{
public:
    void speak(const Utterance &utterance) override
    {
        stop();
        spoken << *utterance;
        current = utterance;
    }
    void stop() override
    {
        ++stops;
        if (const auto stopped = std::exchange(current, nullptr))
            asyncOnMain([this, stopped, alive = std::weak_ptr(m_alive)] {
                if (!alive.expired() && onCancel)
                    onCancel(stopped);
            });
    }
    void finish()
    {
        if (const auto finished = std::exchange(current, nullptr))
            onFinish(finished);
    }

    QList<SpeechUtterance> spoken;
    Utterance current;
    int stops = 0;

private:
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

} // namespace tovi
