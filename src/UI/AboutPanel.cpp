// SPDX-License-Identifier: MIT
#include "UI/AboutPanel.h"

#include <QIcon>
#include <QLabel>
#include <QPointer>
#include <QShortcut>
#include <QVBoxLayout>

#include "BundleInformation.h"
#include "Localization.h"
#include "Platform/Platform.h"
#include "UI/RegularWindow.h"

namespace tovi::AboutPanel {

namespace {

constexpr int logoSide = 96;
constexpr int titlePixels = 22;

struct Holder
{
    QPointer<RegularWindow> window;
    ~Holder() { delete window; }
};

RegularWindow *makeWindow()
{
    auto *window = new RegularWindow(RegularWindow::Style::fixed);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(Localization::shared().t(Str::menuAbout));
    auto *logo = new QLabel;
    logo->setPixmap(QIcon(QStringLiteral(":/tovi/ToviLogo.svg")).pixmap(logoSide, logoSide));
    auto *name = new QLabel(BundleInformation::name());
    QFont font = name->font();
    font.setPixelSize(titlePixels);
    font.setWeight(QFont::DemiBold);
    name->setFont(font);
    auto *versionLine = new QLabel(
        formatted(Localization::shared().t(Str::aboutVersionFormat), {BundleInformation::versionText()}));
    versionLine->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    versionLine->setContextMenuPolicy(Qt::NoContextMenu); // the toolkit's speaks English
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(48, 24, 48, 28);
    for (QLabel *line : {logo, name, versionLine})
        layout->addWidget(line, 0, Qt::AlignHCenter);
    window->setCentralWidget(content);
    QObject::connect(new QShortcut(QKeySequence::Cancel, window), &QShortcut::activated, window,
                     &QWidget::close);
    return window;
}

} // namespace

void orderFront()
{
    auto &holder = Platform::current().shared<Holder>();
    if (!holder.window)
        holder.window = makeWindow();
    holder.window->makeKeyAndOrderFront();
}

} // namespace tovi::AboutPanel
