// SPDX-License-Identifier: MIT
#include "TargetLanguage.h"

namespace tovi::TargetLanguages {

namespace {

struct Row
{
    TargetLanguage language;
    QLatin1String code;
    QLatin1String englishName;
    const char *ownName;
};

constexpr Row table[] = {
    {TargetLanguage::zhHans, QLatin1String("zh-CN"), QLatin1String("Simplified Chinese"), "简体中文"},
    {TargetLanguage::zhHant, QLatin1String("zh-TW"), QLatin1String("Traditional Chinese"), "繁體中文"},
    {TargetLanguage::en, QLatin1String("en"), QLatin1String("English"), "English"},
    {TargetLanguage::ja, QLatin1String("ja"), QLatin1String("Japanese"), "日本語"},
    {TargetLanguage::ko, QLatin1String("ko"), QLatin1String("Korean"), "한국어"},
    {TargetLanguage::fr, QLatin1String("fr"), QLatin1String("French"), "Français"},
    {TargetLanguage::de, QLatin1String("de"), QLatin1String("German"), "Deutsch"},
    {TargetLanguage::es, QLatin1String("es"), QLatin1String("Spanish"), "Español"},
    {TargetLanguage::ru, QLatin1String("ru"), QLatin1String("Russian"), "Русский"},
};

const Row *find(const QString &code)
{
    for (const Row &row : table) {
        if (row.code == code)
            return &row;
    }
    return nullptr;
}

} // namespace

const QList<TargetLanguage> &all()
{
    static const QList<TargetLanguage> languages = [] {
        QList<TargetLanguage> result;
        for (const Row &row : table)
            result << row.language;
        return result;
    }();
    return languages;
}

QString rawValue(TargetLanguage language)
{
    return table[static_cast<int>(language)].code;
}

std::optional<TargetLanguage> fromRawValue(const QString &code)
{
    const Row *row = find(code);
    return row ? std::optional(row->language) : std::nullopt;
}

QString name(const QString &code)
{
    const Row *row = find(code);
    return row ? QString(row->englishName) : code;
}

QString ownName(const QString &code)
{
    const Row *row = find(code);
    return row ? QString::fromUtf8(row->ownName) : code;
}

} // namespace tovi::TargetLanguages
