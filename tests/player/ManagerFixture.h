#pragma once

#include "platform/Recording.h"
#include "player/VideoPlayerManager.h"
#include "support/TemporaryHome.h"
#include "support/VideoRows.h"

using namespace Qt::StringLiterals;

inline QStringList strings(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const auto* text : texts)
        list << QString::fromUtf8(text);
    return list;
}

inline const Screen left{u"left"_s, QRect(0, 0, 800, 600)};
inline const Screen right{u"right"_s, QRect(800, 0, 800, 600)};

/// A library of videos whose files exist (empty ones: nothing here plays them), settings, and a
/// manager on the recording bodies.
struct ManagerFixture {
    explicit ManagerFixture(const QString& signs = u"abc"_s, const QByteArray& settings = {})
    {
        Recording::reset();
        Recording::screens() = {left};
        VideoRows::createTable(home.databaseFile());
        for (const auto sign : signs)
            addVideo(sign);
        TemporaryHome::writeFile(home.suiteFile(), "[General]\n" + settings);
        suite =
            PreferencesSuite::open(u"K7ZT3QW9RB.tavelor"_s, home.container() + u"/Preferences"_s);
        preferences = std::make_unique<Preferences>(*suite);
        library = std::make_unique<LocalVideoDBManager>(info, bundle);
        manager = std::make_unique<VideoPlayerManager>(
            *preferences, *library, openings, workspace, distributedCenter, center);
    }

    QString file(const QString& sign) const { return home.path() + u'/' + sign + u".mp4"_s; }
    QString recordFile() const { return home.path() + u"/opening.json"_s; }
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
    /// What has been recorded since the last time, in one line.
    static QString took() { return Recording::take().join(u"; "_s); }
    void endItem() { end(Recording::currentItem()); }
    void end(PlayerItem* item)
    {
        center.post(
            PlayerItem::didPlayToEndTimeNotification(), QVariant::fromValue<QObject*>(item));
    }
    void poll() { preferences->updateUserDefaultFromDisk(); }
    static QString playing()
    {
        const auto* item = Recording::currentItem();
        return item ? item->url().fileName().chopped(4) : u"nothing"_s;
    }
    QString sign() const { return preferences->playingVideoSign().value_or(u"none"_s); }

    TemporaryHome home;
    Bundle bundle{home.path()};
    AppInfo info{bundle};
    OpeningRecord openings{recordFile()};
    Workspace workspace;
    DistributedNotificationCenter distributedCenter;
    NotificationCenter center;
    std::unique_ptr<PreferencesSuite> suite;
    std::unique_ptr<Preferences> preferences;
    std::unique_ptr<LocalVideoDBManager> library;
    std::unique_ptr<VideoPlayerManager> manager;
};
