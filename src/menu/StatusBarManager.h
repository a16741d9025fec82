#pragma once

#include "base/Disposable.h"
#include "base/NotificationCenter.h"
#include "identity/AppInfo.h"
#include "platform/StatusBar.h"
#include "platform/Workspace.h"
#include "player/VideoPlayerManager.h"
#include "preferences/Preferences.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>
#include <vector>

class QFileDialog;

/// The item in the status bar and its menu: the helper's only permanent face. Whatever is clicked
/// goes to the player manager and to the shared preferences; titles, marks and what is enabled
/// follow the preferences, whoever changes them. Main thread only.
///
/// Where there is no status bar nothing is shown until one comes.
class StatusBarManager : public QObject {
    Q_OBJECT

public:
    /// What the menu asks of the application's delegate.
    struct Delegate {
        /// Asks the service what it offers; the answer goes to the delegate.
        std::function<void()> checkUpgrade;
        std::function<void()> terminate;
    };

    static StatusBarManager& shared();

    /// Borrows its collaborators. Shows nothing yet.
    StatusBarManager(Preferences& preferences,
        VideoPlayerManager& playerManager,
        Workspace& workspace,
        NotificationCenter& center,
        StatusBar& statusBar,
        const AppInfo& appInfo,
        const Bundle& bundle);
    ~StatusBarManager() override;

    /// Without one, the items that need it do nothing.
    void setDelegate(Delegate delegate) { m_delegate = std::move(delegate); }

    /// Builds the item and its menu, anew after a `teardown()`.
    void buildMenu();
    /// Takes the menu off its item and ends the observations of the preferences.
    void teardown();

    // -- actions, in the menu or not (StatusBarManagerActions.cpp)

    void screenDidChanged();
    void toggleVideoDesktop();
    void playPauseAction(QAction& sender);
    void showLocalFileWindow();
    void checkUpdates();
    void showMainWindowMenuItemAction();
    void hideDesktopIconAction();
    void uploadPlayerView();
    void mutePlayerViewAction(QAction& sender);
    void changeMonitorArray(const QAction& sender);
    void changeScreenIndex(const QAction& sender);
    void quitMenuItemAction();

protected:
    /// Keys in the open menu: Qt gives shortcuts to windows only.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// An item that is made when it is first asked for, and kept.
    using LazyItem = std::unique_ptr<QAction>;

    QSystemTrayIcon& barItem();
    QAction& toggleVideoDestopItem();
    QAction& playPauseItem();
    QAction& hideDesktopIconItem();
    QAction& muteItem();
    QAction& comboItem();
    QAction& dynamicItem();
    QAction& lonelyItem();
    QMenu& lonelyMenu();

    using Action = std::function<void(QAction& sender)>;
    QAction& item(LazyItem& item, const QString& title, Action action = {});
    /// With a mark that only this class sets.
    QAction& markedItem(LazyItem& item, const QString& title, Action action = {});
    /// One of the ways to use the monitors, of which exactly one is marked.
    QAction& arrangementItem(LazyItem& item, const QString& title, Action action);

    void observePreferences();
    void buildScreenMenu();
    void buildMainMenu();
    void showStatusItem();
    void rebuildLonelyMenu();
    void markArrangement();
    /// The player's monitor, also while all are in use: it is where a new choice starts from.
    void markMonitor();

    Preferences& m_preferences;
    VideoPlayerManager& m_playerManager;
    Workspace& m_workspace;
    NotificationCenter& m_center;
    StatusBar& m_statusBar;
    const AppInfo& m_appInfo;
    const Bundle& m_bundle;
    Delegate m_delegate;

    bool m_desktopIconIsHiden = false;
    std::vector<Disposable> m_observersDispose;
    std::vector<Disposable> m_screenObservers; // one more with every build, never removed

    QActionGroup m_arrangements{nullptr};
    QActionGroup m_monitors{nullptr};
    // Menus show items that they do not own, so they go before them.
    LazyItem m_toggleVideoDestopItem;
    LazyItem m_playPauseItem;
    LazyItem m_hideDesktopIconItem;
    LazyItem m_muteItem;
    LazyItem m_comboItem;
    LazyItem m_dynamicItem;
    LazyItem m_lonelyItem;
    LazyItem m_screenItem;
    LazyItem m_mainWindowItem;
    LazyItem m_localFileItem;
    LazyItem m_updatesItem;
    LazyItem m_quitItem;
    std::unique_ptr<QMenu> m_lonelyMenu;
    std::unique_ptr<QMenu> m_screenMenu;
    std::unique_ptr<QMenu> m_mainMenu;
    std::unique_ptr<QSystemTrayIcon> m_barItem;
    std::unique_ptr<QFileDialog> m_openPanel;

    QString m_openVideoTitle;
    QString m_closeVideoTitle;
    QString m_playTitle;
    QString m_pauseTitle;
};
