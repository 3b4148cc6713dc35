// SPDX-License-Identifier: MIT
#include "UI/Controls/IconStore.h"

#include <QFile>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QResource>
#include <QSvgRenderer>

#include "UI/Controls/SystemSymbol.h"

static void initIconResources()
{
    Q_INIT_RESOURCE(icons);
}

namespace tovi {

namespace {

constexpr QLatin1StringView lucidePrefix("lucide:");
constexpr QLatin1StringView logoPrefix("logo:");

/// The elements of each icon of the Lucide set that was asked for; empty for one that does not exist.
class LucideElements
{
public:
    const QList<QByteArray> &of(const QString &key)
    {
        if (m_elements.isEmpty())
            load(SystemSymbol::lucideKeys() << key);
        else if (!m_elements.contains(key))
            load({key});
        return m_elements[key];
    }

private:
    /// One pass over the whole set, which is not kept: most of its icons are never seen.
    void load(const QStringList &keys)
    {
        for (const QString &key : keys)
            m_elements.insert(key, {});
        const QByteArray set = QResource(QStringLiteral(":/tovi/icons/lucide.svg")).uncompressedData();
        static constexpr QByteArrayView start("<symbol id=\""), end("</symbol>");
        for (qsizetype at = set.indexOf(start); at >= 0; at = set.indexOf(start, at)) {
            at += start.size();
            const qsizetype nameEnd = set.indexOf('"', at);
            const qsizetype bodyStart = set.indexOf('>', nameEnd) + 1;
            const qsizetype bodyEnd = set.indexOf(end, bodyStart);
            if (nameEnd < 0 || bodyStart <= 0 || bodyEnd < 0)
                return;
            const QString key = QString::fromUtf8(set.sliced(at, nameEnd - at)).remove(QLatin1Char('-'));
            at = bodyEnd;
            const auto wanted = m_elements.find(key);
            if (wanted == m_elements.end() || !wanted->isEmpty())
                continue;
            for (const QByteArray &line : set.sliced(bodyStart, bodyEnd - bodyStart).split('\n')) {
                if (const QByteArray element = line.trimmed(); !element.isEmpty())
                    wanted->append(element);
            }
        }
    }

    QHash<QString, QList<QByteArray>> m_elements;
};

LucideElements &lucideElements()
{
    static LucideElements elements;
    return elements;
}

QString logoPath(const QString &name)
{
    return QStringLiteral(":/tovi/icons/logos/%1.svg").arg(name);
}

QByteArray lucideDocument(const QByteArray &content, IconWeight weight)
{
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 24 24\" fill=\"none\" stroke=\"#000\" "
           "stroke-linecap=\"round\" stroke-linejoin=\"round\" stroke-width=\"" +
           QByteArray(weight == IconWeight::semibold ? "2.5" : "2") + "\">" + content + "</svg>";
}

void renderDocument(QPainter &painter, const QByteArray &document, int side)
{
    QSvgRenderer renderer;
    if (renderer.load(document))
        renderer.render(&painter, QRectF(0, 0, side, side));
}

} // namespace

IconImage IconStore::lucide(const QString &key, QSizeF size, IconStyle style, int body, IconWeight weight)
{
    initIconResources();
    IconImage icon;
    const qsizetype elements = lucideElements().of(key).size();
    if (elements == 0)
        return icon;
    icon.m_name = lucidePrefix + key;
    icon.m_size = size;
    icon.m_style = body < elements ? style : IconStyle::outline;
    icon.m_body = body;
    icon.m_weight = weight;
    return icon;
}

IconImage IconStore::logo(const QString &name, QSizeF size)
{
    initIconResources();
    IconImage icon;
    if (name.contains(QLatin1Char('/')) || !QFile::exists(logoPath(name)))
        return icon;
    icon.m_name = logoPrefix + name;
    icon.m_size = size;
    return icon;
}

QImage IconStore::render(const IconImage &icon, int side)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    if (icon.m_name.startsWith(logoPrefix)) {
        QByteArray document = QResource(logoPath(icon.m_name.sliced(logoPrefix.size()))).uncompressedData();
        renderDocument(painter, document.replace("currentColor", "#000"), side);
        return image;
    }
    QList<QByteArray> elements = lucideElements().of(icon.m_name.sliced(lucidePrefix.size()));
    if (icon.m_style == IconStyle::outline) {
        renderDocument(painter, lucideDocument(elements.join(), icon.m_weight), side);
        return image;
    }
    const QByteArray body = "<g fill=\"#000\">" + elements.takeAt(icon.m_body) + "</g>";
    renderDocument(painter, lucideDocument(body, icon.m_weight), side);
    if (icon.m_style == IconStyle::knockout)
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    renderDocument(painter, lucideDocument(elements.join(), icon.m_weight), side);
    return image;
}

QString IconStore::cacheKey(const IconImage &icon, int side, const QColor &color)
{
    return QStringLiteral("tovi-icon %1 %2 %3 %4 %5 %6")
        .arg(icon.m_name)
        .arg(static_cast<int>(icon.m_style))
        .arg(icon.m_body)
        .arg(static_cast<int>(icon.m_weight))
        .arg(side)
        .arg(color.rgba(), 0, 16);
}

} // namespace tovi
