#include "player/VideoInfoList.h"

#include "support/VideoRows.h"

#include <QTest>

#include <map>

using namespace Qt::StringLiterals;

namespace {

VideoDetail video(const QString& sign)
{
    return VideoRows::row(sign, u"file:///%1.mp4"_s.arg(sign));
}

std::deque<VideoDetail> videos(const QString& signs)
{
    std::deque<VideoDetail> videos;
    for (const auto sign : signs)
        videos.push_back(video(sign));
    return videos;
}

QString signs(const std::deque<VideoDetail>& videos)
{
    QString signs;
    for (const auto& video : videos)
        signs += video.sign;
    return signs;
}

} // namespace

class VideoInfoListTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cursor_walksTheChainAndWraps()
    {
        VideoInfoList list;
        for (auto& row : videos(u"abc"_s))
            list.append(row);
        QCOMPARE(list.current(), list.head());
        QVERIFY(!list.tail()->next);

        QString walked;
        for (int i = 0; i < 5; ++i) {
            walked += list.current()->val.sign;
            list.advance();
        }
        QCOMPARE(walked, u"abcab"_s);
    }

    void emptyList_hasNoNodes()
    {
        VideoInfoList list;
        list.append(video(u"a"_s));
        list.clear();
        list.advance();
        list.moveToSign(u"a"_s);

        QVERIFY(!list.head() && !list.tail() && !list.current());
        QCOMPARE(list.count(), std::size_t{0});
    }

    void moveToSign_findsTheFirstMatchOrStays()
    {
        VideoInfoList list;
        for (auto& row : videos(u"abcb"_s))
            list.append(row);

        list.moveToSign(u"b"_s);
        QCOMPARE(list.current(), list.head()->next.get());
        list.moveToSign(u"B"_s);
        list.moveToSign(std::nullopt);
        QCOMPARE(list.current(), list.head()->next.get());
    }

    void longList_isReleasedWithoutRecursion()
    {
        const auto row = video(u"a"_s);
        VideoInfoList list;
        for (int i = 0; i < 1'000'000; ++i)
            list.append(row);

        list.clear(); // a million nested releases would end the process
        QVERIFY(!list.head());
    }

    void reordering_givesEveryPermutationAboutAsOften()
    {
        const auto rows = videos(u"abc"_s);
        constexpr int draws = 6000;
        std::map<QString, int> counts;
        for (int i = 0; i < draws; ++i)
            ++counts[signs(randomlyReordered(rows))];

        QCOMPARE(counts.size(), std::size_t{6});
        // 1000 each are expected; six standard deviations are 173.
        for (const auto& [permutation, count] : counts)
            QVERIFY2(count > 820 && count < 1180, qUtf8Printable(permutation));
    }
};

QTEST_GUILESS_MAIN(VideoInfoListTest)
#include "VideoInfoListTest.moc"
