// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include <QList>
#include <QString>
#include <QUuid>
#include <qcorotask.h>

#include "Platform/DispatchQueue.h"
#include "ProviderConfig.h"
#include "Translation/TranslationModels.h"

namespace tovi {

class TranslationProvider;

/// The entry point of translation: picks the engine, answers from the cache, falls back.
class Translator
{
public:
    /// Called on the main thread with the whole translation received so far.
    using DeltaHandler = std::function<void(const QString &)>;

    static Translator &shared();

    /// Called and resumed on the main thread; the engine works on the background executor. Throws
    /// TranslationError only.
    QCoro::Task<TranslationResult> translate(QString text, QString target, QString source,
                                             std::optional<QUuid> providerID, DeltaHandler onDelta);
    /// One uncached translation with exactly this configuration, which may be unsaved.
    QCoro::Task<TranslationResult> testConnection(ProviderConfig config);
};

} // namespace tovi
