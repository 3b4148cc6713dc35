// SPDX-License-Identifier: MIT
// What a person may have written into the settings file: whatever decodes must encode to what decodes again.
#include <cstdlib>

#include <QJsonArray>
#include <QJsonDocument>

#include "HotKey.h"
#include "ProviderConfig.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    using namespace tovi;
    const auto document =
        QJsonDocument::fromJson(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    const QJsonValue value =
        document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    if (const auto keys = HotKey::fromJson(value); keys && HotKey::fromJson(keys->toJson()) != keys)
        std::abort();
    if (const auto providers = ProviderConfig::listFromJson(value)) {
        for (const ProviderConfig &provider : *providers) {
            if (ProviderConfig::fromJson(provider.toJson()) != provider)
                std::abort();
        }
    }
    return 0;
}
