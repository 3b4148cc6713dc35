// SPDX-License-Identifier: MIT
#include "Platform/Linux/SpeechDispatcherLibrary.h"

#include "Platform/Linux/ResolveFunction.h"

namespace tovi {

namespace {

std::optional<SpeechDispatcherLibrary> loadFunctions()
{
    QLibrary library(QStringLiteral("speechd"), 2);
    SpeechDispatcherLibrary speechd;
    const bool isComplete = library.load() && resolveFunction(library, speechd.open, "spd_open2") &&
                            resolveFunction(library, speechd.close, "spd_close") &&
                            resolveFunction(library, speechd.setNotificationOn, "spd_set_notification_on") &&
                            resolveFunction(library, speechd.setLanguage, "spd_set_language") &&
                            resolveFunction(library, speechd.setVoiceRate, "spd_set_voice_rate") &&
                            resolveFunction(library, speechd.say, "spd_say") &&
                            resolveFunction(library, speechd.cancel, "spd_cancel") &&
                            resolveFunction(library, speechd.executeCommand, "spd_execute_command");
    return isComplete ? std::optional(speechd) : std::nullopt;
}

} // namespace

const SpeechDispatcherLibrary *SpeechDispatcherLibrary::load()
{
    static const std::optional<SpeechDispatcherLibrary> library = loadFunctions();
    return library ? &*library : nullptr;
}

} // namespace tovi
