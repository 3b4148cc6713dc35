// SPDX-License-Identifier: MIT
#include "Capture/MenuBarCopyCapturer.h"

#include <QSet>

#include "Platform/Platform.h"
#include "Platform/Workspace.h"

namespace tovi::MenuBarCopyCapturer {

namespace {

constexpr std::chrono::milliseconds messagingTimeout{500};
constexpr std::chrono::milliseconds searchLimit{1500};
constexpr int depthLimit = 7;

bool isCopyTitle(const QString &title)
{
    static const QSet<QString> copyTitles{
        QStringLiteral("Copy"),     QStringLiteral("拷贝"),    QStringLiteral("拷貝"),
        QStringLiteral("复制"),     QStringLiteral("複製"),    QStringLiteral("複制"),
        QStringLiteral("复制副本"), QStringLiteral("コピー"),  QStringLiteral("복사"),
        QStringLiteral("Kopieren"), QStringLiteral("Copier"),  QStringLiteral("Copiar"),
        QStringLiteral("Copia"),    QStringLiteral("Cópia"),   QStringLiteral("Копировать"),
        QStringLiteral("Kopiëren"), QStringLiteral("Copiare"), QStringLiteral("Salin"),
        QStringLiteral("Sao chép"),
    };
    return copyTitles.contains(title);
}

/// One search. After the first request that ran into its limit there is no other: an application that hangs
/// costs it once, and one that is slow all the time is given up as well.
class Search
{
public:
    std::optional<AXElement> findCopyItem(const AXElement &application)
    {
        const auto bar = elementAttribute(application, QStringLiteral("AXMenuBar"));
        const auto menus = bar ? children(*bar) : std::nullopt;
        if (!menus)
            return {};
        for (const qsizetype index : searchOrder(menus->size())) {
            if (const auto item = findCopyItem(menus->at(index), 0))
                return item;
        }
        return {};
    }

private:
    std::optional<AXElement> findCopyItem(const AXElement &element, int depth)
    {
        if (depth > depthLimit || m_outOfTime)
            return {};
        if (isCopyItem(element))
            return element;
        const auto inner = children(element);
        if (!inner)
            return {};
        for (const AXElement &child : *inner) {
            if (const auto item = findCopyItem(child, depth + 1))
                return item;
        }
        return {};
    }

    bool isCopyItem(const AXElement &element)
    {
        if (stringAttribute(element, QStringLiteral("AXRole")) != QStringLiteral("AXMenuItem"))
            return false;
        if (stringAttribute(element, QStringLiteral("AXIdentifier")) == QStringLiteral("copy:"))
            return isEnabled(element);
        const auto character = stringAttribute(element, QStringLiteral("AXMenuItemCmdChar"));
        if (!character || character->toUpper() != QLatin1String("C"))
            return false;
        const auto title = stringAttribute(element, QStringLiteral("AXTitle"));
        return title && isCopyTitle(*title) && isEnabled(element);
    }

    bool isEnabled(const AXElement &element)
    {
        const AXResult result = attribute(element, QStringLiteral("AXEnabled"));
        const auto *enabled = result.get<bool>();
        return !enabled || *enabled;
    }

    std::optional<AXElement> elementAttribute(const AXElement &element, const QString &name)
    {
        const AXResult result = attribute(element, name);
        const auto *found = result.get<AXElement>();
        return found && *found ? std::optional(*found) : std::nullopt;
    }

    std::optional<QList<AXElement>> children(const AXElement &element)
    {
        const AXResult result = attribute(element, QStringLiteral("AXChildren"));
        const auto *found = result.get<QList<AXElement>>();
        return found ? std::optional(*found) : std::nullopt;
    }

    std::optional<QString> stringAttribute(const AXElement &element, const QString &name)
    {
        const AXResult result = attribute(element, name);
        const auto *text = result.get<QString>();
        return text ? std::optional(*text) : std::nullopt;
    }

    AXResult attribute(const AXElement &element, const QString &name)
    {
        const auto left = m_deadline - Platform::current().clock().now();
        m_outOfTime = m_outOfTime || left <= Clock::Duration::zero();
        if (m_outOfTime)
            return {AXError::TimedOut, {}};
        element.setMessagingTimeout(std::min<Clock::Duration>(left, messagingTimeout));
        AXResult result = element.attribute(name);
        m_outOfTime = result.error == AXError::TimedOut;
        return result;
    }

    const Clock::Time m_deadline = Platform::current().clock().now() + searchLimit;
    bool m_outOfTime = false;
};

} // namespace

std::optional<AXElement> findCopyItem()
{
    const auto frontmost = Platform::current().workspace().frontmostApplication();
    if (!frontmost)
        return {};
    auto item = Search().findCopyItem(
        Platform::current().accessibility().applicationElement(frontmost->processIdentifier));
    if (item)
        item->setMessagingTimeout(messagingTimeout);
    return item;
}

QList<qsizetype> searchOrder(qsizetype count)
{
    QList<qsizetype> order;
    for (const qsizetype preferred : {3, 2, 4, 1, 5, 0, 6}) {
        if (preferred < count)
            order << preferred;
    }
    for (qsizetype index = 0; index < count; ++index) {
        if (!order.contains(index))
            order << index;
    }
    return order;
}

} // namespace tovi::MenuBarCopyCapturer
