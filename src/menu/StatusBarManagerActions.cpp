#include "menu/StatusBarManager.h"

#include <QFileDialog>

namespace {

const auto companionIdentifier = QStringLiteral("com.zemra.tavelor.macOS");

} // namespace

void StatusBarManager::screenDidChanged()
{
    rebuildLonelyMenu();
}

void StatusBarManager::toggleVideoDesktop()
{
    const bool opens = !m_preferences.isOpenPlayer();
    if (opens)
        m_playerManager.openPlayer();
    else
        m_playerManager.closePlayer();
    m_preferences.setIsOpenPlayer(opens);
    // It plays, so it is not paused any more: the same as when another program opens it.
    if (opens && !m_preferences.isPlaying())
        m_preferences.setIsPlaying(true);
}

void StatusBarManager::playPauseAction(QAction& sender)
{
    if (m_preferences.isPlaying()) {
        sender.setText(tr("Play", "pause play"));
        m_playerManager.setPlaying(false);
    } else {
        sender.setText(tr("Pause", "play"));
        m_playerManager.setPlaying(true);
    }
    m_preferences.setIsPlaying(!m_preferences.isPlaying());
}

void StatusBarManager::showLocalFileWindow()
{
    m_openPanel = std::make_unique<QFileDialog>();
    m_openPanel->setFileMode(QFileDialog::ExistingFile);
    m_openPanel->setNameFilters({QStringLiteral("*.mp4 *.mov")});
    connect(m_openPanel.get(), &QFileDialog::accepted, this, [this] {
        m_playerManager.setPlaying(true);
    });
    m_openPanel->show();
}

void StatusBarManager::checkUpdates()
{
    if (m_delegate.checkUpgrade)
        m_delegate.checkUpgrade();
}

void StatusBarManager::showMainWindowMenuItemAction()
{
    m_workspace.launchApplication(companionIdentifier);
}

void StatusBarManager::hideDesktopIconAction()
{
    m_desktopIconIsHiden = !m_desktopIconIsHiden;
    m_playerManager.setHideDesktopIcon(m_desktopIconIsHiden);
    hideDesktopIconItem().setChecked(m_desktopIconIsHiden);
}

void StatusBarManager::uploadPlayerView()
{
    m_playerManager.applyWindowLevelToAll();
}

void StatusBarManager::mutePlayerViewAction(QAction& sender)
{
    m_playerManager.setIsMuted(!sender.isChecked());
    sender.setChecked(!sender.isChecked());
    m_preferences.setMute(sender.isChecked());
}

void StatusBarManager::changeMonitorArray(const QAction& sender)
{
    const auto type = &sender == m_comboItem.get() ? VideoPlayerScreenType::combo
                                                   : VideoPlayerScreenType::dynamic;
    m_playerManager.setScreenType(type);
    m_playerManager.setScreenIndex(0);
    m_playerManager.rebuildWindows();
    m_preferences.setMonitorArrange(static_cast<qint64>(type));
}

void StatusBarManager::changeScreenIndex(const QAction& sender)
{
    const auto index = sender.data().toLongLong(); // the sender does not survive the change
    m_playerManager.setScreenType(VideoPlayerScreenType::lonely);
    m_playerManager.setScreenIndex(index);
    m_playerManager.rebuildWindows();
    m_preferences.setMonitorArrange(static_cast<qint64>(VideoPlayerScreenType::lonely));
    m_preferences.setScreenIndex(index);
}

void StatusBarManager::quitMenuItemAction()
{
    if (m_delegate.terminate)
        m_delegate.terminate();
}
