// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QByteArray>
#include <QFileDevice>
#include <QString>

namespace tovi::AtomicFile {

/// Replaces the file, or where it is a link the file it leads to, at once or not at all. The folder must
/// exist. The error's text, none when the bytes are on the disk.
std::optional<QString> write(const QString &path, const QByteArray &bytes,
                             QFileDevice::Permissions permissions);

} // namespace tovi::AtomicFile
