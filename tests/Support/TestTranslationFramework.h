// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

#include "Platform/TranslationFramework.h"

namespace tovi {

struct TestTranslationSession final : TranslationSession
{
    QFuture<QString> translate(const QString &text) override
    {
        QPromise<QString> promise;
        auto future = promise.future();
        promise.start();
        try {
            promise.addResult(answer(text));
        } catch (...) {
            promise.setException(std::current_exception());
        }
        promise.finish();
        return future;
    }
    std::function<QString(const QString &)> answer = [](const QString &text) { return text.toUpper(); };
};

/// Sessions come when the test provides them.
class TestTranslationFramework final : public TranslationFramework
{
public:
    struct Request
    {
        std::optional<QString> source;
        QString target;
        SessionHandler handler;
    };
    bool isPresent() const override { return present; }
    Availability status(const QString &, const QString &) override { return availability; }
    Availability statusForText(const QString &, const QString &) override
    {
        if (detectionFails)
            throw TranslationFrameworkError(QStringLiteral("no language"));
        return availability;
    }
    void openSession(const std::optional<QString> &source, const QString &target,
                     SessionHandler handler) override
    {
        requests.append({source, target, std::move(handler)});
        if (onOpen)
            onOpen(requests.last());
    }

    bool present = true;
    bool detectionFails = false;
    Availability availability = Availability::Installed;
    QList<Request> requests;
    std::function<void(Request &)> onOpen;
};

} // namespace tovi
