// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace tovi {

/// What an installed application says about itself.
struct DesktopEntry
{
    QString id;   ///< without ".desktop"
    QString name; ///< in the user's language
    QString startupWMClass;
    QString executable; ///< base name of the command
    QStringList categories;
};

/// How a window names its application; any field may be empty.
struct ApplicationHints
{
    QString applicationId; ///< the toolkit's application id
    QString windowClass;
    QString windowInstance;
    QString processName;
};

/// The installed desktop entries. Read at the first look-up, or by prefetch(), and again when a directory
/// that holds some has changed. Any thread; the main thread gets the previous state while a change is read.
class DesktopEntries
{
public:
    /// The directories that hold entries, most important first, and the locale's names ("de_AT", "de"), most
    /// specific first.
    explicit DesktopEntries(QStringList directories = standardDirectories(),
                            QStringList languages = messageLanguages());
    ~DesktopEntries();

    void prefetch();
    std::optional<DesktopEntry> find(const ApplicationHints &hints);
    std::optional<DesktopEntry> byId(const QString &id);

    static QStringList standardDirectories();
    static QStringList messageLanguages();

private:
    struct Index;
    struct State;
    std::shared_ptr<const Index> index();

    std::shared_ptr<State> m_state; // outlives us in a running refresh
};

} // namespace tovi
