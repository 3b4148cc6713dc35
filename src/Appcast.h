// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <optional>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

namespace tovi {

/// Orders version texts: numbers by value ("1.10" after "1.9"), words before nothing ("2.0b1" before "2.0"),
/// trailing zeros and what follows a plus sign without weight.
std::weak_ordering compareVersions(QStringView one, QStringView other);

/// One version of the program, as its feed tells of it.
struct AppcastItem
{
    QString title;        ///< cut where it is longer than a line
    QString version;      ///< of the build; never empty, 64 characters at most
    QString shortVersion; ///< as people read it; may be empty; 64 characters at most
    QUrl page;            ///< where to get it; may be empty
    QUrl notesLink;       ///< may be empty
    QString notes;        ///< plain text; may be empty
    bool operator==(const AppcastItem &) const = default;

    const QString &displayVersion() const { return shortVersion.isEmpty() ? version : shortVersion; }
};

/// A feed of versions: RSS, with the version's attributes or elements known by their names in any namespace.
namespace Appcast {

/// The items that are for this system and for everybody, in the feed's order; none when it is no feed.
/// Links are made absolute; those that are not fit to be opened are left out.
std::optional<QList<AppcastItem>> parse(const QByteArray &feed, const QUrl &address);

/// Whether it is newer than a build of this version.
bool isNewer(const AppcastItem &item, QStringView shortVersion, QStringView version);
/// The newest of them that is newer than a build of this version, whatever their order; the first of equals.
std::optional<AppcastItem> newest(const QList<AppcastItem> &items, QStringView shortVersion,
                                  QStringView version);

/// The text of a page, without its pictures, styles and scripts.
QString plainText(QStringView html);

/// Whether a feed may come from this address: https; http only from this machine.
bool mayBeLoaded(const QUrl &address);
/// Whether a feed may link to this address: https; http only within this machine, not from elsewhere into it.
bool mayBeOpened(const QUrl &link, const QUrl &feed);

} // namespace Appcast

} // namespace tovi
