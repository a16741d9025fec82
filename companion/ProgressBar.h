#pragma once

#include <QElapsedTimer>
#include <QtGlobal>

/// A line on standard error that shows how far a long task is. It appears on a terminal only, and
/// only when the task has taken a second.
class ProgressBar {
public:
    explicit ProgressBar(qint64 totalBytes);
    /// Takes the line away again.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void advance(qint64 bytes);
    /// Makes room for a line of text; the bar comes back with the next advance.
    void hide();

private:
    qint64 m_total;
    qint64 m_done = 0;
    bool m_isTerminal;
    bool m_isShown = false;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceDrawn;
};
