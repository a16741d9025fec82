#include "companion/CommandHandlers.h"
#include "companion/Output.h"
#include "companion/ProgressBar.h"
#include "import/ImportJob.h"

#include <QJsonArray>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

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

QString line(const ImportJob::Result& result)
{
    const auto& facts = result.facts;
    return u"%1  %2  %3 (%4×%5, %6)"_s.arg(facts.sign,
        outcomeText(result.outcome),
        facts.title,
        QString::number(facts.width),
        QString::number(facts.height),
        Output::lengthText(facts.seconds));
}

QJsonObject json(const ImportJob::Result& result)
{
    const auto outcome = outcomeText(result.outcome);
    if (result.outcome == LibraryEditor::Outcome::Failed)
        return {{"path", result.file}, {"outcome", outcome}, {"error", result.failure}};
    return {{"path", result.path},
        {"outcome", outcome},
        {"sign", result.facts.sign},
        {"title", result.facts.title}};
}

} // namespace

ExitStatus CommandHandlers::import(Companion& companion, const Arguments& arguments)
{
    const ImportJob job(arguments.words);
    if (job.isEmpty())
        throw CommandError{arguments.words.join(u' '), u"no videos in there"_s};

    QJsonArray results;
    bool hasFailed = false;
    auto& library = companion.library();
    ProgressBar progress(job.totalBytes());
    const bool hasChanged = job.run(
        library,
        [&](qint64 bytes) { progress.advance(bytes); },
        [&](const ImportJob::Result& result) {
            progress.hide();
            results.append(json(result));
            if (result.outcome == LibraryEditor::Outcome::Failed) {
                hasFailed = true;
                Output::printError(result.file, result.failure);
            } else if (!arguments.isJson) {
                Output::print(line(result));
            }
        });
    if (arguments.isJson)
        Output::print(QJsonDocument(results));
    if (hasChanged) {
        Companion::announceLibrary();
        companion.preferences().setAlreadyImportVideo(true);
        companion.storePreferences();
    }
    return hasFailed ? ExitStatus::Failed : ExitStatus::Done;
}
