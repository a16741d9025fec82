#include "base/Disposable.h"
#include "base/NotificationCenter.h"
#include "base/Observe.h"

#include <QTest>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

class ObservationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void releasedToken_runsItsClosureOnce()
    {
        int runs = 0;
        {
            Disposable token([&] { ++runs; });
            std::vector<Disposable> tokens;
            tokens.push_back(std::move(token));
            QCOMPARE(runs, 0);
        }
        QCOMPARE(runs, 1);
    }

    void assignedToken_releasesWhatItHeld()
    {
        QStringList released;
        Disposable token([&] { released << u"old"_s; });
        token = Disposable([&] { released << u"new"_s; });
        QCOMPARE(released, QStringList{u"old"_s});
    }

    void observers_areCalledInOrderUntilTheirTokenIsReleased()
    {
        QObject subject;
        QStringList calls;
        const auto observer = [&](QChar number) {
            return observe(subject, &QObject::objectNameChanged, [&calls, number](QString name) {
                calls << number + name;
            });
        };
        std::optional first(observer(u'1'));
        const auto second = observer(u'2');

        subject.setObjectName(u"a"_s);
        first.reset();
        subject.setObjectName(u"b"_s);

        QCOMPARE(calls, (QStringList{u"1a"_s, u"2a"_s, u"2b"_s}));
    }

    void tokens_mayOutliveTheSubject()
    {
        std::vector<Disposable> tokens;
        {
            QObject subject;
            NotificationCenter center;
            tokens.push_back(observe(subject, &QObject::objectNameChanged, [] {}));
            tokens.push_back(center.addObserver(u"name"_s, [] {}));
        }
        tokens.clear(); // must not touch what is gone
    }

    void notification_reachesObserversOfItsNameWithWhatItSays()
    {
        NotificationCenter center;
        QStringList calls;
        const auto one = center.addObserver(u"one"_s, [&] { calls << u"one"_s; });
        const auto two = center.addObserver(
            u"two"_s, [&](const QVariant& information) { calls << information.toString(); });

        center.post(u"two"_s, u"said"_s);

        QCOMPARE(calls, QStringList{u"said"_s});
    }

    void observers_mayComeAndGoDuringDelivery()
    {
        NotificationCenter center;
        QStringList calls;
        std::vector<Disposable> late;
        std::optional<Disposable> self;
        std::optional<Disposable> next;
        self = center.addObserver(u"name"_s, [&] {
            calls << u"self"_s;
            self.reset();
            next.reset();
            late.push_back(center.addObserver(u"name"_s, [&] { calls << u"late"_s; }));
        });
        next = center.addObserver(u"name"_s, [&] { calls << u"next"_s; });

        center.post(u"name"_s);
        QCOMPARE(calls, QStringList{u"self"_s});
        center.post(u"name"_s);
        QCOMPARE(calls, (QStringList{u"self"_s, u"late"_s}));
    }
};

QTEST_GUILESS_MAIN(ObservationTest)
#include "ObservationTest.moc"
