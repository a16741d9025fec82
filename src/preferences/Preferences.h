#pragma once

#include "platform/PreferencesSuite.h"
#include "preferences/VideoPlayerOptions.h"

#include <QObject>
#include <QScopedValueRollback>
#include <QString>
#include <QTimer>

#include <chrono>
#include <optional>

/// The settings that the helper and its companion share, as observable properties: the hub over
/// which the player and the menu follow each other and the companion. Nothing else in the helper
/// reads or writes these keys.
///
/// A setter stores the value, writes it to the suite, and then tells the observers, every time it
/// is called, also for an equal value. Observers run inside the setter, in the order in which
/// they began. Main thread only.
class Preferences : public QObject {
    Q_OBJECT
    Q_PROPERTY(qint64 monitorArrange READ monitorArrange WRITE setMonitorArrange NOTIFY
            monitorArrangeChanged)
    Q_PROPERTY(qint64 screenIndex READ screenIndex WRITE setScreenIndex NOTIFY screenIndexChanged)
    Q_PROPERTY(qint64 playModel READ playModel WRITE setPlayModel NOTIFY playModelChanged)
    Q_PROPERTY(std::optional<QString> playingVideoSign READ playingVideoSign WRITE
            setPlayingVideoSign NOTIFY playingVideoSignChanged)
    Q_PROPERTY(float volume READ volume WRITE setVolume NOTIFY volumeChanged)
    Q_PROPERTY(bool mute READ mute WRITE setMute NOTIFY muteChanged)
    Q_PROPERTY(bool alreadyImportVideo READ alreadyImportVideo WRITE setAlreadyImportVideo NOTIFY
            alreadyImportVideoChanged)
    Q_PROPERTY(bool isOpenPlayer READ isOpenPlayer WRITE setIsOpenPlayer NOTIFY isOpenPlayerChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying WRITE setIsPlaying NOTIFY isPlayingChanged)
    Q_PROPERTY(bool autolaunch READ autolaunch WRITE setAutolaunch NOTIFY autolaunchChanged)

public:
    static constexpr std::chrono::milliseconds refreshInterval{1000};

    /// The running helper's, which refreshes itself once a second. A suite that cannot be opened
    /// ends the process.
    static Preferences& shared();

    /// Seeds missing values and loads every property. Borrows the suite.
    explicit Preferences(PreferencesSuite& suite);

    qint64 monitorArrange() const { return m_monitorArrange; } ///< a VideoPlayerScreenType or not
    qint64 screenIndex() const { return m_screenIndex; }       ///< into the list of screens, or not
    qint64 playModel() const { return m_playModel; }           ///< a VideoPlayerPlayModel or not
    /// The sign of the video that is played.
    const std::optional<QString>& playingVideoSign() const { return m_playingVideoSign; }
    float volume() const { return m_volume; } ///< linear, 0 to 1, or whatever the file says
    bool mute() const { return m_mute; }
    bool alreadyImportVideo() const { return m_alreadyImportVideo; }
    bool isOpenPlayer() const { return m_isOpenPlayer; } ///< the wallpaper is switched on
    bool isPlaying() const { return m_isPlaying; }       ///< playing rather than paused
    bool autolaunch() const { return m_autolaunch; }

    void setMonitorArrange(qint64 value);
    void setScreenIndex(qint64 value);
    void setPlayModel(qint64 value);
    void setPlayingVideoSign(const std::optional<QString>& value);
    void setVolume(float value);
    void setMute(bool value);
    void setAlreadyImportVideo(bool value);
    void setIsOpenPlayer(bool value);
    void setIsPlaying(bool value);
    void setAutolaunch(bool value);

    /// The helper's own step to the next video. Stores the sign like the setter, unless another
    /// process has chosen another video meanwhile: then that choice is adopted, as by the refresh,
    /// and the answer is false.
    bool advancePlayingVideoSign(const QString& sign);

    /// Reads the suite anew and calls the setter of every property that differs. A new sign also
    /// switches the wallpaper on and plays; switching it on also plays.
    void updateUserDefaultFromDisk();

Q_SIGNALS:
    void monitorArrangeChanged(qint64 value);
    void screenIndexChanged(qint64 value);
    void playModelChanged(qint64 value);
    void playingVideoSignChanged(const std::optional<QString>& value);
    void volumeChanged(float value);
    void muteChanged(bool value);
    void alreadyImportVideoChanged(bool value);
    void isOpenPlayerChanged(bool value);
    void isPlayingChanged(bool value);
    void autolaunchChanged(bool value);

private:
    void seed();
    void load();
    [[nodiscard]] QScopedValueRollback<PreferencesSuite::Overwrite> adopt();
    void adoptPlayingVideoSign();
    void reportLastingProblem();

    enum class Synchronize { No, Yes };
    template <typename Value, typename Write, typename Signal>
    void assign(Value& field,
        Value value,
        Write write,
        const QString& key,
        Synchronize synchronize,
        Signal changed);

    PreferencesSuite& m_suite;
    PreferencesSuite::Overwrite m_overwrite = PreferencesSuite::Overwrite::Always;
    int m_refreshesWithProblem = 0;
    QTimer m_refreshTimer;

    qint64 m_monitorArrange = 0;
    qint64 m_screenIndex = 0;
    qint64 m_playModel = 0;
    std::optional<QString> m_playingVideoSign;
    float m_volume = 0;
    bool m_mute = false;
    bool m_alreadyImportVideo = false;
    bool m_isOpenPlayer = false;
    bool m_isPlaying = false;
    bool m_autolaunch = false;
};
