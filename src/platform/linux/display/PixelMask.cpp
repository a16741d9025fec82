#include "platform/linux/display/PixelMask.h"

#include <algorithm>
#include <bit>

namespace {

/// Marks each block of pixels in a row of which one is marked.
std::uint64_t widened(std::uint64_t word, int blockLength)
{
    std::uint64_t firstOfBlocks = 0;
    for (int bit = 0; bit < 64; bit += blockLength)
        firstOfBlocks |= std::uint64_t{1} << bit;
    for (int step = 1; step < blockLength; step *= 2)
        word |= word >> step;
    word &= firstOfBlocks; // bit 0 of a block has collected those above it
    for (int step = 1; step < blockLength; step *= 2)
        word |= word << step;
    return word;
}

/// Of the runs of marked pixels in a row, to which `add` is called with each begin and end.
template <typename Add>
void eachRun(const std::vector<std::uint64_t>& row, int width, Add add)
{
    const auto next = [&](int from, bool isMarked) {
        while (from < width) {
            const auto word = row[static_cast<std::size_t>(from) / 64];
            const auto rest = (isMarked ? word : ~word) >> (static_cast<unsigned>(from) % 64);
            if (rest != 0)
                return std::min(width, from + std::countr_zero(rest));
            from = (from / 64 + 1) * 64;
        }
        return width;
    };
    for (int begin = next(0, true); begin < width;) {
        const int end = next(begin, false);
        add(begin, end);
        begin = next(end, true);
    }
}

} // namespace

PixelMask::PixelMask(const QSize& size)
    : m_size(size),
      m_wordsInRow((static_cast<std::size_t>(size.width()) + bitsInWord - 1) / bitsInWord),
      m_words(m_wordsInRow * static_cast<std::size_t>(size.height()))
{
}

double PixelMask::share() const
{
    std::int64_t count = 0;
    for (const auto word : m_words)
        count += std::popcount(word);
    return static_cast<double>(count) / (double{1} * m_size.width() * m_size.height());
}

QRegion PixelMask::region(std::size_t mostRectangles) const
{
    QRegion region;
    for (const int blockLength : {1, 4, 16, 64}) {
        if (const auto found = rectangles(blockLength, mostRectangles)) {
            region.setRects(found->data(), static_cast<int>(found->size()));
            return region;
        }
    }
    return QRect(QPoint(), m_size);
}

std::vector<std::uint64_t> PixelMask::rowOfBlocks(int firstRow, int blockLength) const
{
    std::vector<std::uint64_t> row(m_wordsInRow);
    const int end = std::min(firstRow + blockLength, m_size.height());
    for (int y = firstRow; y < end; ++y) {
        for (std::size_t i = 0; i < m_wordsInRow; ++i)
            row[i] |= m_words[static_cast<std::size_t>(y) * m_wordsInRow + i];
    }
    if (blockLength > 1)
        std::ranges::transform(
            row, row.begin(), [=](std::uint64_t word) { return widened(word, blockLength); });
    return row;
}

/// From the top to the bottom and from the left to the right, as a region wants them; rows that are
/// alike share theirs.
std::optional<std::vector<QRect>> PixelMask::rectangles(int blockLength, std::size_t most) const
{
    std::vector<QRect> rectangles;
    std::vector<std::uint64_t> former(m_wordsInRow);
    std::size_t formerBegin = 0; // of the last row's rectangles
    for (int y = 0; y < m_size.height(); y += blockLength) {
        const int height = std::min(blockLength, m_size.height() - y);
        auto row = rowOfBlocks(y, blockLength);
        if (row == former) {
            for (auto i = formerBegin; i < rectangles.size(); ++i)
                rectangles[i].setHeight(rectangles[i].height() + height);
            continue;
        }
        formerBegin = rectangles.size();
        eachRun(row, m_size.width(), [&](int begin, int end) {
            rectangles.emplace_back(begin, y, end - begin, height);
        });
        if (rectangles.size() > most)
            return std::nullopt;
        former = std::move(row);
    }
    return rectangles;
}
