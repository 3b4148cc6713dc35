// SPDX-License-Identifier: MIT
// A service's stream, cut anywhere: the same text must come out as from one piece, and nothing else than a
// line that is too long may end it. The first byte says how long the pieces are.
#include <cstdlib>

#include "Platform/URLSession.h"
#include "Translation/ChatStream.h"

namespace {

QString read(const QByteArray &bytes, qsizetype pieceLength)
{
    tovi::ChatStream stream;
    QString text;
    const auto drain = [&] {
        while (const auto delta = stream.next()) {
            if (delta->isEmpty())
                std::abort();
            text += *delta;
        }
    };
    for (qsizetype start = 0; start < bytes.size(); start += pieceLength) {
        stream.append(bytes.mid(start, pieceLength));
        drain();
    }
    stream.finish();
    drain();
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    try {
        if (read(bytes, 1 + data[0] % 16) != read(bytes, std::max(bytes.size(), qsizetype(1))))
            std::abort();
    } catch (const tovi::URLError &error) {
        if (error.code() != tovi::URLError::Code::dataLengthExceedsMaximum)
            std::abort();
    }
    return 0;
}
