// SPDX-License-Identifier: MIT
#include "Platform/Linux/AtomicFile.h"

#include <QSaveFile>

#include <unistd.h>

namespace tovi {

std::optional<QString> AtomicFile::write(const QString &path, const QByteArray &bytes,
                                         QFileDevice::Permissions permissions)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(permissions))
        return file.errorString();
    file.write(bytes);
    // A full disk may show only here: commit() replaces the file without having looked at either result.
    if (!file.flush())
        return file.errorString();
    if (fsync(file.handle()) != 0)
        return qt_error_string();
    if (!file.commit())
        return file.errorString();
    return std::nullopt;
}

} // namespace tovi
