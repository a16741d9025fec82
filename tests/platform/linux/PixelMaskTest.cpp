#include "platform/linux/display/PixelMask.h"

#include <QRandomGenerator>
#include <QTest>

class PixelMaskTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void region_isWhatIsMarked_data()
    {
        QTest::addColumn<double>("density");
        QTest::newRow("nothing") << 0.0;
        QTest::newRow("single pixels") << 0.01;
        QTest::newRow("half of them") << 0.5;
        QTest::newRow("all") << 1.0;
    }

    void region_isWhatIsMarked()
    {
        QFETCH(double, density);
        // Not a whole number of words, of blocks or of rows of blocks.
        const QSize size(203, 77);
        PixelMask mask(size);
        QRegion marked;
        QRandomGenerator random(1);
        std::int64_t count = 0;
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                mask.set(x, y, true); // what was marked once need not be any more
                const bool isMarked = random.generateDouble() < density;
                mask.set(x, y, isMarked);
                if (isMarked)
                    marked += QRect(x, y, 1, 1);
                count += isMarked ? 1 : 0;
            }
        }

        QCOMPARE(mask.region(100'000), marked);
        QCOMPARE(mask.share(), static_cast<double>(count) / (203 * 77));

        constexpr int fewest = 60;
        const auto coarse = mask.region(fewest);
        QVERIFY(coarse.rectCount() <= fewest);
        QCOMPARE(marked - coarse, QRegion());
        QCOMPARE(coarse - QRegion(QRect(QPoint(), size)), QRegion());
    }

    void tooManyRectangles_makeSmallBlocksFirst()
    {
        PixelMask mask({256, 64});
        for (int x = 0; x < 256; x += 16)
            mask.set(x, 0, true);

        const auto region = mask.region(20);
        QCOMPARE(region.rectCount(), 16);
        QCOMPARE(region.boundingRect().height(), 1);
        for (int x = 1; x < 256; x += 2)
            mask.set(x, 1, true);
        QCOMPARE(mask.region(20).boundingRect(), QRect(0, 0, 256, 4));
    }
};

QTEST_GUILESS_MAIN(PixelMaskTest)
#include "PixelMaskTest.moc"
