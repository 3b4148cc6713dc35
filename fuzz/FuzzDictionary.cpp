// SPDX-License-Identifier: MIT
// Answers of the dictionary: an entry of one to six lines, or none.
#include <cstdlib>

#include "Json.h"
#include "Translation/DictionaryLookup.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    using namespace tovi;
    const QByteArray body(reinterpret_cast<const char *>(data), qsizetype(size));
    try {
        const auto entry = DictionaryLookup::parse(body, QStringLiteral("word"));
        if (entry && (entry->meanings.isEmpty() || entry->meanings.size() > 6))
            std::abort();
    } catch (const JSONError &) {
    }
    DictionaryLookup::wordToLookUp(QString::fromUtf8(body));
    return 0;
}
