#include "base/Disposable.h"
#include "base/NotificationCenter.h"
#include "base/Observe.h"

#include <QTest>

#include <optional>
#include <vector>

class ObservationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void releasedToken_runsItsClosureOnce()
    {
        int runs = 0;
        {
            Disposable token([&] { ++runs; });
            Disposable moved(std::move(token));
            std::vector<Disposable> tokens;
            tokens.push_back(std::move(moved));
            QCOMPARE(runs, 0);
        }
        QCOMPARE(runs, 1);
    }

    void assignedToken_releasesWhatItHeld()
    {
        QStringList released;
        Disposable token([&] { released << QStringLiteral("old"); });

        token = Disposable([&] { released << QStringLiteral("new"); });

        QCOMPARE(released, QStringList{QStringLiteral("old")});
    }

    void observers_areCalledInOrderUntilTheirTokenIsReleased()
    {
        QObject subject;
        QStringList calls;
        std::optional first(observe(subject, &QObject::objectNameChanged, [&](const QString& name) {
            calls << u'1' + name;
        }));
        const auto second = observe(subject, &QObject::objectNameChanged, [&](const QString& name) {
            calls << u'2' + name;
        });

        subject.setObjectName(QStringLiteral("a"));
        first.reset();
        subject.setObjectName(QStringLiteral("b"));

        QCOMPARE(
            calls, (QStringList{QStringLiteral("1a"), QStringLiteral("2a"), QStringLiteral("2b")}));
    }

    void tokens_mayOutliveTheSubject()
    {
        std::vector<Disposable> tokens;
        {
            QObject subject;
            NotificationCenter center;
            tokens.push_back(observe(subject, &QObject::objectNameChanged, [] {}));
            tokens.push_back(center.addObserver(QStringLiteral("name"), [] {}));
        }
        tokens.clear(); // must not touch what is gone
    }

    void notification_reachesObserversOfItsNameOnly()
    {
        NotificationCenter center;
        QStringList calls;
        const auto one =
            center.addObserver(QStringLiteral("one"), [&] { calls << QStringLiteral("one"); });
        const auto two =
            center.addObserver(QStringLiteral("two"), [&] { calls << QStringLiteral("two"); });

        center.post(QStringLiteral("two"));

        QCOMPARE(calls, QStringList{QStringLiteral("two")});
    }

    void observers_mayComeAndGoDuringDelivery()
    {
        NotificationCenter center;
        const auto name = QStringLiteral("name");
        QStringList calls;
        std::vector<Disposable> late;
        std::optional<Disposable> self;
        std::optional<Disposable> next;
        self = center.addObserver(name, [&] {
            calls << QStringLiteral("self");
            self.reset();
            next.reset();
            late.push_back(center.addObserver(name, [&] { calls << QStringLiteral("late"); }));
        });
        next = center.addObserver(name, [&] { calls << QStringLiteral("next"); });

        center.post(name);
        QCOMPARE(calls, QStringList{QStringLiteral("self")});
        center.post(name);
        QCOMPARE(calls, (QStringList{QStringLiteral("self"), QStringLiteral("late")}));
    }
};

QTEST_GUILESS_MAIN(ObservationTest)
#include "ObservationTest.moc"
