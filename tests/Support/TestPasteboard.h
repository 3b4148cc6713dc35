// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <mutex>

#include "Platform/Keyboard.h"
#include "Platform/Pasteboard.h"
#include "Support/TestClock.h"

namespace tovi {

/// A pasteboard with other writers. Forms are plain MIME names; a text is "text/plain".
class TestPasteboard final : public Pasteboard
{
public:
    explicit TestPasteboard(TestClock &clock)
        : m_clock(clock)
    {}

    qint64 changeCount() override
    {
        const std::scoped_lock lock(mutex);
        return count;
    }
    Answer<QStringList> types(Clock::Duration limit) override
    {
        if (!answers(limit))
            return {Status::TimedOut};
        QStringList result;
        for (const PasteboardItem &item : contents())
            result << item.type;
        return {Status::Found, result};
    }
    Answer<PasteboardItem> item(const QString &type, Clock::Duration limit) override
    {
        if (!answers(limit))
            return {Status::TimedOut};
        for (const PasteboardItem &item : contents()) {
            if (item.type == type && !unreadable.contains(type))
                return {Status::Found, item};
        }
        return {};
    }
    Answer<Text> text(Clock::Duration limit) override
    {
        const auto answer = item(QStringLiteral("text/plain"), limit);
        if (onText)
            onText();
        return {answer.status, {QString::fromUtf8(answer.value.data), secret}};
    }
    bool isPlainText(const QString &type) const override
    {
        return type.startsWith(QLatin1String("text/plain"));
    }
    void write(const QList<PasteboardItem> &items) override
    {
        put(items);
        const std::scoped_lock lock(mutex);
        writes << items;
    }
    void setString(const QString &value) override { write(textItems(value)); }

    /// Another program writes.
    void put(const QList<PasteboardItem> &items)
    {
        const std::scoped_lock lock(mutex);
        stored = items;
        ++count;
    }
    void put(const QString &text) { put(textItems(text)); }
    static QList<PasteboardItem> textItems(const QString &text)
    {
        return {{QStringLiteral("text/plain"), text.toUtf8()}};
    }
    QList<PasteboardItem> contents()
    {
        const std::scoped_lock lock(mutex);
        return stored;
    }
    QString string() { return text({}).value.text; }

    std::recursive_mutex mutex;
    QList<PasteboardItem> stored;
    QList<QList<PasteboardItem>> writes; ///< by this program
    QStringList unreadable;
    qint64 count = 0;
    int reads = 0;
    bool hangs = false; ///< whether the owner answers nobody
    bool secret = false;
    std::function<void()> onText; ///< what happens while a text is read

private:
    bool answers(Clock::Duration limit)
    {
        const std::scoped_lock lock(mutex);
        ++reads;
        if (hangs)
            m_clock.wait(limit);
        return !hangs;
    }
    TestClock &m_clock;
};

/// A keyboard whose keystrokes a test sees.
class TestKeyboard final : public Keyboard
{
public:
    quint32 modifierFlags() override { return onAsk ? onAsk() : 0; }
    bool post(const KeyEvent &key) override
    {
        posted << key;
        if (onPost)
            onPost();
        return true;
    }
    std::function<quint32()> onAsk;
    std::function<void()> onPost; ///< what the frontmost application does
    QList<KeyEvent> posted;
};

} // namespace tovi
