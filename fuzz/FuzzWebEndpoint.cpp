// SPDX-License-Identifier: MIT
// Answers of the web endpoint and of chat completions: a translation or one of the two kinds of error.
#include <cstdlib>

#include "Json.h"
#include "Translation/GoogleTranslationProvider.h"
#include "Translation/OpenAICompatibleProvider.h"

namespace {

template <class Parse>
void mustYieldText(Parse parse)
{
    try {
        if (parse().isEmpty())
            std::abort();
    } catch (const tovi::TranslationError &) {
    } catch (const tovi::JSONError &) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    using namespace tovi;
    const QByteArray body(reinterpret_cast<const char *>(data), qsizetype(size));
    mustYieldText([&] { return GoogleTranslationProvider::parse(body).text; });
    mustYieldText([&] { return OpenAICompatibleProvider::parseContent(body); });
    return 0;
}
