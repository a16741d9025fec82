#include "menu/StatusBarManager.h"

#include "base/Observe.h"
#include "menu/HelperIcon.h"
#include "platform/Application.h"
#include "platform/Screen.h"

#include <QCursor>
#include <QFileDialog>
#include <QGuiApplication>
#include <QKeyEvent>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What can be chosen by these keys, in the menu or in those below it.
QAction* findByShortcut(const QMenu& menu, const QKeySequence& keys)
{
    const auto actions = menu.actions();
    for (auto* const action : actions) {
        if (!action->isEnabled())
            continue;
        if (!action->shortcut().isEmpty() && action->shortcut() == keys)
            return action;
        if (const auto* const below = action->menu()) {
            if (auto* const found = findByShortcut(*below, keys))
                return found;
        }
    }
    return nullptr;
}

} // namespace

StatusBarManager& StatusBarManager::shared()
{
    static StatusBarManager manager(Preferences::shared(),
        VideoPlayerManager::shared(),
        Workspace::shared(),
        NotificationCenter::defaultCenter(),
        StatusBar::shared(),
        AppInfo::shared(),
        Bundle::main());
    return manager;
}

StatusBarManager::StatusBarManager(Preferences& preferences,
    VideoPlayerManager& playerManager,
    Workspace& workspace,
    NotificationCenter& center,
    StatusBar& statusBar,
    const AppInfo& appInfo,
    const Bundle& bundle)
    : m_preferences(preferences),
      m_playerManager(playerManager),
      m_workspace(workspace),
      m_center(center),
      m_statusBar(statusBar),
      m_appInfo(appInfo),
      m_bundle(bundle),
      m_openVideoTitle(tr("Open Video Wallpaper", "start/stop Video Desktop")),
      m_closeVideoTitle(tr("Close Video Wallpaper", "start/stop Video Desktop")),
      m_playTitle(tr("Play", "play/pause")),
      m_pauseTitle(tr("Pause", "pause play"))
{
    connect(&m_statusBar, &StatusBar::becameAvailable, this, &StatusBarManager::showStatusItem);
}

StatusBarManager::~StatusBarManager() = default;

// -- building

void StatusBarManager::buildMenu()
{
    m_screenObservers.push_back(m_center.addObserver(
        Application::didChangeScreenParametersNotification(), [this] { screenDidChanged(); }));
    observePreferences();
    item(m_mainWindowItem, tr("Main Window", "use to show main window"), [this](QAction&) {
        showMainWindowMenuItemAction();
    });
    // Not in the menu: what the panel chooses is not played.
    item(m_localFileItem, tr("Open local file", ""), [this](QAction&) { showLocalFileWindow(); });
    item(m_quitItem, tr("Quit", "quit application"), [this](QAction&) {
        quitMenuItemAction();
    }).setShortcut(Qt::CTRL | Qt::Key_Q);
    buildScreenMenu();
    buildMainMenu();
}

void StatusBarManager::observePreferences()
{
    const auto follow = [this](auto signal, auto handler) {
        m_observersDispose.push_back(observe(m_preferences, signal, handler));
    };
    follow(&Preferences::isPlayingChanged, [this](bool isPlaying) {
        playPauseItem().setText(isPlaying ? m_pauseTitle : m_playTitle);
    });
    follow(&Preferences::muteChanged,
        [this](bool) { muteItem().setChecked(m_playerManager.isMuted()); });
    follow(&Preferences::monitorArrangeChanged, [this](qint64) {
        markArrangement();
        markMonitor();
    });
    follow(&Preferences::screenIndexChanged, [this](qint64) { rebuildLonelyMenu(); });
    follow(&Preferences::isOpenPlayerChanged, [this](bool isOpen) {
        toggleVideoDestopItem().setText(isOpen ? m_closeVideoTitle : m_openVideoTitle);
        hideDesktopIconItem().setEnabled(isOpen);
        playPauseItem().setEnabled(isOpen);
        m_playerManager.setHideDesktopIcon(m_desktopIconIsHiden);
        hideDesktopIconItem().setChecked(m_desktopIconIsHiden);
    });
}

void StatusBarManager::buildScreenMenu()
{
    auto& screenItem = item(m_screenItem, tr("Screen", "title"));
    auto menu = std::make_unique<QMenu>(tr("Screen", "title"));
    menu->installEventFilter(this);
    lonelyItem().setMenu(&lonelyMenu());
    menu->addAction(&comboItem());
    menu->addAction(&dynamicItem());
    menu->addAction(&lonelyItem());
    screenItem.setMenu(menu.get());
    m_screenMenu = std::move(menu); // the one before goes when nothing shows it any more

    rebuildLonelyMenu();
    markArrangement();
}

void StatusBarManager::buildMainMenu()
{
    const bool isOpen = m_preferences.isOpenPlayer();
    auto menu = std::make_unique<QMenu>();
    menu->installEventFilter(this);
    menu->addAction(m_mainWindowItem.get());
    menu->addAction(m_appInfo.displayVersion())->setEnabled(false);
    menu->addAction(&item(m_updatesItem,
        tr("Check for Updates...", "Check Update"),
        [this](QAction&) { checkUpdates(); }));
    menu->addSeparator();
    toggleVideoDestopItem().setText(isOpen ? m_closeVideoTitle : m_openVideoTitle);
    menu->addAction(&toggleVideoDestopItem());
    playPauseItem().setText(m_preferences.isPlaying() ? m_pauseTitle : m_playTitle);
    playPauseItem().setEnabled(isOpen);
    menu->addAction(&playPauseItem());
    hideDesktopIconItem().setEnabled(isOpen);
    menu->addAction(&hideDesktopIconItem());
    muteItem().setChecked(m_playerManager.isMuted());
    menu->addAction(&muteItem());
    menu->addSeparator();
    if (Screen::screens().size() > 1) {
        menu->addAction(m_screenItem.get());
        menu->addSeparator();
    }
    menu->addAction(m_quitItem.get());
    m_mainMenu.swap(menu);
    showStatusItem(); // which takes the new menu before the one before goes
    if (menu)
        menu->clear(); // or what was exported of its items would stay
}

void StatusBarManager::showStatusItem()
{
    if (!m_mainMenu || !m_statusBar.isAvailable())
        return;
    auto& item = barItem();
    item.setContextMenu(m_mainMenu.get());
    item.setIcon(HelperIcon::statusBarIcon(m_bundle));
    item.show();
}

void StatusBarManager::teardown()
{
    if (m_statusBar.isAvailable())
        barItem().setContextMenu(nullptr);
    m_observersDispose.clear();
}

void StatusBarManager::rebuildLonelyMenu()
{
    auto& menu = lonelyMenu();
    menu.clear();
    const auto count = static_cast<int>(Screen::screens().size());
    for (int i = 0; i < count; ++i) {
        const auto number = QString::number(i + 1);
        auto* const screen = menu.addAction(number);
        if (i < 9)
            screen->setShortcut(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + i));
        screen->setData(i);
        screen->setCheckable(true);
        m_monitors.addAction(screen);
        connect(screen, &QAction::triggered, this, [this, screen] { changeScreenIndex(*screen); });
    }
    markMonitor();
}

void StatusBarManager::markArrangement()
{
    const auto type = static_cast<VideoPlayerScreenType>(
        m_playerManager.valueForKey(u"screenType"_s).toLongLong());
    comboItem().setChecked(type == VideoPlayerScreenType::combo);
    dynamicItem().setChecked(type == VideoPlayerScreenType::dynamic);
    lonelyItem().setChecked(type == VideoPlayerScreenType::lonely);
}

void StatusBarManager::markMonitor()
{
    const auto monitors = m_monitors.actions();
    for (auto* const monitor : monitors)
        monitor->setChecked(monitor->data().toLongLong() == m_playerManager.screenIndex());
}

bool StatusBarManager::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const QKeySequence keys(static_cast<QKeyEvent*>(event)->keyCombination());
        if (auto* const found = findByShortcut(*m_mainMenu, keys)) {
            m_mainMenu->close(); // and those below it
            found->trigger();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

// -- items

QSystemTrayIcon& StatusBarManager::barItem()
{
    if (!m_barItem) {
        m_barItem = std::make_unique<QSystemTrayIcon>();
        m_barItem->setToolTip(QGuiApplication::applicationDisplayName());
        // Panels open the menu themselves on one of the buttons; the other one does it, too.
        connect(m_barItem.get(),
            &QSystemTrayIcon::activated,
            this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    m_mainMenu->popup(QCursor::pos());
            });
    }
    return *m_barItem;
}

QAction& StatusBarManager::item(LazyItem& item, const QString& title, Action action)
{
    if (!item) {
        item = std::make_unique<QAction>(title);
        if (action) {
            connect(item.get(),
                &QAction::triggered,
                this,
                [sender = item.get(), action = std::move(action)] { action(*sender); });
        }
    }
    return *item;
}

QAction& StatusBarManager::markedItem(LazyItem& item, const QString& title, Action action)
{
    if (!item) {
        this->item(item,
                title,
                [action = std::move(action)](QAction& sender) {
                    sender.setChecked(!sender.isChecked()); // a click flips it first; undone
                    if (action)
                        action(sender);
                })
            .setCheckable(true);
    }
    return *item;
}

QAction& StatusBarManager::arrangementItem(LazyItem& item, const QString& title, Action action)
{
    auto& arrangement = this->item(item, title, std::move(action));
    arrangement.setCheckable(true);
    m_arrangements.addAction(&arrangement);
    return arrangement;
}

QAction& StatusBarManager::toggleVideoDestopItem()
{
    return item(
        m_toggleVideoDestopItem, m_closeVideoTitle, [this](QAction&) { toggleVideoDesktop(); });
}

QAction& StatusBarManager::playPauseItem()
{
    return item(
        m_playPauseItem, m_pauseTitle, [this](QAction& sender) { playPauseAction(sender); });
}

QAction& StatusBarManager::hideDesktopIconItem()
{
    return markedItem(m_hideDesktopIconItem,
        tr("Hide Desktop Icon", "hide desktop icon"),
        [this](QAction&) { hideDesktopIconAction(); });
}

QAction& StatusBarManager::muteItem()
{
    return markedItem(m_muteItem, tr("Mute", "Mute desktop video"), [this](QAction& sender) {
        mutePlayerViewAction(sender);
    });
}

QAction& StatusBarManager::comboItem()
{
    return arrangementItem(m_comboItem,
        tr("Integration", "make up all monitors into one player"),
        [this](QAction& sender) { changeMonitorArray(sender); });
}

QAction& StatusBarManager::dynamicItem()
{
    return arrangementItem(m_dynamicItem,
        tr("Mirror", "each monitor has same content"),
        [this](QAction& sender) { changeMonitorArray(sender); });
}

QAction& StatusBarManager::lonelyItem()
{
    // Some panels let people click what opens a menu; that changes nothing.
    return arrangementItem(m_lonelyItem,
        tr("Single", "Only play on one monitor"),
        [this](QAction&) { markArrangement(); });
}

QMenu& StatusBarManager::lonelyMenu()
{
    if (!m_lonelyMenu) {
        m_lonelyMenu = std::make_unique<QMenu>(tr("Single", "Only play on one monitor"));
        m_lonelyMenu->installEventFilter(this);
    }
    return *m_lonelyMenu;
}
