// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <memory>

#include <QThreadPool>

#include "Platform/Clock.h"
#include "Platform/Subscription.h"
#include "Platform/TextRecognizer.h"

namespace tovi {

class TesseractEngines;

/// Recognition by libtesseract with the data of the languages that are installed.
class TesseractRecognizer final : public TextRecognizer
{
public:
    /// Making an engine costs 40 to 100 ms, keeping one 16 to 50 MB, and there may be two of each language:
    /// whoever reads one region after the other finds them warm, a while later one of a language is left, and
    /// two minutes after its last use that is gone, too.
    static constexpr Clock::Duration doublesWarmTime = std::chrono::seconds(15);
    static constexpr Clock::Duration warmTime = std::chrono::minutes(2);

    /// Without a folder the data are where the library looks for them.
    explicit TesseractRecognizer(Clock &clock, const QString &dataFolder = {});
    /// Waits for the lines under way, which are the last ones.
    ~TesseractRecognizer() override;

    QFuture<QList<RecognizedText>> recognize(TextRecognitionRequest request) override;
    /// True until a recognition has found out otherwise.
    bool isPresent() const override { return m_isPresent; }

    /// Engines that there are, for tests and measurements. Any thread.
    int warmEngines() const;

private:
    struct Shared;
    std::shared_ptr<Shared> m_shared;
    QThreadPool m_pool;
    std::stop_source m_end;
    std::atomic<bool> m_isPresent = true;
};

} // namespace tovi
