// SPDX-License-Identifier: MIT
#include "Speech.h"

#include <gtest/gtest.h>

#include "Support/TestPlatform.h"
#include "UI/ResultPanelManager.h"
#include "UI/ResultViewModel.h"

namespace tovi {
namespace {

using Target = ResultViewModel::SpeakingTarget;

struct SpeechTest : testing::Test
{
    TestPlatform platform;
    TestSpeechSynthesizer &synthesizer = platform.speechSynthesizer();
    Speech &speech = Speech::shared();
    QString ended;

    void speak(const QString &text)
    {
        speech.speak(text, [this, text] { ended += text; });
    }
};

TEST_F(SpeechTest, ChoosesTheVoiceByTheFirstCharacterOfAScript)
{
    const std::pair<const char16_t *, const char *> cases[] = {
        {u"", "en-US"},
        {u"déjà 12, \U0001F600!", "en-US"},
        {u"日本語です", "zh-CN"},
        {u"お茶", "ja-JP"},
        {u"カナ", "ja-JP"},
        {u"OK，好", "zh-CN"},
        {u"\u3400", "zh-CN"},
        {u"\u4DC0\u303F\u3100\uD7B0\u0500", "en-US"},
        {u"\U00020000 한", "ko-KR"},
        {u"Hello, мир 한", "ru-RU"},
    };
    for (const auto &[text, language] : cases)
        EXPECT_EQ(Speech::language(text), QLatin1String(language))
            << QStringView(text).toString().toStdString();
}

TEST_F(SpeechTest, TellsTheEndOfTheLatestTextOnly)
{
    speak(QStringLiteral(" один\u3000\n"));
    ASSERT_TRUE(synthesizer.current);
    EXPECT_EQ(synthesizer.current->text, QStringLiteral("один"));
    EXPECT_EQ(synthesizer.current->language, QStringLiteral("ru-RU"));
    EXPECT_EQ(synthesizer.current->rate, 0.5);

    speak(QStringLiteral(" \n\u3000"));
    EXPECT_EQ(ended, QStringLiteral(" \n\u3000"));
    EXPECT_TRUE(synthesizer.current);
    ended.clear();

    speak(QStringLiteral("two"));
    drainMainQueue();
    EXPECT_EQ(ended, QString());
    synthesizer.finish();
    EXPECT_EQ(ended, QStringLiteral("two"));

    speech.speak(QStringLiteral("three"), [this] { speak(QStringLiteral("four")); });
    speech.stop();
    EXPECT_EQ(ended, QStringLiteral("two"));
    drainMainQueue();
    ASSERT_TRUE(synthesizer.current); // the handler may speak
    speech.stop();
    speech.stop();
    drainMainQueue();
    EXPECT_EQ(ended, QStringLiteral("twofour"));
}

TEST_F(SpeechTest, AButtonOfThePanelStartsAndStopsItsText)
{
    auto model = std::make_shared<ResultViewModel>(CaptureResult{});
    const auto press = [&](Target target, const QString &text) {
        model->toggleSpeech(target, text);
        return model->speakingTarget.get();
    };
    const QString text = QStringLiteral("text");
    EXPECT_EQ(press(Target::source, QStringLiteral(" \n")), std::nullopt);
    EXPECT_EQ(press(Target::source, text), Target::source);
    EXPECT_EQ(press(Target::translation, text), Target::translation);
    drainMainQueue();
    EXPECT_EQ(model->speakingTarget.get(), Target::translation);
    EXPECT_EQ(press(Target::translation, text), std::nullopt);
    EXPECT_FALSE(synthesizer.current);
    EXPECT_EQ(press(Target::translation, text), Target::translation); // before the end of the former is told
    drainMainQueue();
    EXPECT_EQ(model->speakingTarget.get(), Target::translation);
    synthesizer.finish();
    EXPECT_EQ(model->speakingTarget.get(), std::nullopt);

    press(Target::source, text);
    model.reset();
    synthesizer.finish();
}

TEST_F(SpeechTest, APanelThatClosesEndsTheReading)
{
    const auto model = std::make_shared<ResultViewModel>(CaptureResult{});
    auto &panels = ResultPanelManager::shared();
    panels.show(model, {});
    model->toggleSpeech(Target::source, QStringLiteral("text"));
    ASSERT_TRUE(synthesizer.current);
    panels.closeUnpinned();
    EXPECT_FALSE(synthesizer.current);
    drainMainQueue();
    EXPECT_EQ(model->speakingTarget.get(), std::nullopt);
}

} // namespace
} // namespace tovi
