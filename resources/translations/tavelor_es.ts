<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es_ES">
<context>
    <name>AppDelegate</name>
    <message>
        <source>You&apos;re up to date</source>
        <comment>no newer version</comment>
        <translation>Todo está actualizado</translation>
    </message>
    <message>
        <source>%1 is currently the newest version</source>
        <comment>display version</comment>
        <translation>%1 es actualmente la versión más reciente</translation>
    </message>
</context>
<context>
    <name>CustomAlertWindowController</name>
    <message>
        <source>OK</source>
        <comment>the button that closes the alert</comment>
        <translation>Aceptar</translation>
    </message>
</context>
<context>
    <name>StatusBarManager</name>
    <message>
        <source>Open Video Wallpaper</source>
        <comment>start/stop Video Desktop</comment>
        <translation>Activar el fondo de vídeo</translation>
    </message>
    <message>
        <source>Close Video Wallpaper</source>
        <comment>start/stop Video Desktop</comment>
        <translation>Desactivar el fondo de vídeo</translation>
    </message>
    <message>
        <source>Play</source>
        <comment>play/pause</comment>
        <translation>Reproducir</translation>
    </message>
    <message>
        <source>Pause</source>
        <comment>pause play</comment>
        <translation>Pausar</translation>
    </message>
    <message>
        <source>Main Window</source>
        <comment>use to show main window</comment>
        <translation>Ventana principal</translation>
    </message>
    <message>
        <source>Open local file</source>
        <translation>Abrir un archivo local</translation>
    </message>
    <message>
        <source>Quit</source>
        <comment>quit application</comment>
        <translation>Salir</translation>
    </message>
    <message>
        <source>Screen</source>
        <comment>title</comment>
        <translation>Pantalla</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <comment>Check Update</comment>
        <translation>Buscar actualizaciones…</translation>
    </message>
    <message>
        <source>Hide Desktop Icon</source>
        <comment>hide desktop icon</comment>
        <translation>Ocultar los iconos del escritorio</translation>
    </message>
    <message>
        <source>Mute</source>
        <comment>Mute desktop video</comment>
        <translation>Silenciar</translation>
    </message>
    <message>
        <source>Integration</source>
        <comment>make up all monitors into one player</comment>
        <translation>Extendido en todas las pantallas</translation>
    </message>
    <message>
        <source>Mirror</source>
        <comment>each monitor has same content</comment>
        <translation>La misma imagen en cada una</translation>
    </message>
    <message>
        <source>Single</source>
        <comment>Only play on one monitor</comment>
        <translation>Solo en una</translation>
    </message>
    <message>
        <source>Play</source>
        <comment>pause play</comment>
        <translation>Reproducir</translation>
    </message>
    <message>
        <source>Pause</source>
        <comment>play</comment>
        <translation>Pausar</translation>
    </message>
</context>
<context>
    <name>UpgradeWindowController</name>
    <message>
        <source>New Version Available</source>
        <comment>title of the window of an offer</comment>
        <translation>Nueva versión disponible</translation>
    </message>
    <message>
        <source>Close</source>
        <comment>closes the window of an offer</comment>
        <translation>Cerrar</translation>
    </message>
    <message>
        <source>About the new version</source>
        <comment>the text of an offer</comment>
        <translation>Acerca de la nueva versión</translation>
    </message>
    <message>
        <source>Upgrade</source>
        <comment>opens the download of the new version</comment>
        <translation>Actualizar</translation>
    </message>
    <message>
        <source>Version: %1</source>
        <comment>version</comment>
        <translation>Versión: %1</translation>
    </message>
</context>
</TS>
