// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QStringList>

#include "Platform/Linux/TesseractEngines.h"

namespace tovi {

/// Finds out which language a line is in by reading it, since the library's own detection is wrong about
/// short lines. A recogniser of one language is right more often, and several times faster, than one of all
/// five. Any thread.
class TesseractLineReader
{
public:
    /// Names of the library's data, preferred ones first.
    TesseractLineReader(TesseractEngines &engines, const QStringList &languages)
        : m_engines(engines)
        , m_languages(languages)
    {}

    /// Reads a line that is probably in one language; the others are tried where that reads badly.
    /// Readings of it that are known already are not made again.
    TesseractReading read(const QString &likely, const QImage &line,
                          const QList<TesseractReading> &known = {});
    /// Whether a reading needs no other one beside it.
    static bool isSure(const TesseractReading &reading);
    /// Reads a line that is surely in one language, but for words in Latin letters.
    TesseractReading readIn(const QString &language, const QImage &line);
    /// Whether a line is Chinese and little else.
    static bool readsChinese(const TesseractReading &reading);
    /// How much surer the letters of the Traditional reading of a line are than those of the Simplified one,
    /// of those that only one of them has. -1 to 1.
    static double traditionalLead(const TesseractReading &simplified, const TesseractReading &traditional);
    /// The best of readings of one line, each by another language; an empty one of none. The first language
    /// is the likely one: others have to be surer by the lead.
    static TesseractReading best(const QList<TesseractReading> &readings, double lead = 0);

private:
    TesseractEngines &m_engines;
    const QStringList m_languages;
};

/// Whether it is a reading of text at all, not of an ornament or a photograph.
bool isText(const TesseractReading &reading);

/// The reading's text as it stood on the screen: without a bullet or an icon, and without blanks between
/// ideographs, and with the wide punctuation that the library's data do not know.
QString tidyText(const TesseractReading &reading);

} // namespace tovi
