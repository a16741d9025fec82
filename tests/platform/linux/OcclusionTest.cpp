#include "platform/linux/Occlusion.h"

#include <QTest>

namespace {

using Stack = std::vector<StackedWindow>;
constexpr auto ours = StackedWindow::Kind::Ours;
constexpr auto foreign = StackedWindow::Kind::Foreign;
const QRect left(0, 0, 100, 100);
const QRect right(100, 0, 100, 100);

} // namespace

class OcclusionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stack_coversOrNot_data()
    {
        QTest::addColumn<Stack>("stack");
        QTest::addColumn<std::optional<bool>>("isCovered");
        const auto row = [](const char* name, const Stack& stack, std::optional<bool> isCovered) {
            QTest::newRow(name) << stack << isCovered;
        };
        row("none of ours", {{foreign, left}}, {});
        row("bare", {{ours, left}}, false);
        row("one above", {{foreign, left}, {ours, left}}, true);
        row("one below", {{ours, left}, {foreign, left}}, false);
        row("one of two", {{foreign, left}, {ours, left}, {ours, right}}, false);
        row("both by one", {{foreign, QRect(-9, -9, 300, 300)}, {ours, left}, {ours, right}}, true);
        row("one by two that meet",
            {{foreign, QRect(0, 0, 40, 100)}, {foreign, QRect(40, 0, 60, 100)}, {ours, left}},
            true);
        row("one by two that miss a column",
            {{foreign, QRect(0, 0, 40, 100)}, {foreign, QRect(41, 0, 59, 100)}, {ours, left}},
            false);
        row("one by another of ours only", {{ours, left}, {ours, left}}, false);
        row("the upper one of ours is above the cover",
            {{ours, right}, {foreign, left}, {ours, left}},
            false);
    }

    void stack_coversOrNot()
    {
        QFETCH(Stack, stack);
        QFETCH(std::optional<bool>, isCovered);
        QCOMPARE(Occlusion::isEverythingCovered(stack), isCovered);
    }
};

QTEST_GUILESS_MAIN(OcclusionTest)
#include "OcclusionTest.moc"
