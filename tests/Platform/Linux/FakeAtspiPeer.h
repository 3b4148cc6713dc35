// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Platform/DispatchQueue.h"
#include "Platform/Linux/AtspiElement.h"
#include "Support/TestClock.h"

namespace tovi {

/// A reference to an accessible object as it travels on the bus.
struct FakeReference
{
    QString bus;
    QDBusObjectPath path;
};
using FakeReferences = QList<FakeReference>;

/// An accessibility bus of its own with one application on it that plays the registry too. By default it has
/// a window with the focused text "Hello world", whose first five characters are selected; a test replaces
/// answers.
class FakeAtspiPeer final : public QDBusVirtualObject
{
public:
    /// What a call is answered with: nothing means no answer at all.
    using Answer = std::function<std::optional<QVariantList>(const QDBusMessage &call)>;

    FakeAtspiPeer();
    ~FakeAtspiPeer() override;

    /// Starts the bus, at the address that it had before if any, and joins it.
    bool start();
    void stopBus();
    QByteArray address() const { return m_address; }

    /// Replaces the answer of a method, or of a property by its name; `path` empty for all objects.
    void answer(const QString &path, const QString &member, Answer answer);
    void answer(const QString &path, const QString &member, const QVariantList &values);
    void clearAnswers() { m_answers.clear(); }
    /// Every answer comes this much later.
    std::chrono::milliseconds delay{0};

    QVariant reference(const QString &path) const;
    QVariant references(const QStringList &paths) const;
    static QVariant states(std::initializer_list<int> bits);

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &call, const QDBusConnection &connection) override;

private:
    std::optional<QVariantList> ownAnswer(const QString &path, const QString &member) const;

    QProcess m_daemon;
    QByteArray m_address;
    QString m_connectionName;
    QString m_name;
    std::map<std::pair<QString, QString>, Answer> m_answers;
};

/// Requests of this process, whose window is in front, to the scripted application.
class AtspiTest : public testing::Test
{
protected:
    struct OwnWindow final : ActiveWindowSource
    {
        std::optional<ActiveWindow> activeWindow() override { return ActiveWindow{::getpid(), {}, 1}; }
    };

    void SetUp() override
    {
        ASSERT_TRUE(peer.start());
        context->client = std::make_shared<AtspiClient>([this] { return peer.address(); });
        context->activeWindow = std::make_shared<OwnWindow>();
    }
    template <class Fn>
    auto onQueue(Fn work)
    {
        auto future = queue.run(std::move(work));
        EXPECT_TRUE(waitUntil([&] { return future.isFinished(); }));
        return future.result();
    }

    FakeAtspiPeer peer;
    std::shared_ptr<AtspiContext> context = std::make_shared<AtspiContext>();
    DispatchQueue queue{QStringLiteral("requests")};
};

} // namespace tovi

Q_DECLARE_METATYPE(tovi::FakeReference)
Q_DECLARE_METATYPE(tovi::FakeReferences)
