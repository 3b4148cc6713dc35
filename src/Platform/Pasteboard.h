// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include "Platform/Clock.h"

namespace tovi {

/// One of the forms in which the pasteboard offers its contents.
struct PasteboardItem
{
    QString type;    ///< the desktop's name for the form: a MIME type, or an older one such as "STRING"
    QByteArray data; ///< the bytes as their owner gave them
    QString label =
        {}; ///< how the display server labels the bytes, to be handed back unchanged; may be empty
    bool operator==(const PasteboardItem &) const = default;
};

/// The clipboard. Its contents stay with the program that put them there, so reading asks that program: these
/// calls block, but for no longer than told, and never on the main thread. What this program itself put there
/// comes from memory.
class Pasteboard
{
public:
    enum class Status {
        Found,
        Missing,     ///< there is no such thing on the pasteboard
        TimedOut,    ///< its owner hangs
        Unavailable, ///< the desktop does not let us read it
    };
    template <class T>
    struct Answer
    {
        Status status = Status::Missing;
        T value = {};
    };
    struct Text
    {
        QString text;
        bool isSecret = false; ///< its owner marks it as a password or the like
        bool operator==(const Text &) const = default;
    };

    virtual ~Pasteboard() = default;

    /// Another number after every write, by whomever. Any thread; from memory.
    virtual qint64 changeCount() = 0;

    /// The forms on offer, in their owner's order. `limit` is how long the owner may be silent, here and
    /// below; what comes steadily may take a second in all.
    virtual Answer<QStringList> types(Clock::Duration limit) = 0;
    virtual Answer<PasteboardItem> item(const QString &type, Clock::Duration limit) = 0;
    /// The contents as plain text, which may be empty.
    virtual Answer<Text> text(Clock::Duration limit) = 0;

    /// Whether a form is a plain text, in whatever encoding. Any thread.
    virtual bool isPlainText(const QString &type) const = 0;

    /// Replaces the contents; serves them as long as the program runs, then leaves them to the desktop's
    /// clipboard manager. Any thread; waits for no program.
    virtual void write(const QList<PasteboardItem> &items) = 0;
    /// Replaces the contents with one plain text. As write().
    virtual void setString(const QString &text) = 0;
};

} // namespace tovi
