#include "Hosts/Png/QuickDeflate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <functional>
#include <queue>
#include <type_traits>
#include <utility>
#include <vector>

namespace Ombrique::Hosts {

namespace {

// The symbols of a block: the bytes, the end of the block, and from 257 on the lengths of repeats, to 284.
constexpr std::size_t kEndOfBlock = 256;
constexpr std::size_t kSymbols = 285;
/// Four of the longest codes fit into what stays free of 64 bits.
constexpr unsigned kLongestCode = 12;
/// Repeats are looked for in steps, and are as long as some of them.
constexpr std::size_t kStep = 8;
constexpr std::size_t kLongestRepeat = 256;

using Counts = std::array<std::uint32_t, kSymbols>;

/// A Huffman code's bits, the first one lowest, or others that stand as they are.
struct Code {
    std::uint32_t bits = 0;
    unsigned length = 0;
};
using Codes = std::array<Code, kSymbols>;

/// The symbol of a repeat, and the bits that stand behind it.
struct Repeat {
    std::size_t symbol;
    Code extra;
};

Repeat repeatOf(std::size_t length) {
    // The lengths of a symbol double after every four symbols, from 3 + 8 on.
    const std::size_t beyond = length - 3;
    const auto bits = static_cast<unsigned>(std::max(0, static_cast<int>(std::bit_width(beyond)) - 3));
    return {257 + 4 * bits + (beyond >> bits), {static_cast<std::uint32_t>(beyond & ((1U << bits) - 1)), bits}};
}

/// Calls `literals(first, count)` for bytes that stand for themselves, at most kStep, and `repeat(length)` for those
/// that equal the ones `distance` before.
template <typename Literals, typename RepeatOf>
void forEachToken(std::span<const std::uint8_t> bytes, std::size_t distance, Literals literals, RepeatOf repeat) {
    const std::uint8_t* at = bytes.data();
    std::size_t left = bytes.size();
    const auto takeLiterals = [&] {
        const std::size_t count = std::min(left, kStep);
        if (count == kStep)
            literals(at, std::integral_constant<std::size_t, kStep>()); // known beforehand, it needs no loop
        else
            literals(at, count);
        at += count;
        left -= count;
    };
    takeLiterals(); // before them is nothing
    while (left > 0) {
        std::size_t length = 0;
        while (length < kLongestRepeat && length + kStep <= left &&
               std::memcmp(at + length, at + length - distance, kStep) == 0)
            length += kStep;
        if (length == 0) {
            takeLiterals();
        } else {
            repeat(length);
            at += length;
            left -= length;
        }
    }
}

Counts countSymbols(std::span<const std::uint8_t> bytes, std::size_t distance) {
    // Side by side, as each step of one counter waits for the step before.
    std::array<Counts, 4> counts{};
    counts[0][kEndOfBlock] = 1;
    forEachToken(
        bytes, distance,
        [&](const std::uint8_t* first, auto count) {
            for (std::size_t i = 0; i < count; ++i)
                ++counts[i % 4][first[i]];
        },
        [&](std::size_t length) { ++counts[0][repeatOf(length).symbol]; });
    for (std::size_t i = 1; i < counts.size(); ++i)
        std::ranges::transform(counts[0], counts[i], counts[0].begin(), std::plus());
    return counts[0];
}

/// The lengths of Huffman's code, 0 for a symbol that doesn't occur. Two at least have to.
std::array<unsigned, kSymbols> codeLengths(Counts counts) {
    for (;;) {
        // The symbols are the first nodes of the tree, and those that join two others stand behind these.
        std::array<std::size_t, 2 * kSymbols> parent{};
        std::size_t nodes = kSymbols;
        std::priority_queue<std::pair<std::uint32_t, std::size_t>, std::vector<std::pair<std::uint32_t, std::size_t>>,
                            std::greater<>>
            roots;
        for (std::size_t symbol = 0; symbol < kSymbols; ++symbol)
            if (counts[symbol] > 0)
                roots.emplace(counts[symbol], symbol);
        while (roots.size() > 1) {
            const auto [lesser, first] = roots.top();
            roots.pop();
            const auto [other, second] = roots.top();
            roots.pop();
            parent[first] = parent[second] = nodes;
            roots.emplace(lesser + other, nodes++);
        }
        std::array<unsigned, 2 * kSymbols> depth{};
        for (std::size_t node = nodes - 1; node-- > 0;)
            depth[node] = parent[node] > 0 ? depth[parent[node]] + 1 : 0;
        std::array<unsigned, kSymbols> lengths{};
        std::copy_n(depth.begin(), kSymbols, lengths.begin());
        if (std::ranges::max(lengths) <= kLongestCode)
            return lengths;
        // Counts that are more alike make a flatter tree.
        for (std::uint32_t& count : counts)
            count = (count + 1) / 2;
    }
}

std::uint32_t reversed(std::uint32_t bits, unsigned length) {
    std::uint32_t result = 0;
    for (unsigned i = 0; i < length; ++i)
        result |= (bits >> i & 1) << (length - 1 - i);
    return result;
}

/// The codes that follow from their lengths: shorter ones first, and those of one length in the order of the symbols.
Codes codesOf(const std::array<unsigned, kSymbols>& lengths) {
    Codes codes;
    std::uint32_t next = 0;
    for (unsigned length = 1; length <= kLongestCode; ++length, next <<= 1)
        for (std::size_t symbol = 0; symbol < kSymbols; ++symbol)
            if (lengths[symbol] == length)
                codes[symbol] = {reversed(next++, length), length};
    return codes;
}

/// Puts bits into bytes, lowest first.
class BitWriter {
public:
    BitWriter(std::uint64_t bits, unsigned count, std::uint8_t* to) : mBits(bits), mCount(count), mTo(to) {}

    /// There is room for so many as a flush() leaves, 7 at most, and 56 more.
    void put(const Code& code) {
        mBits |= std::uint64_t{code.bits} << mCount;
        mCount += code.length;
    }
    /// Writes the whole bytes, and anything behind them up to 8.
    void flush() {
        for (unsigned i = 0; i < 8; ++i)
            mTo[i] = static_cast<std::uint8_t>(mBits >> 8 * i);
        mTo += mCount / 8;
        mBits >>= mCount / 8 * 8;
        mCount %= 8;
    }

    std::uint64_t bits() const { return mBits; }
    unsigned count() const { return mCount; }
    std::uint8_t* to() const { return mTo; }

private:
    std::uint64_t mBits;
    unsigned mCount;
    std::uint8_t* mTo;
};

/// The header of a block with a code of its own: all lengths as numbers of four bits.
void putHeader(BitWriter& writer, const Codes& codes, std::size_t distance, bool isLast) {
    constexpr unsigned kOwnCode = 2;
    constexpr unsigned kLengthSymbols = 19;
    writer.put({isLast ? 1U : 0U, 1});
    writer.put({kOwnCode, 2});
    writer.put({kSymbols - 257, 5});
    writer.put({static_cast<std::uint32_t>(distance - 1), 5});
    writer.put({kLengthSymbols - 4, 4});
    writer.flush();
    // The first three mean runs of lengths, and aren't used; the others are the lengths 0 to 15.
    for (unsigned i = 0; i < kLengthSymbols; ++i, writer.flush())
        writer.put({i < 3 ? 0U : 4U, 3});
    for (const Code& code : codes) {
        writer.put({reversed(code.length, 4), 4});
        writer.flush();
    }
    // The only distance has a code of one bit.
    for (std::size_t symbol = 1; symbol <= distance; ++symbol, writer.flush())
        writer.put({reversed(symbol == distance ? 1 : 0, 4), 4});
}

} // namespace

std::size_t QuickDeflate::compress(std::span<const std::uint8_t> bytes, bool isLast, std::uint8_t* to) {
    const Codes codes = codesOf(codeLengths(countSymbols(bytes, mDistance)));
    BitWriter writer(mBits, mBitCount, to);
    putHeader(writer, codes, mDistance, isLast);
    forEachToken(
        bytes, mDistance,
        [&](const std::uint8_t* first, auto count) {
            for (std::size_t i = 0; i < count; ++i) {
                writer.put(codes[first[i]]);
                if (i % 4 == 3)
                    writer.flush();
            }
            writer.flush();
        },
        [&](std::size_t length) {
            const auto [symbol, extra] = repeatOf(length);
            writer.put(codes[symbol]);
            writer.put(extra);
            writer.put({0, 1}); // the only distance
            writer.flush();
        });
    writer.put(codes[kEndOfBlock]);
    if (isLast)
        writer.put({0, 7}); // fills the last byte
    writer.flush();
    mBits = writer.bits();
    mBitCount = writer.count();
    return static_cast<std::size_t>(writer.to() - to);
}

} // namespace Ombrique::Hosts
