#include "menu/StatusBarManager.h"

#include "base/Observe.h"
#include "menu/StatusBarImage.h"
#include "platform/Application.h"
#include "platform/Screen.h"

#include <QCursor>
#include <QFileDialog>
#include <QKeyEvent>

#include <algorithm>
#include <utility>

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
        comboItem().setChecked(screenType() == VideoPlayerScreenType::combo);
        dynamicItem().setChecked(screenType() == VideoPlayerScreenType::dynamic);
        lonelyItem().setChecked(screenType() == VideoPlayerScreenType::lonely);
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
    lonelyItem().setMenu(&lonelyMenu());
    menu->addAction(&comboItem());
    menu->addAction(&dynamicItem());
    menu->addAction(&lonelyItem());
    screenItem.setMenu(menu.get());
    m_screenMenu = std::move(menu); // the one before goes when nothing shows it any more

    rebuildLonelyMenu();
    dynamicItem().setChecked(screenType() == VideoPlayerScreenType::dynamic);
    comboItem().setChecked(screenType() == VideoPlayerScreenType::combo);
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
    if (Screen::screens().size() > 1)
        menu->addAction(m_screenItem.get());
    menu->addSeparator();
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
    item.setIcon(StatusBarImage::load(m_bundle));
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
        screen->setChecked(i == m_playerManager.screenIndex());
        connect(screen, &QAction::triggered, this, [this, screen] { changeScreenIndex(*screen); });
    }
}

bool StatusBarManager::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && watched == m_mainMenu.get()) {
        const QKeySequence keys(static_cast<QKeyEvent*>(event)->keyCombination());
        const auto actions = m_mainMenu->actions();
        const auto found = std::ranges::find_if(actions, [&keys](const QAction* action) {
            return action->isEnabled() && !action->shortcut().isEmpty() &&
                   action->shortcut() == keys;
        });
        if (found != actions.end()) {
            m_mainMenu->close();
            (*found)->trigger();
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
        m_barItem->setToolTip(QStringLiteral("TavelorHelper"));
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
    return markedItem(m_comboItem,
        tr("Integration", "make up all monitors into one player"),
        [this](QAction& sender) { changeMonitorArray(sender); });
}

QAction& StatusBarManager::dynamicItem()
{
    return markedItem(m_dynamicItem,
        tr("Mirror", "each monitor has same content"),
        [this](QAction& sender) { changeMonitorArray(sender); });
}

QAction& StatusBarManager::lonelyItem()
{
    return markedItem(m_lonelyItem, tr("Single", "Only play on one monitor"));
}

QMenu& StatusBarManager::lonelyMenu()
{
    if (!m_lonelyMenu)
        m_lonelyMenu = std::make_unique<QMenu>(tr("Single", "Only play on one monitor"));
    return *m_lonelyMenu;
}

VideoPlayerScreenType StatusBarManager::screenType() const
{
    return static_cast<VideoPlayerScreenType>(
        m_playerManager.valueForKey(QStringLiteral("screenType")).toLongLong());
}
