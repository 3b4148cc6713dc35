// SPDX-License-Identifier: MIT
// A server's frames, cut anywhere: the same events must come out as from one piece, and nothing after the
// last of them. The first byte says how long the pieces are.
#include <cstdlib>

#include <QList>

#include "Platform/Linux/WebSocketFrames.h"

namespace {

using Event = tovi::WebSocketReader::Event;

QByteArrayList read(const QByteArray &bytes, qsizetype pieceLength)
{
    tovi::WebSocketReader reader;
    QByteArrayList events;
    for (qsizetype start = 0; start < bytes.size(); start += pieceLength) {
        reader.append(bytes.mid(start, pieceLength));
        while (const auto event = reader.next()) {
            if (event->payload.size() > bytes.size())
                std::abort();
            events << char('0' + int(event->kind)) + event->payload;
            if (event->kind == Event::Kind::Close || event->kind == Event::Kind::Failed)
                return events;
        }
    }
    return events;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    if (read(bytes, 1 + data[0] % 16) != read(bytes, std::max(bytes.size(), qsizetype(1))))
        std::abort();
    return 0;
}
