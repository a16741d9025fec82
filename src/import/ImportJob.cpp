#include "import/ImportJob.h"

#include "import/VideoProbe.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QUrl>

#include <variant>

namespace {

using Outcome = LibraryEditor::Outcome;

ImportJob::Result importFile(
    const QString& file, LibraryEditor& library, const std::function<void(qint64)>& progress)
{
    const auto path = QFileInfo(file).absoluteFilePath();
    const auto probed = probeVideo(path, progress);
    if (const auto* failure = std::get_if<ProbeFailure>(&probed))
        return {file, path, Outcome::Failed, {}, failure->reason};
    const auto& facts = std::get<VideoFacts>(probed);
    const auto outcome = library.add(facts, QUrl::fromLocalFile(path));
    const auto failure = outcome == Outcome::Failed ? library.lastErrorMessage() : QString();
    return {file, path, outcome, facts, failure};
}

} // namespace

ImportJob::ImportJob(const QStringList& paths)
{
    const QMimeDatabase types;
    for (const auto& path : paths) {
        if (!QFileInfo(path).isDir()) {
            m_files << path;
            continue;
        }
        const auto entries = QDir(path).entryInfoList(QDir::Files, QDir::Name);
        for (const auto& entry : entries) {
            const auto type = types.mimeTypeForFile(entry, QMimeDatabase::MatchExtension);
            if (type.name().startsWith(u"video/"))
                m_files << entry.filePath();
        }
    }
}

qint64 ImportJob::totalBytes() const
{
    qint64 total = 0;
    for (const auto& file : m_files)
        total += QFileInfo(file).size();
    return total;
}

bool ImportJob::run(LibraryEditor& library,
    const std::function<void(qint64)>& progress,
    const std::function<void(const Result&)>& finished) const
{
    bool hasChanged = false;
    for (const auto& file : m_files) {
        const auto result = importFile(file, library, progress);
        if (result.outcome == Outcome::Added || result.outcome == Outcome::Moved)
            hasChanged = true;
        finished(result);
    }
    return hasChanged;
}
