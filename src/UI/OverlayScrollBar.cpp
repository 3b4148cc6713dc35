// SPDX-License-Identifier: MIT
#include "UI/OverlayScrollBar.h"

#include <QAbstractScrollArea>
#include <QScrollBar>

namespace tovi {

void OverlayScrollBar::install(QAbstractScrollArea &area)
{
    area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    QScrollBar *bar = area.verticalScrollBar();
    // A half-transparent grey is seen on light and on dark. Without a range there is no handle.
    bar->setStyleSheet(
        QStringLiteral("QScrollBar:vertical { width: %1px; margin: 0; background: transparent; }"
                       "QScrollBar::handle:vertical { background: rgba(128, 128, 128, 40%);"
                       " border-radius: 3px; min-height: 24px; margin-left: 2px; }"
                       "QScrollBar::handle:vertical:hover { background: rgba(128, 128, 128, 70%); }"
                       "QScrollBar::handle:vertical:disabled { background: transparent; }"
                       "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
                       "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical"
                       " { background: transparent; }")
            .arg(width));
    const auto showHandle = [bar] { bar->setEnabled(bar->maximum() > bar->minimum()); };
    QObject::connect(bar, &QScrollBar::rangeChanged, bar, showHandle);
    showHandle();
}

} // namespace tovi
