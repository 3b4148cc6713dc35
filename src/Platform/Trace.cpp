// SPDX-License-Identifier: MIT
#include "Platform/Trace.h"

#include <chrono>

#include <QByteArray>
#include <unistd.h>

namespace tovi::Trace {

static int descriptor()
{
    static const int fd = [] {
        bool isNumber = false;
        const int value = qEnvironmentVariableIntValue("TOVI_TRACE_FD", &isNumber);
        return isNumber && value > 2 ? value : -1;
    }();
    return fd;
}

bool isEnabled()
{
    return descriptor() >= 0;
}

void mark(const char *name, std::initializer_list<Number> numbers)
{
    if (!isEnabled())
        return;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    QByteArray line = name;
    line += ' ' + QByteArray::number(qint64(std::chrono::nanoseconds(now).count()));
    for (const auto &[key, value] : numbers)
        line += QByteArrayLiteral(" ") + key + '=' + QByteArray::number(value);
    line += '\n';
    [[maybe_unused]] const auto written = ::write(descriptor(), line.constData(), size_t(line.size()));
}

} // namespace tovi::Trace
