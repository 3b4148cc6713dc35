// SPDX-License-Identifier: MIT
#include "Platform/Linux/TesseractRecognizer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <exception>
#include <latch>
#include <mutex>

#include "Platform/DispatchQueue.h"
#include "Platform/Linux/ChineseScript.h"
#include "Platform/Linux/InkPicture.h"
#include "Platform/Linux/TesseractEngines.h"
#include "Platform/Linux/TesseractLineReader.h"
#include "Platform/Linux/TextLineFinder.h"
#include "Platform/Linux/TextLinePicture.h"

namespace tovi {

namespace {

constexpr int mostThreads = 2;       ///< each may want an engine of its own for a language
constexpr double doubtfulLook = 0.4; ///< of a paragraph's script
constexpr double clearLook = 1;      ///< of a line's script: its paragraph may be in another one
const QString simplifiedChinese = QStringLiteral("chi_sim");
const QString traditionalChinese = QStringLiteral("chi_tra");

/// Our names of languages and those of the library's data.
QStringList dataNames(const QStringList &languages)
{
    static constexpr std::array<std::pair<QLatin1String, QLatin1String>, 5> table{{
        {QLatin1String("zh-Hans"), QLatin1String("chi_sim")},
        {QLatin1String("zh-Hant"), QLatin1String("chi_tra")},
        {QLatin1String("en-US"), QLatin1String("eng")},
        {QLatin1String("ja-JP"), QLatin1String("jpn")},
        {QLatin1String("ko-KR"), QLatin1String("kor")},
    }};
    QStringList names;
    for (const QString &language : languages) {
        for (const auto &[ours, data] : table) {
            if (language == ours)
                names << data;
        }
    }
    return names;
}

/// Runs work(0) to work(count - 1) here and, as far as the pool has threads to spare, there.
template <class Work>
void inParallel(QThreadPool &pool, int count, const Work &work)
{
    std::atomic_int next = 0;
    std::exception_ptr error;
    std::once_flag failed;
    const auto loop = [&] {
        try {
            for (int i = next++; i < count; i = next++)
                work(i);
        } catch (...) {
            next = count;
            std::call_once(failed, [&] { error = std::current_exception(); });
        }
    };
    std::latch helperEnd(1);
    const bool hasHelper = count > 1 && pool.tryStart([&] {
        loop();
        helperEnd.count_down();
    });
    loop();
    if (hasHelper)
        helperEnd.wait();
    if (error)
        std::rethrow_exception(error);
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
        , m_ink(inkPicture(request.image.convertToFormat(QImage::Format_Grayscale8)))
        , m_stop(request.stop)
        , m_end(std::move(end))
    {}

    QList<RecognizedText> run()
    {
        const QList<QRect> boxes = findTextLines(m_ink, [this] { return isStopped(); });
        throwIfStopped();
        if (boxes.isEmpty())
            return {};
        std::vector<TesseractReading> readings(size_t(boxes.size()));
        const auto widest = std::max_element(
            boxes.begin(), boxes.end(), [](const QRect &a, const QRect &b) { return a.width() < b.width(); });
        const qsizetype first = widest - boxes.begin();
        const QString likely = likelyLanguage(*widest);
        inParallel(m_pool, int(boxes.size()), [&](int i) {
            // The widest first: the threads end together when the longest work comes first.
            const qsizetype line = i == 0 ? first : (i <= first ? i - 1 : i);
            if (!isStopped())
                readings[size_t(line)] = m_reader.read(likely, textLinePicture(m_ink, boxes[line]));
        });
        throwIfStopped();
        agreeOnScripts(boxes, readings);
        QList<RecognizedText> texts;
        for (qsizetype i = 0; i < boxes.size(); ++i) {
            const TesseractReading &reading = readings[size_t(i)];
            const QString text = tidyText(reading);
            if (isText(reading))
                texts << RecognizedText{.text = text, .confidence = reading.confidence(), .box = boxes[i]};
        }
        return texts;
    }

private:
    /// Of the whole picture, as its widest line shows it.
    QString likelyLanguage(const QRect &box)
    {
        const QImage line = textLinePicture(m_ink, box);
        std::vector<std::optional<TesseractReading>> found(size_t(m_languages.size()));
        inParallel(m_pool, int(m_languages.size()), [&](int i) {
            if (!isStopped())
                found[size_t(i)] = m_engines.read(m_languages[i], line);
        });
        throwIfStopped();
        QList<TesseractReading> readings;
        for (const auto &reading : found) {
            if (reading)
                readings << *reading;
        }
        if (readings.isEmpty()) {
            throw TextRecognitionError(QStringLiteral("no data for any of the languages are installed"),
                                       TextRecognitionError::Reason::NotInstalled);
        }
        const TesseractReading best = TesseractLineReader::best(readings);
        return best.language.isEmpty() ? readings.first().language : best.language;
    }

    static bool areOfParagraph(const QRect &line, const QRect &next)
    {
        return next.top() > line.top() && next.top() - line.bottom() <= line.height() * 3 / 2 &&
               next.left() <= line.right() && next.right() >= line.left();
    }

    static QString otherScript(const QString &script)
    {
        return script == simplifiedChinese ? traditionalChinese : simplifiedChinese;
    }

    /// The data for one Chinese script read the other, too, so that the ink tells which one it is. Lines with
    /// few letters that tell are written as the rest of their paragraph.
    void agreeOnScripts(const QList<QRect> &boxes, std::vector<TesseractReading> &readings)
    {
        if (!m_languages.contains(simplifiedChinese) || !m_languages.contains(traditionalChinese))
            return;
        std::vector<double> looks(readings.size());
        inParallel(m_pool, int(boxes.size()), [&](int i) {
            const TesseractReading &reading = readings[size_t(i)];
            if (TesseractLineReader::readsChinese(reading) && !isStopped())
                looks[size_t(i)] = traditionalLook(reading, textLinePicture(m_ink, boxes[i]));
        });
        for (qsizetype begin = 0; begin < boxes.size();) {
            qsizetype end = begin;
            double look = 0;
            while (end < boxes.size() && TesseractLineReader::readsChinese(readings[size_t(end)]) &&
                   (end == begin || areOfParagraph(boxes[end - 1], boxes[end])))
                look += looks[size_t(end++)];
            agreeOnScript(begin, end, look, boxes, readings, looks);
            begin = std::max(end, begin + 1);
        }
        throwIfStopped();
    }

    void agreeOnScript(qsizetype begin, qsizetype end, double look, const QList<QRect> &boxes,
                       std::vector<TesseractReading> &readings, const std::vector<double> &looks)
    {
        std::vector<TesseractReading> others(size_t(end - begin));
        const auto readOther = [&](int i) {
            const QString script = otherScript(readings[size_t(begin + i)].language);
            if (others[size_t(i)].language.isEmpty() && !isStopped())
                others[size_t(i)] = m_reader.readIn(script, textLinePicture(m_ink, boxes[begin + i]));
        };
        if (std::abs(look) < doubtfulLook && end > begin) {
            inParallel(m_pool, int(end - begin), readOther);
            for (qsizetype i = begin; i < end; ++i) {
                const TesseractReading &own = readings[size_t(i)];
                const TesseractReading &other = others[size_t(i - begin)];
                look +=
                    traditionalLook(other, textLinePicture(m_ink, boxes[i])) +
                    (own.language == simplifiedChinese ? TesseractLineReader::traditionalLead(own, other)
                                                       : TesseractLineReader::traditionalLead(other, own));
            }
        }
        inParallel(m_pool, int(end - begin), [&](int i) {
            TesseractReading &own = readings[size_t(begin + i)];
            const double ownLook = looks[size_t(begin + i)];
            const bool isTraditional = (std::abs(ownLook) >= clearLook ? ownLook : look) > 0;
            if (own.language == (isTraditional ? traditionalChinese : simplifiedChinese))
                return;
            readOther(i);
            if (!others[size_t(i)].words.isEmpty())
                own = others[size_t(i)];
        });
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
    const QImage m_ink;
    const std::stop_token m_stop;
    const std::stop_token m_end;
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
            TesseractEngines *engines = m_shared->engines();
            if (!engines) {
                throw TextRecognitionError(QStringLiteral("libtesseract is not installed"),
                                           TextRecognitionError::Reason::NotInstalled);
            }
            return Recognition(*engines, m_pool, request, end).run();
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
