// SPDX-License-Identifier: MIT
#include "UI/Forms/FormLine.h"

#include <algorithm>

#include <QWidget>

#include "UI/Forms/FormLabel.h"

namespace tovi {

namespace {

constexpr int gap = 12;
constexpr int controlGap = 10;
constexpr int textGap = 2;
constexpr int lineGap = 6; ///< over controls that stand below

using Items = std::vector<QLayoutItem *>;

FormLabel *label(QLayoutItem *item)
{
    return qobject_cast<FormLabel *>(item->widget());
}

int widths(const Items &controls, QSize (QLayoutItem::*size)() const)
{
    int sum = 0;
    for (const QLayoutItem *control : controls)
        sum += (control->*size)().width() + (sum > 0 ? controlGap : 0);
    return sum;
}

int tallest(const Items &controls)
{
    int height = 0;
    for (const QLayoutItem *control : controls)
        height = std::max(height, control->sizeHint().height());
    return height;
}

int heightOf(QLayoutItem *text, int width)
{
    return text->hasHeightForWidth() ? text->heightForWidth(width) : text->sizeHint().height();
}

int textHeight(const Items &texts, int width)
{
    int height = 0;
    for (QLayoutItem *text : texts)
        height += heightOf(text, width) + (height > 0 ? textGap : 0);
    return height;
}

} // namespace

struct FormLine::Plan
{
    Items texts;
    Items controls;
    int textWidth = 0;
    int textHeight = 0;
    int controlsWidth = 0;
    int controlsHeight = 0;
    bool isBelow = false;

    int height() const
    {
        return isBelow ? textHeight + lineGap + controlsHeight : std::max(textHeight, controlsHeight);
    }
};

FormLine::FormLine(Qt::Alignment alignment)
    : m_alignment(alignment)
{
    setContentsMargins(0, 0, 0, 0);
}

FormLine::~FormLine() = default;

void FormLine::addText(FormLabel *text)
{
    addChildWidget(text);
    addItem(new QWidgetItem(text));
}

void FormLine::addControl(QWidget *control)
{
    addChildWidget(control);
    addItem(new QWidgetItem(control));
}

void FormLine::setTextRoom(int width)
{
    m_textRoom = width;
    invalidate();
}

void FormLine::addItem(QLayoutItem *item)
{
    m_items.emplace_back(item);
    invalidate();
}

QLayoutItem *FormLine::itemAt(int index) const
{
    return index >= 0 && index < count() ? m_items[static_cast<size_t>(index)].get() : nullptr;
}

QLayoutItem *FormLine::takeAt(int index)
{
    if (index < 0 || index >= count())
        return nullptr;
    QLayoutItem *item = m_items[static_cast<size_t>(index)].release();
    m_items.erase(m_items.begin() + index);
    return item;
}

std::vector<QLayoutItem *> FormLine::shown(bool texts) const
{
    Items items;
    for (const auto &item : m_items) {
        // A label with a number is a control.
        const bool isText = label(item.get()) && label(item.get())->wordWrap();
        if (!item->isEmpty() && isText == texts)
            items.push_back(item.get());
    }
    return items;
}

FormLine::Plan FormLine::plan(int width) const
{
    Plan plan{.texts = shown(true), .controls = shown(false)};
    plan.controlsHeight = tallest(plan.controls);
    int natural = m_textRoom; // without any line break
    for (QLayoutItem *text : plan.texts)
        natural = std::max(natural, label(text)->naturalWidth());
    const int hint = widths(plan.controls, &QLayoutItem::sizeHint);
    const int least = std::min(hint, widths(plan.controls, &QLayoutItem::minimumSize));
    const int used = hint > 0 ? gap : 0;
    plan.controlsWidth = std::clamp(width - used - natural, least, hint);
    plan.textWidth = width - used - plan.controlsWidth;
    plan.isBelow = natural > 0 && plan.textWidth < std::min(natural, width / 2);
    if (plan.isBelow) {
        plan.controlsWidth = std::clamp(width, least, hint);
        plan.textWidth = width;
    }
    plan.textHeight = textHeight(plan.texts, plan.textWidth);
    return plan;
}

QSize FormLine::sizeHint() const
{
    int natural = 0;
    for (QLayoutItem *text : shown(true))
        natural = std::max(natural, text->sizeHint().width());
    const int width = natural + gap + widths(shown(false), &QLayoutItem::sizeHint);
    return {width, plan(width).height()};
}

QSize FormLine::minimumSize() const
{
    int width = widths(shown(false), &QLayoutItem::minimumSize);
    for (QLayoutItem *text : shown(true))
        width = std::max(width, text->minimumSize().width());
    // Heights follow the width.
    return {width, tallest(shown(false))};
}

int FormLine::heightForWidth(int width) const
{
    return plan(width).height();
}

void FormLine::setGeometry(const QRect &rectangle)
{
    QLayout::setGeometry(rectangle);
    const Plan plan = this->plan(rectangle.width());
    const auto lead = [this](int room, int height) {
        return m_alignment & Qt::AlignTop ? 0 : (room - height) / 2;
    };
    int y = rectangle.y() + (plan.isBelow ? 0 : lead(rectangle.height(), plan.textHeight));
    for (QLayoutItem *text : plan.texts) {
        const int height = heightOf(text, plan.textWidth);
        text->setGeometry({rectangle.x(), y, plan.textWidth, height});
        y += height + textGap;
    }
    const QRect row =
        plan.isBelow ? QRect(rectangle.x(), y - textGap + lineGap, rectangle.width(), plan.controlsHeight)
                     : rectangle;
    int missing = widths(plan.controls, &QLayoutItem::sizeHint) - plan.controlsWidth;
    int right = row.x() + row.width();
    for (auto control = plan.controls.rbegin(); control != plan.controls.rend(); ++control) {
        const QSize hint = (*control)->sizeHint();
        const int given =
            std::clamp(missing, 0, std::max(0, hint.width() - (*control)->minimumSize().width()));
        missing -= given;
        const QSize size(hint.width() - given, hint.height());
        right -= size.width();
        (*control)->setGeometry({QPoint(right, row.y() + lead(row.height(), size.height())), size});
        right -= controlGap;
    }
}

} // namespace tovi
