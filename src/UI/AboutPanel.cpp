// SPDX-License-Identifier: MIT
#include "UI/AboutPanel.h"

#include <QIcon>
#include <QLabel>
#include <QPointer>
#include <QShortcut>
#include <QVBoxLayout>

#include "BundleInformation.h"
#include "Localization.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "UI/RegularWindow.h"

namespace tovi::AboutPanel {

namespace {

constexpr int logoSide = 96;
constexpr int titlePixels = 22;

struct Holder
{
    QPointer<RegularWindow> window;
    QPointer<QLabel> version;
    Subscription languageObserver = Platform::current().notificationCenter().observe(
        Localization::languageChangedNotification, [this](const QVariantMap &) { relabel(); });
    ~Holder() { delete window; }

    void makeWindow();
    void relabel();
};

void Holder::makeWindow()
{
    window = new RegularWindow(RegularWindow::Style::fixed);
    window->setAttribute(Qt::WA_DeleteOnClose);
    auto *logo = new QLabel;
    logo->setPixmap(QIcon(QStringLiteral(":/tovi/ToviLogo.svg")).pixmap(logoSide, logoSide));
    auto *name = new QLabel(BundleInformation::name());
    QFont font = name->font();
    font.setPixelSize(titlePixels);
    font.setWeight(QFont::DemiBold);
    name->setFont(font);
    version = new QLabel;
    version->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    version->setContextMenuPolicy(Qt::NoContextMenu); // the toolkit's speaks English
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(48, 24, 48, 28);
    for (QLabel *line : {logo, name, version.get()})
        layout->addWidget(line, 0, Qt::AlignHCenter);
    window->setCentralWidget(content);
    QObject::connect(new QShortcut(QKeySequence::Cancel, window), &QShortcut::activated, window,
                     &QWidget::close);
    relabel();
}

void Holder::relabel()
{
    if (!window)
        return;
    const Localization &texts = Localization::shared();
    window->setWindowTitle(texts.t(Str::menuAbout));
    version->setText(formatted(texts.t(Str::aboutVersionFormat), {BundleInformation::versionText()}));
}

} // namespace

void orderFront()
{
    auto &holder = Platform::current().shared<Holder>();
    if (!holder.window)
        holder.makeWindow();
    holder.window->makeKeyAndOrderFront();
}

} // namespace tovi::AboutPanel
