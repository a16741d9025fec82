#include "player/PlayerFrames.h"

#include <QTest>

class PlayerFramesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void frames_data()
    {
        QTest::addColumn<VideoPlayerScreenType>("screenType");
        QTest::addColumn<QList<QRect>>("screens");
        QTest::addColumn<QList<QRect>>("frames");
        using enum VideoPlayerScreenType;
        using Rects = QList<QRect>;

        QTest::newRow("no screens") << combo << Rects{} << Rects{};
        QTest::newRow("one screen at the origin")
            << combo << Rects{{0, 0, 1280, 720}} << Rects{{0, 0, 1280, 720}};
        QTest::newRow("a second screen to the left")
            << combo << Rects{{0, 0, 1920, 1080}, {-1920, 0, 1920, 1080}}
            << Rects{{-1920, 0, 3840, 1080}, {0, 0, 3840, 1080}};
        QTest::newRow("a second screen above")
            << combo << Rects{{0, 0, 1920, 1080}, {320, -720, 1280, 720}}
            << Rects{{0, -720, 1920, 1800}, {-320, 0, 1920, 1800}};
        QTest::newRow("screens away from the origin span it all the same")
            << combo << Rects{{100, 50, 800, 600}, {900, 50, 800, 600}}
            << Rects{{-100, -50, 1700, 650}, {-900, -50, 1700, 650}};
        QTest::newRow("mirrored screens show the whole picture each")
            << dynamic << Rects{{0, 0, 1920, 1080}, {1920, 0, 1280, 1024}}
            << Rects{{0, 0, 1920, 1080}, {0, 0, 1280, 1024}};
        QTest::newRow("a single screen somewhere shows the whole picture")
            << lonely << Rects{{1920, 300, 1280, 1024}} << Rects{{0, 0, 1280, 1024}};
    }

    void frames()
    {
        QFETCH(VideoPlayerScreenType, screenType);
        QFETCH(QList<QRect>, screens);
        QFETCH(QList<QRect>, frames);
        std::vector<Screen> list;
        for (const auto& frame : screens)
            list.push_back({QString(), frame});

        const auto computed = computePlayerFrames(screenType, list);

        QCOMPARE(QList<QRect>(computed.begin(), computed.end()), frames);
    }
};

QTEST_GUILESS_MAIN(PlayerFramesTest)
#include "PlayerFramesTest.moc"
