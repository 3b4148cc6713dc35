// SPDX-License-Identifier: MIT
#include "Platform/Linux/TesseractRecognizer.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "Platform/DispatchQueue.h"
#include "Platform/Linux/ChineseScript.h"
#include "Platform/Linux/InParallel.h"
#include "Platform/Linux/InkPicture.h"
#include "Platform/Linux/ListBullet.h"
#include "Platform/Linux/ScriptAgreement.h"
#include "Platform/Linux/TesseractData.h"
#include "Platform/Linux/TesseractEngines.h"
#include "Platform/Linux/TesseractLineReader.h"
#include "Platform/Linux/TextLineFinder.h"
#include "Platform/Linux/TextLinePicture.h"

namespace tovi {

using namespace tesseractData;

namespace {

constexpr int mostThreads = 2; ///< each may want an engine of its own for a language

/// Our names of languages and those of the library's data.
QStringList dataNames(const QStringList &languages)
{
    static const QList<std::pair<QLatin1String, QString>> table{
        {QLatin1String("zh-Hans"), simplifiedChinese},
        {QLatin1String("zh-Hant"), traditionalChinese},
        {QLatin1String("en-US"), latin},
        {QLatin1String("ja-JP"), japanese},
        {QLatin1String("ko-KR"), korean},
    };
    QStringList names;
    for (const QString &language : languages) {
        for (const auto &[ours, data] : table) {
            if (language == ours)
                names << data;
        }
    }
    return names;
}

class Recognition
{
public:
    Recognition(TesseractEngines &engines, QThreadPool &pool, const TextRecognitionRequest &request,
                std::stop_token end)
        : m_engines(engines)
        , m_pool(pool)
        , m_languages(dataNames(request.languages))
        , m_reader(engines, m_languages)
        , m_stop(request.stop)
        , m_end(std::move(end))
        , m_ink(inkPicture(request.image.convertToFormat(QImage::Format_Grayscale8), m_isStopped))
    {}

    QList<RecognizedText> run()
    {
        const QList<TextLine> lines = findTextLines(m_ink, m_isStopped);
        throwIfStopped();
        for (int i = 0; i < int(lines.size()); ++i) {
            for (const QRect &cell : lines[i])
                m_pieces.push_back({.line = i, .box = cell});
            takeBullet(m_pieces[m_pieces.size() - size_t(lines[i].size())]);
        }
        if (m_pieces.empty())
            return {};
        const auto widest =
            std::ranges::max_element(m_pieces, {}, [](const TextPiece &p) { return p.box.width(); });
        const int first = int(widest - m_pieces.begin());
        QList<TesseractReading> known;
        const QString likely = likelyLanguage(picture(*widest), known);
        inParallel(m_pool, int(m_pieces.size()), [&](int i) {
            // The widest first: the threads end together when the longest work comes first.
            TextPiece &piece = m_pieces[size_t(i == 0 ? first : (i <= first ? i - 1 : i))];
            if (!isStopped() && !piece.box.isEmpty()) {
                piece.reading =
                    m_reader.read(likely, picture(piece), i == 0 ? known : QList<TesseractReading>());
            }
        });
        throwIfStopped();
        if (canRead(simplifiedChinese) && canRead(traditionalChinese))
            ScriptAgreement(m_reader, m_script, m_pool, m_ink, m_isStopped).apply(m_pieces);
        throwIfStopped();
        QList<RecognizedText> texts;
        for (size_t begin = 0; begin < m_pieces.size();) {
            const size_t end = endOfLine(begin);
            if (const auto text = textOf(std::span(m_pieces).subspan(begin, end - begin)))
                texts << *text;
            begin = end;
        }
        return texts;
    }

    /// Whether an engine was asked.
    bool hasRead() const { return !m_pieces.empty(); }

private:
    /// Out of the first piece of a line, of which nothing else may be left.
    void takeBullet(TextPiece &first) const
    {
        if (const auto bullet = listBullet(m_ink, first.box)) {
            first.bullet = QString(bullet->sign);
            first.box.setLeft(first.box.left() + bullet->width);
        }
    }

    QImage picture(const TextPiece &piece) const { return textLinePicture(m_ink, piece.box); }

    size_t endOfLine(size_t begin) const
    {
        size_t end = begin;
        while (end < m_pieces.size() && m_pieces[end].line == m_pieces[begin].line)
            ++end;
        return end;
    }

    /// None where nothing is text.
    static std::optional<RecognizedText> textOf(std::span<const TextPiece> line)
    {
        RecognizedText found;
        double sum = 0;
        for (const TextPiece &piece : line) {
            if (!isText(piece.reading))
                continue;
            const QString text = tidyText(piece.reading);
            sum += piece.reading.confidence() * double(text.size());
            found.text += (found.text.isEmpty() ? QString() : QStringLiteral(" ")) + text;
            found.box |= piece.box;
            found.confidence = sum / double(found.text.size());
        }
        if (found.text.isEmpty())
            return std::nullopt;
        if (!line.front().bullet.isEmpty())
            found.text.prepend(line.front().bullet + u' ');
        return found;
    }

    /// Of the whole picture, as its widest piece shows it, whose readings are added. Engines are made for
    /// scripts that the piece may be in.
    QString likelyLanguage(const QImage &line, QList<TesseractReading> &readings)
    {
        static const QList<QStringList> rounds{
            {latin}, {simplifiedChinese, japanese}, {traditionalChinese, korean}};
        TesseractReading best;
        for (const QStringList &round : rounds) {
            std::vector<std::optional<TesseractReading>> found(size_t(round.size()));
            inParallel(m_pool, int(round.size()), [&](int i) {
                if (m_languages.contains(round[i]) && !isStopped())
                    found[size_t(i)] = m_engines.read(round[i], line);
            });
            throwIfStopped();
            for (const auto &reading : found) {
                if (reading)
                    readings << *reading;
            }
            best = TesseractLineReader::best(readings);
            if (TesseractLineReader::isSure(best))
                break;
        }
        if (readings.isEmpty()) {
            throw TextRecognitionError(QStringLiteral("no data for any of the languages are installed"),
                                       TextRecognitionError::Reason::NotInstalled);
        }
        if (best.language == simplifiedChinese && canRead(traditionalChinese) &&
            m_script.traditionalLook(best, line) > ChineseScript::doubtfulLook) {
            if (std::ranges::find(readings, traditionalChinese, &TesseractReading::language) !=
                readings.end())
                return traditionalChinese;
            if (const auto reading = m_engines.read(traditionalChinese, line)) {
                readings << *reading;
                return traditionalChinese;
            }
        }
        return best.language.isEmpty() ? readings.first().language : best.language;
    }

    bool canRead(const QString &language) const
    {
        return m_languages.contains(language) && m_engines.has(language);
    }

    bool isStopped() const { return m_stop.stop_requested() || m_end.stop_requested(); }
    void throwIfStopped() const
    {
        if (isStopped())
            throw TextRecognitionError(QStringLiteral("abandoned"), TextRecognitionError::Reason::Abandoned);
    }

    TesseractEngines &m_engines;
    QThreadPool &m_pool;
    const QStringList m_languages;
    TesseractLineReader m_reader;
    ChineseScript m_script;
    const std::stop_token m_stop;
    const std::stop_token m_end;
    const std::function<bool()> m_isStopped = [this] { return isStopped(); };
    const QImage m_ink;
    std::vector<TextPiece> m_pieces;
};

} // namespace

struct TesseractRecognizer::Shared
{
    Shared(Clock &clock, const QString &dataFolder)
        : clock(clock)
        , dataFolder(dataFolder)
    {}

    TesseractEngines *engines()
    {
        const std::scoped_lock lock(mutex);
        const TesseractLibrary *library = TesseractLibrary::load();
        if (!made && library)
            made = std::make_unique<TesseractEngines>(*library, dataFolder, clock);
        return made.get();
    }

    Clock &clock;
    const QString dataFolder;
    mutable std::mutex mutex;
    std::unique_ptr<TesseractEngines> made; // under the mutex
    Subscription cleaning[2];               // main thread
};

TesseractRecognizer::TesseractRecognizer(Clock &clock, const QString &dataFolder)
    : m_shared(std::make_shared<Shared>(clock, dataFolder))
{
    m_pool.setMaxThreadCount(std::clamp(QThread::idealThreadCount(), 1, mostThreads));
    m_pool.setObjectName(QStringLiteral("tovi.recognition"));
}

TesseractRecognizer::~TesseractRecognizer()
{
    m_end.request_stop();
    m_pool.waitForDone();
    for (Subscription &cleaning : m_shared->cleaning)
        cleaning.reset();
    const std::scoped_lock lock(m_shared->mutex);
    m_shared->made.reset();
}

QFuture<QList<RecognizedText>> TesseractRecognizer::recognize(TextRecognitionRequest request)
{
    auto promise = std::make_shared<QPromise<QList<RecognizedText>>>();
    promise->start();
    QFuture<QList<RecognizedText>> future = promise->future();
    // Asked anew after each recognition: by then those that it did not use are idle for longer.
    const auto cleanLater = [pool = &m_pool, weak = std::weak_ptr(m_shared)] {
        const auto shared = weak.lock();
        if (!shared)
            return;
        const auto after = [&](Clock::Duration time, void (TesseractEngines::*end)(Clock::Duration)) {
            return shared->clock.after(time, [pool, weak, time, end] {
                pool->start([weak, time, end] {
                    const auto shared = weak.lock();
                    if (TesseractEngines *engines = shared ? shared->engines() : nullptr)
                        (engines->*end)(time);
                });
            });
        };
        shared->cleaning[0] = after(doublesWarmTime, &TesseractEngines::endIdleDoubles);
        shared->cleaning[1] = after(warmTime, &TesseractEngines::endIdle);
    };
    m_pool.start([this, promise, cleanLater, end = m_end.get_token(), request = std::move(request)] {
        auto work = [&] {
            try {
                TesseractEngines *engines = m_shared->engines();
                if (!engines) {
                    throw TextRecognitionError(QStringLiteral("libtesseract is not installed"),
                                               TextRecognitionError::Reason::NotInstalled);
                }
                Recognition recognition(*engines, m_pool, request, end);
                auto texts = recognition.run();
                if (recognition.hasRead())
                    m_isPresent = true;
                return texts;
            } catch (const TextRecognitionError &error) {
                if (error.reason() == TextRecognitionError::Reason::NotInstalled)
                    m_isPresent = false;
                throw;
            }
        };
        detail::fulfil(*promise, work);
        asyncOnMain(cleanLater);
    });
    return future;
}

int TesseractRecognizer::warmEngines() const
{
    const std::scoped_lock lock(m_shared->mutex);
    return m_shared->made ? m_shared->made->count() : 0;
}

} // namespace tovi
