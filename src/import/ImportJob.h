#pragma once

#include "library/LibraryEditor.h"
#include "library/VideoFacts.h"

#include <QString>
#include <QStringList>

#include <functional>

/// Puts video files into the library, one after the other. One bad file does not stop the others.
class ImportJob {
public:
    /// A folder stands for the videos in it, in the order of their names.
    explicit ImportJob(const QStringList& paths);

    bool isEmpty() const { return m_files.isEmpty(); }
    /// Of all files, as they are now.
    qint64 totalBytes() const;

    /// What became of one file.
    struct Result {
        QString file; ///< as it was given
        QString path; ///< absolute
        LibraryEditor::Outcome outcome;
        VideoFacts facts; ///< empty for a file that is no video
        QString failure;  ///< for people, where the outcome is `Failed`
    };

    /// `progress` is told how many bytes were read since it was told last; `finished` is called
    /// once a file, in their order. Whether the library has changed.
    bool run(LibraryEditor& library,
        const std::function<void(qint64 bytes)>& progress,
        const std::function<void(const Result&)>& finished) const;

private:
    QStringList m_files;
};
