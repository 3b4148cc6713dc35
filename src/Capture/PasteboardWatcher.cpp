// SPDX-License-Identifier: MIT
#include "Capture/PasteboardWatcher.h"

#include <algorithm>

#include "Platform/Platform.h"

namespace tovi::PasteboardWatcher {

namespace {

constexpr std::chrono::milliseconds pollInterval{5};
constexpr std::chrono::milliseconds restoreDelay{50};
/// An image may be offered in a dozen formats, each of them made when it is asked for.
constexpr std::chrono::seconds backupLimit{1};
constexpr qsizetype backupSizeLimit = 256 << 20; // bytes

struct Captured
{
    QString text;
    qint64 changeCount; ///< when it was there
};

std::optional<Captured> poll(Pasteboard &pasteboard, qint64 initialCount, Clock::Duration timeout)
{
    Clock &clock = Platform::current().clock();
    const Clock::Time deadline = clock.now() + timeout;
    for (Clock::Time now = clock.now(); now < deadline; now = clock.now()) {
        // Taken before the text: a change during the reading is one by somebody else.
        const qint64 changeCount = pasteboard.changeCount();
        if (changeCount != initialCount) {
            const auto answer = pasteboard.text(deadline - now);
            if (answer.status == Pasteboard::Status::Found && !answer.value.text.isEmpty() &&
                !answer.value.isSecret)
                return Captured{answer.value.text, changeCount};
        }
        clock.wait(pollInterval);
    }
    return {};
}

} // namespace

std::optional<QString> captureText(bool restore, Clock::Duration timeout, const std::function<bool()> &action)
{
    Pasteboard &pasteboard = Platform::current().pasteboard();
    const QList<PasteboardItem> backup = restore ? backupItems(pasteboard, timeout) : QList<PasteboardItem>();
    const qint64 initialCount = pasteboard.changeCount();
    const auto captured = action() ? poll(pasteboard, initialCount, timeout) : std::nullopt;
    const auto text = captured ? std::optional(captured->text) : std::nullopt;

    if (!restore || (!captured && pasteboard.changeCount() == initialCount))
        return text;
    const auto isOurs = [&] {
        const bool isUntouched = captured && pasteboard.changeCount() == captured->changeCount;
        return isUntouched || isEffectivelyEmpty(pasteboard, timeout);
    };
    if (!isOurs())
        return text;
    const qint64 changeCount = pasteboard.changeCount();
    Platform::current().clock().wait(restoreDelay);
    // Clipboard managers answer a change within that time.
    if (!backup.isEmpty() && (pasteboard.changeCount() == changeCount || isOurs()))
        pasteboard.write(backup);
    return text;
}

QList<PasteboardItem> backupItems(Pasteboard &pasteboard, Clock::Duration limit)
{
    Clock &clock = Platform::current().clock();
    const Clock::Time deadline = clock.now() + backupLimit;
    QList<PasteboardItem> items;
    qsizetype size = 0;
    for (const QString &type : pasteboard.types(limit).value) {
        const auto answer = pasteboard.item(type, limit);
        size += answer.value.data.size();
        if (size > backupSizeLimit)
            break;
        if (answer.status == Pasteboard::Status::Found)
            items << answer.value;
        if (answer.status == Pasteboard::Status::TimedOut || clock.now() >= deadline)
            break;
    }
    return items;
}

bool isEffectivelyEmpty(Pasteboard &pasteboard, Clock::Duration limit)
{
    const QStringList types = pasteboard.types(limit).value;
    // One text may be on offer in several encodings.
    const bool isTextAlone =
        std::ranges::all_of(types, [&](const QString &type) { return pasteboard.isPlainText(type); });
    return types.isEmpty() || (isTextAlone && pasteboard.text(limit).value.text.isEmpty());
}

} // namespace tovi::PasteboardWatcher
