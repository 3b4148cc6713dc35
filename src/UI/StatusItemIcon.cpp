// SPDX-License-Identifier: MIT
#include "UI/StatusItemIcon.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include "UI/Controls/SystemSymbol.h"

namespace tovi {

namespace {

const QString asset = QStringLiteral(":/tovi/MenuBarIcon.svg");
constexpr int pointSize = 18;
// The sizes that hosts ask for; they scale between them.
constexpr int sizes[] = {16, 18, 22, 24, 32, 48};
constexpr QColor onDark(0xf2, 0xf2, 0xf4);
constexpr QColor onLight(0x2a, 0x2a, 0x2e);

void paintTemplate(QPainter &painter, const QRectF &rect)
{
    if (QFile::exists(asset)) {
        QSvgRenderer(asset).render(&painter, rect);
        return;
    }
    if (const IconImage symbol = SystemSymbol::image(QStringLiteral("character.book.closed"), pointSize))
        symbol.paint(painter, rect, Qt::black);
}

QPixmap inColour(int size, const QColor &colour)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paintTemplate(painter, QRectF(0, 0, size, size));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), colour);
    return pixmap;
}

/// Light on a background of its own.
QPixmap onOwnBackground(int size)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x5b, 0x6c, 0xf9));
    painter.drawRoundedRect(QRectF(0, 0, size, size), size / 4.0, size / 4.0);
    const int inset = size / 8;
    painter.drawPixmap(inset, inset, inColour(size - 2 * inset, Qt::white));
    return pixmap;
}

} // namespace

QIcon statusItemIcon(std::optional<bool> isDarkBackground)
{
    QIcon icon;
    for (const int size : sizes)
        icon.addPixmap(isDarkBackground ? inColour(size, *isDarkBackground ? onDark : onLight)
                                        : onOwnBackground(size));
    return icon;
}

} // namespace tovi
