// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include <QMenu>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QSystemTrayIcon>
#include <QUuid>
#include <qcorotask.h>

#include "Capture/CaptureResult.h"
#include "Capture/OCRCapturer.h"
#include "Platform/Clock.h"
#include "Platform/Subscription.h"

namespace tovi {

class GlobalHotKey;
struct KeyEvent;
class ResultViewModel;

/// The coordinator: brings the program up and runs every flow from a trigger to a result panel. Main thread.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    AppDelegate();
    ~AppDelegate() override;

    void applicationDidFinishLaunching();
    /// Acts on the launch arguments; a second start hands its own over to the running program.
    void handleArguments(const QStringList &arguments);
    /// Stores what is pending.
    void applicationWillTerminate();

    void triggerCapture();
    void triggerOCR();
    void triggerInputTranslation();
    void openSettings();
    void checkForUpdates();

    /// Built anew whenever it is about to show.
    QMenu &statusMenu() const { return *m_statusMenu; }
    /// Null before the desktop has a place for it.
    const QSystemTrayIcon *statusItem() const { return m_statusItem.get(); }

    /// Starts a capture; `at` in points, origin bottom-left of the primary screen, y up.
    void performCapture(bool preferOCR, std::optional<QPointF> at);

private:
    /// The panel of an OCR in flight, once there is one.
    struct ProgressHolder
    {
        std::shared_ptr<ResultViewModel> model;
    };
    using Model = std::shared_ptr<ResultViewModel>;

    // Shortcuts
    void setupHotKeys();
    void registerHotKeys();
    void hotKeysChanged();
    void hotKeyRecordingChanged(const QVariantMap &userInfo);
    void languageChanged();

    // Key monitors
    void setupTextEditingMonitor();
    void setupDoubleCopyMonitor();
    void copyKeyPressed(const KeyEvent &event);

    // Menus
    void setupMainMenu();
    void setupStatusItem();
    void statusBarChanged();
    void rebuildMenu(QMenu *menu);
    std::unique_ptr<QMenu> makeApplicationMenu();
    std::unique_ptr<QMenu> makeEditMenu();
    void setupLanguageMenu(QMenu *menu);
    void selectLanguage(const QString &code);
    void quit();

    // Flows
    QCoro::Task<> runCapture(bool preferOCR, std::optional<QPointF> at, qint64 token);
    void captureFinished(const std::optional<CaptureResult> &result, const Model &progressModel);
    void abandonSlowCapture(qint64 token, const ProgressHolder &holder);
    QCoro::Task<> performRegionOCR(QRectF rect, qint64 token, std::optional<QString> appName);
    Model showOCRProgress(qint64 token, std::optional<QRectF> bounds, std::optional<QString> appName);
    /// Translates what the user has copied.
    QCoro::Task<> captureFromPasteboard();
    void showMessage(const QString &message);
    void present(const CaptureResult &capture, Model existingModel);
    void configure(const Model &model);
    void translate(const QString &text, const Model &model, const QUuid &providerID);
    QCoro::Task<> runTranslation(QString text, Model model, QUuid providerID, int number);
    /// Abandons what is under way: its outcome will be dropped.
    qint64 nextToken();
    bool isCurrent(qint64 token) const { return token == m_captureToken; }

    std::unique_ptr<QMenu> m_statusMenu;
    std::unique_ptr<QSystemTrayIcon> m_statusItem; ///< once the desktop has a place for it
    Subscription m_statusBar;
    std::unique_ptr<GlobalHotKey> m_captureHotKey;
    std::unique_ptr<GlobalHotKey> m_ocrHotKey;
    std::unique_ptr<GlobalHotKey> m_inputHotKey;
    Subscription m_keyMonitor;         ///< of the copy key, in other applications
    Subscription m_textEditingMonitor; ///< in the program's own windows
    Clock::Time m_lastCopyTime = Clock::distantPast();
    bool m_isCapturing = false;
    qint64 m_captureToken = 0;      ///< the generation of captures; a late result of an older one is dropped
    std::stop_source m_recognition; ///< of the present generation: nobody waits for an older one's
    bool m_hotKeysSuspended = false;
    Subscription m_watchdog;
    std::vector<Subscription> m_observers;
};

} // namespace tovi
