// SPDX-License-Identifier: MIT
#include "UI/ResultViewModel.h"

#include <gtest/gtest.h>

#include "Settings.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

struct ResultViewModelTest : testing::Test
{
    TestPlatform platform;
    Settings &settings = Settings::shared();
    std::shared_ptr<ResultViewModel> model =
        std::make_shared<ResultViewModel>(CaptureResult{.text = QStringLiteral("source")});
};

TEST_F(ResultViewModelTest, AChosenLanguageBecomesTheDefaultAndAChosenEngineDoesNot)
{
    QStringList chosen;
    model->onSelectLanguage = [&](const QString &code) { chosen << code << settings.targetLanguage; };
    model->onSelectSourceLanguage = [&](const QString &code) { chosen << code << settings.sourceLanguage; };
    model->onSelectProvider = [&](QUuid) { model.reset(); }; // the panel may close in consequence
    const QUuid defaultEngine = settings.currentProviderID;
    const auto &writes = platform.userDefaults().writes;
    const auto writesBefore = writes;
    model->selectLanguage(settings.targetLanguage);
    model->selectSourceLanguage(settings.sourceLanguage);
    model->selectProvider(defaultEngine);
    ASSERT_TRUE(model && chosen.isEmpty() && writes == writesBefore);

    model->selectLanguage(QStringLiteral("fr"));
    model->selectSourceLanguage(QStringLiteral("de"));
    EXPECT_EQ(chosen.join(u' '), QStringLiteral("fr fr de de"));
    EXPECT_EQ(platform.userDefaults().string(QStringLiteral("targetLanguage")), QStringLiteral("fr"));
    EXPECT_EQ(platform.userDefaults().string(QStringLiteral("sourceLanguage")), QStringLiteral("de"));
    model->selectProvider(QUuid::createUuid());
    EXPECT_FALSE(model);
    EXPECT_EQ(settings.currentProviderID.get(), defaultEngine);
}

TEST_F(ResultViewModelTest, NamesWhatIsChosen)
{
    model->targetLanguage = model->sourceLanguage = QStringLiteral("auto");
    EXPECT_EQ(model->currentLanguageName(), QStringLiteral("auto"));
    EXPECT_EQ(model->currentSourceLanguageName(), QStringLiteral("Auto Detect"));
    model->sourceLanguage = QStringLiteral("zh-TW");
    EXPECT_EQ(model->currentSourceLanguageName(), QStringLiteral("繁體中文"));

    ProviderConfig engine{
        .id = QUuid::createUuid(), .name = QStringLiteral("Mine"), .kind = ProviderKind::openAI};
    engine.iconName = QStringLiteral("star");
    model->providers << engine;
    model->currentProviderID = engine.id;
    model->providerName = QStringLiteral("Fallback");
    EXPECT_EQ(model->currentProviderName(), QStringLiteral("Mine"));
    EXPECT_EQ(model->currentProviderIcon(), QStringLiteral("star"));
    model->providers.removeLast();
    EXPECT_EQ(model->currentProviderName(), QStringLiteral("Fallback"));
    EXPECT_EQ(model->currentProviderIcon(), QStringLiteral("cloud"));
}

TEST_F(ResultViewModelTest, ShowsForAWhileThatItCopied)
{
    auto &clock = platform.clock();
    model->copyResult();
    EXPECT_EQ(platform.pasteboard().string(), QStringLiteral("source"));
    clock.advance(1000ms);
    model->translatedText = QStringLiteral("translation");
    model->copyResult();
    EXPECT_EQ(platform.pasteboard().string(), QStringLiteral("translation"));
    clock.advance(1190ms);
    EXPECT_TRUE(model->didCopy);
    clock.advance(10ms);
    EXPECT_FALSE(model->didCopy);
    model->copyResult();
    model.reset();
    clock.advance(2s); // nobody is left to reset
}

TEST_F(ResultViewModelTest, FollowsARecognition)
{
    const auto start = platform.clock().now();
    int resizes = 0;
    model->onResize = [&] { ++resizes; };
    model->onDismiss = [] { ADD_FAILURE(); };
    model->isLoading = false;
    model->updateOCRProgress(OCRProgress::capturing);
    platform.clock().advance(300ms);
    model->updateOCRProgress(OCRProgress::recognizing);
    EXPECT_EQ(model->ocrProgress.get(), OCRProgress::recognizing);
    EXPECT_EQ(model->ocrStartedAt.get(), start);
    EXPECT_TRUE(model->isLoading);

    model->finishOCR({}, QStringLiteral("no text"));
    EXPECT_EQ(model->sourceText.get(), QStringLiteral("source"));
    EXPECT_EQ(model->errorMessage.get(), QStringLiteral("no text"));
    EXPECT_FALSE(model->ocrProgress.get() || model->ocrStartedAt.get() || model->isLoading ||
                 model->onDismiss);
    model->finishOCR(QStringLiteral("read"), {});
    EXPECT_EQ(model->sourceText.get(), QStringLiteral("read"));
    EXPECT_FALSE(model->errorMessage.get());
    EXPECT_EQ(resizes, 4);
}

} // namespace
} // namespace tovi
