// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <QWidget>

#include "Platform/Subscription.h"

class QLabel;
class QPlainTextEdit;
class QTextEdit;
class QToolButton;

namespace tovi {

class ResultViewModel;

/// The content of one result panel. Follows its model on the next turn of the main queue after a change.
/// Main thread.
class ResultView : public QWidget
{
    Q_OBJECT

public:
    explicit ResultView(std::shared_ptr<ResultViewModel> model);

    /// The height, in points, that shows all of the content at the given width.
    double contentHeight(double width) const;
    /// Puts the keyboard where the user will type.
    void focusContent();

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void scheduleRefresh();
    void refresh();
    void retranslate();
    void showTranslation();
    void traceFirstPaints();

    std::shared_ptr<ResultViewModel> m_model;
    QLabel *m_title = nullptr;
    QToolButton *m_close = nullptr;
    QPlainTextEdit *m_source = nullptr;
    QTextEdit *m_translation = nullptr;
    QLabel *m_engine = nullptr;
    QToolButton *m_copy = nullptr;
    Subscription m_modelChanges;
    Subscription m_languageChanges;
    bool m_isRefreshPending = false;
    bool m_isRefreshing = false;
    bool m_hasPainted = false;       ///< for the trace
    bool m_hasPaintedResult = false; ///< for the trace
};

} // namespace tovi
