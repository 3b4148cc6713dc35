// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include <QLayout>

namespace tovi {

class FormLabel;

/// Texts one under the other with controls at their end; where that would leave the texts a narrow column,
/// the controls stand below. So it is never wider than the widest of its parts needs.
class FormLine final : public QLayout
{
public:
    /// Where controls stand beside texts that are taller, and the other way round.
    explicit FormLine(Qt::Alignment alignment = Qt::AlignVCenter);
    ~FormLine() override;

    void addText(FormLabel *text);
    void addControl(QWidget *control);
    /// The texts get at least this room in points beside the controls, so that these begin at one edge.
    void setTextRoom(int width);

    void addItem(QLayoutItem *item) override;
    int count() const override { return static_cast<int>(m_items.size()); }
    QLayoutItem *itemAt(int index) const override;
    QLayoutItem *takeAt(int index) override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
    void setGeometry(const QRect &rectangle) override;

private:
    struct Plan;
    std::vector<QLayoutItem *> shown(bool texts) const;
    Plan plan(int width) const;

    const Qt::Alignment m_alignment;
    int m_textRoom = 0;
    std::vector<std::unique_ptr<QLayoutItem>> m_items;
};

} // namespace tovi
