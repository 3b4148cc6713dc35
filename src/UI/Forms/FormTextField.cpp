// SPDX-License-Identifier: MIT
#include "UI/Forms/FormTextField.h"

#include <cmath>

#include <QAccessibleWidget>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>

#include "UI/Forms/FormStyle.h"
#include "UI/TextEditing.h"

namespace tovi {

namespace {

constexpr int naturalWidth = 190;
constexpr int textMargin = 5;
constexpr int toolkitMargin = 2; ///< besides, at both sides; text that is scrolled out shows in it
constexpr int caretWidth = 1;
constexpr int measuredDots = 64; ///< a single one has another width than those of a row

/// The toolkit tells every change of a password field's text to all who listen on the accessibility bus, as
/// it is typed. It does not where there is no text.
class SecretAccessible final : public QAccessibleWidget
{
public:
    explicit SecretAccessible(QWidget *field)
        : QAccessibleWidget(field, QAccessible::EditableText)
    {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.editable = true;
        state.passwordEdit = true;
        return state;
    }
};

QAccessibleInterface *makeAccessible(const QString &, QObject *object)
{
    auto *field = qobject_cast<FormTextField *>(object);
    return field && field->echoMode() == QLineEdit::Password ? new SecretAccessible(field) : nullptr;
}

} // namespace

FormTextField::FormTextField(const QString &placeholder, Content content, QWidget *parent)
    : QLineEdit(parent)
{
    if (content == Content::secret) {
        [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(makeAccessible), true);
        setEchoMode(Password);
    }
    setFont(FormStyle::font(FormStyle::bodySize));
    setPlaceholderText(placeholder);
    setFrame(false);
    setTextMargins(textMargin, 0, textMargin, 0);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    // The background is painted below.
    QPalette transparent;
    transparent.setColor(QPalette::Base, Qt::transparent);
    setPalette(transparent);
}

void FormTextField::showText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    setText(text);
    setCursorPosition(0);
}

void FormTextField::onEdit(std::function<void(const QString &)> edited)
{
    connect(this, &QLineEdit::textEdited, this, [this, edited = std::move(edited)](const QString &text) {
        m_text = text;
        edited(text);
    });
}

QSize FormTextField::sizeHint() const
{
    return {naturalWidth, std::max(fontMetrics().height() + 8, 26)};
}

QSize FormTextField::minimumSizeHint() const
{
    return {naturalWidth / 2, sizeHint().height()};
}

void FormTextField::keyPressEvent(QKeyEvent *event)
{
    // The toolkit waits for the clipboard's owner.
    if (event->matches(QKeySequence::Paste))
        perform(TextEditing::paste, *this);
    else if (isMeantForMenus(*event))
        event->ignore();
    else
        QLineEdit::keyPressEvent(event);
}

void FormTextField::mouseReleaseEvent(QMouseEvent *event)
{
    if (!pastesPrimarySelection(*event))
        QLineEdit::mouseReleaseEvent(event);
}

void FormTextField::contextMenuEvent(QContextMenuEvent *event)
{
    showEditMenu(*this, event->pos());
}

void FormTextField::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    if (echoMode() != Password)
        return;
    // Room for whole dots, so that none is cut however far the field is scrolled.
    const QChar dot(style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter, nullptr, this));
    const double step = QFontMetricsF(font()).horizontalAdvance(QString(measuredDots, dot)) / measuredDots;
    const int room = width() - 2 * textMargin - toolkitMargin - caretWidth;
    if (step > 0 && room > step)
        setTextMargins(textMargin, 0, textMargin + qRound(room - std::floor(room / step) * step), 0);
}

void FormTextField::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    FormStyle::paintField(painter, *this, hasFocus());
    painter.end();
    QLineEdit::paintEvent(event);
}

} // namespace tovi
