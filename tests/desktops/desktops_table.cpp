#include "desktops/Checks.h"
#include "desktops/CompatibilityTable.h"
#include "desktops/Descendants.h"
#include "support/TemporaryHome.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QProcess>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// "xfwm4 4.18.0, xfdesktop4 4.18.1"; null where a package is missing. Without the distribution's
/// revisions, which change more often than behaviour does.
QString versions(const DesktopDescription& description)
{
    QStringList found;
    for (const auto& package : description.packages) {
        QProcess query;
        query.start(
            u"dpkg-query"_s, {u"--show"_s, u"--showformat=${source:Upstream-Version}"_s, package});
        query.waitForFinished();
        const auto version = QString::fromUtf8(query.readAllStandardOutput());
        if (version.isEmpty())
            return {};
        found << package + u' ' + version;
    }
    return found.join(u", "_s);
}

std::vector<Cell> judge(const DesktopDescription& description)
{
    std::vector<Cell> cells;
    const auto desktop = TestedDesktop::create(description);
    const auto stage = prepare(*desktop);
    QElapsedTimer time;
    time.start();
    for (const auto& check : allChecks()) {
        const auto cell = check.ask(stage);
        const auto* const mark = cell.mark == Cell::Mark::Yes  ? "yes"
                                 : cell.mark == Cell::Mark::No ? "no"
                                                               : "-";
        std::printf("%s: %s: %s (%.1f s)\n",
            qUtf8Printable(description.name),
            qUtf8Printable(check.question),
            mark,
            static_cast<double>(time.restart()) / 1000);
        std::fflush(stdout);
        cells.push_back(cell);
    }
    return cells;
}

} // namespace

/// Runs the helper on one desktop and renews its column of the page. The exit status is 1 where
/// something does not work any more that did, and 3 where the desktop is not installed.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    Descendants::adopt();
    QCommandLineParser parser;
    parser.addPositionalArgument(u"NAME"_s, u"of a desktop"_s);
    parser.addPositionalArgument(u"FORMER"_s, u"the page as it is"_s);
    parser.addPositionalArgument(u"PAGE"_s, u"to be written"_s);
    const QCommandLineOption list(u"list"_s, u"Print the names of all desktops."_s);
    parser.addOption(list);
    parser.addHelpOption();
    parser.process(application);
    const auto& descriptions = DesktopDescription::all();
    if (parser.isSet(list)) {
        for (const auto& description : descriptions)
            std::printf("%s\n", qUtf8Printable(description.name));
        return 0;
    }
    const auto arguments = parser.positionalArguments();
    const auto wanted =
        std::ranges::find(descriptions, arguments.value(0), &DesktopDescription::name);
    if (arguments.size() != 3 || wanted == descriptions.end())
        parser.showHelp(2);
    const auto installed = versions(*wanted);
    if (installed.isNull()) {
        std::printf("%s is left out: not installed\n", qUtf8Printable(wanted->name));
        return 3;
    }

    QStringList rows;
    for (const auto& check : allChecks())
        rows << check.question;
    const auto former = CompatibilityTable::fromMarkdown(
        rows, QString::fromUtf8(TemporaryHome::contents(arguments[1])));
    CompatibilityTable table(rows);
    for (const auto& description : descriptions) {
        const auto* const column = former.find(description.title);
        if (description.name == wanted->name)
            table.append({description.title, installed, judge(description)});
        else if (column)
            table.append(*column);
    }
    TemporaryHome::writeFile(arguments[2], table.toMarkdown().toUtf8());
    const auto losses = table.losses(former);
    for (const auto& loss : losses)
        std::printf("%s\n", qUtf8Printable(loss));
    return losses.isEmpty() ? 0 : 1;
}
