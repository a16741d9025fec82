#include "preferences/Preferences.h"

#include "identity/GroupPreferences.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// Shared with the companion: the spelling, capitals included, is the interface.
const auto monitorArrangeKey = u"MonitorArrange"_s;
const auto screenIndexKey = u"ScreenIndex"_s;
const auto playModelKey = u"PlayModel"_s;
const auto playingVideoSignKey = u"CurrentVideoSign"_s;
const auto volumeKey = u"Volume"_s;
const auto muteKey = u"Mute"_s;
const auto alreadyImportVideoKey = u"alreadyImportVideo"_s;
const auto isOpenPlayerKey = u"IsOpenPlayer"_s;
const auto isPlayingKey = u"isPlaying"_s;
const auto autolaunchKey = u"autolaunch"_s;

} // namespace

Preferences& Preferences::shared()
{
    static Preferences preferences(groupPreferences());
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
            m_suite.setBoolean(key, value, PreferencesSuite::Overwrite::Never);
    };
    m_suite.synchronize();
    seedBoolean(autolaunchKey, true);
    if (!m_suite.hasValue(volumeKey))
        m_suite.setDouble(volumeKey, 0.5, PreferencesSuite::Overwrite::Never);
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

/// What every setter does, in this order: the field, the file, the observers.
template <typename Value, typename Write, typename Signal>
void Preferences::assign(Value& field,
    Value value, // by value: it may come from the very field that observers change
    Write write,
    const QString& key,
    Synchronize synchronize,
    Signal changed)
{
    field = value;
    (m_suite.*write)(key, value, m_overwrite);
    if (synchronize == Synchronize::Yes)
        m_suite.synchronize();
    Q_EMIT(this->*changed)(value);
}

void Preferences::setMonitorArrange(qint64 value)
{
    assign(m_monitorArrange,
        value,
        &PreferencesSuite::setInteger,
        monitorArrangeKey,
        Synchronize::Yes,
        &Preferences::monitorArrangeChanged);
}

void Preferences::setScreenIndex(qint64 value)
{
    assign(m_screenIndex,
        value,
        &PreferencesSuite::setInteger,
        screenIndexKey,
        Synchronize::Yes,
        &Preferences::screenIndexChanged);
}

void Preferences::setPlayModel(qint64 value)
{
    assign(m_playModel,
        value,
        &PreferencesSuite::setInteger,
        playModelKey,
        Synchronize::Yes,
        &Preferences::playModelChanged);
}

void Preferences::setPlayingVideoSign(const std::optional<QString>& value)
{
    assign<std::optional<QString>>(m_playingVideoSign,
        value,
        &PreferencesSuite::setString,
        playingVideoSignKey,
        Synchronize::Yes,
        &Preferences::playingVideoSignChanged);
}

void Preferences::setVolume(float value)
{
    assign(m_volume,
        value,
        &PreferencesSuite::setFloat,
        volumeKey,
        Synchronize::Yes,
        &Preferences::volumeChanged);
}

void Preferences::setMute(bool value)
{
    assign(m_mute,
        value,
        &PreferencesSuite::setBoolean,
        muteKey,
        Synchronize::Yes,
        &Preferences::muteChanged);
}

void Preferences::setAlreadyImportVideo(bool value)
{
    assign(m_alreadyImportVideo,
        value,
        &PreferencesSuite::setBoolean,
        alreadyImportVideoKey,
        Synchronize::No,
        &Preferences::alreadyImportVideoChanged);
}

void Preferences::setIsOpenPlayer(bool value)
{
    assign(m_isOpenPlayer,
        value,
        &PreferencesSuite::setBoolean,
        isOpenPlayerKey,
        Synchronize::Yes,
        &Preferences::isOpenPlayerChanged);
}

void Preferences::setIsPlaying(bool value)
{
    assign(m_isPlaying,
        value,
        &PreferencesSuite::setBoolean,
        isPlayingKey,
        Synchronize::Yes,
        &Preferences::isPlayingChanged);
}

void Preferences::setAutolaunch(bool value)
{
    assign(m_autolaunch,
        value,
        &PreferencesSuite::setBoolean,
        autolaunchKey,
        Synchronize::No,
        &Preferences::autolaunchChanged);
}

/// While the returned guard lives. What is adopted, and what follows from it, is nobody's choice
/// here: where yet another value has been written by now, that one is for the next refresh.
QScopedValueRollback<PreferencesSuite::Overwrite> Preferences::adopt()
{
    return QScopedValueRollback(m_overwrite, PreferencesSuite::Overwrite::Never);
}

void Preferences::adoptPlayingVideoSign()
{
    const auto adopting = adopt();
    if (const auto value = m_suite.string(playingVideoSignKey); value != m_playingVideoSign) {
        setPlayingVideoSign(value.value_or(QString()));
        // Whoever chooses a video wants to see it.
        if (!m_isOpenPlayer)
            setIsOpenPlayer(true);
        if (!m_isPlaying)
            setIsPlaying(true);
    }
}

bool Preferences::advancePlayingVideoSign(const QString& sign)
{
    // A choice that was read with another property's writing waits to be adopted.
    if (m_suite.string(playingVideoSignKey) == m_playingVideoSign) {
        m_suite.setString(playingVideoSignKey, sign, PreferencesSuite::Overwrite::Never);
        m_suite.synchronize();
    }
    if (m_suite.string(playingVideoSignKey) != sign) {
        adoptPlayingVideoSign();
        return false;
    }
    m_playingVideoSign = sign;
    Q_EMIT playingVideoSignChanged(sign);
    return true;
}

/// Says so on standard error, once.
void Preferences::reportLastingProblem()
{
    constexpr int lasting = 5;
    const auto problem = m_suite.problem();
    m_refreshesWithProblem = problem.isEmpty() ? 0 : m_refreshesWithProblem + 1;
    if (m_refreshesWithProblem == lasting) {
        std::fprintf(
            stderr, "settings %s: %s\n", qUtf8Printable(m_suite.path()), qUtf8Printable(problem));
    }
}

void Preferences::updateUserDefaultFromDisk()
{
    m_suite.synchronize();
    reportLastingProblem();
    const auto adopting = adopt();

    if (const auto value = m_suite.integer(monitorArrangeKey); value != m_monitorArrange)
        setMonitorArrange(value);
    if (const auto value = m_suite.integer(screenIndexKey); value != m_screenIndex)
        setScreenIndex(value);
    if (const auto value = m_suite.integer(playModelKey); value != m_playModel)
        setPlayModel(value);

    adoptPlayingVideoSign();

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
