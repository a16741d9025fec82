#include "player/VideoInfoList.h"

#include <QRandomGenerator>

#include <limits>
#include <numeric>
#include <utility>
#include <vector>

VideoInfoList::~VideoInfoList()
{
    clear();
}

void VideoInfoList::clear()
{
    while (m_head)
        m_head = std::move(m_head->next);
    m_tail = nullptr;
    m_current = nullptr;
    m_count = 0;
}

void VideoInfoList::append(VideoDetail video)
{
    auto node = std::make_unique<VideoInfoNode>(VideoInfoNode{std::move(video), nullptr});
    auto* const appended = node.get();
    if (m_tail) {
        m_tail->next = std::move(node);
    } else {
        m_head = std::move(node);
        m_current = appended;
    }
    m_tail = appended;
    ++m_count;
}

void VideoInfoList::moveToSign(const std::optional<QString>& sign)
{
    if (!sign)
        return;
    for (auto* node = m_head.get(); node; node = node->next.get()) {
        if (node->val.sign == *sign) {
            m_current = node;
            return;
        }
    }
}

void VideoInfoList::advance()
{
    m_current = m_current && m_current->next ? m_current->next.get() : m_head.get();
}

std::deque<VideoDetail> randomlyReordered(const std::deque<VideoDetail>& rows)
{
    if (rows.size() > std::numeric_limits<quint32>::max())
        qFatal("Too many videos to put into a random order.");

    // Draws one of the rows that are left, again and again. The last one takes the place of the
    // one drawn, so that a draw does not move all the others.
    std::vector<std::size_t> left(rows.size());
    std::iota(left.begin(), left.end(), std::size_t{0});
    std::deque<VideoDetail> reordered;
    while (!left.empty()) {
        const auto drawn = QRandomGenerator::global()->bounded(static_cast<quint32>(left.size()));
        reordered.push_back(rows[left[drawn]]);
        left[drawn] = left.back();
        left.pop_back();
    }
    return reordered;
}
