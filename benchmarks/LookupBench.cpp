// SPDX-License-Identifier: MIT
#include <chrono>

#include <QCoreApplication>

#include "Bench.h"
#include "Localization.h"
#include "Settings.h"
#include "Support/TestPlatform.h"
#include "Translation/Translator.h"

namespace tovi::bench {

namespace {

template <class Fn>
double nanosecondsPer(int times, Fn fn)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < times; ++i)
        fn(i);
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() / times;
}

QCoro::Task<> translate(QString text, QUuid engine, bool *isDone)
{
    auto task = Translator::shared().translate(text, QStringLiteral("es"), QStringLiteral("en"), engine, {});
    co_await task;
    *isDone = true;
}

} // namespace

void benchLookups()
{
    TestPlatform platform;
    printHeading("Lookups (in this process)");
    Localization &localization = Localization::shared();
    localization.language = AppLanguage::de;
    Samples text;
    qsizetype length = 0;
    for (int i = 0; i < 30; ++i)
        text.add(nanosecondsPer(20000, [&](int n) { length += localization.t(Str(n % strCount)).size(); }));
    printRow(QStringLiteral("t(), one text (ns)"), text, "ns");

    platform.translationFramework().onOpen = [](auto &request) {
        request.handler(std::make_shared<TestTranslationSession>());
    };
    QUuid engine;
    for (const ProviderConfig &provider : Settings::shared().providers.get()) {
        if (provider.kind == ProviderKind::apple)
            engine = provider.id;
    }
    const QString sample(2000, QLatin1Char('a'));
    const auto once = [&](int) {
        bool isDone = false;
        translate(sample, engine, &isDone);
        waitUntil([&] { return isDone; });
    };
    once(0);
    Samples hit;
    for (int i = 0; i < 30; ++i)
        hit.add(nanosecondsPer(200, once) / 1000);
    printRow(QStringLiteral("translation answered from the cache, 2,000 characters (us)"), hit, "us");
}

} // namespace tovi::bench
