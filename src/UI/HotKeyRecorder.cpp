// SPDX-License-Identifier: MIT
#include "UI/HotKeyRecorder.h"

#include "Settings.h"
#include "UI/Forms/FormButton.h"

namespace tovi {

QWidget *makeHotKeyRecorder(HotKeyStatus::Slot slot, QWidget *parent)
{
    Settings &settings = Settings::shared();
    const HotKey &keys = slot == HotKeyStatus::Slot::capture ? settings.captureHotKey
                         : slot == HotKeyStatus::Slot::ocr   ? settings.ocrHotKey
                                                             : settings.inputHotKey;
    auto *recorder = new FormButton(keys.displayString(), FormButton::Kind::regular, parent);
    recorder->setFixedWidth(146);
    return recorder;
}

} // namespace tovi
