// SPDX-License-Identifier: MIT
#include "Platform/Linux/TesseractEngines.h"

#include <malloc.h>

#include <QDir>
#include <QFile>

namespace tovi {

namespace {

// What the pictures of lines are scaled to; said to the library so that it does not estimate.
constexpr int resolution = 300;

} // namespace

QString TesseractReading::text() const
{
    QString text;
    for (const Word &word : words) {
        if (word.hasBlankBefore && !text.isEmpty())
            text += word.isApart ? u'\t' : u' ';
        text += word.text;
    }
    return text;
}

double TesseractReading::confidence() const
{
    double sum = 0;
    qsizetype length = 0;
    for (const Word &word : words) {
        sum += word.confidence * double(word.text.size());
        length += word.text.size();
    }
    return length ? sum / double(length) : 0;
}

TesseractEngines::TesseractEngines(const TesseractLibrary &library, const QString &dataFolder,
                                   const Clock &clock)
    : m_library(library)
    , m_dataFolder(QFile::encodeName(dataFolder))
    , m_clock(clock)
{}

TesseractEngines::~TesseractEngines()
{
    endIdle(Clock::Duration(0));
}

TessBaseAPI *TesseractEngines::take(const QString &language)
{
    {
        const std::scoped_lock lock(m_mutex);
        if (m_missing.contains(language))
            return nullptr;
        const auto resting = std::find_if(m_resting.begin(), m_resting.end(),
                                          [&](const Engine &engine) { return engine.language == language; });
        if (resting != m_resting.end()) {
            TessBaseAPI *api = resting->api;
            m_resting.erase(resting);
            ++m_busy;
            return api;
        }
    }
    TessBaseAPI *api = m_library.create();
    const char *folder = m_dataFolder.isEmpty() ? nullptr : m_dataFolder.constData();
    if (m_library.init(api, folder, language.toLatin1().constData(), tesseract::OEM_LSTM_ONLY) != 0) {
        m_library.destroy(api);
        const std::scoped_lock lock(m_mutex);
        m_missing << language;
        return nullptr;
    }
    m_library.setVariable(api, "tessedit_do_invert", "0");
    m_library.setPageSegMode(api, tesseract::PSM_SINGLE_LINE);
    const std::scoped_lock lock(m_mutex);
    m_dataPath = QFile::decodeName(m_library.dataPath(api));
    ++m_busy;
    return api;
}

void TesseractEngines::giveBack(const QString &language, TessBaseAPI *api)
{
    const std::scoped_lock lock(m_mutex);
    m_resting.push_back({language, api, m_clock.now()});
    --m_busy;
}

QList<TesseractReading::Word> TesseractEngines::words(TessBaseAPI *api, int height) const
{
    QList<TesseractReading::Word> words;
    TessResultIterator *iterator = m_library.iterator(api);
    if (!iterator)
        return words;
    // Only the whole line tells which words have blanks between them.
    QString rest;
    if (char *line = m_library.text(iterator, tesseract::RIL_TEXTLINE)) {
        rest = QString::fromUtf8(line);
        m_library.deleteText(line);
    }
    do {
        char *text = m_library.text(iterator, tesseract::RIL_WORD);
        if (!text)
            continue;
        TesseractReading::Word word{.text = QString::fromUtf8(text).simplified(),
                                    .confidence =
                                        m_library.confidence(iterator, tesseract::RIL_WORD) / 100.0};
        m_library.deleteText(text);
        int top = 0;
        int bottom = 0;
        m_library.boundingBox(m_library.pageIterator(iterator), tesseract::RIL_WORD, &word.begin, &top,
                              &word.end, &bottom);
        const qsizetype position = rest.indexOf(word.text);
        if (position >= 0) {
            word.hasBlankBefore = position > 0;
            rest.remove(0, position + word.text.size());
        }
        word.isApart = !words.isEmpty() && (word.begin - words.last().end) * 5 > height * 2;
        if (!word.text.isEmpty())
            words << word;
    } while (m_library.next(iterator, tesseract::RIL_WORD));
    m_library.deleteIterator(iterator);
    return words;
}

std::optional<TesseractReading> TesseractEngines::read(const QString &language, const QImage &line)
{
    Q_ASSERT(line.format() == QImage::Format_Grayscale8);
    TessBaseAPI *api = take(language);
    if (!api)
        return std::nullopt;
    TesseractReading reading{.language = language, .words = {}};
    struct Call
    {
        TesseractEngines *self;
        TessBaseAPI *api;
        const QImage *line;
        TesseractReading *reading;
    };
    Call call{this, api, &line, &reading};
    m_library.onOneThread(
        [](void *data) {
            const Call &call = *static_cast<Call *>(data);
            const TesseractLibrary &library = call.self->m_library;
            library.setImage(call.api, call.line->constBits(), call.line->width(), call.line->height(), 1,
                             int(call.line->bytesPerLine()));
            library.setSourceResolution(call.api, resolution);
            if (library.recognize(call.api, nullptr) == 0)
                call.reading->words = call.self->words(call.api, call.line->height());
            library.clear(call.api);
        },
        &call);
    giveBack(language, api);
    return reading;
}

bool TesseractEngines::has(const QString &language) const
{
    const std::scoped_lock lock(m_mutex);
    return !m_missing.contains(language) && !m_dataPath.isEmpty() &&
           QDir(m_dataPath).exists(language + QLatin1String(".traineddata"));
}

void TesseractEngines::endIdle(Clock::Duration idle)
{
    const Clock::Time limit = m_clock.now() - idle;
    end([limit](const Engine &engine) { return engine.lastUse <= limit; });
    const std::scoped_lock lock(m_mutex);
    m_missing.clear();
}

void TesseractEngines::endIdleDoubles(Clock::Duration idle)
{
    // The first one of a language stays.
    const auto isDouble = [this](const Engine &engine) {
        const auto first = std::ranges::find(m_resting, engine.language, &Engine::language);
        return first->api != engine.api;
    };
    const Clock::Time limit = m_clock.now() - idle;
    end([&](const Engine &engine) { return engine.lastUse <= limit && isDouble(engine); });
}

void TesseractEngines::end(const std::function<bool(const Engine &)> &isOver)
{
    std::vector<Engine> ended;
    {
        const std::scoped_lock lock(m_mutex);
        std::ranges::copy_if(m_resting, std::back_inserter(ended), isOver);
        std::erase_if(m_resting, [&](const Engine &engine) {
            return std::ranges::find(ended, engine.api, &Engine::api) != ended.end();
        });
    }
    for (const Engine &engine : ended)
        m_library.destroy(engine.api);
    if (!ended.empty())
        malloc_trim(0);
}

int TesseractEngines::count() const
{
    const std::scoped_lock lock(m_mutex);
    return int(m_resting.size()) + m_busy;
}

} // namespace tovi
