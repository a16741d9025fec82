#pragma once

#include "desktops/Cell.h"

#include <QStringList>

#include <vector>

/// What was found on which desktop, as a page of Markdown that people and this program read.
class CompatibilityTable {
public:
    struct Column {
        QString title;
        QString versions; ///< of the desktop's programs
        std::vector<Cell> cells;
    };

    explicit CompatibilityTable(const QStringList& rows) : m_rows(rows) {}

    /// What toMarkdown has written; columns that lack a row of ours are left out.
    static CompatibilityTable fromMarkdown(const QStringList& rows, const QString& text);
    QString toMarkdown() const;

    /// Null for none.
    const Column* find(const QString& title) const;
    void append(Column column) { m_columns.push_back(std::move(column)); }

    /// What is no "yes" any more though it is one in the table before, a sentence each.
    QStringList losses(const CompatibilityTable& before) const;

private:
    QStringList m_rows;
    std::vector<Column> m_columns;
};
