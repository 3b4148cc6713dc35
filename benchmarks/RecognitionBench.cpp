// SPDX-License-Identifier: MIT
#include <cstdio>
#include <map>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include "Bench.h"
#include "Platform/Linux/LinuxClock.h"
#include "Platform/Linux/TesseractRecognizer.h"
#include "Support/TextPictures.h"

namespace tovi::bench {

namespace {

constexpr int picturesOfKind = 1; // each costs the plain command some 20 s
const QStringList languages{QStringLiteral("zh-Hans"), QStringLiteral("zh-Hant"), QStringLiteral("en-US"),
                            QStringLiteral("ja-JP"), QStringLiteral("ko-KR")};

struct Reading
{
    QString text;
    double milliseconds = 0;
};

struct Result
{
    std::map<TextKind, ReadingErrors> errors;
    ReadingErrors all;
    Samples times;

    void add(const TextPicture &picture, const Reading &reading)
    {
        const ReadingErrors found = compareReading(picture.text, reading.text);
        errors[picture.kind] += found;
        all += found;
        times.add(reading.milliseconds);
    }
};

QList<TextPicture> madePictures(quint32 seed)
{
    QList<TextPicture> pictures;
    for (const TextKind kind : allTextKinds) {
        for (quint32 i = 0; i < picturesOfKind; ++i)
            pictures << makeTextPicture(kind, seed + i);
    }
    return pictures;
}

QList<TextPicture> picturesOfFile(const QString &name, quint32 seed)
{
    QList<TextPicture> pictures;
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return pictures;
    QRandomGenerator random(seed);
    TextKind kind = TextKind::mixed;
    QStringList lines;
    const auto draw = [&] {
        while (!lines.isEmpty()) {
            const TextPicture picture = drawText(kind, lines, randomTextStyle(kind, random));
            lines = lines.mid(std::max<qsizetype>(1, picture.text.count(u'\n') + 1));
            if (!picture.text.isEmpty())
                pictures << picture;
        }
    };
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
        if (!line.startsWith(QLatin1String("# "))) {
            lines << line;
            continue;
        }
        draw();
        for (const TextKind other : allTextKinds) {
            if (line.mid(2) == nameOf(other))
                kind = other;
        }
    }
    draw();
    return pictures;
}

Reading ours(TextRecognizer &recognizer, const QImage &image)
{
    QElapsedTimer timer;
    timer.start();
    auto future = recognizer.recognize({.image = image, .languages = languages});
    future.waitForFinished();
    Reading reading{.text = {}, .milliseconds = double(timer.nsecsElapsed()) / 1e6};
    QStringList lines;
    try {
        for (const RecognizedText &text : future.result())
            lines << text.text;
    } catch (const TextRecognitionError &error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    reading.text = lines.join(u'\n');
    return reading;
}

Reading command(const QString &file, bool onOneThread)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (onOneThread)
        environment.insert(QStringLiteral("OMP_THREAD_LIMIT"), QStringLiteral("1"));
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(QProcess::nullDevice());
    QElapsedTimer timer;
    timer.start();
    process.start(QStringLiteral("tesseract"), {file, QStringLiteral("-"), QStringLiteral("-l"),
                                                QStringLiteral("chi_sim+chi_tra+eng+jpn+kor")});
    process.waitForFinished(-1);
    return {.text = QString::fromUtf8(process.readAllStandardOutput()),
            .milliseconds = double(timer.nsecsElapsed()) / 1e6};
}

/// What the kernel says of this process: VmRSS is what it holds, VmHWM the most it ever held.
double megabytes(const QByteArray &field)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(field + ':'))
            return line.mid(field.size() + 1).simplified().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

void printErrors(const char *what, const Result &result)
{
    std::printf("  %-40s", what);
    for (const TextKind kind : allTextKinds) {
        if (const auto found = result.errors.find(kind); found != result.errors.end())
            std::printf(" %s %.2f%%,", qPrintable(nameOf(kind)), 100 * found->second.rate());
    }
    std::printf(" all %.2f%%\n", 100 * result.all.rate());
}

} // namespace

void benchRecognition(quint32 seed, const QString &textFile)
{
    printHeading("Text in pictures of 720 x 260 (character errors; the command with all five languages)");
    const QList<TextPicture> pictures =
        textFile.isEmpty() ? madePictures(seed) : picturesOfFile(textFile, seed);
    const QTemporaryDir folder;
    if (pictures.isEmpty() || !folder.isValid())
        return;
    LinuxClock clock;
    TesseractRecognizer recognizer(clock);
    const double before = megabytes("VmRSS");
    const Reading first = ours(recognizer, pictures.first().image);
    std::printf("  %-58s %9.0f ms, %.0f MB\n", "first recognition", first.milliseconds,
                megabytes("VmRSS") - before);
    // So that engines of every language are warm.
    for (const TextKind kind : allTextKinds)
        ours(recognizer, makeTextPicture(kind, seed + 1000).image);
    std::printf("  %-58s %9.0f MB in %d engines, %.0f MB at most\n", "warm", megabytes("VmRSS") - before,
                recognizer.warmEngines(), megabytes("VmHWM") - before);

    Result mine;
    Result plain;
    Result oneThread;
    for (const TextPicture &picture : pictures) {
        const QString file = folder.filePath(QStringLiteral("picture.png"));
        picture.image.save(file);
        mine.add(picture, ours(recognizer, picture.image));
        plain.add(picture, command(file, false));
        oneThread.add(picture, command(file, true));
    }
    printErrors("Tovi", mine);
    printErrors("tesseract", plain);
    printRow(QStringLiteral("Tovi, warm"), mine.times, "ms");
    printRow(QStringLiteral("tesseract"), plain.times, "ms");
    printRow(QStringLiteral("tesseract, OMP_THREAD_LIMIT=1"), oneThread.times, "ms");
    printRatio(QStringLiteral("errors : tesseract's"), mine.all.rate(), plain.all.rate(), 0.25);
    printRatio(QStringLiteral("time : tesseract's"), mine.times.median(), plain.times.median(), 1.0 / 3);
    printRatio(QStringLiteral("time : tesseract's with OMP_THREAD_LIMIT=1"), mine.times.median(),
               oneThread.times.median(), 1.0 / 3);
}

} // namespace tovi::bench
