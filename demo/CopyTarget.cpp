// SPDX-License-Identifier: MIT
// A window to capture from that tells its text to nobody: neither the accessibility bus nor the primary
// selection has it, only its Copy command gives it away.
#include <QApplication>
#include <QClipboard>
#include <QCommandLineParser>
#include <QMainWindow>
#include <QMenuBar>
#include <QMimeData>
#include <QPainter>

namespace {

class Canvas final : public QWidget
{
public:
    explicit Canvas(QString text)
        : m_text(std::move(text))
    {}

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().base());
        const QRect line = painter.boundingRect(rect(), Qt::AlignCenter, m_text);
        painter.fillRect(line, palette().highlight());
        painter.setPen(palette().color(QPalette::HighlightedText));
        painter.drawText(line, Qt::AlignCenter, m_text);
    }

private:
    const QString m_text;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption noMenu(QStringLiteral("no-menu"), QStringLiteral("Copies by the key alone."));
    const QCommandLineOption disabled(QStringLiteral("disabled"),
                                      QStringLiteral("Its Copy item is disabled."));
    const QCommandLineOption image(QStringLiteral("image"), QStringLiteral("Copies a picture."));
    parser.addOptions({noMenu, disabled, image});
    parser.addPositionalArgument(QStringLiteral("text"), QStringLiteral("What it shows and copies."));
    parser.process(app);
    const QString text = parser.positionalArguments().value(0);

    QMainWindow window;
    window.setWindowTitle(QStringLiteral("copy target"));
    window.setCentralWidget(new Canvas(text));
    window.resize(480, 200);
    QAction copy(QStringLiteral("&Copy"));
    copy.setShortcut(QKeySequence::Copy);
    copy.setEnabled(!parser.isSet(disabled));
    QObject::connect(&copy, &QAction::triggered, [&] {
        auto *data = new QMimeData;
        if (parser.isSet(image)) {
            data->setImageData(QImage(8, 8, QImage::Format_RGB32));
        } else {
            data->setText(text);
            data->setHtml(QStringLiteral("<b>%1</b>").arg(text.toHtmlEscaped()));
        }
        QGuiApplication::clipboard()->setMimeData(data);
    });
    if (parser.isSet(noMenu)) {
        window.addAction(&copy);
    } else {
        window.menuBar()->addMenu(QStringLiteral("&File"))->addAction(QStringLiteral("&Open"));
        window.menuBar()->addMenu(QStringLiteral("&Edit"))->addAction(&copy);
    }
    window.show();
    return QApplication::exec();
}
