// SPDX-License-Identifier: MIT
#include "Platform/URLSession.h"

#include <algorithm>

#include <qcorofuture.h>

namespace tovi {

QCoro::Task<QByteArray> URLTask::readAll(qsizetype limit)
{
    auto reading = readAtMost(limit + 1);
    QByteArray body = co_await reading;
    if (body.size() > limit)
        throw URLError(URLError::Code::dataLengthExceedsMaximum);
    co_return body;
}

QCoro::Task<QByteArray> URLTask::readAtMost(qsizetype limit)
{
    QByteArray body;
    while (body.size() < limit) {
        const auto reading = read();
        const QByteArray piece = co_await reading;
        if (piece.isEmpty())
            break;
        body += piece.first(std::min(piece.size(), limit - body.size()));
    }
    co_return body;
}

} // namespace tovi
