// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <QString>

namespace tovi {

/// A text to be read aloud. The object stands for one reading of it: giving it out again is another one.
struct SpeechUtterance
{
    QString text;
    double rate = 0.5; ///< 0 slowest, 0.5 normal, 1 fastest
    QString language;  ///< of the voice ("ja-JP"); the default voice reads where there is none for it
};

/// Reads aloud, one utterance at a time. Main thread; nothing here waits.
class SpeechSynthesizer
{
public:
    using Utterance = std::shared_ptr<const SpeechUtterance>;
    using Handler = std::function<void(const Utterance &)>;

    virtual ~SpeechSynthesizer() = default;

    /// Each utterance ends with one call of one of the two, later than the operation that caused it. One that
    /// cannot be read finishes.
    Handler onFinish; ///< read to its end
    Handler onCancel; ///< cut off

    /// Cuts off what is being read.
    virtual void speak(const Utterance &utterance) = 0;
    /// Cuts off at once, in the middle of a word too.
    virtual void stop() = 0;
};

} // namespace tovi
