// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Platform/Linux/LanguageDetector.h"

namespace tovi {
namespace {

TEST(LanguageDetectorTest, ShortTextsOfDailyLife)
{
    struct Row
    {
        const char16_t *text;
        const char *language; // empty: none
    };
    const Row rows[] = {
        {u"house", "en"},
        {u"Where is the station?", "en"},
        {u"bonjour", "fr"},
        {u"Où est la gare ?", "fr"},
        {u"Guten Tag", "de"},
        {u"Wo ist der Bahnhof?", "de"},
        {u"perro", "es"},
        {u"buenos días", "es"},
        {u"¿Dónde está la estación?", "es"},
        {u"Где находится вокзал?", "ru"},
        {u"你好，世界", "zh-CN"},
        {u"這個軟體很好用", "zh-TW"},
        {u"こんにちは", "ja"},
        {u"東京駅", "ja"},
        {u"設定を変更する", "ja"},
        {u"한국어 漢字 문장", "ko"},
        {u"我用 iPhone 打电话", "zh-CN"},
        {u"Pythonで書かれた script", "ja"},
        {u"The word 漢字 means Chinese characters", "en"},
        {u"鲜の每日优选水果店", "zh-CN"},
        {u"Bom dia, tudo bem com você?", "pt"},
        {u"Привіт, як у тебе справи сьогодні?", "uk"},
        {u"https://example.com/une-page-en-ligne voir la page", "fr"},
        {u"12:30 😀 +49 (0)30", ""},
        {u"", ""},
    };
    for (const auto &[text, language] : rows) {
        const QString sample = QString::fromUtf16(text);
        EXPECT_EQ(LanguageDetector::dominantLanguage(sample).value_or(QString()), QLatin1String(language))
            << sample.toStdString();
    }
}

} // namespace
} // namespace tovi
