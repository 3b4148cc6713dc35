// SPDX-License-Identifier: MIT
#include "Translation/TranslationProvider.h"

namespace tovi {

QCoro::Task<TranslationResult> TranslationProvider::translateStream(QString text, QString target,
                                                                    QString source, DeltaHandler onDelta)
{
    TranslationResult result = co_await translate(text, target, source);
    co_await onDelta(result.translatedText);
    co_return result;
}

} // namespace tovi
