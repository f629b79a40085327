#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Ombrique::Hosts {

/// Compresses the filtered rows of a picture as a deflate stream (RFC 1951), at several times the speed of compressors
/// for all kinds of data: it looks for nothing but repeats of the pixel before, and every block has a Huffman code of
/// its own. On photographs that loses next to nothing, as filtered noise has no other repeats.
class QuickDeflate {
public:
    /// `distance` is the length of a pixel, 1 to 4 bytes.
    explicit QuickDeflate(std::size_t distance) : mDistance(distance) {}

    /// The most bytes that compress() makes of so many.
    static constexpr std::size_t mostOf(std::size_t size) { return size * 3 / 2 + 256; }

    /// Writes `bytes`, one at least, as a block to `to`, which has room for mostOf() them. What is left of the last
    /// byte stands before the next block; behind the last it is zero. Returns the count of bytes written.
    std::size_t compress(std::span<const std::uint8_t> bytes, bool isLast, std::uint8_t* to);

private:
    std::size_t mDistance;
    /// The bits that aren't written yet, the first one lowest.
    std::uint64_t mBits = 0;
    unsigned mBitCount = 0;
};

} // namespace Ombrique::Hosts
