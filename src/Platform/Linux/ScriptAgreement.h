// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <span>
#include <vector>

#include <QImage>
#include <QRect>
#include <QString>
#include <QThreadPool>

#include "Platform/Linux/ChineseScript.h"
#include "Platform/Linux/TesseractLineReader.h"

namespace tovi {

/// A cell of a line, or all of it.
struct TextPiece
{
    int line = 0;
    QRect box;
    QString bullet = {};
    TesseractReading reading = {};
    double look = 0; ///< of a Chinese script
};

/// The data for one Chinese script read the other, too, so that the ink tells which one it is. Pieces with
/// few letters that tell are written as the rest of their paragraph. Both data have to be there.
class ScriptAgreement
{
public:
    ScriptAgreement(TesseractLineReader &reader, ChineseScript &script, QThreadPool &pool, const QImage &ink,
                    const std::function<bool()> &isStopped)
        : m_reader(reader)
        , m_script(script)
        , m_pool(pool)
        , m_ink(ink)
        , m_isStopped(isStopped)
    {}

    /// Reads pieces anew that are in the other script. Once stopped, some are left as they are.
    void apply(std::span<TextPiece> pieces);

private:
    void agree(std::span<TextPiece *const> paragraph);

    TesseractLineReader &m_reader;
    ChineseScript &m_script;
    QThreadPool &m_pool;
    const QImage &m_ink;
    const std::function<bool()> &m_isStopped;
};

} // namespace tovi
