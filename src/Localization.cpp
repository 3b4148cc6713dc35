// SPDX-License-Identifier: MIT
#include "Localization.h"

#include <array>
#include <iterator>
#include <mutex>

#include "Localization/Tables.h"
#include "Platform/Application.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/UserDefaults.h"

namespace tovi {

namespace {

const QString defaultsKey = QStringLiteral("appLanguage");

struct LanguageInfo
{
    QString rawValue;
    QString displayName;
    LocalizationTable (*table)();
};

/// Indexed by AppLanguage.
const LanguageInfo infos[] = {
    {QStringLiteral("system"), {}, englishTable},
    {QStringLiteral("zh-Hans"), QStringLiteral("简体中文"), simplifiedChineseTable},
    {QStringLiteral("zh-Hant"), QStringLiteral("繁體中文"), traditionalChineseTable},
    {QStringLiteral("en"), QStringLiteral("English"), englishTable},
    {QStringLiteral("ja"), QStringLiteral("日本語"), japaneseTable},
    {QStringLiteral("ko"), QStringLiteral("한국어"), koreanTable},
    {QStringLiteral("fr"), QStringLiteral("Français"), frenchTable},
    {QStringLiteral("de"), QStringLiteral("Deutsch"), germanTable},
    {QStringLiteral("es"), QStringLiteral("Español"), spanishTable},
    {QStringLiteral("ru"), QStringLiteral("Русский"), russianTable},
};

const LanguageInfo &info(AppLanguage language)
{
    return infos[static_cast<size_t>(language)];
}

/// A language's texts by key, each gap filled from English, else with the key's name.
using Texts = std::array<QString, strCount>;

Texts makeTexts(AppLanguage language)
{
    Texts texts;
    for (int i = 0; i < strCount; ++i)
        texts[static_cast<size_t>(i)] = rawValue(static_cast<Str>(i));
    for (const auto &table : {englishTable(), info(language).table()}) {
        for (const auto &[key, text] : table)
            texts[static_cast<size_t>(key)] = QString::fromUtf8(text);
    }
    return texts;
}

/// Made when a language is first used: most people only ever see one.
const Texts &texts(AppLanguage language)
{
    struct Lazy
    {
        std::once_flag once;
        Texts texts;
    };
    static std::array<Lazy, std::size(infos)> all;
    Lazy &lazy = all[static_cast<size_t>(language)];
    std::call_once(lazy.once, [&] { lazy.texts = makeTexts(language); });
    return lazy.texts;
}

AppLanguage effective(AppLanguage language)
{
    if (language != AppLanguage::system)
        return language;
    const QStringList preferred = Platform::current().application().preferredLanguages();
    return AppLanguages::resolved(preferred.value(0, QStringLiteral("en")));
}

} // namespace

const QList<AppLanguage> &AppLanguages::all()
{
    static const QList<AppLanguage> languages = [] {
        QList<AppLanguage> result;
        for (size_t i = 0; i < std::size(infos); ++i)
            result << static_cast<AppLanguage>(i);
        return result;
    }();
    return languages;
}

QString AppLanguages::rawValue(AppLanguage language)
{
    return info(language).rawValue;
}

AppLanguage AppLanguages::fromRawValue(const QString &rawValue)
{
    for (const AppLanguage language : all()) {
        if (info(language).rawValue == rawValue)
            return language;
    }
    return AppLanguage::system;
}

QString AppLanguages::displayName(AppLanguage language)
{
    return info(language).displayName;
}

AppLanguage AppLanguages::resolved(const QString &code)
{
    const QString lower = code.toLower();
    if (lower.startsWith(QLatin1String("zh"))) {
        for (const auto &traditional :
             {QLatin1String("hant"), QLatin1String("tw"), QLatin1String("hk"), QLatin1String("mo")}) {
            if (lower.contains(traditional))
                return AppLanguage::zhHant;
        }
        return AppLanguage::zhHans;
    }
    for (const AppLanguage language : {AppLanguage::ja, AppLanguage::ko, AppLanguage::fr, AppLanguage::de,
                                       AppLanguage::es, AppLanguage::ru}) {
        if (lower.startsWith(info(language).rawValue))
            return language;
    }
    return AppLanguage::en;
}

const QString Localization::languageChangedNotification = QStringLiteral("com.brevoll.tovi.languageChanged");

Localization &Localization::shared()
{
    return Platform::current().shared<Localization>();
}

Localization::Localization()
    : language(this,
               AppLanguages::fromRawValue(
                   Platform::current().userDefaults().string(defaultsKey).value_or(QString())),
               [this](AppLanguage value) {
                   m_resolved = effective(value);
                   Platform::current().userDefaults().set(defaultsKey, AppLanguages::rawValue(value));
                   Platform::current().notificationCenter().post(languageChangedNotification);
               })
    , m_resolved(effective(language))
{}

AppLanguage Localization::resolvedLanguage() const
{
    return m_resolved;
}

QString Localization::t(Str key) const
{
    return texts(m_resolved)[static_cast<size_t>(key)];
}

QString formatted(const QString &format, const QStringList &arguments)
{
    QString result;
    qsizetype used = 0;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QChar kind = format[i] == u'%' && i + 1 < format.size() ? format[i + 1] : QChar();
        if (kind == u'%') {
            result += kind;
            ++i;
        } else if ((kind == u'@' || kind == u'd') && used < arguments.size()) {
            result += arguments[used++];
            ++i;
        } else {
            result += format[i];
        }
    }
    return result;
}

} // namespace tovi
