// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Platform.h"

#include <QStandardPaths>

#include <xcb/xcb.h>

#include "Platform/Linux/ApertiumFramework.h"
#include "Platform/Linux/AtspiAccessibility.h"
#include "Platform/Linux/CurlURLLoading.h"
#include "Platform/Linux/DevToolsScriptRunner.h"
#include "Platform/Linux/JsonUserDefaults.h"
#include "Platform/Linux/LinuxClock.h"
#include "Platform/Linux/LinuxSecretStore.h"
#include "Platform/Linux/OwnEnvironment.h"
#include "Platform/Linux/SpeechDispatcherSynthesizer.h"
#include "Platform/Linux/SyslogLog.h"
#include "Platform/Linux/TesseractRecognizer.h"
#include "Platform/Linux/XdgLoginItem.h"
#include "Platform/NotificationCenter.h"
#include "Platform/X11/ScreenGeometry.h"
#include "Platform/X11/X11Application.h"
#include "Platform/X11/X11EventMonitors.h"
#include "Platform/X11/X11HotKeyCenter.h"
#include "Platform/X11/X11Keyboard.h"
#include "Platform/X11/X11PanelHost.h"
#include "Platform/X11/X11Pasteboard.h"
#include "Platform/X11/X11RawInput.h"
#include "Platform/X11/X11ScreenCapture.h"
#include "Platform/X11/X11Workspace.h"
#include "Platform/X11/XcbPrimarySelection.h"

namespace tovi {

namespace {

QString configurationFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/tovi/defaults.json");
}

QString secretsFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/tovi/secrets.json");
}

/// The capture queue, which asks it last, ends before the services do.
std::shared_ptr<ActiveWindowSource> sharedWithoutOwnership(FrontWindow &frontWindow)
{
    return {std::shared_ptr<void>(), &frontWindow};
}

/// Accessibility coordinates are the program's turned over, so they scale as these do.
AccessibilityScale accessibilityScale()
{
    const auto primaryHeight = [](const ScreenGeometry &geometry) {
        return geometry.screens().isEmpty() ? 0 : geometry.screens().first().frame.height();
    };
    AccessibilityScale scale;
    scale.toPoints = [primaryHeight](const QRectF &pixels) {
        const ScreenGeometry geometry = ScreenGeometry::current();
        const QRectF points = geometry.fromNative(pixels);
        return QRectF(points.x(), primaryHeight(geometry) - points.y() - points.height(), points.width(),
                      points.height());
    };
    scale.toPixels = [primaryHeight](const QPointF &point) {
        const ScreenGeometry geometry = ScreenGeometry::current();
        return geometry.toNative(QPointF(point.x(), primaryHeight(geometry) - point.y()));
    };
    return scale;
}

} // namespace

/// In the order of their dependence.
struct X11Platform::Services
{
    SyslogLog systemLog;
    LinuxClock clock;
    NotificationCenter notificationCenter;
    X11Application application;
    JsonUserDefaults userDefaults{configurationFile(), systemLog};
    LinuxSecretStore secretStore{secretsFile(), systemLog};
    XdgLoginItem loginItem;
    X11Workspace workspace;
    X11RawInput rawInput;
    X11HotKeyCenter hotKeyCenter{rawInput};
    X11EventMonitors eventMonitors{rawInput, clock};
    X11Keyboard keyboard{workspace.frontWindow()};
    X11Pasteboard pasteboard;
    X11ScreenCapture screenCapture;
    TesseractRecognizer textRecognizer{clock};
    X11PanelHost panelHost{workspace.frontWindow(), clock, screenCapture};
    AtspiAccessibility accessibility{sharedWithoutOwnership(workspace.frontWindow()),
                                     std::make_shared<XcbPrimarySelection>(), accessibilityScale()};
    DevToolsScriptRunner scriptRunner{workspace, sharedWithoutOwnership(workspace.frontWindow())};
    ApertiumFramework translationFramework;
    CurlURLLoading urlLoading{clock, systemLog};
    SpeechDispatcherSynthesizer speechSynthesizer{clock, systemLog};
};

bool X11Platform::canConnect()
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool isOpen = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return isOpen;
}

void X11Platform::prepareEnvironment()
{
    OwnEnvironment::set("QT_QPA_PLATFORM", "xcb");
    // The toolkit looks only once, at its start, whether assistive programs are there; they may come later.
    OwnEnvironment::set("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    // The toolkit has the strokes of PostScript outlines thickened, as most Chinese, Japanese and Korean
    // fonts have them: beside other text, and on dark grounds above all, they look bold. This is a third of
    // it.
    if (!qEnvironmentVariableIsSet("FREETYPE_PROPERTIES"))
        OwnEnvironment::set("FREETYPE_PROPERTIES", "cff:darkening-parameters=500,120,1000,80,1667,80,2333,0");
}

X11Platform::X11Platform()
    : m_services(std::make_unique<Services>())
{
    m_services->application.setPanelHost(m_services->panelHost);
}

X11Platform::~X11Platform()
{
    endSharedInstances();
}

Accessibility &X11Platform::accessibility()
{
    return m_services->accessibility;
}

Application &X11Platform::application()
{
    return m_services->application;
}

Clock &X11Platform::clock()
{
    return m_services->clock;
}

EventMonitors &X11Platform::eventMonitors()
{
    return m_services->eventMonitors;
}

HotKeyCenter &X11Platform::hotKeyCenter()
{
    return m_services->hotKeyCenter;
}

Keyboard &X11Platform::keyboard()
{
    return m_services->keyboard;
}

LoginItem &X11Platform::loginItem()
{
    return m_services->loginItem;
}

NotificationCenter &X11Platform::notificationCenter()
{
    return m_services->notificationCenter;
}

PanelHost &X11Platform::panelHost()
{
    return m_services->panelHost;
}

Pasteboard &X11Platform::pasteboard()
{
    return m_services->pasteboard;
}

ScreenCapture &X11Platform::screenCapture()
{
    return m_services->screenCapture;
}

ScriptRunner &X11Platform::scriptRunner()
{
    return m_services->scriptRunner;
}

SecretStore &X11Platform::secretStore()
{
    return m_services->secretStore;
}

SpeechSynthesizer &X11Platform::speechSynthesizer()
{
    return m_services->speechSynthesizer;
}

SystemLog &X11Platform::systemLog()
{
    return m_services->systemLog;
}

TextRecognizer &X11Platform::textRecognizer()
{
    return m_services->textRecognizer;
}

TranslationFramework &X11Platform::translationFramework()
{
    return m_services->translationFramework;
}

URLLoading &X11Platform::urlLoading()
{
    return m_services->urlLoading;
}

UserDefaults &X11Platform::userDefaults()
{
    return m_services->userDefaults;
}

Workspace &X11Platform::workspace()
{
    return m_services->workspace;
}

} // namespace tovi
