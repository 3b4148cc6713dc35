// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <X11/keysym.h>

#include "ChromiumArguments.h"
#include "Platform/Linux/BrowserIdentifiers.h"
#include "Platform/Linux/DevToolsScriptRunner.h"
#include "Platform/Workspace.h"
#include "Platform/X11/FrontWindow.h"

namespace tovi {
namespace {

const QString script = QStringLiteral(R"--(tell application id "org.chromium.Chromium"
    if (count of windows) is 0 then return ""
    try
        return (execute front window's active tab javascript "window.getSelection().toString()")
    on error
        return ""
    end try
end tell)--");

struct FrontWorkspace final : Workspace
{
    std::optional<RunningApplication> frontmostApplication() override
    {
        const auto details = front->details();
        if (!details)
            return std::nullopt;
        return RunningApplication{
            {}, browserIdentifier(details->hints.windowClass), details->window.processIdentifier};
    }
    QList<Screen> screens() override { return {}; }
    std::optional<Screen> mainScreen() override { return {}; }
    std::optional<QPointF> mouseLocation() override { return {}; }
    void open(const QString &) override {}
    std::shared_ptr<FrontWindow> front = std::make_shared<FrontWindow>();
};

class BrowserScriptDesktop : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(desktop.error(), QString()); }
    /// A page whose text selects itself, and whose scripts then tell lies about it.
    QString page(const QString &title, const QString &text) const
    {
        return desktop.writeFile(
            title + text + QStringLiteral(".html"),
            QStringLiteral("<!doctype html><meta charset=utf-8><title>%1</title><p>%2</p>"
                           "<script>getSelection().selectAllChildren(document.querySelector('p'));"
                           "window.getSelection = () => 'a lie'; document.hasFocus = () => true</script>")
                .arg(title, text));
    }
    QProcess *start(const QStringList &arguments)
    {
        return desktop.start(QStringLiteral("chromium"), chromiumArguments(desktop, arguments));
    }
    void expectText(const QString &expected)
    {
        std::optional<QString> text;
        EXPECT_TRUE(DesktopSession::eventually([&] { return (text = runner.run(script)) == expected; }))
            << expected.toStdString() << " but " << text.value_or(QStringLiteral("none")).toStdString();
    }
    DesktopSession desktop{{.accessibilityServices = false}};
    FrontWorkspace workspace;
    DevToolsScriptRunner runner{workspace, workspace.front};
};

TEST_F(BrowserScriptDesktop, TheActiveTabOfTheActiveWindowIsAsked)
{
    ASSERT_TRUE(start({QStringLiteral("--remote-debugging-port=0"),
                       page(QStringLiteral("First"), QStringLiteral("one")),
                       page(QStringLiteral("Second"), QStringLiteral("two")),
                       page(QStringLiteral("Same"), QStringLiteral("three"))}));
    const xcb_window_t left = desktop.waitForWindow(QStringLiteral("First"));
    ASSERT_TRUE(left);
    expectText(QStringLiteral("one"));
    desktop.pressKey(XK_2, {XK_Control_L});
    expectText(QStringLiteral("two"));
    desktop.pressKey(XK_l, {XK_Control_L}); // the address bar has the keyboard
    expectText(QStringLiteral("two"));
    desktop.pressKey(XK_3, {XK_Control_L});
    expectText(QStringLiteral("three"));

    ASSERT_TRUE(start({QStringLiteral("--new-window"), page(QStringLiteral("Same"), QStringLiteral("four")),
                       page(QStringLiteral("Fifth"), QStringLiteral("five"))}));
    expectText(QStringLiteral("four"));
    const xcb_window_t right = desktop.activeWindow();
    ASSERT_NE(right, left);
    desktop.activate(left);
    expectText(QStringLiteral("three"));
    desktop.activate(right);
    expectText(QStringLiteral("four"));
    desktop.pressKey(XK_2, {XK_Control_L});
    expectText(QStringLiteral("five"));
}

} // namespace
} // namespace tovi
