<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>AppDelegate</name>
    <message>
        <source>You&apos;re up to date</source>
        <comment>no newer version</comment>
        <translation>Vous êtes à jour</translation>
    </message>
    <message>
        <source>%1 is currently the newest version</source>
        <comment>display version</comment>
        <translation>%1 est actuellement la version la plus récente</translation>
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
        <translation>Activer le fond d’écran vidéo</translation>
    </message>
    <message>
        <source>Close Video Wallpaper</source>
        <comment>start/stop Video Desktop</comment>
        <translation>Désactiver le fond d’écran vidéo</translation>
    </message>
    <message>
        <source>Play</source>
        <comment>play/pause</comment>
        <translation>Lire</translation>
    </message>
    <message>
        <source>Pause</source>
        <comment>pause play</comment>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Main Window</source>
        <comment>use to show main window</comment>
        <translation>Fenêtre principale</translation>
    </message>
    <message>
        <source>Open local file</source>
        <translation>Ouvrir un fichier local</translation>
    </message>
    <message>
        <source>Quit</source>
        <comment>quit application</comment>
        <translation>Quitter</translation>
    </message>
    <message>
        <source>Screen</source>
        <comment>title</comment>
        <translation>Écran</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <comment>Check Update</comment>
        <translation>Rechercher des mises à jour…</translation>
    </message>
    <message>
        <source>Hide Desktop Icon</source>
        <comment>hide desktop icon</comment>
        <translation>Masquer les icônes du bureau</translation>
    </message>
    <message>
        <source>Mute</source>
        <comment>Mute desktop video</comment>
        <translation>Muet</translation>
    </message>
    <message>
        <source>Integration</source>
        <comment>make up all monitors into one player</comment>
        <translation>Étendu sur tous les écrans</translation>
    </message>
    <message>
        <source>Mirror</source>
        <comment>each monitor has same content</comment>
        <translation>Même image sur chaque écran</translation>
    </message>
    <message>
        <source>Single</source>
        <comment>Only play on one monitor</comment>
        <translation>Un seul écran</translation>
    </message>
    <message>
        <source>Play</source>
        <comment>pause play</comment>
        <translation>Lire</translation>
    </message>
    <message>
        <source>Pause</source>
        <comment>play</comment>
        <translation>Pause</translation>
    </message>
</context>
<context>
    <name>UpgradeWindowController</name>
    <message>
        <source>New Version Available</source>
        <comment>title of the window of an offer</comment>
        <translation>Nouvelle version disponible</translation>
    </message>
    <message>
        <source>Close</source>
        <comment>closes the window of an offer</comment>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>About the new version</source>
        <comment>the text of an offer</comment>
        <translation>À propos de la nouvelle version</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <comment>opens the download of the new version</comment>
        <translation>Mettre à jour</translation>
    </message>
    <message>
        <source>Version: %1</source>
        <comment>version</comment>
        <translation>Version : %1</translation>
    </message>
</context>
</TS>
