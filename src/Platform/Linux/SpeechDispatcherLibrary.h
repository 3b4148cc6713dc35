// SPDX-License-Identifier: MIT
#pragma once

#include <libspeechd.h>

namespace tovi {

/// The functions of libspeechd, which is loaded for the first reading and not with the program.
struct SpeechDispatcherLibrary
{
    /// Null when the library is not installed. Any thread.
    static const SpeechDispatcherLibrary *load();

    decltype(&spd_open2) open = nullptr;
    decltype(&spd_close) close = nullptr;
    decltype(&spd_set_notification_on) setNotificationOn = nullptr;
    decltype(&spd_set_language) setLanguage = nullptr;
    decltype(&spd_set_voice_rate) setVoiceRate = nullptr;
    decltype(&spd_say) say = nullptr;
    decltype(&spd_cancel) cancel = nullptr;
    decltype(&spd_execute_command) executeCommand = nullptr;
};

} // namespace tovi
