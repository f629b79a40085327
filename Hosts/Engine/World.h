#pragma once

#include "Platform/HostInterface/Worlds.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// The depth of a world's pixels: PF_Pixel8, PF_Pixel16 or PF_PixelFloat.
enum class PixelDepth { Bits8, Bits16, Float };

/// 4, 8 or 16.
constexpr int bytesPerPixel(PixelDepth depth) {
    return depth == PixelDepth::Bits8 ? 4 : depth == PixelDepth::Bits16 ? 8 : 16;
}

template <typename Pixel> constexpr PixelDepth kDepthOf = PixelDepth::Bits8;
template <> inline constexpr PixelDepth kDepthOf<PF_Pixel16> = PixelDepth::Bits16;
template <> inline constexpr PixelDepth kDepthOf<PF_PixelFloat> = PixelDepth::Float;

/// How the rows of a world lie in memory.
struct WorldLayout {
    /// Bytes after each row's pixels, 0 or more. They needn't be a multiple of the pixel size; where they aren't,
    /// the pixels of a deep world are unaligned.
    int paddingBytes = 32;
    /// The rows run upwards in memory, so that `rowbytes` is negative.
    bool bottomUp = false;
};

/// A picture in the host's memory, as a plug-in gets it, with traps around it: the padding of its rows and an area of
/// more than one row on either side hold a pattern of this world's own, so that whatever is written there shows, also a
/// copy of another world's padding. Pixels start as zero. A world may be moved; the address of its PF_LayerDef moves
/// along, that of its pixels stays. Several threads may read at once, while none writes.
class World {
public:
    /// @throw std::length_error where a row or the whole is too long for the interface or for memory,
    /// @throw std::bad_alloc where there isn't so much memory. Negative sizes assert.
    World(int width, int height, PixelDepth depth = PixelDepth::Bits8, WorldLayout layout = {});

    int width() const { return mWidth; }
    int height() const { return mHeight; }
    PixelDepth depth() const { return mDepth; }
    /// From one row to the next, in bytes; negative bottom-up.
    std::ptrdiff_t rowBytes() const { return mRowBytes; }

    /// What the plug-in is handed. The world owns it, and the plug-in may only read its fields.
    PF_LayerDef* layer() { return &mLayer; }
    const PF_LayerDef* layer() const { return &mLayer; }

    /// The first pixel of row `y` (0 to height less one, top row first), as bytes.
    std::byte* row(int y) { return mFirstRow + y * mRowBytes; }
    const std::byte* row(int y) const { return mFirstRow + y * mRowBytes; }

    /// One pixel, of the type that the depth tells; another type, or a place outside, asserts.
    template <typename Pixel> Pixel pixel(int x, int y) const {
        Pixel result;
        std::memcpy(&result, row(y) + offsetOf(kDepthOf<Pixel>, x, y), sizeof(Pixel));
        return result;
    }
    template <typename Pixel> void setPixel(int x, int y, const Pixel& value) {
        std::memcpy(row(y) + offsetOf(kDepthOf<Pixel>, x, y), &value, sizeof(Pixel));
    }
    /// Sets each pixel to `value`.
    template <typename Pixel> void fill(const Pixel& value) {
        for (int y = 0; y < mHeight; ++y)
            for (int x = 0; x < mWidth; ++x)
                setPixel(x, y, value);
    }

    /// The places where nothing may be written and something was, one line each (before the picture, after it, the
    /// first padding that differs, the fields of the PF_LayerDef). Empty when all is well. Reads padding and guards
    /// only.
    std::vector<std::string> damage() const;
    /// A number that tells one content of the pixels from another; padding doesn't count.
    std::uint64_t checksum() const;

private:
    struct Free {
        void operator()(std::byte* memory) const;
    };

    std::size_t offsetOf(PixelDepth depth, int x, int y) const;
    /// The pattern's byte at `offset` bytes from the start of the first guard.
    std::uint8_t trapAt(std::size_t offset) const;
    /// Calls `visit(row, offset, length)` for each stretch of memory that nothing may write to: row -1 is the guard
    /// before the picture, row `height` the one behind it, and the others are padding.
    template <typename Visit> void forEachTrap(Visit visit) const;

    int mWidth;
    int mHeight;
    PixelDepth mDepth;
    int mPaddingBytes;
    std::uint8_t mSeed;
    /// The length of a row with its padding, and of the guard on either side, in bytes.
    std::size_t mStride = 0;
    std::size_t mGuardBytes = 0;
    std::ptrdiff_t mRowBytes = 0;
    std::unique_ptr<std::byte, Free> mMemory;
    /// The start of the first guard.
    std::byte* mStart = nullptr;
    std::byte* mFirstRow = nullptr;
    PF_LayerDef mLayer{};
};

} // namespace Ombrique::Hosts
