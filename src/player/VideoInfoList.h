#pragma once

#include "records/VideoDetail.h"

#include <deque>
#include <memory>
#include <optional>

/// One entry of the play list.
struct VideoInfoNode {
    VideoDetail val;
    std::unique_ptr<VideoInfoNode> next; ///< none for the last node
};

/// The play list: the library's rows in the order in which they play, with a cursor. Advancing
/// past the last node goes on with the first, so it plays as a ring although the chain is open.
class VideoInfoList {
public:
    VideoInfoList() = default;
    ~VideoInfoList();
    VideoInfoList(const VideoInfoList&) = delete;
    VideoInfoList& operator=(const VideoInfoList&) = delete;

    const VideoInfoNode* current() const { return m_current; }
    const VideoInfoNode* head() const { return m_head.get(); }
    const VideoInfoNode* tail() const { return m_tail; }
    std::size_t count() const { return m_count; }

    /// Releases the nodes one at a time: a chain of releases would exhaust the stack.
    void clear();
    /// The first node becomes the current one.
    void append(VideoDetail video);
    /// Makes the first node of that sign the current one. Without a match nothing changes.
    void moveToSign(const std::optional<QString>& sign);
    void moveToHead() { m_current = m_head.get(); }
    void advance();

private:
    VideoInfoNode* m_current = nullptr;
    std::unique_ptr<VideoInfoNode> m_head;
    VideoInfoNode* m_tail = nullptr;
    std::size_t m_count = 0;
};

/// A random permutation of the rows, each as likely as any other. At most 2^32 - 1 rows.
std::deque<VideoDetail> randomlyReordered(const std::deque<VideoDetail>& rows);
