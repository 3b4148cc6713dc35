// SPDX-License-Identifier: MIT
#include "DemoStage.h"

#include <X11/keysym.h>

#include "AccessibleTree.h"
#include "DemoSettings.h"

namespace tovi {

DemoStage::DemoStage(const QString &tovi, const QStringList &lines, const QJsonObject &engine,
                     const QStringList &environment)
    : m_error(m_desktop.error())
{
    if (!m_error.isEmpty())
        return;
    writeDemoSettings(m_desktop, engine);
    const QString file = m_desktop.writeFile(QStringLiteral("letter.txt"), lines.join(u'\n') + u'\n');
    if (m_desktop.start(QStringLiteral("mousepad"), {file}))
        m_editor = m_desktop.waitForWindow(QStringLiteral("letter.txt"));
    if (!m_editor) {
        m_error = QStringLiteral("the editor did not appear");
        return;
    }
    m_program = m_desktop.start(tovi, {}, QStringList(environment) << m_trace.environment());
    m_trace.programStarted();
    if (!m_program || !m_trace.next("ready"))
        m_error = QStringLiteral("Tovi did not start");
}

std::optional<DemoStage::Press> DemoStage::pressShortcut()
{
    m_trace.clear();
    const qint64 pressed = m_desktop.pressKeyTimed(XK_d, XK_Alt_L);
    const auto captured = m_trace.next("captured");
    const auto panel = captured ? m_trace.next("panelPainted") : std::nullopt;
    const auto text = panel ? m_trace.next("textPainted") : std::nullopt;
    if (!text || text->numbers.value("failed") || captured->numbers.value("source") < 0)
        return std::nullopt;
    const auto since = [pressed](const TraceReader::Mark &mark) {
        return double(mark.nanoseconds - pressed) / 1e6;
    };
    return Press{since(*panel), since(*text), captured->numbers.value("source")};
}

std::optional<DemoStage::Press> DemoStage::translateLine(int line)
{
    const QRect area = m_desktop.geometry(m_editor);
    for (int attempt = 0; attempt < 5; ++attempt) {
        m_desktop.click(area.center());
        m_desktop.pressKey(XK_Home, {XK_Control_L});
        for (int i = 0; i < line; ++i)
            m_desktop.pressKey(XK_Down);
        m_desktop.pressKey(XK_End, {XK_Shift_L});
        m_desktop.movePointer(area.topLeft() + QPoint(40, 120));
        DesktopSession::rest(std::chrono::milliseconds(300));
        if (const auto press = pressShortcut())
            return press;
        dismiss();
    }
    return std::nullopt;
}

DemoStage::Texts DemoStage::texts() const
{
    QStringList found;
    for (const auto &node : AccessibleTree::read(m_program->processId())) {
        if (!node.text.isEmpty() && node.role != QLatin1String("label"))
            found << node.text;
    }
    return {found.value(0), found.value(1)};
}

bool DemoStage::shows(const std::function<bool(const QString &)> &condition) const
{
    return DesktopSession::eventually([&] { return condition(texts().translation); },
                                      std::chrono::seconds(20));
}

bool DemoStage::dismiss() const
{
    // A panel is painted a moment before it gets the keyboard.
    DesktopSession::eventually([&] { return m_desktop.activeWindow() != m_editor; }, std::chrono::seconds(5));
    m_desktop.pressKey(XK_Escape);
    return DesktopSession::eventually([&] { return m_desktop.activeWindow() == m_editor; },
                                      std::chrono::seconds(10));
}

bool DemoStage::saveScreenshot(const QString &path) const
{
    return m_desktop.screenshot().save(path);
}

} // namespace tovi
