// SPDX-License-Identifier: MIT
#include "Support/TextPictures.h"

#include <array>
#include <numeric>

#include <QFontMetrics>
#include <QPainter>
#include <QRandomGenerator>
#include <QRegularExpression>

namespace tovi {

namespace {

QStringList familiesOf(TextKind kind)
{
    switch (kind) {
    case TextKind::english:
        return {QStringLiteral("Noto Sans"), QStringLiteral("Noto Sans Display"),
                QStringLiteral("Noto Serif"), QStringLiteral("Noto Sans CJK SC")};
    case TextKind::traditionalChinese:
        return {QStringLiteral("Noto Sans CJK TC")};
    case TextKind::japanese:
        return {QStringLiteral("Noto Sans CJK JP")};
    case TextKind::korean:
        return {QStringLiteral("Noto Sans CJK KR")};
    default:
        return {QStringLiteral("Noto Sans CJK SC")};
    }
}

QString comparable(const QString &text)
{
    static const QRegularExpression besideIdeographs(
        QStringLiteral("(?<=[\\x{2e80}-\\x{ffef}]) | (?=[\\x{2e80}-\\x{ffef}])"));
    return text.simplified().remove(besideIdeographs);
}

} // namespace

TextStyle randomTextStyle(TextKind kind, QRandomGenerator &random)
{
    const QStringList families = familiesOf(kind);
    return {.family = families.at(random.bounded(families.size())),
            .pixelSize = random.bounded(11, 17),
            .isDark = random.bounded(2) == 1,
            .isBold = random.bounded(6) == 0};
}

TextPicture drawText(TextKind kind, const QStringList &lines, const TextStyle &style, QSize size)
{
    TextPicture picture{
        .image = QImage(size, QImage::Format_RGB32), .text = {}, .kind = kind, .style = style};
    picture.image.fill(style.isDark ? QColor(0x1e, 0x1f, 0x22) : QColor(0xfa, 0xfa, 0xfa));
    QPainter painter(&picture.image);
    QFont font(style.family);
    font.setPixelSize(style.pixelSize);
    font.setBold(style.isBold);
    painter.setFont(font);
    painter.setPen(style.isDark ? QColor(0xdd, 0xdd, 0xdd) : QColor(0x22, 0x22, 0x22));
    const QFontMetrics metrics(font);
    const int margin = 12;
    const int step = std::max(style.pixelSize * 3 / 2, metrics.ascent() + metrics.descent());
    QStringList drawn;
    int y = margin + metrics.ascent();
    for (const QString &line : lines) {
        if (y + metrics.descent() > size.height())
            break;
        if (metrics.horizontalAdvance(line) > size.width() - 2 * margin)
            continue;
        painter.drawText(margin, y, line);
        drawn << line;
        y += step;
    }
    picture.text = drawn.join(u'\n');
    return picture;
}

TextPicture makeTextPicture(TextKind kind, quint32 seed)
{
    QRandomGenerator random(seed * 31 + quint32(kind));
    const TextStyle style = randomTextStyle(kind, random);
    QFont font(style.family);
    font.setPixelSize(style.pixelSize);
    font.setBold(style.isBold);
    const QFontMetrics metrics(font);
    QStringList lines;
    while (lines.size() < 16) {
        QString line = sampleSentence(kind, random);
        // Some lines are full, some are not, as on a screen.
        while (kind != TextKind::mixed && random.bounded(3) != 0) {
            const QString longer = line + u' ' + sampleSentence(kind, random);
            if (metrics.horizontalAdvance(longer) > textPictureSize.width() - 30)
                break;
            line = longer;
        }
        lines << line;
    }
    return drawText(kind, lines, style);
}

ReadingErrors &ReadingErrors::operator+=(const ReadingErrors &other)
{
    errors += other.errors;
    length += other.length;
    return *this;
}

ReadingErrors compareReading(const QString &expected, const QString &read)
{
    const QString a = comparable(expected);
    const QString b = comparable(read);
    std::vector<qsizetype> row(size_t(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (qsizetype i = 0; i < a.size(); ++i) {
        qsizetype diagonal = row[0]++;
        for (size_t j = 1; j < row.size(); ++j) {
            const qsizetype substituted = diagonal + (a[i] != b[qsizetype(j) - 1]);
            diagonal = row[j];
            row[j] = std::min({substituted, row[j] + 1, row[j - 1] + 1});
        }
    }
    return {row.back(), a.size()};
}

} // namespace tovi
