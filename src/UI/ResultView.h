// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>

#include <QLabel>
#include <QPointer>
#include <QWidget>

#include "Localization/Str.h"
#include "Platform/Clock.h"
#include "Platform/Subscription.h"
#include "UI/ResultViewModel.h"

namespace tovi {

class EditableTextView;
class IconButton;
class PopupMenuButton;
class ScrollableTextView;
class Spinner;
struct AttributedText;

/// The content of one result panel. Follows its model on the next turn of the main queue after a change.
/// Main thread.
class ResultView : public QWidget
{
    Q_OBJECT

public:
    static constexpr double cornerRadius = 12; // points

    explicit ResultView(std::shared_ptr<ResultViewModel> model);
    /// Shows another model from now on.
    void setModel(std::shared_ptr<ResultViewModel> model);

    /// Puts the keyboard where the user will type; nowhere, in a panel that nobody types into.
    void focusContent();

    /// The font of results, and those of the smaller lines below.
    static QFont textFont(double pixels);

    /// The button goes down where the panel may be dragged: on its header or between its controls.
    std::function<void()> onPress;
    /// The pointer has moved by this from there: points, y up.
    std::function<void(QPointF offset)> onDragged;

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    using SpeakingTarget = ResultViewModel::SpeakingTarget;

    QWidget *makeHeader();
    QWidget *makeSourceSection();
    QWidget *makeTranslationSection();
    QWidget *makeStatusView();
    QWidget *makeFooter();

    void scheduleRefresh();
    void refresh();
    void refreshHeader();
    void refreshSource();
    void refreshTranslation();
    void refreshStatus();
    void refreshFooter();
    void refreshSpeakButton(IconButton &button, SpeakingTarget target, Str help);
    void refreshMenus();
    AttributedText translationAttributed() const;
    void layOutSections();
    double sourceSectionHeight(double available) const;
    void scheduleTick();
    bool drag(QMouseEvent *event, int threshold);
    void tracePaint();

    std::shared_ptr<ResultViewModel> m_model;
    QWidget *m_header = nullptr;
    IconButton *m_pin = nullptr;
    IconButton *m_close = nullptr;
    QWidget *m_sourceSection = nullptr;
    QWidget *m_divider = nullptr;
    PopupMenuButton *m_sourceLanguage = nullptr;
    IconButton *m_speakSource = nullptr;
    EditableTextView *m_source = nullptr;
    QWidget *m_statusView = nullptr;
    QLabel *m_phase = nullptr;
    QLabel *m_elapsed = nullptr;
    QLabel *m_waitHint = nullptr;
    QWidget *m_resultView = nullptr;
    QWidget *m_targetRow = nullptr;
    PopupMenuButton *m_targetLanguage = nullptr;
    IconButton *m_speakTranslation = nullptr;
    ScrollableTextView *m_translation = nullptr;
    QWidget *m_footer = nullptr;
    IconButton *m_copy = nullptr;
    PopupMenuButton *m_engine = nullptr;

    Subscription m_modelChanges;
    Subscription m_languageChanges;
    Subscription m_tick;
    Subscription m_nextFrame;
    Clock::Time m_lastRefresh = Clock::distantPast();
    std::optional<QPointF> m_dragStart; ///< where the button went down, in the toolkit's coordinates
    QPointer<QWidget> m_parkedFocus;    ///< while what had the keyboard is hidden
    QString m_shownMenus;               ///< what the menus were last made for
    bool m_isDragging = false;
    bool m_isRefreshPending = false;
    bool m_isRefreshing = false;
    bool m_showsResult = false;      ///< the translation is complete and in the view
    bool m_hasPainted = false;       ///< for the trace
    bool m_hasPaintedResult = false; ///< for the trace
};

} // namespace tovi
