#include "companion/ProgressBar.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <unistd.h>

ProgressBar::ProgressBar(qint64 totalBytes)
    : m_total(std::max<qint64>(1, totalBytes)), m_isTerminal(isatty(STDERR_FILENO) == 1)
{
    m_sinceStart.start();
}

ProgressBar::~ProgressBar()
{
    hide();
}

void ProgressBar::advance(qint64 bytes)
{
    m_done += bytes;
    const bool isDue =
        m_sinceStart.elapsed() > 1000 && (!m_sinceDrawn.isValid() || m_sinceDrawn.elapsed() > 100);
    if (!m_isTerminal || !isDue)
        return;
    m_sinceDrawn.start();
    m_isShown = true;
    constexpr qint64 width = 40;
    const auto filled = static_cast<std::size_t>(std::min(width, width * m_done / m_total));
    const std::string bar = std::string(filled, '#') + std::string(width - filled, '.');
    std::fprintf(stderr,
        "\r[%s] %3lld %%",
        bar.c_str(),
        static_cast<long long>(std::min<qint64>(100, 100 * m_done / m_total)));
}

void ProgressBar::hide()
{
    if (m_isShown)
        std::fputs("\r\033[K", stderr);
    m_isShown = false;
    m_sinceDrawn.invalidate();
}
