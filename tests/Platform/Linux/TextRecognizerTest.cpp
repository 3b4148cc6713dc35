// SPDX-License-Identifier: MIT
#include <functional>

#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Linux/TesseractLineReader.h"
#include "Platform/Linux/TesseractRecognizer.h"
#include "Platform/Linux/TextLineFinder.h"
#include "Support/Await.h"
#include "Support/TextPictures.h"

namespace tovi {

namespace {

using testing::ElementsAre;

const QStringList languages{QStringLiteral("zh-Hans"), QStringLiteral("zh-Hant"), QStringLiteral("en-US"),
                            QStringLiteral("ja-JP"), QStringLiteral("ko-KR")};

QImage blank(QSize size, QColor color = Qt::white)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

QFont textFont(const char *family = "Noto Sans CJK SC")
{
    QFont font((QString::fromLatin1(family)));
    font.setPixelSize(14);
    return font;
}

void write(QImage &image, QPoint position, const QStringList &lines, QColor color = Qt::black,
           const QFont &font = textFont())
{
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(color);
    for (qsizetype i = 0; i < lines.size(); ++i)
        painter.drawText(position + QPoint(0, int(i) * 22), lines[i]);
}

class TextRecognizerTest : public testing::Test
{
protected:
    QStringList read(const QImage &image, std::stop_token stop = {})
    {
        QStringList lines;
        for (const RecognizedText &text :
             await(m_recognizer.recognize({.image = image, .languages = languages, .stop = stop})))
            lines << text.text;
        return lines;
    }

    TestClock m_clock;
    TesseractRecognizer m_recognizer{m_clock};
};

TEST_F(TextRecognizerTest, readsEveryLanguageInLightAndDark)
{
    struct Case
    {
        TextKind kind;
        bool isDark;
        double bound;
    };
    // Several times what is measured: enough to tell a wrong language or background, or a lost line.
    for (const auto &[kind, isDark, bound] :
         {Case{TextKind::english, true, 0.03}, Case{TextKind::korean, false, 0.12},
          Case{TextKind::simplifiedChinese, true, 0.1}, Case{TextKind::traditionalChinese, false, 0.15},
          Case{TextKind::japanese, true, 0.1}}) {
        TextPicture made = makeTextPicture(kind, 1);
        made.style.isDark = isDark;
        made.style.pixelSize = 14;
        const TextPicture picture = drawText(kind, made.text.split(u'\n').mid(0, 4), made.style);
        const QString text = read(picture.image).join(u'\n');
        EXPECT_LT(compareReading(picture.text, text).rate(), bound) << qPrintable(text);
    }
}

TEST_F(TextRecognizerTest, readsColumnsOneAfterTheOther)
{
    QImage image = blank({720, 260});
    write(image, {20, 30}, {QStringLiteral("Everything about both columns")});
    write(image, {20, 80}, {QStringLiteral("first left line"), QStringLiteral("second left line")});
    // A column of its own pace, and light on dark.
    QPainter(&image).fillRect(400, 55, 320, 205, QColor(0x20, 0x20, 0x30));
    write(image, {420, 89}, {QStringLiteral("first right line"), QStringLiteral("second right line")},
          Qt::white);
    EXPECT_THAT(read(image),
                ElementsAre(QStringLiteral("Everything about both columns"),
                            QStringLiteral("first left line"), QStringLiteral("second left line"),
                            QStringLiteral("first right line"), QStringLiteral("second right line")));
}

TEST_F(TextRecognizerTest, readsWhatIsFramed)
{
    QImage image = blank({720, 260}, QColor(0xee, 0xee, 0xee));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 2; ++i) {
        painter.setBrush(i == 0 ? QColor(0x1a, 0x73, 0xe8) : QColor(0xd9, 0x30, 0x25));
        painter.drawRoundedRect(20 + i * 150, 40, 130, 34, 6, 6);
    }
    painter.setPen(QColor(0xaa, 0xaa, 0xaa));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(330, 44, 80, 26);
    painter.end();
    write(image, {40, 62}, {QStringLiteral("Save changes")}, Qt::white);
    write(image, {200, 62}, {QStringLiteral("删除文件")}, Qt::white);
    write(image, {340, 62}, {QStringLiteral("924.94")});
    EXPECT_THAT(read(image), ElementsAre(QStringLiteral("Save changes"), QStringLiteral("删除文件"),
                                         QStringLiteral("924.94")));

    // Buttons that stand close are read across.
    image = blank({400, 60});
    write(image, {40, 34}, {QStringLiteral("Save")});
    write(image, {120, 34}, {QStringLiteral("Cancel")});
    EXPECT_THAT(read(image), ElementsAre(QStringLiteral("Save Cancel")));
}

TEST_F(TextRecognizerTest, findsNothingWhereNothingIsWritten)
{
    EXPECT_TRUE(read(QImage()).isEmpty());
    EXPECT_TRUE(read(blank({1, 1})).isEmpty());
    EXPECT_TRUE(read(blank({720, 260}, Qt::black)).isEmpty());
    QImage frame = blank({720, 260});
    QPainter(&frame).drawRect(10, 10, 600, 200);
    EXPECT_TRUE(read(frame).isEmpty());
    QRandomGenerator random(7);
    for (const QSize grain : {QSize(720, 260), QSize(360, 130), QSize(90, 33)}) {
        QImage noise(grain, QImage::Format_RGB32);
        for (int y = 0; y < grain.height(); ++y) {
            for (int x = 0; x < grain.width(); ++x)
                noise.setPixel(x, y, random.generate());
        }
        EXPECT_TRUE(read(noise.scaled(720, 260, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)).isEmpty())
            << grain.width();
    }
}

TEST_F(TextRecognizerTest, readsWhatStandsBesideLinesAndOnColours)
{
    const auto list = [](const char *texts) { return QString::fromUtf8(texts).split(u'|'); };
    const QStringList cells =
        list("City|Area|People|Lisbon|100|545,000|Madrid|604|3,300,000|Rome|102|360,000");
    const QStringList chinese = list("项目|负责人|状态|登录|王小明|完成|通知|陈建国|停止|权限|赵丽华|开始");
    const QStringList prose =
        list("Some of these words were selected|by a reader with the mouse|who then let go of it");
    const QStringList left = list("The river rises in the hills|and flows past three old|"
                                  "mills before it turns south.|In spring it is high.");
    const QStringList right = list("Most visitors come by train|in early autumn. They stay|"
                                   "at one of the two inns near|the old bridge.");
    const QStringList note = list("注意：重启之前请保存所有文件。|未保存的内容将会丢失。");
    const QStringList korean = list("봄이 오면 산에 꽃이 피고 아이들은 들판을|뛰어다니며 놀기 시작합니다.|"
                                    "도서관은 매일 아침 아홉 시에 문을 열고|저녁에 닫습니다.");
    const QStringList shopping = list("• Two bottles of milk|• Bread and butter");
    const QStringList letters = list("e pluribus|e pluribus");
    const QStringList listing = list("drwxr-xr-x  3 anna users   4096 Mar 12 build|"
                                     "-rw-r--r--  1 anna users  11342 Feb  3 LICENSE|"
                                     "-rw-r--r--  1 anna users    812 Jan 27 Makefile");
    const auto drawTable = [&](QImage &image, const QStringList &cells) {
        QPainter painter(&image);
        for (int i = 0; i <= 4; ++i)
            painter.drawLine(20, 20 + i * 26, 350, 20 + i * 26);
        for (int i = 0; i <= 3; ++i)
            painter.drawLine(20 + i * 110, 20, 20 + i * 110, 124);
        painter.end();
        for (int i = 0; i < 12; ++i)
            write(image, {30 + i % 3 * 110, 38 + i / 3 * 26}, {cells[i]});
    };
    const auto written = [](const QStringList &lines, const char *family = "Noto Sans CJK SC") {
        return [=](QImage &image) { write(image, {20, 30}, lines, Qt::black, textFont(family)); };
    };
    struct Case
    {
        const char *what;
        std::function<void(QImage &)> draw;
        QString text;
    };
    const Case cases[] = {
        {"table", [&](QImage &image) { drawTable(image, cells); }, cells.join(u' ')},
        {"Chinese table", [&](QImage &image) { drawTable(image, chinese); }, chinese.join(u' ')},
        {"columns of prose with a narrow gutter",
         [&](QImage &image) {
             write(image, {20, 30}, left);
             const int width = QFontMetrics(textFont()).horizontalAdvance(left[2]);
             write(image, {20 + width + 18, 30}, right);
         },
         (left + right).join(u' ')},
        {"selection",
         [&](QImage &image) {
             write(image, {20, 30}, prose);
             QPainter(&image).fillRect(20, 37, 600, 22, QColor(0x33, 0x67, 0xd6));
             write(image, {20, 52}, prose.mid(1, 1), Qt::white);
             QPainter painter(&image);
             painter.setClipRect(62, 15, 70, 22);
             painter.fillRect(painter.clipBoundingRect(), QColor(0x33, 0x67, 0xd6));
             painter.setFont(textFont());
             painter.setPen(Qt::white);
             painter.drawText(20, 30, prose.first());
         },
         prose.join(u' ')},
        {"list", written(shopping), shopping.join(u' ')},
        {"letters as small and alone as bullets", written(letters, "P052"), letters.join(u' ')},
        {"terminal", written(listing, "DejaVu Sans Mono"), listing.join(u' ')},
        {"note with a bar at its side",
         [&](QImage &image) {
             QPainter(&image).fillRect(12, 14, 4, 48, QColor(0x4a, 0x90, 0xd9));
             write(image, {26, 32}, note);
         },
         note.join(u' ')},
        {"short columns of Korean",
         [&](QImage &image) {
             write(image, {20, 30}, korean.mid(0, 2));
             const int width = QFontMetrics(textFont()).horizontalAdvance(korean[0]);
             write(image, {20 + width + 36, 30}, korean.mid(2, 2));
         },
         korean.join(u' ')},
        {"lines that the edges cut",
         [&](QImage &image) {
             write(image, {20, 8}, {left[0]});
             write(image, {20, 30}, left);
             write(image, {20, 264}, {left[2]});
         },
         left.join(u' ')},
    };
    for (const Case &c : cases) {
        QImage image = blank({720, 260});
        c.draw(image);
        const QString text = read(image).join(u' ');
        EXPECT_LT(compareReading(c.text, text).rate(), 0.06) << c.what << ": " << qPrintable(text);
    }
}

TEST_F(TextRecognizerTest, tellsTheChineseScriptOfOneLine)
{
    for (const QString &line :
         {QStringLiteral("会议将于下周三下午举行，请准时参加。"),
          QStringLiteral("會議將於下週三下午舉行，請準時參加。"), QStringLiteral("歡迎使用翻譯工具")}) {
        QImage image = blank({400, 60});
        write(image, {20, 36}, {line});
        EXPECT_THAT(read(image), ElementsAre(line));
    }
}

TEST_F(TextRecognizerTest, readsAHugePicture)
{
    QImage image = blank({3840, 2160});
    write(image, {3000, 2100}, {QStringLiteral("far away")});
    EXPECT_THAT(read(image), ElementsAre(QStringLiteral("far away")));
}

TEST_F(TextRecognizerTest, givesUpBetweenLines)
{
    QImage image = blank({1600, 4000});
    write(image, {20, 30}, QStringList(180, QString(20, u'x').replace(u'x', QLatin1String("words "))));
    std::stop_source stop;
    auto future = m_recognizer.recognize({.image = image, .languages = languages, .stop = stop.get_token()});
    EXPECT_TRUE(waitUntil([&] { return m_recognizer.warmEngines() > 0; }));
    stop.request_stop();
    try {
        await(std::move(future));
        FAIL() << "it was read to the end";
    } catch (const TextRecognitionError &error) {
        EXPECT_EQ(error.reason(), TextRecognitionError::Reason::Abandoned);
    }
}

TEST_F(TextRecognizerTest, endsEnginesThatNobodyUses)
{
    QImage image = blank({300, 40});
    write(image, {10, 25}, {QStringLiteral("warm engines")});
    read(image);
    ASSERT_TRUE(waitUntil([&] { return m_clock.pendingActions() == 2; }));
    EXPECT_GE(m_recognizer.warmEngines(), 1);
    m_clock.advance(TesseractRecognizer::doublesWarmTime);
    EXPECT_TRUE(waitUntil([&] { return m_recognizer.warmEngines() == 1; }));
    m_clock.advance(TesseractRecognizer::warmTime / 2);
    EXPECT_EQ(m_recognizer.warmEngines(), 1);
    m_clock.advance(TesseractRecognizer::warmTime / 2);
    EXPECT_TRUE(waitUntil([&] { return m_recognizer.warmEngines() == 0; }));
    EXPECT_THAT(read(image), ElementsAre(QStringLiteral("warm engines")));
}

TEST_F(TextRecognizerTest, worksWithTheDataThatAreThere)
{
    const QTemporaryDir folder;
    const TextPicture picture = makeTextPicture(TextKind::english, 1);
    {
        TesseractRecognizer recognizer(m_clock, folder.path());
        try {
            await(recognizer.recognize({.image = picture.image, .languages = languages}));
            ADD_FAILURE() << "there are no data to read with";
        } catch (const TextRecognitionError &error) {
            EXPECT_EQ(error.reason(), TextRecognitionError::Reason::NotInstalled);
        }
        await(recognizer.recognize({.image = blank({9, 9}), .languages = languages}));
        EXPECT_FALSE(recognizer.isPresent());
    }
    // A file that is cut short is as good as none.
    QFile cut(folder.filePath(QStringLiteral("jpn.traineddata")));
    ASSERT_TRUE(cut.open(QIODevice::WriteOnly) && cut.write("cut") == 3);
    cut.close();
    const QString english = QStringLiteral("/usr/share/tesseract-ocr/5/tessdata/eng.traineddata");
    if (!QFile::copy(english, folder.filePath(QStringLiteral("eng.traineddata"))))
        GTEST_SKIP() << "the English data are elsewhere";
    TesseractRecognizer recognizer(m_clock, folder.path());
    const auto lines = await(recognizer.recognize({.image = picture.image, .languages = languages}));
    EXPECT_EQ(lines.size(), picture.text.count(u'\n') + 1);
    EXPECT_TRUE(recognizer.isPresent());
}

TEST_F(TextRecognizerTest, canEndInTheMiddleOfAPicture)
{
    auto recognizer = std::make_unique<TesseractRecognizer>(m_clock);
    auto future =
        recognizer->recognize({.image = makeTextPicture(TextKind::mixed, 3).image, .languages = languages});
    recognizer.reset();
    EXPECT_TRUE(future.isFinished());
}

TEST(TesseractLineReader, choosesTheLanguageThatReadsBest)
{
    const auto reading = [](const char *language, QList<TesseractReading::Word> words) {
        return TesseractReading{.language = QLatin1String(language), .words = std::move(words)};
    };
    const auto word = [](const char *text, double confidence, int begin = 0, int end = 100) {
        return TesseractReading::Word{
            .text = QString::fromUtf8(text), .confidence = confidence, .begin = begin, .end = end};
    };
    struct Case
    {
        const char *what;
        QList<TesseractReading> readings;
        QString text;
    };
    const Case cases[] = {
        {"none", {}, QString()},
        {"the surest",
         {reading("eng", {word("TAA", 0.3)}), reading("jpn", {word("日本", 0.9)})},
         QStringLiteral("日本")},
        {"English where there is nothing else",
         {reading("kor", {word("0pen", 0.93)}), reading("eng", {word("Open", 0.9)})},
         QStringLiteral("Open")},
        {"Latin words of the English reading",
         {reading("kor", {word("616", 0.5, 10, 60), word("키를", 0.95, 70, 120)}),
          reading("eng", {word("Enter", 0.9, 11, 58), word("Fe", 0.9, 70, 121)})},
         QStringLiteral("Enter 키를")},
        {"but not where its words end elsewhere",
         {reading("kor", {word("3", 0.5, 10, 20), word("판에는", 0.95, 20, 120)}),
          reading("eng", {word("3ITO", 0.6, 9, 121)})},
         QStringLiteral("3 판에는")},
        {"stretch by stretch",
         {reading("jpn",
                  {word("word", 0.9, 0, 50), word("旅行", 0.9, 60, 100), word("ofthe", 0.8, 110, 150)}),
          reading("eng", {word("word", 0.95, 0, 50), word("iit#7", 0.3, 61, 100), word("of", 0.96, 110, 125),
                          word("the", 0.96, 132, 150)})},
         QStringLiteral("word 旅行 of the")},
    };
    for (const Case &c : cases)
        EXPECT_EQ(TesseractLineReader::best(c.readings).text(), c.text) << c.what;
}

TEST(TesseractLineReader, writesPunctuationAsItsNeighbours)
{
    const auto tidy = [](const char *text) {
        return tidyText({.language = {}, .words = {{.text = QString::fromUtf8(text)}}});
    };
    EXPECT_EQ(tidy("你 好,世 界 !"), QStringLiteral("你好，世界！"));
    EXPECT_EQ(tidy("Hello, (world)!"), QStringLiteral("Hello, (world)!"));
    EXPECT_EQ(tidy("在 Settings 里"), QStringLiteral("在 Settings 里"));
    EXPECT_EQ(tidy("Rain一and more 一 all day"), QStringLiteral("Rain—and more — all day"));
    for (const char *text : {"第一 Windows 一起", "一 Windows 窗口", "“一”是数字"})
        EXPECT_EQ(tidy(text), QString::fromUtf8(text));
}

} // namespace

} // namespace tovi
