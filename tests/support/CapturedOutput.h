#pragma once

#include "support/TemporaryHome.h"

#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

/// What this process writes to standard output or standard error.
class CapturedOutput {
public:
    explicit CapturedOutput(int descriptor) : m_descriptor(descriptor), m_original(dup(descriptor))
    {
        std::fflush(nullptr);
        if (!m_file.open() || dup2(m_file.handle(), descriptor) < 0)
            qFatal("The output cannot be captured.");
    }
    ~CapturedOutput() { restore(); }

    /// All of it; what is written from now on goes where it went before.
    QByteArray text()
    {
        restore();
        return TemporaryHome::contents(m_file.fileName());
    }

private:
    void restore()
    {
        std::fflush(nullptr);
        if (m_original >= 0) {
            dup2(m_original, m_descriptor);
            close(std::exchange(m_original, -1));
        }
    }

    int m_descriptor;
    int m_original;
    QTemporaryFile m_file;
};
