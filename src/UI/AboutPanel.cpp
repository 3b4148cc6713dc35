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

namespace tovi::AboutPanel {

namespace {

constexpr int logoSide = 96;
constexpr int titlePixels = 22;

struct Holder
{
    QPointer<QWidget> window;
    ~Holder() { delete window; }
};

QWidget *makeWindow()
{
    auto *window = new QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                            Qt::WindowCloseButtonHint);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowIcon(QIcon(QStringLiteral(":/tovi/ToviLogo.svg")));
    window->setWindowTitle(Localization::shared().t(Str::menuAbout));
    auto *logo = new QLabel;
    logo->setPixmap(QIcon(QStringLiteral(":/tovi/ToviLogo.svg")).pixmap(logoSide, logoSide));
    auto *name = new QLabel(BundleInformation::name());
    QFont font = name->font();
    font.setPixelSize(titlePixels);
    font.setWeight(QFont::DemiBold);
    name->setFont(font);
    const QString version =
        BundleInformation::shortVersion() + QStringLiteral(" (") + BundleInformation::version() + u')';
    auto *versionLine = new QLabel(formatted(Localization::shared().t(Str::aboutVersionFormat), {version}));
    versionLine->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto *layout = new QVBoxLayout(window);
    layout->setContentsMargins(48, 24, 48, 28);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    for (QLabel *line : {logo, name, versionLine})
        layout->addWidget(line, 0, Qt::AlignHCenter);
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
    holder.window->show();
    holder.window->raise();
    holder.window->activateWindow();
}

} // namespace tovi::AboutPanel
