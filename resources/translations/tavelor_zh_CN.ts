<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>AppDelegate</name>
    <message>
        <source>You&apos;re up to date</source>
        <comment>no newer version</comment>
        <translation>已是最新版本</translation>
    </message>
    <message>
        <source>%1 is currently the newest version</source>
        <comment>display version</comment>
        <translation>%1 是目前的最新版本</translation>
    </message>
</context>
<context>
    <name>CustomAlertWindowController</name>
    <message>
        <source>OK</source>
        <comment>the button that closes the alert</comment>
        <translation>好</translation>
    </message>
</context>
<context>
    <name>StatusBarManager</name>
    <message>
        <source>Open Video Wallpaper</source>
        <comment>start/stop Video Desktop</comment>
        <translation>打开视频壁纸</translation>
    </message>
    <message>
        <source>Close Video Wallpaper</source>
        <comment>start/stop Video Desktop</comment>
        <translation>关闭视频壁纸</translation>
    </message>
    <message>
        <source>Play</source>
        <comment>play/pause</comment>
        <translation>播放</translation>
    </message>
    <message>
        <source>Pause</source>
        <comment>pause play</comment>
        <translation>暂停</translation>
    </message>
    <message>
        <source>Main Window</source>
        <comment>use to show main window</comment>
        <translation>主窗口</translation>
    </message>
    <message>
        <source>Open local file</source>
        <translation>打开本地文件</translation>
    </message>
    <message>
        <source>Quit</source>
        <comment>quit application</comment>
        <translation>退出</translation>
    </message>
    <message>
        <source>Screen</source>
        <comment>title</comment>
        <translation>屏幕</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <comment>Check Update</comment>
        <translation>检查更新…</translation>
    </message>
    <message>
        <source>Hide Desktop Icon</source>
        <comment>hide desktop icon</comment>
        <translation>隐藏桌面图标</translation>
    </message>
    <message>
        <source>Mute</source>
        <comment>Mute desktop video</comment>
        <translation>静音</translation>
    </message>
    <message>
        <source>Integration</source>
        <comment>make up all monitors into one player</comment>
        <translation>跨所有屏幕</translation>
    </message>
    <message>
        <source>Mirror</source>
        <comment>each monitor has same content</comment>
        <translation>每个屏幕相同</translation>
    </message>
    <message>
        <source>Single</source>
        <comment>Only play on one monitor</comment>
        <translation>仅一个屏幕</translation>
    </message>
    <message>
        <source>Play</source>
        <comment>pause play</comment>
        <translation>播放</translation>
    </message>
    <message>
        <source>Pause</source>
        <comment>play</comment>
        <translation>暂停</translation>
    </message>
</context>
<context>
    <name>UpgradeWindowController</name>
    <message>
        <source>New Version Available</source>
        <comment>title of the window of an offer</comment>
        <translation>有新版本可用</translation>
    </message>
    <message>
        <source>Close</source>
        <comment>closes the window of an offer</comment>
        <translation>关闭</translation>
    </message>
    <message>
        <source>About the new version</source>
        <comment>the text of an offer</comment>
        <translation>关于新版本</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <comment>opens the download of the new version</comment>
        <translation>升级</translation>
    </message>
    <message>
        <source>Version: %1</source>
        <comment>version</comment>
        <translation>版本：%1</translation>
    </message>
</context>
</TS>
