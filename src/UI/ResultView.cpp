// SPDX-License-Identifier: MIT
#include "UI/ResultView.h"

#include <utility>

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <QTextLayout>
#include <QToolButton>

#include "Localization.h"
#include "Platform/Trace.h"
#include "Settings.h"
#include "UI/ResultViewModel.h"

namespace tovi {

namespace {

constexpr int sidePadding = 14;

QString t(Str key)
{
    return Localization::shared().t(key);
}

QFont textFont(double pixels)
{
    QFont font;
    font.setPixelSize(qRound(std::clamp(pixels, 8.0, 72.0)));
    return font;
}

double resultFontSize()
{
    return Settings::shared().resultFontSize;
}

double smallFontSize()
{
    return std::max(resultFontSize() - 3, 10.0);
}

double noteFontSize()
{
    return std::max(resultFontSize() - 4, 10.0);
}

double textHeight(const QString &text, const QFont &font, double width)
{
    double height = 0;
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    for (const QString &paragraph : text.split(QLatin1Char('\n'))) {
        QTextLayout layout(paragraph, font);
        layout.setTextOption(option);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
            height += line.height();
        }
        layout.endLayout();
    }
    return height;
}

QColor secondary(const QPalette &palette)
{
    QColor color = palette.color(QPalette::WindowText);
    color.setAlphaF(0.6F);
    return color;
}

} // namespace

ResultView::ResultView(std::shared_ptr<ResultViewModel> model)
    : m_model(std::move(model))
{
    setAccessibleName(QStringLiteral("Tovi"));

    m_title = new QLabel(this);
    m_title->setFont(textFont(12));
    m_close = new QToolButton(this);
    m_close->setAutoRaise(true);
    m_close->setText(QStringLiteral("✕"));
    m_close->setFixedSize(22, 22);
    connect(m_close, &QToolButton::clicked, this, [this] {
        if (const auto close = m_model->onClose)
            close();
    });

    m_source = new QPlainTextEdit(this);
    m_source->setFrameShape(QFrame::NoFrame);
    m_source->setFont(textFont(resultFontSize()));
    m_source->setTabChangesFocus(true);
    m_source->document()->setDocumentMargin(0);
    m_source->installEventFilter(this);
    connect(m_source, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_isRefreshing)
            m_model->sourceText = m_source->toPlainText();
    });

    m_translation = new QTextEdit(this);
    m_translation->setFrameShape(QFrame::NoFrame);
    m_translation->setReadOnly(true);
    m_translation->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_translation->setCursorWidth(0);
    m_translation->document()->setDocumentMargin(0);

    m_engine = new QLabel(this);
    m_engine->setFont(textFont(13));
    m_copy = new QToolButton(this);
    m_copy->setAutoRaise(true);
    connect(m_copy, &QToolButton::clicked, this, [this] { m_model->copyResult(); });

    for (QAbstractScrollArea *area :
         {static_cast<QAbstractScrollArea *>(m_source), static_cast<QAbstractScrollArea *>(m_translation)}) {
        area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        area->viewport()->setAutoFillBackground(false);
    }
    QPalette secondaryText = palette();
    secondaryText.setColor(QPalette::WindowText, secondary(palette()));
    m_title->setPalette(secondaryText);
    m_engine->setPalette(secondaryText);

    auto *header = new QHBoxLayout;
    header->setContentsMargins(sidePadding, 8, 10, 4);
    header->addWidget(m_title, 1);
    header->addWidget(m_close);
    auto *line = new QFrame(this);
    line->setFrameShape(QFrame::HLine);
    line->setForegroundRole(QPalette::Mid);
    auto *footer = new QHBoxLayout;
    footer->setContentsMargins(10, 4, sidePadding, 8);
    footer->addWidget(m_copy);
    footer->addStretch(1);
    footer->addWidget(m_engine);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(header);
    auto *texts = new QVBoxLayout;
    texts->setContentsMargins(sidePadding, 0, sidePadding, 0);
    texts->setSpacing(8);
    texts->addWidget(m_source, 2);
    texts->addWidget(line);
    texts->addWidget(m_translation, 3);
    column->addLayout(texts, 1);
    column->addLayout(footer);

    m_modelChanges = m_model->onWillChange([this] { scheduleRefresh(); });
    m_languageChanges = Localization::shared().onWillChange([this] { scheduleRefresh(); });
    refresh();
}

void ResultView::scheduleRefresh()
{
    if (m_isRefreshPending || m_isRefreshing)
        return;
    m_isRefreshPending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isRefreshPending = false;
            refresh();
        },
        Qt::QueuedConnection);
}

void ResultView::refresh()
{
    m_isRefreshing = true;
    retranslate();
    m_title->setText(m_model->isInputPanel ? t(Str::menuInput) : QStringLiteral("Tovi"));
    if (m_source->toPlainText() != m_model->sourceText.get())
        m_source->setPlainText(m_model->sourceText);
    m_engine->setText(m_model->providerName.get().value_or(m_model->currentProviderName()));
    m_copy->setText(m_model->didCopy ? QStringLiteral("✓") : t(Str::resultCopy));
    showTranslation();
    m_isRefreshing = false;
    update();
}

void ResultView::retranslate()
{
    m_close->setToolTip(t(Str::resultClose));
    m_close->setAccessibleName(t(Str::resultClose));
    m_copy->setToolTip(t(Str::resultCopy));
    m_copy->setAccessibleName(t(Str::resultCopy));
    m_source->setAccessibleName(t(Str::sourceLanguage));
    m_translation->setAccessibleName(t(Str::menuTranslateTo));
    m_engine->setAccessibleName(t(Str::engine));
}

void ResultView::showTranslation()
{
    const QColor primary = palette().color(QPalette::WindowText);
    QTextDocument *document = m_translation->document();
    document->clear();
    QTextCursor cursor(document);
    const auto append = [&](const QString &text, double size, const QColor &color) {
        if (text.isEmpty())
            return;
        QTextCharFormat format;
        format.setFont(textFont(size));
        format.setForeground(color);
        if (!document->isEmpty())
            cursor.insertBlock();
        cursor.insertText(text, format);
    };
    if (m_model->translatedText->isEmpty() && m_model->isLoading) {
        append(t(Str::resultTranslating), 12, secondary(palette()));
        return;
    }
    append(m_model->translatedText, resultFontSize(), primary);
    append(m_model->phonetic.get().value_or(QString()), smallFontSize(), secondary(palette()));
    for (const QString &meaning : m_model->meanings.get())
        append(QStringLiteral("· ") + meaning, smallFontSize(), secondary(palette()));
    append(m_model->errorMessage.get().value_or(QString()), smallFontSize(), QColor(0xe0, 0x3e, 0x36));
    append(m_model->note.get().value_or(QString()), noteFontSize(), QColor(0xd9, 0x82, 0x00));
}

double ResultView::contentHeight(double width) const
{
    const double textWidth = width - 2 * sidePadding;
    double h = textHeight(m_model->sourceText, textFont(resultFontSize()), textWidth) + 30 + 12 + 1 + 20;
    if (m_model->isLoading)
        h += m_model->ocrProgress.get() ? 88 : 26;
    const auto add = [&](const QString &text, double size, double extra) {
        if (!text.isEmpty())
            h += textHeight(text, textFont(size), textWidth) + extra;
    };
    add(m_model->translatedText, resultFontSize(), 8);
    add(m_model->phonetic.get().value_or(QString()), smallFontSize(), 4);
    for (const QString &meaning : m_model->meanings.get())
        add(QStringLiteral("· ") + meaning, smallFontSize(), 4);
    add(m_model->errorMessage.get().value_or(QString()), smallFontSize(), 4);
    add(m_model->note.get().value_or(QString()), noteFontSize(), 4);
    return h + 36;
}

void ResultView::focusContent()
{
    if (m_model->isInputPanel)
        m_source->setFocus();
    else
        m_translation->setFocus();
}

bool ResultView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_source && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool isReturn = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (isReturn && !(key->modifiers() & Qt::ShiftModifier)) {
            if (const auto submit = m_model->onSubmitSource)
                submit();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ResultView::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    traceFirstPaints();
}

void ResultView::traceFirstPaints()
{
    if (!Trace::isEnabled())
        return;
    if (!std::exchange(m_hasPainted, true))
        Trace::mark("panelPainted");
    if (!m_model->isLoading && !std::exchange(m_hasPaintedResult, true))
        Trace::mark("textPainted", {{"failed", m_model->errorMessage.get() ? 1 : 0}});
}

} // namespace tovi
