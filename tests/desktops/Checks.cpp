#include "desktops/Checks.h"

#include "desktop/HelperProcess.h"
#include "desktop/StatusNotifierHost.h"
#include "desktops/Descendants.h"
#include "desktops/Picture.h"
#include "support/TestVideos.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;
using Monitors = VirtualDesktop::Monitors;

namespace {

/// Where no desktop puts an icon by itself, and far enough from the edges for a menu.
constexpr QPoint freeSpot{700, 300};
constexpr std::uint8_t secondaryButton = 3;
constexpr std::uint8_t escape = 9; // of a PC's keyboard

constexpr int patience = 10'000; // milliseconds

bool becomes(const std::function<bool()>& isSo)
{
    return QTest::qWaitFor(isSo, patience);
}

/// For those who wonder about an answer: in the folder TAVELOR_TEST_PICTURES, if there is one.
void keep(const QImage& picture, const QString& name)
{
    static int number = 0;
    const auto folder = qEnvironmentVariable("TAVELOR_TEST_PICTURES");
    if (!folder.isEmpty())
        picture.save(u"%1/%2-%3.png"_s.arg(folder, name).arg(++number));
}

/// The helper on the desktop, with a red video.
class PlayingHelper {
public:
    explicit PlayingHelper(TestedDesktop& desktop) : m_desktop(desktop), m_helper(desktop.desktop())
    {
        m_helper.addVideo(u"r"_s, u"red"_s, 10);
    }
    /// What it complains about belongs to the desktop, whose services are not all there.
    ~PlayingHelper()
    {
        keep(picture(), m_desktop.description().name);
        m_helper.process().terminate();
        m_helper.waitForEnd();
        const auto said = m_helper.process().readAllStandardError();
        if (!said.isEmpty())
            qInfo("%s", said.constData());
    }
    PlayingHelper(const PlayingHelper&) = delete;
    PlayingHelper& operator=(const PlayingHelper&) = delete;

    HelperProcess& process() { return m_helper; }
    bool start()
    {
        m_helper.start();
        return becomes([this] { return isShown(); });
    }
    bool isShown() const
    {
        return Picture::isMostly(picture(), m_desktop.workArea(), Picture::isRed);
    }
    QImage picture() const { return m_desktop.screen().picture(); }

private:
    TestedDesktop& m_desktop;
    HelperProcess m_helper;
};

bool hasIcon(const Stage& stage, const PlayingHelper& helper)
{
    const auto seen = Picture::others(helper.picture(), stage.bare.icon, Picture::isRed);
    return helper.isShown() && seen >= stage.bare.iconPixels / 4;
}

bool hasNoIcon(const Stage& stage, const PlayingHelper& helper)
{
    return helper.isShown() &&
           Picture::others(helper.picture(), stage.bare.icon, Picture::isRed) == 0;
}

/// Opens the menu at the free spot, and closes it. Null where none opens.
QRect menuAtFreeSpot(const TestedDesktop& desktop)
{
    const auto& screen = desktop.screen();
    const auto before = screen.picture();
    // Not at the left, where the click may select or leave an icon.
    const auto around = desktop.workArea() & QRect(400, 0, 800, 720);
    Picture::Difference menu;
    const auto look = [&] {
        menu = Picture::difference(before, screen.picture(), around);
        return menu.pixels;
    };
    screen.click(freeSpot, secondaryButton);
    constexpr int least = 2000; // of a menu with a single line
    if (!QTest::qWaitFor([&] { return look() > least; }, 5000))
        return {};
    desktop.waitUntilAtRest(); // menus may fade in
    look();
    keep(screen.picture(), desktop.description().name + u"-menu"_s);
    const auto bounds = menu.bounds;
    screen.pressKey(escape);
    return becomes([&] { return look() < least; }) ? bounds : QRect();
}

int areaOf(const QRect& rectangle)
{
    return rectangle.width() * rectangle.height();
}

Cell pictureIsShown(const Stage& stage)
{
    PlayingHelper helper(stage.desktop);
    return Cell::of(helper.start());
}

Cell helperMayBeFirst(const Stage& stage)
{
    const auto& description = stage.desktop.description();
    if (!description.whyNoEarlyStart.isNull())
        return Cell::none(description.whyNoEarlyStart);
    bool hasIcons = false;
    {
        PlayingHelper helper(stage.desktop);
        hasIcons = helper.start() && becomes([&] { return hasIcon(stage, helper); });
    }
    stage.desktop.killShell();
    bool isSo = false;
    {
        PlayingHelper helper(stage.desktop);
        isSo = helper.start();
        stage.desktop.startShell();
        isSo = isSo && stage.desktop.waitUntilAtRest() && helper.isShown() &&
               (!hasIcons || becomes([&] { return hasIcon(stage, helper); }));
    }
    // As it was, because some desktop programs go on differently.
    stage.desktop.killShell();
    stage.desktop.startShell();
    stage.desktop.waitUntilAtRest();
    return Cell::of(isSo);
}

Cell iconsInFront(const Stage& stage)
{
    if (stage.bare.icon.isNull())
        return Cell::none(stage.desktop.description().whyNoIcons);
    PlayingHelper helper(stage.desktop);
    return Cell::of(helper.start() && becomes([&] { return hasIcon(stage, helper); }));
}

Cell iconsHidden(const Stage& stage)
{
    if (stage.bare.icon.isNull())
        return Cell::none(stage.desktop.description().whyNoIcons);
    const StatusNotifierHost host(stage.desktop.desktop().busAddress());
    PlayingHelper helper(stage.desktop);
    const auto entry = u"Hide Desktop Icon"_s;
    if (!helper.start() || !becomes([&] { return host.hasEntry(entry); }))
        return Cell::of(false);
    host.click(entry);
    return Cell::of(becomes([&] { return hasNoIcon(stage, helper); }));
}

Cell menuOpens(const Stage& stage)
{
    if (stage.bare.menu.isNull())
        return Cell::none(stage.desktop.description().whyNoMenu);
    PlayingHelper helper(stage.desktop);
    if (!helper.start())
        return Cell::of(false);
    const auto menu = menuAtFreeSpot(stage.desktop);
    // Shadows and borders are not seen before every background.
    const bool isSame = 2 * areaOf(menu & stage.bare.menu) > areaOf(menu | stage.bare.menu);
    return Cell::of(isSame && becomes([&] { return helper.isShown(); }));
}

Cell pressIsHeard(const Stage& stage)
{
    PlayingHelper helper(stage.desktop);
    if (!helper.start())
        return Cell::of(false);
    stage.desktop.waitUntilAtRest();
    stage.desktop.screen().click(freeSpot, 1);
    const bool isHeard =
        becomes([&] { return helper.process().lines().contains(u"mouse down"_s); });
    stage.desktop.waitUntilAtRest(); // the click may raise what it went to
    return Cell::of(isHeard && helper.isShown());
}

/// The colours in the middle of the four quarters of the desktop's width, for a picture that is red
/// on its left half and blue on its right one.
QString quarters(TestedDesktop& desktop)
{
    QStringList colours;
    for (const int x : {140, 540, 740, 1180}) {
        const auto colour = desktop.desktop().colour({x, 500});
        colours << (colour == u"red" || colour == u"blue" ? colour : u"-"_s);
    }
    return colours.join(u' ');
}

/// A helper with that picture and two monitors, and whether they show it as told.
class Halves {
public:
    explicit Halves(TestedDesktop& desktop) : m_desktop(desktop)
    {
        m_desktop.setMonitors(Monitors::TwoHalves);
        m_helper = std::make_unique<PlayingHelper>(m_desktop);
        auto& process = m_helper->process();
        TestVideos::makeHalves(process.videoFile(u"r"_s), u"red"_s, u"blue"_s);
    }
    ~Halves()
    {
        m_helper.reset();
        m_desktop.setMonitors(Monitors::One);
    }
    Halves(const Halves&) = delete;
    Halves& operator=(const Halves&) = delete;

    void start() { m_helper->process().start(); }
    void set(const QString& key, const QString& value)
    {
        m_helper->process().home().writeSuiteValue(key, value);
    }
    bool become(const QString& expected)
    {
        return becomes([&] { return quarters(m_desktop) == expected; });
    }

private:
    TestedDesktop& m_desktop;
    std::unique_ptr<PlayingHelper> m_helper;
};

const auto arrangementKey = u"MonitorArrange"_s;
const auto mirrored = u"red blue red blue"_s;

Cell screensFollow(const Stage& stage)
{
    Halves halves(stage.desktop);
    halves.start();
    bool isSo = halves.become(u"red red blue blue"_s);
    halves.set(arrangementKey, u"1"_s);
    isSo = isSo && halves.become(mirrored);
    halves.set(u"ScreenIndex"_s, u"1"_s);
    return Cell::of(isSo && halves.become(u"- - red blue"_s));
}

Cell pluggingIsFollowed(const Stage& stage)
{
    const auto& description = stage.desktop.description();
    if (!description.whyNoPlugging.isNull())
        return Cell::none(description.whyNoPlugging);
    Halves halves(stage.desktop);
    halves.set(arrangementKey, u"1"_s);
    halves.start();
    bool isSo = halves.become(mirrored);
    stage.desktop.setMonitors(Monitors::LeftHalf);
    isSo = isSo && halves.become(u"red blue - -"_s);
    stage.desktop.setMonitors(Monitors::TwoHalves);
    return Cell::of(isSo && halves.become(mirrored));
}

bool cover(TestedDesktop& desktop)
{
    desktop.coverAll();
    return becomes([&] {
        const auto picture = desktop.screen().picture();
        constexpr int pointer = 1000; // pixels, which some compositors draw by themselves
        return Picture::others(picture, picture.rect(), Picture::isLime) < pointer;
    });
}

Cell coveredCostsNothing(const Stage& stage)
{
    PlayingHelper helper(stage.desktop);
    if (!helper.start() || !cover(stage.desktop))
        return Cell::of(false);
    const auto process = helper.process().process().processId();
    const auto shareDuring = [process](int seconds) {
        const auto before = Descendants::processorSeconds(process);
        QTest::qWait(seconds * 1000);
        return (Descendants::processorSeconds(process) - before) / seconds;
    };
    constexpr double most = 0.002;                               // of a core
    for (int patient = 5; patient > 0 && shareDuring(1) > most;) // it may take a while to notice
        --patient;
    const auto share = shareDuring(5);
    stage.desktop.uncoverAll();
    qInfo("covered: %.3f %% of a core", share * 100);
    return Cell::of(share <= most);
}

Cell uncoveredComesBack(const Stage& stage)
{
    PlayingHelper helper(stage.desktop);
    if (!helper.start())
        return Cell::of(false);
    qint64 best = patience;
    for (int i = 0; i < 3; ++i) { // a busy machine only adds to it
        if (!cover(stage.desktop))
            return Cell::of(false);
        QTest::qWait(1000);
        stage.desktop.uncoverAll();
        QElapsedTimer time;
        time.start();
        if (becomes([&] { return helper.isShown(); }))
            best = qMin(best, time.elapsed());
    }
    qInfo("uncovered: %lld ms", static_cast<long long>(best));
    return Cell::of(best <= 500);
}

Cell shellMayRestart(const Stage& stage)
{
    const auto& description = stage.desktop.description();
    if (!description.whyNoRestart.isNull())
        return Cell::none(description.whyNoRestart);
    PlayingHelper helper(stage.desktop);
    if (!helper.start())
        return Cell::of(false);
    const bool hadIcon = becomes([&] { return hasIcon(stage, helper); });
    stage.desktop.killShell();
    stage.desktop.startShell();
    return Cell::of(stage.desktop.waitUntilAtRest() && becomes([&] { return helper.isShown(); }) &&
                    (!hadIcon || becomes([&] { return hasIcon(stage, helper); })));
}

} // namespace

Stage prepare(TestedDesktop& desktop)
{
    const auto& description = desktop.description();
    const auto name = description.title.toUtf8();
    Stage stage{desktop, {}};

    desktop.screen().click({1279, 360}, 9); // takes the pointer out of the way; no such button
    if (description.whyNoIcons.isNull()) {
        const auto before = desktop.screen().picture();
        TemporaryHome::writeFile(desktop.home() + u"/Desktop/letter.txt"_s, "Hello\n");
        Picture::Difference icon;
        const bool isDrawn = becomes([&] {
            icon = Picture::difference(before, desktop.screen().picture(), desktop.workArea());
            return icon.pixels > 100;
        });
        if (!isDrawn || !desktop.waitUntilAtRest())
            qFatal("%s: no icon of a file is seen.", name.constData());
        icon = Picture::difference(before, desktop.screen().picture(), desktop.workArea());
        if (icon.bounds.width() > 200 || icon.bounds.height() > 200)
            qFatal("%s: more than an icon has changed.", name.constData());
        stage.bare.icon = icon.bounds;
        stage.bare.iconPixels = icon.pixels;
    }
    stage.bare.menu = menuAtFreeSpot(desktop);
    if (stage.bare.menu.isNull() == description.whyNoMenu.isNull())
        qFatal("%s: a menu opens or does not, unlike the description.", name.constData());
    return stage;
}

const std::vector<Check>& allChecks()
{
    static const std::vector<Check> checks{
        {u"The video is shown"_s, pictureIsShown},
        {u"Icons stay in front"_s, iconsInFront},
        {u"\"Hide Desktop Icon\" hides them"_s, iconsHidden},
        {u"A right click opens the desktop's menu"_s, menuOpens},
        {u"A left click is heard"_s, pressIsHeard},
        {u"Two monitors: joined, mirrored, one of them"_s, screensFollow},
        {u"Unplugging and plugging a monitor is followed"_s, pluggingIsFollowed},
        {u"Covered, it costs nothing"_s, coveredCostsNothing},
        {u"Uncovered, it is back at once"_s, uncoveredComesBack},
        {u"The helper may be there before the desktop"_s, helperMayBeFirst},
        {u"The desktop may be started again"_s, shellMayRestart},
    };
    return checks;
}
