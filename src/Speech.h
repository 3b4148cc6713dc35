// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <QString>
#include <QStringView>

#include "Platform/SpeechSynthesizer.h"

namespace tovi {

/// Reads texts aloud, one at a time, with a voice for the script of the text. Main thread.
class Speech
{
public:
    static Speech &shared();
    Speech();
    ~Speech();
    Speech(const Speech &) = delete;

    /// Replaces what is being read; the handler of that is dropped. `onFinish` is called once, when the
    /// reading ended or was stopped; at once for a blank text, which replaces nothing.
    void speak(const QString &text, std::function<void()> onFinish = {});
    /// At once; the handler is called later.
    void stop();

    /// The voice language for a text: "ja-JP", "zh-CN", "ko-KR" or "ru-RU" after its first character of such
    /// a script, else "en-US".
    static QString language(QStringView text);

private:
    void didEnd(const SpeechSynthesizer::Utterance &utterance);

    SpeechSynthesizer &m_synthesizer;
    SpeechSynthesizer::Utterance m_currentUtterance;
    std::function<void()> m_finishHandler;
};

} // namespace tovi
