#include "platform/linux/display/Occlusion.h"

#include <QTest>

class OcclusionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void seenWindows_areThoseOfWhichAPixelCanBeSeen()
    {
        constexpr auto ours = StackedWindow::Kind::Ours;
        constexpr auto foreign = StackedWindow::Kind::Foreign;
        const QRect left(0, 0, 100, 100);
        const QRect right(100, 0, 100, 100);
        const auto seen = Occlusion::seenWindows;
        using Names = std::set<std::uint32_t>;

        QCOMPARE(seen({{foreign, left}}), Names());
        QCOMPARE(seen({{foreign, left}, {foreign, right}, {ours, left | right, 1}}), Names());
        QCOMPARE(
            seen({{foreign, left}, {foreign, right.adjusted(1, 0, 0, 0)}, {ours, left | right, 1}}),
            Names{1});
        QCOMPARE(seen({{foreign, left}, {ours, left, 1}, {ours, right, 2}}), Names{2});
        QCOMPARE(seen({{ours, left, 1}, {ours, left, 2}, {foreign, left}}), (Names{1, 2}));
    }
};

QTEST_GUILESS_MAIN(OcclusionTest)
#include "OcclusionTest.moc"
