// SPDX-License-Identifier: MIT
// The list of versions, and notes as they come in a page.
#include <cstdlib>

#include "Appcast.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    using namespace tovi;
    const QByteArray body(reinterpret_cast<const char *>(data), qsizetype(size));
    const QUrl feed(QStringLiteral("https://example.org/feed.xml"));
    const auto items = Appcast::parse(body, feed);
    for (const AppcastItem &item : items.value_or(QList<AppcastItem>())) {
        const bool isFit = (item.page.isEmpty() || Appcast::mayBeOpened(item.page, feed)) &&
                           (item.notesLink.isEmpty() || Appcast::mayBeOpened(item.notesLink, feed));
        const bool isShort = item.version.size() <= 64 && item.shortVersion.size() <= 64;
        if (item.version.isEmpty() || !isShort || !isFit || compareVersions(item.version, item.version) != 0)
            std::abort();
    }
    const QString text = QString::fromUtf8(body);
    Appcast::plainText(text);
    const QString one = text.first(text.size() / 2);
    const QString other = text.sliced(one.size());
    if ((compareVersions(one, other) < 0) != (compareVersions(other, one) > 0))
        std::abort();
    return 0;
}
