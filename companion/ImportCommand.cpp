#include "companion/CommandHandlers.h"
#include "companion/Output.h"
#include "companion/ProgressBar.h"
#include "companion/VideoProbe.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QMimeDatabase>

using namespace Qt::StringLiterals;

namespace {

/// A folder stands for the videos in it, in the order of their names.
QStringList videoFiles(const QStringList& paths)
{
    const QMimeDatabase types;
    QStringList files;
    for (const auto& path : paths) {
        if (!QFileInfo(path).isDir()) {
            files << path;
            continue;
        }
        const auto entries = QDir(path).entryInfoList(QDir::Files, QDir::Name);
        for (const auto& entry : entries) {
            const auto type = types.mimeTypeForFile(entry, QMimeDatabase::MatchExtension);
            if (type.name().startsWith(u"video/"))
                files << entry.filePath();
        }
    }
    return files;
}

QString outcomeText(LibraryEditor::Outcome outcome)
{
    switch (outcome) {
    case LibraryEditor::Outcome::Added:
        return u"added"_s;
    case LibraryEditor::Outcome::AlreadyThere:
        return u"already there"_s;
    case LibraryEditor::Outcome::Moved:
        return u"moved"_s;
    case LibraryEditor::Outcome::Failed:
        break;
    }
    return u"failed"_s;
}

} // namespace

ExitStatus CommandHandlers::import(Companion& companion, const Arguments& arguments)
{
    const auto files = videoFiles(arguments.words);
    if (files.isEmpty())
        throw CommandError{arguments.words.join(u' '), u"no videos in there"_s};
    qint64 total = 0;
    for (const auto& file : files)
        total += QFileInfo(file).size();

    auto& library = companion.library();
    ProgressBar progress(total);
    QJsonArray results;
    bool hasFailed = false;
    bool hasChanged = false;
    const auto report = [&](const QString& path, const QString& why) {
        hasFailed = true;
        progress.hide();
        Output::printError(path, why);
        results.append(QJsonObject{{"path", path}, {"outcome", "failed"}, {"error", why}});
    };
    for (const auto& file : files) {
        const auto path = QFileInfo(file).absoluteFilePath();
        const auto probed = probeVideo(path, [&](qint64 bytes) { progress.advance(bytes); });
        if (const auto* failure = std::get_if<ProbeFailure>(&probed)) {
            report(file, failure->reason);
            continue;
        }
        const auto& facts = std::get<VideoFacts>(probed);
        const auto outcome = library.add(facts, QUrl::fromLocalFile(path));
        if (outcome == LibraryEditor::Outcome::Failed) {
            report(file, library.lastErrorMessage());
            continue;
        }
        hasChanged = hasChanged || outcome != LibraryEditor::Outcome::AlreadyThere;
        progress.hide();
        results.append(QJsonObject{{"path", path},
            {"outcome", outcomeText(outcome)},
            {"sign", facts.sign},
            {"title", facts.title}});
        if (!arguments.isJson) {
            Output::print(u"%1  %2  %3 (%4×%5, %6)"_s.arg(facts.sign,
                outcomeText(outcome),
                facts.title,
                QString::number(facts.width),
                QString::number(facts.height),
                Output::lengthText(facts.seconds)));
        }
    }
    if (arguments.isJson)
        Output::print(QJsonDocument(results));
    if (hasChanged) {
        Companion::announceLibrary();
        companion.preferences().setAlreadyImportVideo(true);
        companion.storePreferences();
    }
    return hasFailed ? ExitStatus::Failed : ExitStatus::Done;
}
