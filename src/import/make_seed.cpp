#include "import/VideoProbe.h"
#include "library/LibraryEditor.h"

#include <QFile>

#include <cstdio>

/// make_seed DATABASE VIDEO PATH: makes a library with one video, whose facts are read from the
/// file VIDEO and whose address is PATH, where it will lie.
int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fputs("usage: make_seed DATABASE VIDEO PATH\n", stderr);
        return 2;
    }
    const auto database = QFile::decodeName(argv[1]);
    QFile::remove(database);
    const auto result = probeVideo(QFile::decodeName(argv[2]));
    const auto* facts = std::get_if<VideoFacts>(&result);
    LibraryEditor library{Database(database)};
    if (!facts || library.failure() ||
        library.add(*facts, QUrl::fromLocalFile(QFile::decodeName(argv[3]))) !=
            LibraryEditor::Outcome::Added) {
        std::fprintf(stderr, "make_seed: cannot make %s\n", argv[1]);
        return 1;
    }
    return 0;
}
