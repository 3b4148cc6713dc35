// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QJsonValue>
#include <QString>
#include <Qt>

namespace tovi {

/// A shortcut. Key codes and modifiers are the program's own numbering on every desktop: virtual key codes
/// named after the US layout, and the mask below.
struct HotKey
{
    enum Modifier : quint32 {
        command = 256, ///< Ctrl
        shift = 512,
        option = 2048,  ///< Alt
        control = 4096, ///< Super
    };

    quint32 keyCode = 0;
    quint32 modifiers = 0;

    bool operator==(const HotKey &) const = default;

    /// No shortcut: shown as "—", never registered.
    bool isEmpty() const { return keyCode == 0 || modifiers == 0; }
    /// Modifier symbols in the order ⌃⌥⇧⌘, then the key's name.
    QString displayString() const;

    static QString keyName(quint32 keyCode);
    /// The mask of a key event's modifiers; others than the four are dropped.
    static quint32 carbonModifiers(Qt::KeyboardModifiers flags);

    QJsonValue toJson() const;
    /// Both members are required and must be whole numbers in range.
    static std::optional<HotKey> fromJson(const QJsonValue &json);
};

} // namespace tovi
