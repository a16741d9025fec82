#pragma once

#include "platform/Recording.h"
#include "player/VideoPlayerManager.h"
#include "support/TemporaryHome.h"
#include "support/VideoRows.h"

inline QStringList strings(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const auto* text : texts)
        list << QString::fromUtf8(text);
    return list;
}

inline const Screen left{QStringLiteral("left"), QRect(0, 0, 800, 600)};
inline const Screen right{QStringLiteral("right"), QRect(800, 0, 800, 600)};

/// A library of videos whose files exist (empty ones: nothing here plays them), settings, and a
/// manager on the recording bodies.
struct ManagerFixture {
    explicit ManagerFixture(
        const QString& signs = QStringLiteral("abc"), const QByteArray& settings = {})
    {
        Recording::reset();
        Recording::screens() = {left};
        VideoRows::createTable(home.databaseFile());
        for (const auto sign : signs)
            addVideo(sign);
        TemporaryHome::writeFile(home.suiteFile(), "[General]\n" + settings);
        suite = PreferencesSuite::open(QStringLiteral("K7ZT3QW9RB.tavelor"),
            home.container() + QStringLiteral("/Preferences"));
        preferences = std::make_unique<Preferences>(*suite);
        library = std::make_unique<LocalVideoDBManager>(info, bundle);
        manager = std::make_unique<VideoPlayerManager>(
            *preferences, *library, openings, workspace, distributedCenter, center);
    }

    QString file(const QString& sign) const
    {
        return home.path() + u'/' + sign + QStringLiteral(".mp4");
    }
    void addVideo(const QString& sign) const
    {
        TemporaryHome::writeFile(file(sign), "");
        VideoRows::insert(home.databaseFile(),
            {VideoRows::row(sign, QUrl::fromLocalFile(file(sign)).toString())});
    }
    void addRow(const QString& sign, const QString& url) const
    {
        VideoRows::insert(home.databaseFile(), {VideoRows::row(sign, url)});
    }

    /// Starts as the delegate does, and forgets what that recorded.
    void start()
    {
        manager->createWindows();
        Recording::take();
    }
    void endItem() { center.post(PlayerItem::didPlayToEndTimeNotification()); }
    void poll() { preferences->updateUserDefaultFromDisk(); }
    static QString playing()
    {
        const auto* item = Recording::currentItem();
        return item ? item->url().fileName().chopped(4) : QStringLiteral("nothing");
    }
    QString sign() const
    {
        return preferences->playingVideoSign().value_or(QStringLiteral("none"));
    }

    TemporaryHome home;
    Bundle bundle{home.path()};
    AppInfo info{bundle};
    OpeningRecord openings{home.path() + QStringLiteral("/opening.json")};
    Workspace workspace;
    DistributedNotificationCenter distributedCenter;
    NotificationCenter center;
    std::unique_ptr<PreferencesSuite> suite;
    std::unique_ptr<Preferences> preferences;
    std::unique_ptr<LocalVideoDBManager> library;
    std::unique_ptr<VideoPlayerManager> manager;
};
