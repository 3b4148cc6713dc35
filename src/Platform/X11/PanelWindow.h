// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QPointer>
#include <QWidget>

namespace tovi {

/// The top-level window of a panel: rounded, above others, on all workspaces, in no task list. It is made
/// once and serves one panel after another. With compositing it is larger than its panel by a soft shadow,
/// which lets clicks through; else its corners are cut off.
class PanelWindow final : public QWidget
{
public:
    static constexpr int cornerRadius = 12; // points

    explicit PanelWindow(bool compositing);

    /// The panel without its shadow, in the toolkit's coordinates.
    QRect panelRect() const;
    void setPanelRect(const QRect &rect);

    void setContent(std::unique_ptr<QWidget> content);
    /// Hides the window and deletes the content on the next turn of the event loop, since it may be what
    /// asked for it.
    void release();
    void setCompositing(bool compositing);
    /// Shows it without activating the program.
    void present();
    /// Directs the keyboard to it. `time` is the server's; 0 leaves it to the toolkit.
    void makeKey(quint32 time);
    /// To be called when the server has given it the keyboard, before Qt learns of it.
    void focusCame();

    std::function<void()> onEscape;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void escape();
    void setStatesBeforeMapping();
    void requestStates();
    QMargins shadowMargins() const;
    void layOut();
    void setBoundingShape(double scale) const;
    void announceShadow() const;

    QPointer<QWidget> m_content;
    bool m_compositing;
};

} // namespace tovi
