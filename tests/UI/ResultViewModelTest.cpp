// SPDX-License-Identifier: MIT
#include "UI/ResultViewModel.h"

#include <gtest/gtest.h>

#include "Settings.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using std::chrono::milliseconds;

class ResultViewModelTest : public testing::Test
{
protected:
    ResultViewModelTest()
    {
        settings.targetLanguage = QStringLiteral("es");
        settings.sourceLanguage = QStringLiteral("auto");
        settings.providers = {engine(QStringLiteral("One")), engine(QStringLiteral("Two"))};
        settings.currentProviderID = settings.providers->first().id;
        model = std::make_shared<ResultViewModel>(CaptureResult{.text = QStringLiteral("source")});
        model->onResize = [this] { ++resizes; };
    }
    static ProviderConfig engine(const QString &name)
    {
        ProviderConfig config;
        config.id = QUuid::createUuid();
        config.name = name;
        config.kind = ProviderKind::openAI;
        return config;
    }

    TestPlatform platform;
    Settings &settings = Settings::shared();
    std::shared_ptr<ResultViewModel> model;
    int resizes = 0;
};

TEST_F(ResultViewModelTest, StartsLoadingWithTheSettingsOfTheMoment)
{
    settings.providers = QList<ProviderConfig>{engine(QStringLiteral("Later"))};
    settings.targetLanguage = QStringLiteral("ru");
    EXPECT_EQ(model->sourceText.get(), QStringLiteral("source"));
    EXPECT_EQ(model->providers.size(), 2);
    EXPECT_EQ(model->targetLanguage.get(), QStringLiteral("es"));
    EXPECT_TRUE(model->isLoading);
    EXPECT_FALSE(model->errorMessage.get() || model->ocrProgress.get() || model->isPinned);
}

TEST_F(ResultViewModelTest, AChosenLanguageBecomesTheDefault)
{
    QStringList chosen;
    model->onSelectLanguage = [&](const QString &code) { chosen << code << settings.targetLanguage.get(); };
    model->onSelectSourceLanguage = [&](const QString &code) {
        chosen << code << settings.sourceLanguage.get();
    };
    auto &defaults = platform.userDefaults();
    defaults.writes.clear();
    model->selectLanguage(QStringLiteral("es"));
    model->selectSourceLanguage(QStringLiteral("auto"));
    EXPECT_TRUE(chosen.isEmpty() && defaults.writes.isEmpty());

    model->selectLanguage(QStringLiteral("fr"));
    model->selectSourceLanguage(QStringLiteral("en"));
    EXPECT_EQ(chosen.join(u' '), QStringLiteral("fr fr en en"));
    EXPECT_EQ(defaults.string(QStringLiteral("targetLanguage")), QStringLiteral("fr"));
    EXPECT_EQ(defaults.string(QStringLiteral("sourceLanguage")), QStringLiteral("en"));
}

TEST_F(ResultViewModelTest, AChosenEngineHoldsForThisPanelOnly)
{
    QList<QUuid> chosen;
    model->onSelectProvider = [&](const QUuid &id) {
        chosen << id;
        model.reset(); // the panel may close in consequence
    };
    const QUuid first = settings.currentProviderID;
    const QUuid other = settings.providers->last().id;
    model->selectProvider(first);
    EXPECT_TRUE(chosen.isEmpty());
    EXPECT_EQ(model->currentProviderName(), QStringLiteral("One"));
    model->selectProvider(other);
    EXPECT_EQ(chosen, QList<QUuid>{other});
    EXPECT_EQ(settings.currentProviderID.get(), first);
}

TEST_F(ResultViewModelTest, NamesWhatIsChosen)
{
    const struct
    {
        const char *code;
        const char *target;
        const char *source;
    } rows[] = {{"zh-TW", "繁體中文", "繁體中文"},
                {"es", "Español", "Español"},
                {"tlh", "tlh", "tlh"},
                {"auto", "auto", "Auto Detect"}};
    for (const auto &row : rows) {
        model->targetLanguage = model->sourceLanguage = QString::fromUtf8(row.code);
        EXPECT_EQ(model->currentLanguageName(), QString::fromUtf8(row.target));
        EXPECT_EQ(model->currentSourceLanguageName(), QString::fromUtf8(row.source));
    }

    model->providers.first().iconName = QStringLiteral("star");
    EXPECT_EQ(model->currentProviderIcon(), QStringLiteral("star"));
    model->providers.clear();
    EXPECT_EQ(model->currentProviderIcon(), QStringLiteral("cloud"));
    EXPECT_EQ(model->currentProviderName(), QString());
    model->providerName = QStringLiteral("Fallback");
    EXPECT_EQ(model->currentProviderName(), QStringLiteral("Fallback"));
}

TEST_F(ResultViewModelTest, ShowsForAWhileThatItCopied)
{
    auto &clock = platform.clock();
    model->copyResult();
    EXPECT_EQ(platform.pasteboard().text, QStringLiteral("source"));
    EXPECT_TRUE(model->didCopy);
    clock.advance(milliseconds(1000));
    model->translatedText = QStringLiteral("translation");
    model->copyResult();
    EXPECT_EQ(platform.pasteboard().text, QStringLiteral("translation"));
    clock.advance(milliseconds(1190));
    EXPECT_TRUE(model->didCopy);
    clock.advance(milliseconds(10));
    EXPECT_FALSE(model->didCopy);

    model->copyResult();
    model.reset();
    clock.advance(milliseconds(2000)); // nobody is left to reset
}

TEST_F(ResultViewModelTest, FollowsARecognition)
{
    auto &clock = platform.clock();
    const auto start = clock.now();
    bool abandoned = false;
    model->onDismiss = [&] { abandoned = true; };
    model->isLoading = false;
    model->updateOCRProgress(OCRProgress::capturing);
    clock.advance(milliseconds(300));
    model->updateOCRProgress(OCRProgress::recognizing);
    EXPECT_EQ(model->ocrProgress.get(), OCRProgress::recognizing);
    EXPECT_EQ(model->ocrStartedAt.get(), start);
    EXPECT_TRUE(model->isLoading);

    model->finishOCR({}, QStringLiteral("no text"));
    EXPECT_EQ(model->sourceText.get(), QStringLiteral("source"));
    EXPECT_EQ(model->errorMessage.get(), QStringLiteral("no text"));
    EXPECT_FALSE(model->ocrProgress.get() || model->ocrStartedAt.get() || model->isLoading);
    EXPECT_FALSE(model->onDismiss || abandoned);

    model->finishOCR(QStringLiteral("read"), {});
    EXPECT_EQ(model->sourceText.get(), QStringLiteral("read"));
    EXPECT_FALSE(model->errorMessage.get());
    EXPECT_EQ(resizes, 4);
}

} // namespace
} // namespace tovi
