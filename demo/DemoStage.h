// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QJsonObject>

#include "DesktopSession.h"
#include "TraceReader.h"

namespace tovi {

/// A desktop with an editor that holds some lines, and Tovi beside it.
class DemoStage
{
public:
    /// `engine` as in writeDemoSettings(); `environment` holds NAME=value lines for Tovi.
    DemoStage(const QString &tovi, const QStringList &lines, const QJsonObject &engine,
              const QStringList &environment = {});

    /// Empty when everything started; else what did not.
    QString error() const { return m_error; }

    struct Press
    {
        double panelMilliseconds = 0; ///< from the key to the painted panel
        double textMilliseconds = 0;  ///< from the key to the first painted text
        qint64 source = -1;           ///< the capture's strategy
    };
    /// Selects a line (from 0) and presses the shortcut; none when no translation was painted.
    std::optional<Press> translateLine(int line);

    /// What the panel shows: the source text, then the translation with all that belongs to it.
    struct Texts
    {
        QString source;
        QString translation;
    };
    Texts texts() const;
    /// Waits for the panel to show a translation that fits.
    bool shows(const std::function<bool(const QString &translation)> &condition) const;

    /// Closes the panel with Esc; false when the editor did not get the keyboard back.
    bool dismiss() const;
    bool saveScreenshot(const QString &path) const;

private:
    std::optional<Press> pressShortcut();

    DesktopSession m_desktop;
    TraceReader m_trace;
    QString m_error;
    QProcess *m_program = nullptr;
    xcb_window_t m_editor = 0;
};

} // namespace tovi
