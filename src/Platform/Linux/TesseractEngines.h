// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <QImage>
#include <QList>
#include <QSet>
#include <QString>

#include "Platform/Clock.h"
#include "Platform/Linux/TesseractLibrary.h"

namespace tovi {

/// What an engine made of a line.
struct TesseractReading
{
    struct Word
    {
        QString text;
        double confidence = 0; ///< 0 to 1
        int begin = 0;         ///< pixels of the line's picture
        int end = 0;
        bool hasBlankBefore = true;
        bool isApart = false; ///< as cells of a table are
    };

    QString language; ///< its data's name
    QList<Word> words;

    /// With blanks between words, and tabulators where they stand apart.
    QString text() const;
    /// Of all words, the longer ones counting more.
    double confidence() const;
};

/// The recognisers, one language each, made when they are needed and kept for the next line. As many of a
/// language exist as threads have wanted it at a time. Any thread.
class TesseractEngines
{
public:
    /// Without a folder the data are where the library looks for them.
    TesseractEngines(const TesseractLibrary &library, const QString &dataFolder, const Clock &clock);
    ~TesseractEngines();

    /// Reads the picture of one line, dark on light. None without data for the language.
    std::optional<TesseractReading> read(const QString &language, const QImage &line);

    /// Whether a language can probably be read; known after the first reading in any language.
    bool has(const QString &language) const;

    /// Ends those that have done nothing for so long, and looks for missing data anew.
    void endIdle(Clock::Duration idle);
    /// Of those, only the ones that have another of their language resting beside them.
    void endIdleDoubles(Clock::Duration idle);
    int count() const;

private:
    struct Engine
    {
        QString language;
        TessBaseAPI *api = nullptr;
        Clock::Time lastUse;
    };

    void end(const std::function<bool(const Engine &)> &isOver);
    TessBaseAPI *take(const QString &language);
    void giveBack(const QString &language, TessBaseAPI *api);
    QList<TesseractReading::Word> words(TessBaseAPI *api, int height) const;

    const TesseractLibrary &m_library;
    const QByteArray m_dataFolder;
    const Clock &m_clock;
    mutable std::mutex m_mutex;
    std::vector<Engine> m_resting; // under m_mutex, like the following
    int m_busy = 0;
    QSet<QString> m_missing;
    QString m_dataPath; ///< as the library found it
};

} // namespace tovi
