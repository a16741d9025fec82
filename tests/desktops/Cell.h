#pragma once

#include <QString>

/// What a check found on a desktop.
struct Cell {
    enum class Mark { Yes, No, None };

    Mark mark = Mark::No;
    QString reason = {}; ///< why there is nothing to judge; with None only

    bool operator==(const Cell&) const = default;

    static Cell of(bool isSo) { return {isSo ? Mark::Yes : Mark::No}; }
    static Cell none(const QString& reason) { return {Mark::None, reason}; }
};
