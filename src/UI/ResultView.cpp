// SPDX-License-Identifier: MIT
#include "UI/ResultView.h"

#include <cmath>
#include <utility>

#include <QApplication>
#include <QBoxLayout>
#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include "BundleInformation.h"
#include "Localization.h"
#include "Platform/Clock.h"
#include "Platform/Platform.h"
#include "Platform/Trace.h"
#include "Settings.h"
#include "TargetLanguage.h"
#include "UI/Controls/IconButton.h"
#include "UI/Controls/Lucide.h"
#include "UI/Controls/PopupMenuButton.h"
#include "UI/Controls/ProviderIcon.h"
#include "UI/Controls/SystemColor.h"
#include "UI/EditableTextView.h"
#include "UI/OverlayScrollBar.h"
#include "UI/PanelPlacement.h"
#include "UI/ScrollableTextView.h"
#include "UI/Spinner.h"
#include "UI/TextHeightCache.h"

namespace tovi {

namespace {

// Points. The text views have a rim of 2 of their own.
constexpr int sidePadding = 12;
constexpr int textPadding = 12;
constexpr QSize smallButton(22, 22);
constexpr QSize copyButton(24, 22);
constexpr QSize speakButton(24, 24);
constexpr double shortestSection = 84;
constexpr std::chrono::milliseconds frameTime{16};

QString t(Str key)
{
    return Localization::shared().t(key);
}

double resultFontSize()
{
    return Settings::shared().resultFontSize;
}

/// A line between sections.
class Divider final : public QWidget
{
public:
    explicit Divider(QWidget *parent)
        : QWidget(parent)
    {
        setFixedHeight(1);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(rect(), SystemColor::separator(palette()));
    }
};

/// The program's logo, sharp at every scale.
class Logo final : public QWidget
{
public:
    explicit Logo(QWidget *parent)
        : QWidget(parent)
    {
        setFixedSize(24, 24);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        static const QIcon logo(QStringLiteral(":/tovi/ToviLogo.svg"));
        logo.paint(&painter, rect());
    }
};

QBoxLayout *makeRow(QWidget *owner, int spacing, const QMargins &margins)
{
    auto *row = new QHBoxLayout(owner);
    row->setSpacing(spacing);
    row->setContentsMargins(margins);
    return row;
}

QBoxLayout *makeColumn(QWidget *owner, int spacing = 0, const QMargins &margins = {})
{
    auto *column = new QVBoxLayout(owner);
    column->setSpacing(spacing);
    column->setContentsMargins(margins);
    return column;
}

QBoxLayout *makeLanguageRow(QWidget *owner, PopupMenuButton *menu, IconButton *speak)
{
    QBoxLayout *row = makeRow(owner, 8, QMargins(sidePadding, 2, sidePadding, 0));
    row->addWidget(menu);
    row->addStretch(1);
    row->addWidget(speak);
    return row;
}

QBoxLayout *makeTextRow(QWidget *text)
{
    QBoxLayout *row = makeRow(nullptr, 0, QMargins(textPadding, 0, textPadding - OverlayScrollBar::width, 6));
    row->addWidget(text);
    return row;
}

QLabel *makeStatusLabel(QWidget *owner, int pixels)
{
    auto *label = new QLabel(owner);
    label->setFont(ResultView::textFont(pixels));
    label->setTextFormat(Qt::PlainText);
    return label;
}

QList<PopupMenuItem> languageItems(const QString &selected, const std::function<void(QString)> &choose)
{
    QList<PopupMenuItem> items;
    for (const TargetLanguage language : TargetLanguages::all()) {
        const QString code = TargetLanguages::rawValue(language);
        items.append({TargetLanguages::ownName(code), code == selected, {}, std::bind_front(choose, code)});
    }
    return items;
}

} // namespace

QFont ResultView::textFont(double pixels)
{
    QFont font;
    // A size that no text can have must not cost more than an odd look.
    font.setPixelSize(std::isfinite(pixels) ? int(std::lround(std::clamp(pixels, 1.0, 288.0))) : 15);
    return font;
}

ResultView::ResultView(std::shared_ptr<ResultViewModel> model)
{
    setAccessibleName(BundleInformation::name());
    m_header = makeHeader();
    m_sourceSection = makeSourceSection();
    m_divider = new Divider(this);
    QWidget *translation = makeTranslationSection();
    m_footer = makeFooter();
    QBoxLayout *column = makeColumn(this);
    column->addWidget(m_header);
    column->addWidget(m_sourceSection);
    column->addWidget(m_divider);
    column->addWidget(translation, 1);
    column->addWidget(m_footer);

    m_languageChanges = Localization::shared().onWillChange([this] { scheduleRefresh(); });
    setModel(std::move(model));
}

void ResultView::setModel(std::shared_ptr<ResultViewModel> model)
{
    m_model = std::move(model);
    m_modelChanges = m_model->onWillChange([this] { scheduleRefresh(); });
    refresh();
}

QWidget *ResultView::makeHeader()
{
    auto *header = new QWidget(this);
    m_pin = new IconButton(smallButton, header);
    m_pin->setCheckable(true);
    auto *logo = new Logo(header);
    m_close = new IconButton(smallButton, header);
    QBoxLayout *row = makeRow(header, 6, QMargins(sidePadding, 8, sidePadding, 4));
    row->addWidget(m_pin);
    row->addStretch(1);
    row->addWidget(logo);
    row->addStretch(1);
    row->addWidget(m_close);
    for (QWidget *part : {header, static_cast<QWidget *>(m_pin), static_cast<QWidget *>(logo),
                          static_cast<QWidget *>(m_close)})
        part->installEventFilter(this);
    connect(m_pin, &IconButton::clicked, this, [this] {
        m_model->isPinned = !m_model->isPinned;
        if (const auto toggle = m_model->onTogglePin)
            toggle(m_model->isPinned);
    });
    connect(m_close, &IconButton::clicked, this, [this] {
        if (const auto close = m_model->onClose)
            close();
    });
    return header;
}

QWidget *ResultView::makeSourceSection()
{
    auto *section = new QWidget(this);
    m_sourceLanguage = new PopupMenuButton(section);
    m_speakSource = new IconButton(speakButton, section);
    m_source = new EditableTextView(section);
    QBoxLayout *column = makeColumn(section);
    column->addLayout(makeLanguageRow(nullptr, m_sourceLanguage, m_speakSource));
    column->addLayout(makeTextRow(m_source), 1);
    connect(m_source, &EditableTextView::edited, this,
            [this](const QString &edited) { m_model->sourceText = edited; });
    connect(m_source, &EditableTextView::submitted, this, [this] {
        if (const auto submit = m_model->onSubmitSource)
            submit();
    });
    connect(m_speakSource, &IconButton::clicked, this,
            [this] { m_model->toggleSpeech(SpeakingTarget::source, m_model->sourceText); });
    return section;
}

QWidget *ResultView::makeTranslationSection()
{
    auto *section = new QWidget(this);
    m_statusView = makeStatusView();
    m_resultView = new QWidget(section);
    m_targetRow = new QWidget(m_resultView);
    QSizePolicy keepsItsPlace = m_targetRow->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    m_targetRow->setSizePolicy(keepsItsPlace);
    m_targetLanguage = new PopupMenuButton(m_targetRow);
    m_speakTranslation = new IconButton(speakButton, m_targetRow);
    m_translation = new ScrollableTextView(m_resultView);
    makeLanguageRow(m_targetRow, m_targetLanguage, m_speakTranslation);
    QBoxLayout *result = makeColumn(m_resultView);
    result->addWidget(m_targetRow);
    result->addLayout(makeTextRow(m_translation), 1);
    QBoxLayout *column = makeColumn(section);
    column->addWidget(m_statusView);
    column->addWidget(m_resultView, 1);
    connect(m_speakTranslation, &IconButton::clicked, this,
            [this] { m_model->toggleSpeech(SpeakingTarget::translation, m_model->translatedText); });
    connect(m_translation, &ScrollableTextView::painted, this, [this] { tracePaint(); });
    return section;
}

QWidget *ResultView::makeStatusView()
{
    auto *status = new QWidget(this);
    m_phase = makeStatusLabel(status, 12);
    m_elapsed = makeStatusLabel(status, 12);
    QFont digits = m_elapsed->font();
    digits.setFixedPitch(true);
    m_elapsed->setFont(digits);
    m_waitHint = makeStatusLabel(status, 11);
    m_waitHint->setWordWrap(true);
    QBoxLayout *row = makeRow(nullptr, 8, {});
    row->addWidget(new Spinner(status));
    row->addWidget(m_phase);
    row->addWidget(m_elapsed);
    row->addStretch(1);
    QBoxLayout *column = makeColumn(status, 8, QMargins(14, 10, 14, 10));
    column->addLayout(row);
    column->addWidget(m_waitHint);
    column->addStretch(1);
    return status;
}

QWidget *ResultView::makeFooter()
{
    auto *footer = new QWidget(this);
    m_copy = new IconButton(copyButton, footer);
    m_engine = new PopupMenuButton(footer);
    m_engine->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    QBoxLayout *row = makeRow(footer, 10, QMargins(sidePadding, 8, sidePadding, 8));
    row->addWidget(m_copy);
    row->addStretch(1);
    row->addWidget(m_engine);
    connect(m_copy, &IconButton::clicked, this, [this] { m_model->copyResult(); });
    return footer;
}

void ResultView::scheduleRefresh()
{
    if (m_isRefreshPending || m_isRefreshing)
        return;
    m_isRefreshPending = true;
    // A service may send text faster than anyone can read: once a frame is enough. A clock that stands still
    // does not hold the view back.
    Clock &clock = Platform::current().clock();
    const auto shownFor = clock.now() - m_lastRefresh;
    if (shownFor > Clock::Duration{} && shownFor < frameTime) {
        m_nextFrame = clock.after(frameTime - shownFor, [this] { refresh(); });
        return;
    }
    QMetaObject::invokeMethod(
        this, [this] { refresh(); }, Qt::QueuedConnection);
}

void ResultView::refresh()
{
    m_isRefreshPending = false;
    m_isRefreshing = true;
    m_lastRefresh = Platform::current().clock().now();
    refreshHeader();
    refreshMenus();
    refreshSource();
    refreshTranslation();
    refreshStatus();
    refreshFooter();
    layOutSections();
    m_isRefreshing = false;
}

void ResultView::refreshHeader()
{
    const bool isPinned = m_model->isPinned;
    m_pin->setIcon(QStringLiteral("LucidePin"), QString::fromLatin1(isPinned ? "pin.fill" : "pin"), 16,
                   isPinned ? SystemColor::red(palette()) : QColor());
    m_pin->setChecked(isPinned);
    m_pin->setHelp(t(Str::resultPin));
    m_close->setIcon(QStringLiteral("xmark"), 13, {}, IconWeight::semibold);
    m_close->setHoverColor(SystemColor::red(palette()));
    m_close->setHelp(t(Str::resultClose));
}

void ResultView::refreshMenus()
{
    const Localization &localization = Localization::shared();
    const QString wanted = QStringList{m_model->sourceLanguage, m_model->targetLanguage,
                                       canonicalText(m_model->currentProviderID),
                                       m_model->providerName.get().value_or(QString()),
                                       QString::number(int(localization.resolvedLanguage()))}
                               .join(u'\n');
    if (std::exchange(m_shownMenus, wanted) == wanted)
        return;
    const QString chevron = QStringLiteral("chevron.down");
    const QString automatic = QStringLiteral("auto");
    const auto chooseSource = [this](const QString &code) { m_model->selectSourceLanguage(code); };
    const auto chooseTarget = [this](const QString &code) { m_model->selectLanguage(code); };
    QList<PopupMenuItem> sources = languageItems(m_model->sourceLanguage, chooseSource);
    sources.prepend({t(Str::autoDetect),
                     m_model->sourceLanguage.get() == automatic,
                     {},
                     std::bind_front(chooseSource, automatic)});
    m_sourceLanguage->setContent(m_model->currentSourceLanguageName(), chevron, {}, sources);
    m_sourceLanguage->setHelp(t(Str::sourceLanguage));
    m_targetLanguage->setContent(m_model->currentLanguageName(), chevron, {},
                                 languageItems(m_model->targetLanguage, chooseTarget));
    m_targetLanguage->setHelp(t(Str::menuTranslateTo));

    QList<PopupMenuItem> engines;
    for (const ProviderConfig &engine : std::as_const(m_model->providers)) {
        engines.append({engine.displayName(), engine.id == m_model->currentProviderID.get(),
                        ProviderIcon::image(engine.iconIdentifier()),
                        [this, id = engine.id] { m_model->selectProvider(id); }});
    }
    m_engine->setContent(m_model->providerName.get().value_or(m_model->currentProviderName()),
                         QStringLiteral("chevron.up.chevron.down"),
                         ProviderIcon::image(m_model->currentProviderIcon()), engines);
    m_engine->setHelp(t(Str::providerDefaultEngine));

    const auto named = [](const QString &what, const QString &which) {
        return what + QStringLiteral(": ") + which;
    };
    m_source->setAccessibleName(named(t(Str::sourceLanguage), m_model->currentSourceLanguageName()));
    m_translation->setAccessibleName(named(t(Str::menuTranslateTo), m_model->currentLanguageName()));
}

void ResultView::refreshSource()
{
    const QFont font = textFont(resultFontSize());
    if (m_source->font() != font)
        m_source->setFont(font);
    m_source->setText(m_model->sourceText);
    const bool isShown = !m_model->sourceText->isEmpty() || m_model->isInputPanel;
    m_sourceSection->setVisible(isShown);
    m_divider->setVisible(isShown);
    refreshSpeakButton(*m_speakSource, SpeakingTarget::source, Str::resultSpeakSource);
}

void ResultView::refreshSpeakButton(IconButton &button, SpeakingTarget target, Str help)
{
    const bool speaks = m_model->speakingTarget.get() == target;
    button.setIcon(QStringLiteral("LucideVolume"),
                   QString::fromLatin1(speaks ? "speaker.wave.2.fill" : "speaker.wave.2"), 15,
                   speaks ? SystemColor::accent(palette()) : QColor());
    button.setHelp(t(help));
}

void ResultView::refreshTranslation()
{
    const bool showsStatus =
        m_model->translatedText->isEmpty() && (m_model->ocrProgress.get() || m_model->isLoading);
    // What hides would hand the keyboard on to its neighbour.
    QWidget *focused = focusWidget();
    if (showsStatus && focused && m_resultView->isAncestorOf(focused)) {
        m_parkedFocus = focused;
        setFocus();
    }
    m_statusView->setVisible(showsStatus);
    m_resultView->setVisible(!showsStatus);
    m_targetRow->setVisible(!m_model->translatedText->isEmpty() || m_model->isInputPanel);
    m_translation->setAttributedText(translationAttributed());
    if (!showsStatus && m_parkedFocus) {
        if (hasFocus())
            m_parkedFocus->setFocus(Qt::TabFocusReason);
        m_parkedFocus.clear();
    }
    refreshSpeakButton(*m_speakTranslation, SpeakingTarget::translation, Str::resultSpeakTranslation);
    m_showsResult = !m_model->isLoading;
}

AttributedText ResultView::translationAttributed() const
{
    const double size = resultFontSize();
    const QFont small = textFont(std::max(size - 3, 10.0));
    const QFont smaller = textFont(std::max(size - 4, 10.0));
    const QColor secondary = SystemColor::secondaryLabel(palette());
    AttributedText text;
    text.append(m_model->translatedText, textFont(size), SystemColor::label(palette()));
    text.append(m_model->phonetic.get().value_or(QString()), small, secondary, 6);
    for (const QString &meaning : m_model->meanings.get())
        text.append(QStringLiteral("· ") + meaning, small, secondary, 4);
    text.append(m_model->errorMessage.get().value_or(QString()), small, SystemColor::red(palette()), 6);
    text.append(m_model->note.get().value_or(QString()), smaller, SystemColor::orange(palette()), 6);
    return text;
}

void ResultView::refreshStatus()
{
    QPalette secondary = palette();
    secondary.setColor(QPalette::WindowText, SystemColor::secondaryLabel(palette()));
    for (QLabel *label : {m_phase, m_elapsed, m_waitHint})
        label->setPalette(secondary);
    const auto &progress = m_model->ocrProgress.get();
    const auto &started = m_model->ocrStartedAt.get();
    const bool recognizes = progress && started;
    m_elapsed->setVisible(recognizes);
    m_waitHint->setVisible(recognizes);
    if (!recognizes) {
        m_tick.reset();
        m_phase->setText(t(Str::resultTranslating));
        return;
    }
    m_phase->setText(t(*progress == OCRProgress::recognizing ? Str::ocrRecognizing : Str::ocrCapturing));
    const double elapsed = seconds(Platform::current().clock().now() - *started);
    m_elapsed->setText(
        formatted(t(Str::ocrElapsed), {QString::number(std::max(qint64(elapsed), qint64(0)))}));
    m_waitHint->setText(t(Str::ocrWaitHint));
    scheduleTick();
}

/// The next whole second since the recognition began.
void ResultView::scheduleTick()
{
    using namespace std::chrono_literals;
    Clock &clock = Platform::current().clock();
    const auto elapsed = clock.now() - *m_model->ocrStartedAt.get();
    m_tick = clock.after(1s - elapsed % 1s, [this] { refreshStatus(); });
}

void ResultView::refreshFooter()
{
    const bool didCopy = m_model->didCopy;
    m_copy->setIcon(QString::fromLatin1(didCopy ? "checkmark" : "square.on.square"), 13,
                    didCopy ? SystemColor::green(palette()) : QColor(),
                    didCopy ? IconWeight::semibold : IconWeight::regular);
    m_copy->setHelp(t(Str::resultCopy));
    m_footer->setEnabled(!m_model->ocrProgress.get());
}

double ResultView::sourceSectionHeight(double available) const
{
    const double most = std::max(0.45 * available, shortestSection);
    const double width = PanelPlacement::panelWidth(Settings::shared().resultPanelWidth) - 28;
    const double text =
        TextHeightCache::height(m_model->sourceText, textFont(resultFontSize()), width, most) + 38;
    return std::min(most, std::max(text, shortestSection));
}

void ResultView::layOutSections()
{
    const double available = height() - m_header->sizeHint().height() - m_footer->sizeHint().height();
    m_sourceSection->setFixedHeight(qRound(sourceSectionHeight(available)));
}

void ResultView::focusContent()
{
    if (m_model->isInputPanel)
        m_source->setFocus();
    else
        setFocus();
}

bool ResultView::eventFilter(QObject *watched, QEvent *event)
{
    auto *button = qobject_cast<QAbstractButton *>(watched);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        // A click that trembles is still a click.
        if (drag(static_cast<QMouseEvent *>(event), button ? QApplication::startDragDistance() : 1)) {
            if (button)
                button->setDown(false);
            return true;
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

/// Whether the event belongs to a drag.
bool ResultView::drag(QMouseEvent *event, int threshold)
{
    if (event->type() == QEvent::MouseButtonPress) {
        if (event->button() == Qt::LeftButton) {
            m_dragStart = event->globalPosition();
            if (onPress)
                onPress();
        }
        return false;
    }
    if (event->type() == QEvent::MouseButtonRelease) {
        m_dragStart.reset();
        return std::exchange(m_isDragging, false);
    }
    if (!m_dragStart || !(event->buttons() & Qt::LeftButton))
        return false;
    const QPointF offset = event->globalPosition() - *m_dragStart;
    m_isDragging |= offset.manhattanLength() >= threshold;
    if (m_isDragging && onDragged)
        onDragged(QPointF(offset.x(), -offset.y()));
    return m_isDragging;
}

void ResultView::mousePressEvent(QMouseEvent *event)
{
    drag(event, 1);
}

void ResultView::mouseMoveEvent(QMouseEvent *event)
{
    drag(event, 1);
}

void ResultView::mouseReleaseEvent(QMouseEvent *event)
{
    drag(event, 1);
}

void ResultView::resizeEvent(QResizeEvent *)
{
    layOutSections();
}

void ResultView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_footer)
        scheduleRefresh();
}

void ResultView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const QBrush background = SystemColor::isDark(palette()) ? palette().window() : palette().base();
    // The outline is the expensive part, and most paints are a caret's or a spinner's, far from it.
    constexpr int rim = int(cornerRadius);
    const QRect inside = rect().adjusted(rim, rim, -rim, -rim);
    painter.fillRect(inside & event->rect(), background);
    if (!inside.contains(event->rect())) {
        painter.setClipRegion(event->region() - inside);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath outline;
        outline.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
        painter.fillPath(outline, background);
        painter.setPen(SystemColor::separator(palette()));
        painter.drawPath(outline);
    }
    if (m_statusView->isVisible())
        tracePaint();
}

void ResultView::tracePaint()
{
    if (!Trace::isEnabled() || (m_hasPainted && (m_hasPaintedResult || !m_showsResult)))
        return;
    const auto mark = [this, showsResult = m_showsResult] {
        if (!std::exchange(m_hasPainted, true))
            Trace::mark("panelPainted");
        if (showsResult && !std::exchange(m_hasPaintedResult, true))
            Trace::mark("textPainted", {{"failed", m_model->errorMessage.get() ? 1 : 0}});
    };
    // After the other parts were painted, too.
    QMetaObject::invokeMethod(this, mark, Qt::QueuedConnection);
}

} // namespace tovi
