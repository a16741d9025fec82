#include "platform/linux/display/Occlusion.h"

#include <QTest>

class OcclusionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stack_coversOrNot()
    {
        constexpr auto ours = StackedWindow::Kind::Ours;
        constexpr auto foreign = StackedWindow::Kind::Foreign;
        const QRect left(0, 0, 100, 100);
        const QRect right(100, 0, 100, 100);
        const auto isCovered = Occlusion::isEverythingCovered;

        QCOMPARE(isCovered({{foreign, left}}), std::nullopt);
        QCOMPARE(isCovered({{foreign, left}, {foreign, right}, {ours, left | right}}), true);
        QCOMPARE(
            isCovered(
                {{foreign, left}, {foreign, right.adjusted(1, 0, 0, 0)}, {ours, left | right}}),
            false);
        QCOMPARE(isCovered({{foreign, left}, {ours, left}, {ours, right}}), false);
        QCOMPARE(isCovered({{ours, left}, {ours, left}, {foreign, left}}), false);
    }
};

QTEST_GUILESS_MAIN(OcclusionTest)
#include "OcclusionTest.moc"
