// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QString>
#include <qcorotask.h>

#include "Translation/TranslationModels.h"

namespace tovi {

/// A translation engine, made for one request. Called on the translator's background executor; throws
/// TranslationError only. Languages are the program's codes; the source may be "auto".
class TranslationProvider
{
public:
    /// Gets the whole translation received so far. The engine awaits it before it reads on.
    using DeltaHandler = std::function<QCoro::Task<>(QString)>;

    virtual ~TranslationProvider() = default;

    virtual QString name() const = 0;
    /// Whether translateStream() delivers text while the answer arrives.
    virtual bool supportsStreaming() const = 0;
    virtual QCoro::Task<TranslationResult> translate(QString text, QString target, QString source) = 0;
    /// An engine that cannot stream delivers the finished translation once.
    virtual QCoro::Task<TranslationResult> translateStream(QString text, QString target, QString source,
                                                           DeltaHandler onDelta);
};

} // namespace tovi
