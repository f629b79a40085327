#include "Hosts/Engine/World.h"

#include <array>
#include <atomic>
#include <cassert>
#include <cstdlib>
#include <limits>
#include <new>
#include <stdexcept>

namespace Ombrique::Hosts {

namespace {

constexpr std::size_t kAlignment = 64;

std::size_t alignedUp(std::size_t size) { return (size + kAlignment - 1) / kAlignment * kAlignment; }

/// A different value for each of 256 worlds in a row.
std::uint8_t nextSeed() {
    static std::atomic<unsigned> count{0};
    return static_cast<std::uint8_t>(count.fetch_add(1, std::memory_order_relaxed) * 89 + 0x5a);
}

std::size_t strideOf(int width, PixelDepth depth, int paddingBytes) {
    const std::int64_t stride = std::int64_t{width} * bytesPerPixel(depth) + paddingBytes;
    if (stride > std::numeric_limits<std::int32_t>::max())
        throw std::length_error("a row of " + std::to_string(width) + " pixels has too many bytes for a world");
    return static_cast<std::size_t>(stride);
}

/// Four sums side by side, because each step of one waits for the step before. Each step maps different words to
/// different sums, so that a change of a single word always shows.
class Checksum {
public:
    void add(const std::byte* bytes, std::size_t size) {
        std::size_t done = 0;
        for (; done + kBlock <= size; done += kBlock)
            addBlock(bytes + done);
        std::array<std::byte, kBlock> rest{};
        std::memcpy(rest.data(), bytes + done, size - done);
        addBlock(rest.data());
    }
    std::uint64_t value() const {
        std::uint64_t result = 0;
        for (const std::uint64_t sum : mSums)
            result = (result ^ sum) * kFactor;
        return result;
    }

private:
    static constexpr std::size_t kBlock = 32;
    static constexpr std::uint64_t kFactor = 0x9e3779b97f4a7c15;

    void addBlock(const std::byte* block) {
        std::array<std::uint64_t, 4> words;
        std::memcpy(words.data(), block, kBlock);
        for (std::size_t i = 0; i < words.size(); ++i)
            mSums[i] = (mSums[i] ^ words[i]) * kFactor;
    }

    std::array<std::uint64_t, 4> mSums = {1, 2, 3, 4};
};

} // namespace

void World::Free::operator()(std::byte* memory) const { std::free(memory); }

World::World(int width, int height, PixelDepth depth, WorldLayout layout)
    : mWidth(width), mHeight(height), mDepth(depth), mPaddingBytes(layout.paddingBytes), mSeed(nextSeed()) {
    assert(width >= 0 && height >= 0 && layout.paddingBytes >= 0);
    mStride = strideOf(width, depth, layout.paddingBytes);
    mGuardBytes = alignedUp(mStride + kAlignment);
    const std::size_t pictureBytes = mStride * static_cast<std::size_t>(height);
    // calloc leaves the zeroing of large blocks to the first touch of each page.
    mMemory.reset(static_cast<std::byte*>(std::calloc(1, pictureBytes + 2 * mGuardBytes + kAlignment)));
    if (!mMemory)
        throw std::bad_alloc();
    mStart = mMemory.get() + (kAlignment - reinterpret_cast<std::uintptr_t>(mMemory.get()) % kAlignment) % kAlignment;

    const auto stride = static_cast<std::ptrdiff_t>(mStride);
    mRowBytes = layout.bottomUp ? -stride : stride;
    mFirstRow = mStart + mGuardBytes + (layout.bottomUp && height > 0 ? (height - 1) * stride : 0);
    mLayer = {mFirstRow, static_cast<std::int32_t>(mRowBytes), width, height};
    forEachTrap([this](int, std::size_t offset, std::size_t length) {
        for (std::size_t i = offset; i < offset + length; ++i)
            mStart[i] = std::byte{trapAt(i)};
    });
}

std::uint8_t World::trapAt(std::size_t offset) const {
    return static_cast<std::uint8_t>(mSeed ^ (offset * 0x9d) ^ (offset >> 8));
}

template <typename Visit> void World::forEachTrap(Visit visit) const {
    const auto padding = static_cast<std::size_t>(mPaddingBytes);
    visit(-1, 0, mGuardBytes);
    for (int y = 0; y < mHeight; ++y)
        visit(y, static_cast<std::size_t>(row(y) - mStart) + mStride - padding, padding);
    visit(mHeight, mGuardBytes + mStride * static_cast<std::size_t>(mHeight), mGuardBytes);
}

std::vector<std::string> World::damage() const {
    std::vector<std::string> result;
    bool paddingDamaged = false;
    forEachTrap([&](int row, std::size_t offset, std::size_t length) {
        const bool isPadding = row >= 0 && row < mHeight;
        if (isPadding && paddingDamaged)
            return;
        std::size_t i = offset;
        while (i < offset + length && mStart[i] == std::byte{trapAt(i)})
            ++i;
        if (i == offset + length)
            return;
        paddingDamaged = paddingDamaged || isPadding;
        result.push_back(isPadding ? "written into the padding of row " + std::to_string(row)
                         : row < 0 ? "written before the picture"
                                   : "written behind the picture");
    });
    if (mLayer.data != mFirstRow || mLayer.rowbytes != mRowBytes || mLayer.width != mWidth || mLayer.height != mHeight)
        result.emplace_back("fields of the world changed");
    return result;
}

std::uint64_t World::checksum() const {
    Checksum sum;
    const std::size_t pixelBytes = mStride - static_cast<std::size_t>(mPaddingBytes);
    for (int y = 0; y < mHeight; ++y)
        sum.add(row(y), pixelBytes);
    return sum.value();
}

std::size_t World::offsetOf(PixelDepth depth, int x, int y) const {
    assert(depth == mDepth && x >= 0 && x < mWidth && y >= 0 && y < mHeight);
    (void)y;
    return static_cast<std::size_t>(x) * static_cast<std::size_t>(bytesPerPixel(depth));
}

} // namespace Ombrique::Hosts
