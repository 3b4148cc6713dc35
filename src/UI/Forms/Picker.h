// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QComboBox>
#include <QPointer>

#include "UI/Controls/IconImage.h"

class QMenu;

namespace tovi {

class KeyboardFocus;

/// A choice of one of several tagged entries, with a menu in the program's style. A tag that is not among
/// them is shown as it stands, with no entry chosen.
class Picker : public QComboBox
{
    Q_OBJECT

public:
    explicit Picker(QWidget *parent = nullptr);

    void addEntry(const QString &title, const QString &tag, const IconImage &image = {});
    void setTag(const QString &tag);
    /// A tag that is not among them is shown as this.
    void setTag(const QString &tag, const QString &title, const IconImage &image);
    /// Empty while nothing is chosen.
    QString tag() const { return currentData().toString(); }
    /// Runs when the user has chosen, never for setTag().
    void onPick(std::function<void(const QString &tag)> picked);

    /// What the button shows: the chosen entry, or the tag that is none.
    QString shownTitle() const { return currentIndex() < 0 ? placeholderText() : currentText(); }
    /// The open menu, or none.
    QMenu *menu() const;
    void showPopup() override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int widthFor(const QString &title) const;
    IconImage shownImage() const;

    KeyboardFocus *m_focus;
    QList<IconImage> m_images;
    IconImage m_otherImage; ///< while nothing is chosen
    QPointer<QMenu> m_menu;
};

} // namespace tovi
