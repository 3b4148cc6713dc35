// SPDX-License-Identifier: MIT
// The status item as hosts on the session bus and hosts that embed windows see it.
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <gtest/gtest.h>

#include "Desktop/ProgramFixture.h"

namespace tovi {
namespace {

/// A watcher of status items on the session bus that only takes their names, and after a while their host.
class NotifierHost final : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isThere)

public:
    NotifierHost()
    {
        bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), this,
                           QDBusConnection::ExportAllContents);
        bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
    }
    bool isThere()
    {
        isAsked = true;
        return isHostThere;
    }
    void startHost()
    {
        isHostThere = true;
        emit StatusNotifierHostRegistered();
    }

    QDBusMessage call(const char *path, const char *interface, const char *method,
                      const QVariantList &arguments)
    {
        auto message = QDBusMessage::createMethodCall(item, QLatin1String(path), QLatin1String(interface),
                                                      QLatin1String(method));
        message.setArguments(arguments);
        return bus.call(message, QDBus::BlockWithGui);
    }

    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("host"));
    QString item;
    bool isAsked = false;
    bool isHostThere = false;

signals:
    void StatusNotifierHostRegistered();

public slots:
    void RegisterStatusNotifierItem(const QString &) { item = message().service(); }
};

struct Entry
{
    int id;
    QString label;
    bool isSeparator;
};

/// The top level of a menu's layout, without submenus.
QList<Entry> entriesOf(const QDBusMessage &layout)
{
    QList<Entry> entries;
    const QDBusArgument root = layout.arguments().value(1).value<QDBusArgument>();
    int id = 0;
    QVariantMap properties;
    root.beginStructure();
    root >> id >> properties;
    root.beginArray();
    while (!root.atEnd()) {
        QDBusVariant child;
        root >> child;
        const QDBusArgument item = child.variant().value<QDBusArgument>();
        item.beginStructure();
        item >> id >> properties;
        // An argument that is left before its end is never freed.
        item.beginArray();
        item.endArray();
        item.endStructure();
        entries.append({id, properties.value(QStringLiteral("label")).toString(),
                        properties.value(QStringLiteral("type")) == QLatin1String("separator")});
    }
    root.endArray();
    root.endStructure();
    return entries;
}

TEST_F(ProgramDesktop, TheStatusItemFindsAHostThatStartsLater)
{
    writeDemoSettings(desktop);
    startProgram();
    NotifierHost host;
    ASSERT_TRUE(DesktopSession::eventually([&] { return host.isAsked; }));
    host.startHost();
    ASSERT_TRUE(DesktopSession::eventually([&] { return !host.item.isEmpty(); }));
    constexpr const char *menu = "/MenuBar";
    constexpr const char *menuInterface = "com.canonical.dbusmenu";
    const QDBusMessage menuPath =
        host.call("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                  {QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("Menu")});
    ASSERT_EQ(menuPath.type(), QDBusMessage::ReplyMessage) << qPrintable(menuPath.errorMessage());
    // Opened twice: what was opened before has been built anew since.
    for (int round = 0; round < 2; ++round) {
        host.call(menu, menuInterface, "AboutToShow", {0});
        const auto entries = entriesOf(host.call(menu, menuInterface, "GetLayout", {0, 1, QStringList()}));
        ASSERT_EQ(entries.size(), 10);
        EXPECT_TRUE(entries[3].isSeparator && entries[6].isSeparator && entries[8].isSeparator);
        EXPECT_TRUE(entries[2].label.contains(QStringLiteral("⌥T"))) << qPrintable(entries[2].label);
        host.call(menu, menuInterface, "Event",
                  {entries[2].id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(0)), 0u});
        EXPECT_TRUE(trace.next("panelPainted"));
        desktop.pressKey(XK_Escape);
    }
}

} // namespace
} // namespace tovi

#include "StatusItemDesktopTest.moc"
