// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QList>
#include <QString>

namespace tovi {

/// One mode of an Apertium installation: a direction between two of the program's languages.
struct ApertiumMode
{
    QString source; ///< the program's language codes
    QString target;
    QString path; ///< of the mode file; empty when only a package could provide it
};

/// What an Apertium installation can translate. Reads the disk at each question, so that installing a package
/// takes effect at once. Any thread.
class ApertiumModes
{
public:
    explicit ApertiumModes(const QString &folder);

    bool isEmpty() const { return installed().isEmpty(); }
    /// The installed modes to run one after the other: one, or two through a language between; none for equal
    /// languages; nothing when there is no way.
    std::optional<QList<ApertiumMode>> route(const QString &source, const QString &target) const;
    /// Whether there would be a route if more of the distribution's packages were installed.
    bool couldRoute(const QString &source, const QString &target) const;

private:
    QList<ApertiumMode> installed() const;

    QString m_folder;
};

} // namespace tovi
