// SPDX-License-Identifier: MIT
#include "HotKey.h"

#include <cmath>
#include <limits>

#include <QJsonObject>

namespace tovi {

namespace {

struct KeyName
{
    quint32 code;
    const char *name;
};

// clang-format off
constexpr KeyName keyNames[] = {
    {0, "A"}, {11, "B"}, {8, "C"}, {2, "D"}, {14, "E"}, {3, "F"}, {5, "G"}, {4, "H"}, {34, "I"}, {38, "J"},
    {40, "K"}, {37, "L"}, {46, "M"}, {45, "N"}, {31, "O"}, {35, "P"}, {12, "Q"}, {15, "R"}, {1, "S"},
    {17, "T"}, {32, "U"}, {9, "V"}, {13, "W"}, {7, "X"}, {16, "Y"}, {6, "Z"},
    {29, "0"}, {18, "1"}, {19, "2"}, {20, "3"}, {21, "4"}, {23, "5"}, {22, "6"}, {26, "7"}, {28, "8"}, {25, "9"},
    {27, "-"}, {24, "="}, {33, "["}, {30, "]"}, {42, "\\"}, {41, ";"}, {39, "'"}, {43, ","}, {47, "."},
    {44, "/"}, {50, "`"}, {49, "Space"},
    {36, "↩"}, {48, "⇥"}, {53, "⎋"}, {51, "⌫"}, {117, "⌦"}, {123, "←"}, {124, "→"}, {125, "↓"}, {126, "↑"},
    {115, "↖"}, {119, "↘"}, {116, "⇞"}, {121, "⇟"},
    {122, "F1"}, {120, "F2"}, {99, "F3"}, {118, "F4"}, {96, "F5"}, {97, "F6"}, {98, "F7"}, {100, "F8"},
    {101, "F9"}, {109, "F10"}, {103, "F11"}, {111, "F12"},
};
// clang-format on

constexpr struct
{
    HotKey::Modifier mask;
    Qt::KeyboardModifier flag;
    char16_t symbol;
} modifierTable[] = {
    {HotKey::control, Qt::MetaModifier, u'⌃'},
    {HotKey::option, Qt::AltModifier, u'⌥'},
    {HotKey::shift, Qt::ShiftModifier, u'⇧'},
    {HotKey::command, Qt::ControlModifier, u'⌘'},
};

std::optional<quint32> wholeNumber(const QJsonValue &value)
{
    const double number = value.toDouble(-1);
    if (number < 0 || number > std::numeric_limits<quint32>::max() || std::floor(number) != number)
        return std::nullopt;
    return static_cast<quint32>(number);
}

} // namespace

QString HotKey::displayString() const
{
    if (isEmpty())
        return QStringLiteral("—");
    QString text;
    for (const auto &modifier : modifierTable) {
        if (modifiers & modifier.mask)
            text += modifier.symbol;
    }
    return text + keyName(keyCode);
}

QString HotKey::keyName(quint32 keyCode)
{
    for (const auto &[code, name] : keyNames) {
        if (code == keyCode)
            return QString::fromUtf8(name);
    }
    return QStringLiteral("Key%1").arg(keyCode);
}

quint32 HotKey::carbonModifiers(Qt::KeyboardModifiers flags)
{
    quint32 mask = 0;
    for (const auto &modifier : modifierTable) {
        if (flags & modifier.flag)
            mask |= modifier.mask;
    }
    return mask;
}

QJsonValue HotKey::toJson() const
{
    return QJsonObject{{QStringLiteral("keyCode"), qint64(keyCode)},
                       {QStringLiteral("modifiers"), qint64(modifiers)}};
}

std::optional<HotKey> HotKey::fromJson(const QJsonValue &json)
{
    const auto keyCode = wholeNumber(json[QLatin1String("keyCode")]);
    const auto modifiers = wholeNumber(json[QLatin1String("modifiers")]);
    if (!keyCode || !modifiers)
        return std::nullopt;
    return HotKey{*keyCode, *modifiers};
}

} // namespace tovi
