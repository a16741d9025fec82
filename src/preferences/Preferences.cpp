#include "preferences/Preferences.h"

#include "identity/AppInfo.h"

namespace {

// Shared with the companion: the spelling, capitals included, is the interface.
const auto monitorArrangeKey = QStringLiteral("MonitorArrange");
const auto screenIndexKey = QStringLiteral("ScreenIndex");
const auto playModelKey = QStringLiteral("PlayModel");
const auto playingVideoSignKey = QStringLiteral("CurrentVideoSign");
const auto volumeKey = QStringLiteral("Volume");
const auto muteKey = QStringLiteral("Mute");
const auto alreadyImportVideoKey = QStringLiteral("alreadyImportVideo");
const auto isOpenPlayerKey = QStringLiteral("IsOpenPlayer");
const auto isPlayingKey = QStringLiteral("isPlaying");
const auto autolaunchKey = QStringLiteral("autolaunch");

} // namespace

Preferences& Preferences::shared()
{
    static auto suite = PreferencesSuite::open(AppInfo::applicationGroupIdentifier(),
        AppInfo::shared().directoryUrl(SearchPathDirectory::Preferences).toLocalFile());
    if (!suite)
        qFatal("The preferences suite %s cannot be opened.",
            qUtf8Printable(AppInfo::applicationGroupIdentifier()));
    static Preferences preferences(*suite);
    if (!preferences.m_refreshTimer.isActive())
        preferences.m_refreshTimer.start(refreshInterval);
    return preferences;
}

Preferences::Preferences(PreferencesSuite& suite) : m_suite(suite)
{
    seed();
    load();
    connect(&m_refreshTimer, &QTimer::timeout, this, &Preferences::updateUserDefaultFromDisk);
}

void Preferences::seed()
{
    const auto seedBoolean = [this](const QString& key, bool value) {
        if (!m_suite.hasValue(key))
            m_suite.setBoolean(key, value);
    };
    m_suite.synchronize();
    seedBoolean(autolaunchKey, true);
    if (!m_suite.hasValue(volumeKey))
        m_suite.setDouble(volumeKey, 0.5);
    seedBoolean(muteKey, false);
    seedBoolean(isOpenPlayerKey, true);
    seedBoolean(isPlayingKey, true);
    m_suite.synchronize();
}

void Preferences::load()
{
    m_monitorArrange = m_suite.integer(monitorArrangeKey);
    m_screenIndex = m_suite.integer(screenIndexKey);
    m_playModel = m_suite.integer(playModelKey);
    m_playingVideoSign = m_suite.string(playingVideoSignKey);
    m_volume = m_suite.floatValue(volumeKey);
    m_mute = m_suite.boolean(muteKey);
    m_alreadyImportVideo = m_suite.boolean(alreadyImportVideoKey);
    m_isOpenPlayer = m_suite.boolean(isOpenPlayerKey);
    m_isPlaying = m_suite.boolean(isPlayingKey);
    m_autolaunch = m_suite.boolean(autolaunchKey);
}

void Preferences::setMonitorArrange(qint64 value)
{
    m_monitorArrange = value;
    m_suite.setInteger(monitorArrangeKey, value);
    m_suite.synchronize();
    Q_EMIT monitorArrangeChanged(value);
}

void Preferences::setScreenIndex(qint64 value)
{
    m_screenIndex = value;
    m_suite.setInteger(screenIndexKey, value);
    m_suite.synchronize();
    Q_EMIT screenIndexChanged(value);
}

void Preferences::setPlayModel(qint64 value)
{
    m_playModel = value;
    m_suite.setInteger(playModelKey, value);
    m_suite.synchronize();
    Q_EMIT playModelChanged(value);
}

void Preferences::setPlayingVideoSign(const std::optional<QString>& value)
{
    // Not `value` from here on: it may refer to the very property that observers change.
    m_playingVideoSign = value;
    m_suite.setString(playingVideoSignKey, m_playingVideoSign);
    m_suite.synchronize();
    Q_EMIT playingVideoSignChanged(std::optional(m_playingVideoSign));
}

void Preferences::setVolume(float value)
{
    m_volume = value;
    m_suite.setFloat(volumeKey, value);
    m_suite.synchronize();
    Q_EMIT volumeChanged(value);
}

void Preferences::setMute(bool value)
{
    m_mute = value;
    m_suite.setBoolean(muteKey, value);
    m_suite.synchronize();
    Q_EMIT muteChanged(value);
}

void Preferences::setAlreadyImportVideo(bool value)
{
    m_alreadyImportVideo = value;
    m_suite.setBoolean(alreadyImportVideoKey, value);
    Q_EMIT alreadyImportVideoChanged(value);
}

void Preferences::setIsOpenPlayer(bool value)
{
    m_isOpenPlayer = value;
    m_suite.setBoolean(isOpenPlayerKey, value);
    m_suite.synchronize();
    Q_EMIT isOpenPlayerChanged(value);
}

void Preferences::setIsPlaying(bool value)
{
    m_isPlaying = value;
    m_suite.setBoolean(isPlayingKey, value);
    m_suite.synchronize();
    Q_EMIT isPlayingChanged(value);
}

void Preferences::setAutolaunch(bool value)
{
    m_autolaunch = value;
    m_suite.setBoolean(autolaunchKey, value);
    Q_EMIT autolaunchChanged(value);
}

void Preferences::updateUserDefaultFromDisk()
{
    m_suite.synchronize();

    if (const auto value = m_suite.integer(monitorArrangeKey); value != m_monitorArrange)
        setMonitorArrange(value);
    if (const auto value = m_suite.integer(screenIndexKey); value != m_screenIndex)
        setScreenIndex(value);
    if (const auto value = m_suite.integer(playModelKey); value != m_playModel)
        setPlayModel(value);

    if (const auto value = m_suite.string(playingVideoSignKey); value != m_playingVideoSign) {
        setPlayingVideoSign(value.value_or(QString()));
        // Whoever chooses a video wants to see it.
        if (!m_isOpenPlayer)
            setIsOpenPlayer(true);
        if (!m_isPlaying)
            setIsPlaying(true);
    }

    // Not "!=": a volume that is not a number counts as different, and is set again every time.
    if (const auto value = m_suite.floatValue(volumeKey); !(value == m_volume))
        setVolume(value);
    if (const auto value = m_suite.boolean(muteKey); value != m_mute)
        setMute(value);
    if (const auto value = m_suite.boolean(alreadyImportVideoKey); value != m_alreadyImportVideo)
        setAlreadyImportVideo(value);
    if (const auto value = m_suite.boolean(isOpenPlayerKey); value != m_isOpenPlayer) {
        setIsOpenPlayer(value);
        if (m_isOpenPlayer)
            setIsPlaying(true);
    }
    if (const auto value = m_suite.boolean(isPlayingKey); value != m_isPlaying)
        setIsPlaying(value);
    if (const auto value = m_suite.boolean(autolaunchKey); value != m_autolaunch)
        setAutolaunch(value);
}
