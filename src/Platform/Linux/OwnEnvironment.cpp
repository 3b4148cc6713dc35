// SPDX-License-Identifier: MIT
#include "Platform/Linux/OwnEnvironment.h"

#include <map>
#include <optional>

namespace tovi::OwnEnvironment {

namespace {

std::map<QString, std::optional<QString>> &valuesBefore()
{
    static std::map<QString, std::optional<QString>> values;
    return values;
}

} // namespace

void set(const char *name, const char *value)
{
    const std::optional before =
        qEnvironmentVariableIsSet(name) ? std::optional(qEnvironmentVariable(name)) : std::nullopt;
    valuesBefore().emplace(QString::fromLatin1(name), before);
    qputenv(name, value);
}

QProcessEnvironment forOtherPrograms()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto &[name, value] : valuesBefore()) {
        if (value)
            environment.insert(name, *value);
        else
            environment.remove(name);
    }
    return environment;
}

} // namespace tovi::OwnEnvironment
