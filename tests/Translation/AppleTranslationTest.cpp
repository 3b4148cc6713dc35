// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Platform/DispatchQueue.h"
#include "Support/Await.h"
#include "Support/TestPlatform.h"
#include "Translation/AppleTranslation.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

const QString en = QStringLiteral("en");
const QString es = QStringLiteral("es");
const QString fr = QStringLiteral("fr");
const QString automatic = QStringLiteral("auto");

class AppleTranslationTest : public testing::Test
{
protected:
    struct Answer
    {
        bool isThere = false;
        std::shared_ptr<TranslationSession> session;
    };
    /// What session() answers, once it does.
    std::shared_ptr<Answer> ask(const QString &source, const QString &target)
    {
        const auto answer = std::make_shared<Answer>();
        wait(AppleTranslationBridge::shared().session(source, target), answer);
        return answer;
    }
    static QCoro::Task<> wait(QCoro::Task<std::shared_ptr<TranslationSession>> task,
                              std::shared_ptr<Answer> answer)
    {
        answer->session = co_await task;
        answer->isThere = true;
    }
    void provide(qsizetype request, const std::shared_ptr<TranslationSession> &session)
    {
        framework().requests[request].handler(session);
        drainMainQueue();
    }
    TestTranslationFramework &framework() { return platform.translationFramework(); }

    /// The engine's result, or its error's description.
    QString translated(const QString &text, const QString &target, const QString &source)
    {
        try {
            const auto result = await(queue.spawn([=] { return translate(text, target, source); }));
            EXPECT_EQ(result.providerName, QStringLiteral("Offline"));
            return result.translatedText;
        } catch (const TranslationError &error) {
            return QStringLiteral("%1: %2")
                .arg(static_cast<int>(error.kind()))
                .arg(error.localizedDescription());
        }
    }
    static QCoro::Task<TranslationResult> translate(QString text, QString target, QString source)
    {
        AppleTranslationProvider engine(QStringLiteral("Offline"));
        co_return co_await engine.translate(text, target, source);
    }

    TestPlatform platform;
    std::shared_ptr<TestTranslationSession> first = std::make_shared<TestTranslationSession>();
    std::shared_ptr<TestTranslationSession> second = std::make_shared<TestTranslationSession>();
    DispatchQueue queue{QStringLiteral("engines")};
};

TEST_F(AppleTranslationTest, OneSessionServesAllThatWaitForItsPair)
{
    const auto a = ask(en, es);
    const auto b = ask(en, es);
    const auto other = ask(automatic, fr);
    ASSERT_EQ(framework().requests.size(), 2);
    EXPECT_EQ(framework().requests[0].source, en);
    EXPECT_EQ(framework().requests[1].source, std::nullopt);
    EXPECT_EQ(framework().requests[1].target, fr);

    // The earlier pair's session comes while the later one is pending.
    provide(0, first);
    EXPECT_EQ(a->session, first);
    EXPECT_EQ(b->session, first);
    EXPECT_FALSE(other->isThere);
    provide(1, second);
    EXPECT_EQ(other->session, second);
    EXPECT_EQ(platform.clock().pendingActions(), 0);

    // The held session is given at once, without asking; another pair asks anew.
    EXPECT_EQ(ask(automatic, fr)->session, second);
    EXPECT_EQ(framework().requests.size(), 2);
    AppleTranslationBridge::shared().discard(first);
    EXPECT_EQ(ask(automatic, fr)->session, second);
    AppleTranslationBridge::shared().discard(second);
    EXPECT_FALSE(ask(automatic, fr)->isThere);
    EXPECT_EQ(framework().requests.size(), 3);
}

TEST_F(AppleTranslationTest, WaitersEndAfter25SecondsAndALateSessionIsKept)
{
    const auto early = ask(en, es);
    platform.clock().advance(10s);
    const auto later = ask(en, es);
    platform.clock().advance(15s);
    EXPECT_TRUE(early->isThere);
    EXPECT_EQ(early->session, nullptr);
    EXPECT_FALSE(later->isThere);
    platform.clock().advance(10s);
    EXPECT_TRUE(later->isThere);
    provide(0, first);
    EXPECT_EQ(ask(en, es)->session, first);
}

TEST_F(AppleTranslationTest, WaitersEndAtOnceWhenNoSessionCanComeOrTheBridgeEnds)
{
    const auto impossible = ask(en, es);
    provide(0, nullptr);
    EXPECT_TRUE(impossible->isThere);
    EXPECT_EQ(impossible->session, nullptr);

    auto bridge = std::make_unique<AppleTranslationBridge>();
    const auto orphan = std::make_shared<Answer>();
    wait(bridge->session(en, es), orphan);
    bridge.reset();
    provide(1, first);
    EXPECT_TRUE(orphan->isThere);
    EXPECT_EQ(orphan->session, nullptr);
}

TEST_F(AppleTranslationTest, TheEngineTellsEveryFailureApart)
{
    framework().onOpen = [this](auto &request) { request.handler(first); };
    first->answer = [](const QString &text) {
        return QStringLiteral(" \n") + text.toUpper() + QStringLiteral("\n");
    };
    EXPECT_EQ(translated(QStringLiteral("hello"), es, en), QStringLiteral("HELLO"));
    // A text whose language is unknown is tried.
    framework().detectionFails = true;
    EXPECT_EQ(translated(QStringLiteral("xyz"), es, automatic), QStringLiteral("XYZ"));
    EXPECT_EQ(translated(QStringLiteral("xyz"), es, QString()), QStringLiteral("XYZ"));
    EXPECT_EQ(framework().requests.last().source, QString());
    EXPECT_EQ(translated(QStringLiteral(" "), es, en), QStringLiteral("3: Empty translation result"));

    const QString unsupported = QStringLiteral("1: This language pair isn't supported offline");
    const QString notInstalled = QStringLiteral(
        "1: Language pack not installed. Download it in System Settings › General › Language & "
        "Region › Translation Languages.");
    struct Row
    {
        TranslationFrameworkError::Reason reason;
        QString description;
        bool isSessionDropped;
    };
    using Reason = TranslationFrameworkError::Reason;
    EXPECT_EQ(translated(QStringLiteral("warm"), fr, en), QStringLiteral("WARM"));
    for (const auto &[reason, description, isSessionDropped] :
         {Row{Reason::NotInstalled, notInstalled, false}, Row{Reason::Unsupported, unsupported, false},
          Row{Reason::Failed, QStringLiteral("0: broken"), true}}) {
        first->answer = [reason = reason](const QString &) -> QString {
            throw TranslationFrameworkError(QStringLiteral("broken"), reason);
        };
        const auto asked = framework().requests.size();
        EXPECT_EQ(translated(QStringLiteral("a"), fr, en), description);
        drainMainQueue();
        first->answer = [](const QString &text) { return text; };
        EXPECT_EQ(translated(QStringLiteral("a"), fr, en), QStringLiteral("a"));
        EXPECT_EQ(framework().requests.size(), asked + (isSessionDropped ? 1 : 0))
            << description.toStdString();
    }

    framework().onOpen = [](auto &request) { request.handler(nullptr); };
    EXPECT_EQ(translated(QStringLiteral("a"), es, fr), notInstalled);
    framework().availability = TranslationFramework::Availability::Unsupported;
    EXPECT_EQ(translated(QStringLiteral("a"), es, en), unsupported);
    framework().availability = TranslationFramework::Availability::Installed;
    framework().present = false;
    EXPECT_EQ(translated(QStringLiteral("a"), es, en), unsupported);
}

} // namespace
} // namespace tovi
