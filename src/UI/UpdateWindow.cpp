// SPDX-License-Identifier: MIT
#include "UI/UpdateWindow.h"

#include <algorithm>
#include <utility>

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPointer>
#include <QScreen>

#include "BundleInformation.h"
#include "Localization/UpdateTexts.h"
#include "Platform/Application.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "UI/EditableTextView.h"
#include "UI/Forms/FittedView.h"
#include "UI/Forms/FormButton.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/SymbolView.h"
#include "UI/Forms/TextFrame.h"
#include "UI/LogoView.h"
#include "UI/Spinner.h"

namespace tovi {

namespace {

using Phase = UpdateController::State::Phase;

// Points.
constexpr int viewWidth = 480;
constexpr int padding = 24;
constexpr int logoSide = 56;
constexpr int messageSize = 15;
constexpr int warningSize = 18;
constexpr int lowestNotes = 60;
constexpr int highestNotes = 260;
/// What the window needs besides the notes, with its title and the desktop's.
constexpr int roomForTheRest = 320;

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
    , m_warning(new SymbolView(warningSize))
    , m_message(new FormLabel(FormLabel::Role::strong))
    , m_spinner(new Spinner)
    , m_notesTitle(new FormLabel(FormLabel::Role::header))
    , m_notes(new EditableTextView)
    , m_notesFrame(new TextFrame(m_notes, lowestNotes, TextFrame::Margins::wide))
    , m_download(new FormButton({}, FormButton::Kind::prominent))
    , m_close(new FormButton({}))
{
    setAttribute(Qt::WA_DeleteOnClose);
    onClose = [] {
        Platform::current().application().setActivationPolicy(Application::ActivationPolicy::Accessory);
    };
    m_warning->setSymbol(QStringLiteral("exclamationmark.triangle.fill"), SymbolView::Tint::orange);
    m_message->setFont(FormStyle::font(messageSize, QFont::Medium));
    m_notes->setFont(FormStyle::font(FormStyle::bodySize));
    connect(m_notes, &EditableTextView::submitted, this, [this] { defaultButton()->click(); });
    connect(m_close, &QPushButton::clicked, this, &QWidget::close);
    connect(m_download, &QPushButton::clicked, this, [this] {
        if (const auto &item = m_controller.state->item)
            Platform::current().workspace().open(item->page.toString(QUrl::FullyEncoded));
        close();
    });

    auto *head = new QHBoxLayout;
    head->setSpacing(16);
    head->addWidget(new LogoView(logoSide), 0, Qt::AlignTop);
    head->addWidget(m_warning, 0, Qt::AlignVCenter);
    head->addWidget(m_message, 1);
    head->addWidget(m_spinner);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addStretch(1);
    buttons->addWidget(m_close);
    buttons->addWidget(m_download);
    auto *content = new FittedView(viewWidth);
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(padding, padding, padding, padding - 4);
    column->setSpacing(0);
    column->addLayout(head);
    column->addSpacing(18);
    column->addWidget(m_notesTitle);
    column->addSpacing(6);
    column->addWidget(m_notesFrame);
    column->addSpacing(18);
    column->addLayout(buttons);
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
    const bool isAvailable = state.phase == Phase::available;
    setWindowTitle(words.title + QStringLiteral(" – ") + BundleInformation::name());
    m_message->setText(message(state));
    m_warning->setVisible(state.phase == Phase::failed);
    m_spinner->setVisible(state.phase == Phase::checking);
    m_notesTitle->setText(words.notes);
    m_notes->setAccessibleName(words.notes);
    showNotes(isAvailable ? state.item->notes : QString());
    m_close->setText(words.close);
    m_download->setText(words.download);
    m_download->setVisible(isAvailable && !state.item->page.isEmpty());
    FormButton *usual = defaultButton();
    m_close->setKind(usual == m_close ? FormButton::Kind::prominent : FormButton::Kind::regular);
    if (std::exchange(m_shownDefault, usual) != usual)
        usual->setFocus(Qt::OtherFocusReason);
}

void UpdateWindow::showNotes(const QString &notes)
{
    const QScreen *screen = this->screen();
    const int highest = std::clamp((screen ? screen->availableGeometry().height() : 0) - roomForTheRest,
                                   lowestNotes, highestNotes);
    m_notes->setText(notes);
    m_notes->setReadOnly(true);
    m_notesFrame->setFixedHeight(
        std::clamp(m_notesFrame->heightFor(notes, viewWidth - 2 * padding), lowestNotes, highest));
    m_notesTitle->setVisible(!notes.isEmpty());
    m_notesFrame->setVisible(!notes.isEmpty());
}

FormButton *UpdateWindow::defaultButton() const
{
    return m_download->isHidden() ? m_close : m_download;
}

void UpdateWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        defaultButton()->click();
    else
        RegularWindow::keyPressEvent(event);
}

} // namespace tovi
