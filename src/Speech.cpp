// SPDX-License-Identifier: MIT
#include "Speech.h"

#include <array>
#include <utility>

#include "Platform/Platform.h"

namespace tovi {

namespace {

/// All of them lie below U+10000, so code units are enough to look at.
struct Script
{
    char16_t first;
    char16_t last;
    const char *language;
};
constexpr std::array scripts{
    Script{0x3040, 0x30FF, "ja-JP"}, // Hiragana, Katakana
    Script{0x4E00, 0x9FFF, "zh-CN"}, // ideographs
    Script{0x3400, 0x4DBF, "zh-CN"}, // ideographs, extension A
    Script{0xAC00, 0xD7AF, "ko-KR"}, // Hangul syllables
    Script{0x0400, 0x04FF, "ru-RU"}, // Cyrillic
};

} // namespace

Speech &Speech::shared()
{
    return Platform::current().shared<Speech>();
}

Speech::Speech()
    : m_synthesizer(Platform::current().speechSynthesizer())
{
    m_synthesizer.onFinish = m_synthesizer.onCancel = [this](const auto &utterance) { didEnd(utterance); };
}

Speech::~Speech()
{
    m_synthesizer.onFinish = m_synthesizer.onCancel = nullptr;
}

void Speech::speak(const QString &text, std::function<void()> onFinish)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) {
        if (onFinish)
            onFinish();
        return;
    }
    m_synthesizer.stop();
    m_currentUtterance = std::make_shared<SpeechUtterance>(
        SpeechUtterance{.text = trimmed, .rate = 0.5, .language = language(trimmed)});
    m_finishHandler = std::move(onFinish);
    m_synthesizer.speak(m_currentUtterance);
}

void Speech::stop()
{
    m_synthesizer.stop();
}

void Speech::didEnd(const SpeechSynthesizer::Utterance &utterance)
{
    if (!m_currentUtterance || m_currentUtterance != utterance)
        return; // it was replaced
    m_currentUtterance = nullptr;
    if (const auto finished = std::exchange(m_finishHandler, nullptr))
        finished();
}

QString Speech::language(QStringView text)
{
    for (const QChar character : text) {
        for (const Script &script : scripts) {
            if (character >= script.first && character <= script.last)
                return QString::fromLatin1(script.language);
        }
    }
    return QStringLiteral("en-US");
}

} // namespace tovi
