#pragma once

#include <QRegion>
#include <QSize>

#include <cstdint>
#include <optional>
#include <vector>

/// Marks pixels of a picture.
class PixelMask {
public:
    explicit PixelMask(const QSize& size);

    void set(int x, int y, bool isMarked)
    {
        auto& word = m_words[index(x, y)];
        const auto bit = std::uint64_t{1} << (static_cast<unsigned>(x) % bitsInWord);
        word = isMarked ? word | bit : word & ~bit;
    }

    /// How many of all are marked, from 0 to 1.
    double share() const;
    /// The marked ones. With too many rectangles for that, small blocks that hold one are wholly in
    /// it, and then larger ones.
    QRegion region(std::size_t mostRectangles) const;

private:
    static constexpr unsigned bitsInWord = 64;
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * m_wordsInRow + static_cast<unsigned>(x) / bitsInWord;
    }

    /// None when there are more.
    std::optional<std::vector<QRect>> rectangles(int blockLength, std::size_t most) const;
    std::vector<std::uint64_t> rowOfBlocks(int firstRow, int blockLength) const;

    QSize m_size;
    std::size_t m_wordsInRow;
    std::vector<std::uint64_t> m_words;
};
