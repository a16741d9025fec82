<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AppDelegate</name>
    <message>
        <source>You&apos;re up to date</source>
        <comment>no newer version</comment>
        <translation>Alles auf dem neuesten Stand</translation>
    </message>
    <message>
        <source>%1 is currently the newest version</source>
        <comment>display version</comment>
        <translation>%1 ist zurzeit die neueste Version</translation>
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
        <translation>Video-Hintergrund einschalten</translation>
    </message>
    <message>
        <source>Close Video Wallpaper</source>
        <comment>start/stop Video Desktop</comment>
        <translation>Video-Hintergrund ausschalten</translation>
    </message>
    <message>
        <source>Play</source>
        <comment>play/pause</comment>
        <translation>Wiedergeben</translation>
    </message>
    <message>
        <source>Pause</source>
        <comment>pause play</comment>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Main Window</source>
        <comment>use to show main window</comment>
        <translation>Hauptfenster</translation>
    </message>
    <message>
        <source>Open local file</source>
        <translation>Lokale Datei öffnen</translation>
    </message>
    <message>
        <source>Quit</source>
        <comment>quit application</comment>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Screen</source>
        <comment>title</comment>
        <translation>Bildschirm</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <comment>Check Update</comment>
        <translation>Nach Updates suchen …</translation>
    </message>
    <message>
        <source>Hide Desktop Icon</source>
        <comment>hide desktop icon</comment>
        <translation>Desktop-Symbole ausblenden</translation>
    </message>
    <message>
        <source>Mute</source>
        <comment>Mute desktop video</comment>
        <translation>Stumm</translation>
    </message>
    <message>
        <source>Integration</source>
        <comment>make up all monitors into one player</comment>
        <translation>Über alle Bildschirme</translation>
    </message>
    <message>
        <source>Mirror</source>
        <comment>each monitor has same content</comment>
        <translation>Gleiches Bild auf jedem</translation>
    </message>
    <message>
        <source>Single</source>
        <comment>Only play on one monitor</comment>
        <translation>Nur auf einem</translation>
    </message>
    <message>
        <source>Play</source>
        <comment>pause play</comment>
        <translation>Wiedergeben</translation>
    </message>
    <message>
        <source>Pause</source>
        <comment>play</comment>
        <translation>Anhalten</translation>
    </message>
</context>
<context>
    <name>UpgradeWindowController</name>
    <message>
        <source>New Version Available</source>
        <comment>title of the window of an offer</comment>
        <translation>Neue Version verfügbar</translation>
    </message>
    <message>
        <source>Close</source>
        <comment>closes the window of an offer</comment>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>About the new version</source>
        <comment>the text of an offer</comment>
        <translation>Über die neue Version</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <comment>opens the download of the new version</comment>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>Version: %1</source>
        <comment>version</comment>
        <translation>Version: %1</translation>
    </message>
</context>
</TS>
