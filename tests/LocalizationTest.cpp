// SPDX-License-Identifier: MIT
#include "Localization.h"

#include <thread>

#include <vector>

#include <gtest/gtest.h>

#include "Localization/Tables.h"
#include "Support/TestPlatform.h"

namespace tovi {

// Readable failure messages.
static void PrintTo(AppLanguage language, std::ostream *out)
{
    *out << AppLanguages::rawValue(language).toStdString();
}

namespace {

using enum AppLanguage;

struct Language
{
    AppLanguage language;
    LocalizationTable table;
};

std::vector<Language> translations()
{
    return {{zhHans, simplifiedChineseTable()},
            {zhHant, traditionalChineseTable()},
            {ja, japaneseTable()},
            {ko, koreanTable()},
            {fr, frenchTable()},
            {de, germanTable()},
            {es, spanishTable()},
            {ru, russianTable()}};
}

TEST(LocalizationTables, HaveEveryKeyOnceInOrder)
{
    const QSet<Str> onlyChinese{Str::ocrCapturing, Str::ocrRecognizing, Str::ocrElapsed, Str::ocrWaitHint};
    auto all = translations();
    all.push_back({en, englishTable()});
    for (const auto &[language, table] : all) {
        QList<Str> expected;
        for (int i = 0; i < strCount; ++i) {
            const auto key = static_cast<Str>(i);
            if (language == en || language == zhHans || language == zhHant || !onlyChinese.contains(key))
                expected << key;
        }
        QList<Str> keys;
        for (const auto &[key, text] : table)
            keys << key;
        EXPECT_EQ(keys, expected) << AppLanguages::rawValue(language).toStdString();
    }
}

TEST(LocalizationTables, KeepPlaceholdersLineFeedsNamesAndSymbols)
{
    const QRegularExpression placeholder(QStringLiteral("%(.|$)|\\{\\{target\\}\\}"));
    const auto placeholders = [&](const QString &text) {
        QStringList found;
        for (auto it = placeholder.globalMatch(text); it.hasNext();)
            found << it.next().captured();
        return found;
    };
    for (const auto &[language, table] : translations()) {
        for (const auto &[key, utf8] : table) {
            const QString text = QString::fromUtf8(utf8);
            const QString english = QString::fromUtf8(englishTable()[static_cast<size_t>(key)].text);
            const auto where = [&, language = language, key = key] {
                return AppLanguages::rawValue(language).toStdString() + ' ' + rawValue(key).data();
            };
            EXPECT_EQ(placeholders(text), placeholders(english)) << where();
            for (const char *kept : {"\n", "Tovi", "⌘", "⌥", "⌃", "⌫", "›", "·", "/Applications"})
                EXPECT_EQ(text.count(QString::fromUtf8(kept)), english.count(QString::fromUtf8(kept)))
                    << where() << ": " << kept;
            EXPECT_EQ(text.endsWith(u'…'), english.endsWith(u'…')) << where();
            EXPECT_FALSE(text.isEmpty() || text != text.trimmed() ||
                         text.contains(QChar::ReplacementCharacter))
                << where();
        }
    }
}

TEST(Localization, AnswersInTheChosenLanguageElseInEnglish)
{
    TestPlatform platform;
    auto &localization = Localization::shared();
    for (const auto &[language, table] : translations()) {
        localization.language = language;
        EXPECT_EQ(localization.t(Str::menuCapture),
                  QString::fromUtf8(table[static_cast<size_t>(Str::menuCapture)].text));
    }
    localization.language = ko; // which lacks some of the later texts
    EXPECT_EQ(localization.t(Str::ocrCapturing), QStringLiteral("Capturing screen…"));
    EXPECT_EQ(localization.t(static_cast<Str>(strCount - 1)), QString::fromUtf8(koreanTable().back().text));
}

TEST(Localization, FollowsTheFirstPreferredLanguageOfTheSystem)
{
    const std::pair<const char *, AppLanguage> rows[] = {
        {"zh-Hant-TW", zhHant}, {"zh-HK", zhHant}, {"ZH-mo", zhHant}, {"zh_TW", zhHant}, {"zh", zhHans},
        {"zh-SG", zhHans},      {"fr-CA", fr},     {"es-419", es},    {"RU", ru},        {"pt-BR", en},
        {"hant", en},           {"", en},
    };
    for (const auto &[code, expected] : rows) {
        TestPlatform platform;
        platform.application().languages = {QLatin1String(code), QStringLiteral("ko")};
        EXPECT_EQ(Localization::shared().resolvedLanguage(), expected) << code;
        EXPECT_EQ(Localization::shared().language.get(), AppLanguage::system);
    }
}

TEST(Localization, AnAssignmentIsStoredThenAnnouncedOnce)
{
    TestPlatform platform;
    auto &localization = Localization::shared();
    EXPECT_TRUE(platform.userDefaults().writes.isEmpty());
    QStringList announced;
    const Subscription subscription =
        platform.notificationCenter().observe(Localization::languageChangedNotification, [&](const auto &) {
            announced << platform.userDefaults().string(QStringLiteral("appLanguage")).value_or(QString())
                      << localization.t(Str::menuCopy);
        });
    localization.language = zhHans;
    localization.language = de;
    EXPECT_EQ(announced, (QStringList{QStringLiteral("zh-Hans"), QStringLiteral("复制"), QStringLiteral("de"),
                                      QStringLiteral("Kopieren")}));
}

TEST(Localization, LoadsTheStoredLanguageAndLeavesUnknownValuesAlone)
{
    const std::pair<QJsonValue, AppLanguage> rows[] = {
        {QStringLiteral("zh-Hant"), zhHant},
        {QStringLiteral("tlh"), AppLanguage::system},
        {QJsonValue(7), AppLanguage::system},
    };
    for (const auto &[stored, expected] : rows) {
        TestPlatform platform;
        platform.userDefaults().values.insert(QStringLiteral("appLanguage"), stored);
        EXPECT_EQ(Localization::shared().language.get(), expected);
        EXPECT_EQ(platform.userDefaults().values.value(QStringLiteral("appLanguage")), stored);
    }
    for (const AppLanguage language : AppLanguages::all())
        EXPECT_EQ(AppLanguages::fromRawValue(AppLanguages::rawValue(language)), language);
}

TEST(Localization, LookupsMayRunBesideALanguageChange)
{
    TestPlatform platform;
    auto &localization = Localization::shared();
    const QSet<QString> quits{QStringLiteral("Quit Tovi"), QStringLiteral("Tovi beenden"),
                              QStringLiteral("Salir de Tovi")};
    std::atomic<int> wrong = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&](const std::stop_token &stop) {
                while (!stop.stop_requested())
                    wrong += quits.contains(localization.t(Str::menuQuit)) ? 0 : 1;
            });
        }
        for (int i = 0; i < 200; ++i)
            localization.language = i % 2 ? de : es;
    }
    EXPECT_EQ(wrong, 0);
}

TEST(Formatted, FillsPlaceholdersInOnePass)
{
    struct
    {
        const char *format;
        QStringList arguments;
        const char *expected;
    } const rows[] = {
        {"HTTP %d: %@", {QStringLiteral("404"), QStringLiteral("a %@ and %d")}, "HTTP 404: a %@ and %d"},
        {"%d%% of %@%", {QStringLiteral("5"), QStringLiteral("%%")}, "5% of %%%"},
        {"%@ %@ %x", {QStringLiteral("one")}, "one %@ %x"},
        {"none", {QStringLiteral("unused")}, "none"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(formatted(QLatin1String(row.format), row.arguments), QLatin1String(row.expected));
}

} // namespace
} // namespace tovi
