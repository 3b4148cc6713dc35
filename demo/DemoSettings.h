// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonArray>
#include <QJsonObject>

namespace tovi {

class DesktopSession;

/// Engines as the settings file holds them: one that needs no network, and one for a server with chat
/// completions.
QJsonObject onDeviceEngine();
QJsonObject chatEngine(const QString &baseURL);

/// Writes the program's settings into the desktop's configuration folder: into Spanish by this engine,
/// or the first of these; `more` are further settings.
void writeDemoSettings(const DesktopSession &desktop, const QJsonArray &engines,
                       const QJsonObject &more = {});
void writeDemoSettings(const DesktopSession &desktop, const QJsonObject &engine = onDeviceEngine());

} // namespace tovi
