// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>

#include <QByteArray>
#include <QString>
#include <qcorotask.h>

#include "Platform/URLSession.h"
#include "Translation/TranslationModels.h"

namespace tovi {

/// One look into the public English dictionary, under way from the start; its destruction cancels it. Fails
/// silently: a translation without its dictionary entry is still one.
class DictionaryLookup
{
public:
    /// Asks only for what may be an English word or two; else there is no entry.
    DictionaryLookup(URLSession &session, const QString &text);

    /// The lookup must outlive the call.
    QCoro::Task<std::optional<DictionaryEntry>> entry();

    /// The trimmed text, if the dictionary can know it.
    static std::optional<QString> wordToLookUp(const QString &text);
    static std::optional<DictionaryEntry> parse(const QByteArray &body, const QString &word);

private:
    std::optional<QString> m_word;
    std::unique_ptr<URLTask> m_task;
};

} // namespace tovi
