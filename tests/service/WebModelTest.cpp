#include "service/WebModelFixture.h"

namespace {

WallClockTimer* midnightTimer = nullptr;
QDateTime fireDate;

} // namespace

/// Here the test lets it fire.
class WallClockTimer::Body {};
WallClockTimer::~WallClockTimer() = default;
WallClockTimer::WallClockTimer()
{
    midnightTimer = this;
}
void WallClockTimer::setFireDate(const QDateTime& date)
{
    fireDate = date.toUTC();
}

class WebModelTest : public WebModelFixture {
    Q_OBJECT

private Q_SLOTS:
    void requests_areSentAsTheServiceExpectsThem()
    {
        m_suite->setString(u"uuid"_s, u"DEV\"ICE"_s);

        m_model->refreshGudieInfo();
        m_model->sendHeartbeat(HeartBeatType::MidNight, u"1000"_s, nullptr);
        m_model->checkUpgrade(nullptr);

        QTRY_COMPARE(m_service->requests().size(), std::size_t{3});
        const QByteArray identification = R"({\"ui\":\"DEV\"ICE\",\"v\":\"1.2.3\"})";
        QCOMPARE(m_service->requests(guide).at(0).text, identification);
        QCOMPARE(m_service->requests(upgrade).at(0).text, identification);
        QCOMPARE(m_service->requests(heartbeat).at(0).text,
            R"({\"n\":\"1000\", \"ui\":\"DEV\"ICE\",\"ct\":\"7\",\"v\":\"1.2.3\",)"
            R"(\"type\":\"2\",\"ismac\":\"1\"})");
        for (const auto& request : m_service->requests()) {
            QVERIFY2(request.head.startsWith("POST /litecount.html HTTP/1.1\r\n"), request.head);
            QVERIFY(request.head.contains("User-Agent: MACTavelorLite1.2.3\r\n"));
            // Everything else of base64 travels escaped.
            static const QRegularExpression form(u"^f=\\d+&i=([A-Za-z0-9]|%2B|%2F|%3D)+$"_s);
            QVERIFY2(form.match(QString::fromLatin1(request.form)).hasMatch(), request.form);
        }
    }

    void deviceIdentifier_isMadeOnceForAll()
    {
        const auto uuid = m_model->uuid();

        static const QRegularExpression form(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s);
        QVERIFY(form.match(uuid).hasMatch());
        const auto suiteFile = m_home->path() + u"/suite.conf"_s;
        QVERIFY(TemporaryHome::contents(suiteFile).contains("uuid=" + uuid.toLatin1()));
        QCOMPARE(makeModel({})->uuid(), uuid);
    }

    void guide_isFetchedTwoSecondsAfterTheStart()
    {
        QTRY_COMPARE(m_events, guideEvents);

        QVERIFY(m_sinceStart.elapsed() >= 1990 && m_sinceStart.elapsed() < 2500);
        const auto links = m_userInformation.value<GuideModel::Links>();
        QVERIFY(!links.empty() && links == m_model->guideModel()->leftPanel());

        m_service->setBehaviour(
            [](auto&, auto& socket, auto&) { StandInService::reply(socket, "no answer"); });
        expectFailures();
    }

    void midnight_isReportedEachDay()
    {
        qputenv("TZ", "UTC");
        const auto model = makeModel(m_service->origin());
        const QDateTime tomorrow(QDate::currentDate().addDays(1), QTime(0, 0, 30), Qt::UTC);
        QCOMPARE(fireDate, tomorrow);

        Q_EMIT midnightTimer->fired();
        QCOMPARE(fireDate, tomorrow.addDays(1));
        QTRY_COMPARE(m_service->requests(heartbeat).size(), std::size_t{1});
        QVERIFY(m_service->requests(heartbeat).at(0).text.contains("1000"));

        qputenv("TZ", "XXX-12");
        Q_EMIT midnightTimer->clockDidChange();
        QCOMPARE(fireDate.time(), QTime(12, 0, 30));
        qputenv("TZ", "UTC");
    }

    void heartbeatAnswer_isKeptUntilTheNext()
    {
        std::optional<HeartbeatResponse> answer;
        const auto keep = [&answer](const auto& response) { answer = response; };
        m_model->sendHeartbeat(HeartBeatType::Boot, u"1"_s, keep);
        QTRY_COMPARE(m_events, heartbeatEvents);
        QVERIFY(answer && answer == m_model->heartbeatResponse());

        m_service->setBehaviour(StandInService::answering("{}"));
        m_model->sendHeartbeat(HeartBeatType::Boot, u"1"_s, nullptr);
        QTRY_COMPARE(m_events, heartbeatEvents + heartbeatEvents);
        QVERIFY(!m_model->heartbeatResponse());
    }

    void upgradeCheck_yieldsTheOffer()
    {
        const auto offer = [this](const QByteArray& answer) {
            m_service->setBehaviour(StandInService::answering(answer));
            std::optional<std::optional<UpgradeInfo>> got;
            m_model->checkUpgrade([&got](const auto& info) { got = info; });
            return QTest::qWaitFor([&got] { return got.has_value(); }) ? *got : UpgradeInfo{};
        };
        const UpgradeInfo whole{u"u"_s, u"m"_s, u"2"_s, u"e"_s};
        QVERIFY(offer(R"({"data":{"url":"u","md5":"m","ver":"2","exp":"e"}})") == whole);
        QVERIFY((offer(R"({"data":{"url":3,"md5":null,"ver":"2"}})") ==
                 UpgradeInfo{{}, {}, u"2"_s, {}}));
        for (const auto* none : {R"({"data":{"ver":"2"}})", R"({"data":[]})", "{}", "[]", "data"})
            QVERIFY(!offer(none));
    }
};

QTEST_GUILESS_MAIN(WebModelTest)
#include "WebModelTest.moc"
