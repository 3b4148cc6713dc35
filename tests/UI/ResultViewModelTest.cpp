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
    model->currentProviderID = QUuid::createUuid(); // one that has gone
    model->providerName = QStringLiteral("Fallback");
    EXPECT_EQ(model->currentProviderName(), QStringLiteral("Fallback"));
    model->selectProvider(QUuid::createUuid());
    EXPECT_FALSE(model);
    EXPECT_EQ(settings.currentProviderID.get(), defaultEngine);
}

} // namespace
} // namespace tovi
