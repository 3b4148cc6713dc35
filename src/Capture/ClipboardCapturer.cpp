// SPDX-License-Identifier: MIT
#include "Capture/ClipboardCapturer.h"

#include <mutex>

#include "Capture/MenuBarCopyCapturer.h"
#include "Capture/PasteboardWatcher.h"
#include "Platform/DispatchQueue.h"
#include "Platform/Keyboard.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Text.h"

namespace tovi::ClipboardCapturer {

namespace {

using namespace std::chrono_literals;

constexpr auto modifierLimit = 600ms;
constexpr auto modifierPoll = 10ms;
constexpr auto simulationTail = 300ms;
constexpr auto readLimit = 400ms;

struct Simulation
{
    std::mutex lock;
    bool _isSimulating = false;
    int number = 0; ///< of the latest simulation; only its own end counts

    int begin()
    {
        const std::scoped_lock guard(lock);
        _isSimulating = true;
        return ++number;
    }
    void end(int ended)
    {
        const std::scoped_lock guard(lock);
        _isSimulating = _isSimulating && ended != number;
    }
};

Simulation &simulation()
{
    return Platform::current().shared<Simulation>();
}

void waitForModifierRelease()
{
    Clock &clock = Platform::current().clock();
    const Clock::Time deadline = clock.now() + modifierLimit;
    while (clock.now() < deadline && Platform::current().keyboard().modifierFlags() != 0)
        clock.wait(modifierPoll);
}

std::optional<QString> copyByMenu(bool restoreClipboard, Clock::Duration timeout)
{
    const auto item = MenuBarCopyCapturer::findCopyItem();
    if (!item)
        return {};
    return PasteboardWatcher::captureText(restoreClipboard, timeout, [&item] {
        // One that answers late may copy all the same.
        const AXError error = item->performAction(QStringLiteral("AXPress"));
        return error == AXError::None || error == AXError::TimedOut;
    });
}

/// None where no key copies.
std::optional<KeyEvent> copyKey()
{
    const auto frontmost = Platform::current().workspace().frontmostApplication();
    if (!frontmost || !frontmost->copyModifiers)
        return {};
    return KeyEvent{keyCodeC, *frontmost->copyModifiers};
}

bool postCopyKey()
{
    // Looked at again: the user may have turned to a terminal meanwhile, which has another key.
    const auto key = copyKey();
    return key && Platform::current().keyboard().post(*key);
}

std::optional<QString> copyByKeystroke(bool restoreClipboard, Clock::Duration timeout)
{
    if (!copyKey())
        return {};
    waitForModifierRelease();
    const int number = simulation().begin();
    const auto text = PasteboardWatcher::captureText(restoreClipboard, timeout, postCopyKey);
    asyncOnMain([number] {
        Platform::current().clock().afterDetached(simulationTail, [number] { simulation().end(number); });
    });
    return text;
}

} // namespace

std::optional<CopiedText> selectedText(bool restoreClipboard, bool preferMenuBarCopy, Clock::Duration timeout)
{
    if (preferMenuBarCopy) {
        if (const auto text = copyByMenu(restoreClipboard, timeout))
            return isBlank(*text) ? std::nullopt : std::optional(CopiedText{*text, true});
    }
    const auto text = copyByKeystroke(restoreClipboard, timeout);
    return !text || isBlank(*text) ? std::nullopt : std::optional(CopiedText{*text, false});
}

bool isSimulating()
{
    Simulation &shared = simulation();
    const std::scoped_lock guard(shared.lock);
    return shared._isSimulating;
}

std::optional<QString> readPasteboardText()
{
    const auto answer = Platform::current().pasteboard().text(readLimit);
    const bool isUsable = answer.status == Pasteboard::Status::Found && !answer.value.isSecret;
    return isUsable && !isBlank(answer.value.text) ? std::optional(answer.value.text) : std::nullopt;
}

} // namespace tovi::ClipboardCapturer
