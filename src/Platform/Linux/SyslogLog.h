// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/SystemLog.h"

namespace tovi {

class SyslogLog final : public SystemLog
{
public:
    SyslogLog();
    ~SyslogLog() override;
    void write(const QString &line) override;
};

} // namespace tovi
