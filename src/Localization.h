// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

#include <QList>
#include <QString>
#include <QStringList>

#include "Localization/Str.h"
#include "Platform/Observable.h"

namespace tovi {

/// The interface languages, in the order of the settings' picker. The enumerators' text forms (raw values)
/// are what is stored.
enum class AppLanguage { system, zhHans, zhHant, en, ja, ko, fr, de, es, ru };

namespace AppLanguages {
const QList<AppLanguage> &all();
/// The stored form: "system", "zh-Hans", ...
QString rawValue(AppLanguage language);
/// An unknown text is `system`.
AppLanguage fromRawValue(const QString &rawValue);
/// The language's own name; empty for `system`.
QString displayName(AppLanguage language);
/// The case that serves a system language code such as "zh-Hant-TW".
AppLanguage resolved(const QString &code);
} // namespace AppLanguages

/// The interface language and its texts. Made and assigned on the main thread; t() and resolvedLanguage()
/// from any thread.
class Localization : public Observable
{
public:
    static Localization &shared();
    Localization();

    /// Assigning stores the choice and posts languageChangedNotification.
    Published<AppLanguage> language;

    /// The language of the texts, never `system`: that one is looked up when made and at each assignment.
    AppLanguage resolvedLanguage() const;
    /// The text in the resolved language, else in English. Shared with the table, never copied.
    QString t(Str key) const;

    static const QString languageChangedNotification; ///< "com.brevoll.tovi.languageChanged"

private:
    std::atomic<AppLanguage> m_resolved;
};

/// Fills printf-style placeholders ("%@" text, "%d" integer) in one pass, in order: text inside an argument
/// is never taken for a placeholder. "%%" is a percent sign. Placeholders beyond the arguments stay as they
/// are.
QString formatted(const QString &format, const QStringList &arguments);

} // namespace tovi
