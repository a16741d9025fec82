<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP">
<context>
    <name>AppDelegate</name>
    <message>
        <source>You&apos;re up to date</source>
        <comment>no newer version</comment>
        <translation>最新の状態です</translation>
    </message>
    <message>
        <source>%1 is currently the newest version</source>
        <comment>display version</comment>
        <translation>%1 は現在の最新バージョンです</translation>
    </message>
</context>
<context>
    <name>CustomAlertWindowController</name>
    <message>
        <source>OK</source>
        <comment>the button that closes the alert</comment>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>StatusBarManager</name>
    <message>
        <source>Open Video Wallpaper</source>
        <comment>start/stop Video Desktop</comment>
        <translation>動画の壁紙を表示</translation>
    </message>
    <message>
        <source>Close Video Wallpaper</source>
        <comment>start/stop Video Desktop</comment>
        <translation>動画の壁紙を閉じる</translation>
    </message>
    <message>
        <source>Play</source>
        <comment>play/pause</comment>
        <translation>再生</translation>
    </message>
    <message>
        <source>Pause</source>
        <comment>pause play</comment>
        <translation>一時停止</translation>
    </message>
    <message>
        <source>Main Window</source>
        <comment>use to show main window</comment>
        <translation>メインウインドウ</translation>
    </message>
    <message>
        <source>Open local file</source>
        <translation>ローカルファイルを開く</translation>
    </message>
    <message>
        <source>Quit</source>
        <comment>quit application</comment>
        <translation>終了</translation>
    </message>
    <message>
        <source>Screen</source>
        <comment>title</comment>
        <translation>画面</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <comment>Check Update</comment>
        <translation>アップデートを確認…</translation>
    </message>
    <message>
        <source>Hide Desktop Icon</source>
        <comment>hide desktop icon</comment>
        <translation>デスクトップのアイコンを隠す</translation>
    </message>
    <message>
        <source>Mute</source>
        <comment>Mute desktop video</comment>
        <translation>消音</translation>
    </message>
    <message>
        <source>Integration</source>
        <comment>make up all monitors into one player</comment>
        <translation>全画面にまたがる</translation>
    </message>
    <message>
        <source>Mirror</source>
        <comment>each monitor has same content</comment>
        <translation>各画面に同じ映像</translation>
    </message>
    <message>
        <source>Single</source>
        <comment>Only play on one monitor</comment>
        <translation>1 台のみ</translation>
    </message>
    <message>
        <source>Play</source>
        <comment>pause play</comment>
        <translation>再生</translation>
    </message>
    <message>
        <source>Pause</source>
        <comment>play</comment>
        <translation>一時停止</translation>
    </message>
</context>
<context>
    <name>UpgradeWindowController</name>
    <message>
        <source>New Version Available</source>
        <comment>title of the window of an offer</comment>
        <translation>新しいバージョンがあります</translation>
    </message>
    <message>
        <source>Close</source>
        <comment>closes the window of an offer</comment>
        <translation>閉じる</translation>
    </message>
    <message>
        <source>About the new version</source>
        <comment>the text of an offer</comment>
        <translation>新しいバージョンについて</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <comment>opens the download of the new version</comment>
        <translation>アップグレード</translation>
    </message>
    <message>
        <source>Version: %1</source>
        <comment>version</comment>
        <translation>バージョン: %1</translation>
    </message>
</context>
</TS>
