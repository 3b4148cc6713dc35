// SPDX-License-Identifier: MIT
#include "UI/PermissionRows.h"

#include <functional>

#include <QBoxLayout>
#include <QEvent>

#include "Localization.h"
#include "Platform/Accessibility.h"
#include "Platform/Platform.h"
#include "Platform/ScreenCapture.h"
#include "Platform/SystemPreferences.h"
#include "Platform/Workspace.h"
#include "UI/Forms/FormButton.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormLine.h"
#include "UI/Forms/SymbolView.h"

namespace tovi {

using namespace std::chrono_literals;

namespace {

QString t(Str key)
{
    return Localization::shared().t(key);
}

} // namespace

class PermissionRow final : public QWidget
{
public:
    PermissionRow(Str title, Str detail, PermissionRows::Buttons buttons, const QString &settingsPage,
                  const std::function<void()> &request)
        : m_buttons(buttons)
        , m_status(new SymbolView(17))
        , m_open(new FormButton(t(Str::openSettings), FormButton::Kind::small))
    {
        const Qt::Alignment place =
            buttons == PermissionRows::Buttons::hideWhenGranted ? Qt::AlignTop : Qt::AlignVCenter;
        auto *line = new QHBoxLayout(this);
        line->setContentsMargins(0, 0, 0, 0);
        line->setSpacing(10);
        line->addWidget(m_status, 0, place);
        auto *rest = new FormLine(place);
        line->addLayout(rest, 1);
        rest->addText(new FormLabel(FormLabel::Role::strong, t(title)));
        rest->addText(new FormLabel(FormLabel::Role::caption, t(detail)));
        // Several buttons have the same text: the name tells whose each is.
        const auto name = [&](Str button) { return t(button) + QStringLiteral(": ") + t(title); };
        if (request) {
            m_request = new FormButton(t(Str::request), FormButton::Kind::small);
            m_request->setAccessibleName(name(Str::request));
            connect(m_request, &QPushButton::clicked, this, request);
            rest->addControl(m_request);
        }
        m_open->setAccessibleName(name(Str::openSettings));
        connect(m_open, &QPushButton::clicked, this,
                [settingsPage] { Platform::current().workspace().open(settingsPage); });
        rest->addControl(m_open);
        setAccessibleName(t(title));
    }

    /// None: nobody can tell.
    void setGranted(std::optional<bool> granted)
    {
        if (!granted)
            m_status->setSymbol(QStringLiteral("questionmark.circle.fill"), SymbolView::Tint::orange,
                                QStringLiteral("?"));
        else if (*granted)
            m_status->setSymbol(QStringLiteral("checkmark.circle.fill"), SymbolView::Tint::green,
                                QStringLiteral("✓"));
        else
            m_status->setSymbol(QStringLiteral("xmark.circle.fill"), SymbolView::Tint::red,
                                QStringLiteral("✗"));
        const bool isGranted = granted.value_or(false);
        if (m_request)
            m_request->setVisible(!isGranted);
        m_open->setVisible(!isGranted || m_buttons == PermissionRows::Buttons::keepOpenSettings);
    }

private:
    const PermissionRows::Buttons m_buttons;
    SymbolView *m_status;
    FormButton *m_request = nullptr;
    FormButton *m_open;
};

PermissionRows::PermissionRows(Buttons buttons, QObject *owner)
    : QObject(owner)
    , m_accessibility(new PermissionRow(Str::accessibilityPerm, Str::accessibilityPermDesc, buttons,
                                        SystemPreferences::accessibility,
                                        [this] {
                                            Platform::current().accessibility().requestTrust();
                                            refreshNowAndLater();
                                        }))
    , m_screenRecording(new PermissionRow(Str::screenPerm, Str::screenPermDesc, buttons,
                                          SystemPreferences::screenCapture,
                                          [this] {
                                              Platform::current().screenCapture().requestAccess();
                                              refreshNowAndLater();
                                          }))
    , m_automation(new PermissionRow(Str::automationPerm, Str::automationPermDesc, buttons,
                                     SystemPreferences::automation, {}))
{
    m_automation->setGranted(std::nullopt);
    m_accessibility->installEventFilter(this);
    refresh();
}

QList<QWidget *> PermissionRows::widgets() const
{
    return {m_accessibility, m_screenRecording, m_automation};
}

void PermissionRows::refresh()
{
    m_accessibility->setGranted(Platform::current().accessibility().isProcessTrusted());
    m_screenRecording->setGranted(Platform::current().screenCapture().preflightAccess());
}

void PermissionRows::refreshNowAndLater()
{
    refresh();
    m_laterRefresh = Platform::current().clock().after(500ms, [this] { refresh(); });
}

bool PermissionRows::eventFilter(QObject *watched, QEvent *event)
{
    // Whoever comes back from the desktop's settings sees what has changed there.
    if (event->type() == QEvent::Show || event->type() == QEvent::WindowActivate)
        refreshNowAndLater();
    return QObject::eventFilter(watched, event);
}

} // namespace tovi
