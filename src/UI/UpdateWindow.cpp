// SPDX-License-Identifier: MIT
#include "UI/UpdateWindow.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include "BundleInformation.h"
#include "Localization/UpdateTexts.h"
#include "Platform/Application.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "UI/TextEditing.h"

namespace tovi {

namespace {

using Phase = UpdateController::State::Phase;
constexpr int messageWidth = 440;
constexpr int notesHeight = 180;

UpdateTexts texts()
{
    return UpdateTexts::in(Localization::shared().resolvedLanguage());
}

QString reason(const UpdateController::State &state)
{
    using enum UpdateController::Failure;
    const UpdateTexts words = texts();
    switch (state.failure) {
    case switchedOff:
        return words.switchedOff;
    case noFeed:
        return words.noFeed;
    case insecure:
        return words.insecure;
    case unreachable:
        return state.httpStatus ? words.unreachable + QStringLiteral(" (HTTP %1)").arg(state.httpStatus)
                                : words.unreachable;
    case unreadable:
        return words.unreadable;
    }
    return {};
}

QString message(const UpdateController::State &state)
{
    const UpdateTexts words = texts();
    switch (state.phase) {
    case Phase::idle:
    case Phase::checking:
        return words.checking;
    case Phase::upToDate:
        return formatted(words.upToDate, {BundleInformation::shortVersion()});
    case Phase::available:
        return formatted(words.available, {state.item->displayVersion(), BundleInformation::shortVersion()});
    case Phase::failed:
        return reason(state);
    }
    return {};
}

/// Shows the window whenever the updater wants to be seen.
struct Presenter
{
    Presenter()
        : attention(Updater::controller().wantsAttention.subscribe([this] { present(); }))
    {}
    ~Presenter() { delete window; }

    void present()
    {
        if (!window)
            window = new UpdateWindow(Updater::controller());
        Platform::current().application().setActivationPolicy(Application::ActivationPolicy::Regular);
        window->makeKeyAndOrderFront();
    }

    QPointer<UpdateWindow> window;
    Subscription attention;
};

} // namespace

void UpdateWindow::checkForUpdates()
{
    Platform::current().shared<Presenter>();
    Updater::controller().checkForUpdates();
}

UpdateWindow::UpdateWindow(UpdateController &controller)
    : RegularWindow(Style::fixed)
    , m_controller(controller)
    , m_message(new QLabel)
    , m_notes(new QPlainTextEdit)
    , m_download(new QPushButton)
    , m_close(new QPushButton)
{
    setAttribute(Qt::WA_DeleteOnClose);
    onClose = [] {
        Platform::current().application().setActivationPolicy(Application::ActivationPolicy::Accessory);
    };
    // The feed is not ours: whatever it says is text.
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_notes->setReadOnly(true);
    m_notes->setFixedHeight(notesHeight);
    m_notes->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_notes, &QWidget::customContextMenuRequested, m_notes,
            [this](const QPoint &at) { showEditMenu(*m_notes, at); });
    connect(m_close, &QPushButton::clicked, this, &QWidget::close);
    connect(m_download, &QPushButton::clicked, this, [this] {
        if (const auto &item = m_controller.state->item)
            Platform::current().workspace().open(item->page.toString(QUrl::FullyEncoded));
        close();
    });
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_close);
    buttons->addWidget(m_download);
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(20, 20, 20, 20);
    layout->setSpacing(14);
    layout->setSizeConstraint(QLayout::SetFixedSize); // a main window does not ask for the height of a width
    m_message->setFixedWidth(messageWidth);
    layout->addWidget(m_message);
    layout->addWidget(m_notes);
    layout->addLayout(buttons);
    setCentralWidget(content);

    const auto later = [this] {
        QMetaObject::invokeMethod(this, &UpdateWindow::refresh, Qt::QueuedConnection);
    };
    m_observers.push_back(controller.onWillChange(later));
    m_observers.push_back(Platform::current().notificationCenter().observe(
        Localization::languageChangedNotification, [later](const QVariantMap &) { later(); }));
    refresh();
}

void UpdateWindow::refresh()
{
    const UpdateController::State &state = m_controller.state;
    const UpdateTexts words = texts();
    setWindowTitle(words.title + QStringLiteral(" – ") + BundleInformation::name());
    m_message->setText(message(state));
    const bool isAvailable = state.phase == Phase::available;
    m_notes->setAccessibleName(words.notes);
    const QString notes = isAvailable ? state.item->notes : QString();
    if (notes != m_shownNotes)
        m_notes->setPlainText(m_shownNotes = notes);
    m_notes->setVisible(!notes.isEmpty());
    m_close->setText(words.close);
    m_download->setText(words.download);
    m_download->setVisible(isAvailable && !state.item->page.isEmpty());
    QPushButton *usual = m_download->isHidden() ? m_close : m_download;
    if (m_notes->isHidden() || focusWidget() != m_notes)
        usual->setFocus();
}

void UpdateWindow::keyPressEvent(QKeyEvent *event)
{
    auto *button = qobject_cast<QPushButton *>(focusWidget());
    if (event->key() == Qt::Key_Escape)
        close();
    else if (button && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        button->click();
    else
        RegularWindow::keyPressEvent(event);
}

} // namespace tovi
