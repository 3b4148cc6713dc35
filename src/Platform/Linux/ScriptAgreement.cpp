// SPDX-License-Identifier: MIT
#include "Platform/Linux/ScriptAgreement.h"

#include <cmath>
#include <optional>

#include "Platform/Linux/InParallel.h"
#include "Platform/Linux/TesseractData.h"
#include "Platform/Linux/TextLinePicture.h"

namespace tovi {

using namespace tesseractData;

namespace {

/// Of one that is Chinese and little else, so that it has one script.
bool areOfParagraph(const TextPiece &piece, const TextPiece &next)
{
    if (!TesseractLineReader::readsChinese(piece.reading) || !TesseractLineReader::readsChinese(next.reading))
        return false;
    if (next.line == piece.line)
        return true;
    const QRect &box = piece.box;
    return next.line == piece.line + 1 && next.box.top() > box.top() &&
           next.box.top() - box.bottom() <= box.height() * 3 / 2;
}

} // namespace

void ScriptAgreement::apply(std::span<TextPiece> pieces)
{
    std::vector<TextPiece *> chinese;
    for (TextPiece &piece : pieces) {
        const QString &language = piece.reading.language;
        if (language == simplifiedChinese || language == traditionalChinese)
            chinese.push_back(&piece);
    }
    inParallel(m_pool, int(chinese.size()), [&](int i) {
        TextPiece &piece = *chinese[size_t(i)];
        if (!m_isStopped())
            piece.look = m_script.traditionalLook(piece.reading, textLinePicture(m_ink, piece.box));
    });
    for (auto begin = chinese.begin(); begin != chinese.end() && !m_isStopped();) {
        auto end = begin + 1;
        while (end != chinese.end() && areOfParagraph(**(end - 1), **end))
            ++end;
        agree({begin, end});
        begin = end;
    }
}

void ScriptAgreement::agree(std::span<TextPiece *const> paragraph)
{
    struct Other
    {
        bool isKnown = false;
        std::optional<TesseractReading> reading; ///< none where that script cannot be read
        double look = 0;                         ///< of both readings together
    };
    std::vector<Other> others(paragraph.size());
    const auto readOther = [&](size_t i) {
        const QString &own = paragraph[i]->reading.language;
        const QString &script = own == simplifiedChinese ? traditionalChinese : simplifiedChinese;
        others[i].isKnown = true;
        TesseractReading reading = m_reader.readIn(script, textLinePicture(m_ink, paragraph[i]->box));
        if (reading.language == script)
            others[i].reading = std::move(reading);
    };
    double look = 0;
    for (const TextPiece *piece : paragraph)
        look += piece->look;
    if (std::abs(look) < ChineseScript::doubtfulLook) {
        inParallel(m_pool, int(paragraph.size()), [&](int i) {
            if (m_isStopped())
                return;
            readOther(size_t(i));
            const TesseractReading &own = paragraph[size_t(i)]->reading;
            Other &other = others[size_t(i)];
            if (!other.reading)
                return;
            const bool isSimplified = own.language == simplifiedChinese;
            other.look =
                m_script.traditionalLook(*other.reading, textLinePicture(m_ink, paragraph[size_t(i)]->box)) +
                TesseractLineReader::traditionalLead(isSimplified ? own : *other.reading,
                                                     isSimplified ? *other.reading : own);
        });
        for (const Other &other : others)
            look += other.look;
    }
    inParallel(m_pool, int(paragraph.size()), [&](int i) {
        TextPiece &piece = *paragraph[size_t(i)];
        Other &other = others[size_t(i)];
        const bool isTraditional = (std::abs(piece.look) >= ChineseScript::clearLook ? piece.look : look) > 0;
        if (piece.reading.language == (isTraditional ? traditionalChinese : simplifiedChinese) ||
            m_isStopped())
            return;
        if (!other.isKnown)
            readOther(size_t(i));
        if (other.reading)
            piece.reading = *other.reading;
    });
}

} // namespace tovi
