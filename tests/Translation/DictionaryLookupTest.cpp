// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Json.h"
#include "Translation/DictionaryLookup.h"

namespace tovi {
namespace {

TEST(DictionaryLookupTest, OnlyAWordOrTwoIsLookedUp)
{
    for (const char *text : {" word\n", "ice cream", "ice  cream", "don't", "well-known", "a",
                             "abcdefghijklmnopqrstuvwxyzabcdef"})
        EXPECT_EQ(DictionaryLookup::wordToLookUp(QLatin1String(text)), QString::fromLatin1(text).trimmed())
            << text;
    for (const char *text : {"", " ", "one two three", "caf\u00e9", "1st", "word.", "'tis", "two\nlines",
                             "abcdefghijklmnopqrstuvwxyzabcdefg"})
        EXPECT_EQ(DictionaryLookup::wordToLookUp(QString::fromUtf8(text)), std::nullopt) << text;
}

TEST(DictionaryLookupTest, EntriesKeepWhatFits)
{
    const QString word = QStringLiteral("word");
    const auto parse = [&](const QByteArray &body) { return DictionaryLookup::parse(body, word); };
    EXPECT_EQ(
        parse(R"([{"phonetic":"","phonetics":[{"text":"x"}],"meanings":[
                  {"partOfSpeech":"noun","definitions":[{"definition":"1"},{"definition":"2"},{"definition":"3"}]},
                  {},
                  {"definitions":[{"example":"e"},{"definition":"4"},{"definition":"5"}]},
                  {"partOfSpeech":"verb","definitions":[{"definition":"6"}]}]}, {}])"),
        (DictionaryEntry{
            word, QString(), {QStringLiteral("[noun] 1"), QStringLiteral("[noun] 2"), QStringLiteral("4")}}));
    const QByteArray meaning = R"("meanings":[{"definitions":[{"definition":"d"}]}])";
    const std::pair<QByteArray, std::optional<QString>> phonetics[] = {
        {R"("phonetics":[{"audio":"a"},7,{"text":"t"},{"text":"u"}],)", QStringLiteral("t")},
        {R"("phonetic":7,"phonetics":{},)", std::nullopt},
        {"", std::nullopt}};
    for (const auto &[members, expected] : phonetics)
        EXPECT_EQ(parse("[{" + members + meaning + "}]")->phonetic, expected) << members.constData();

    for (const QByteArray &body :
         {QByteArray("[]"), QByteArray("{}"), QByteArray("[{}]"), "[{" + meaning + "},7]",
          QByteArray(R"([{"meanings":[7,{"definitions":[{"definition":"d"}]}]}])"),
          QByteArray(R"([{"meanings":[{"definitions":[{"definition":7}]}]}])")})
        EXPECT_EQ(parse(body), std::nullopt) << body.constData();
    EXPECT_THROW(parse("<html>"), JSONError);
}

} // namespace
} // namespace tovi
