#include "Hosts/Png/PngChunks.h"

#include <algorithm>
#include <libdeflate.h>

namespace Ombrique::Hosts {

namespace {

bool isLetter(std::uint8_t byte) { return (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z'; }

/// Of a chunk's type and data, which lie next to each other.
std::uint32_t crcOf(std::span<const std::uint8_t> chunk) {
    return libdeflate_crc32(0, chunk.data() + 4, chunk.size() - 4 - kPngChunkTail);
}

} // namespace

std::uint32_t pngNumber(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

void putPngNumber(std::uint8_t* bytes, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8)
        *bytes++ = static_cast<std::uint8_t>(number >> shift);
}

std::optional<PngChunk> takePngChunk(std::span<std::uint8_t>& rest) {
    constexpr std::size_t kAround = kPngChunkHead + kPngChunkTail;
    if (rest.size() < kAround || pngNumber(rest.data()) > rest.size() - kAround)
        return std::nullopt;
    const auto whole = rest.first(pngNumber(rest.data()) + kAround);
    const auto type = whole.subspan(4, 4);
    if (!std::ranges::all_of(type, isLetter) || pngNumber(&whole[whole.size() - kPngChunkTail]) != crcOf(whole))
        return std::nullopt;
    rest = rest.subspan(whole.size());
    return PngChunk{{reinterpret_cast<const char*>(type.data()), type.size()},
                    whole.subspan(kPngChunkHead, whole.size() - kAround),
                    whole};
}

void sealPngChunk(std::span<std::uint8_t> chunk, std::string_view type) {
    putPngNumber(chunk.data(), static_cast<std::uint32_t>(chunk.size() - kPngChunkHead - kPngChunkTail));
    std::ranges::copy(type, &chunk[4]);
    putPngNumber(&chunk[chunk.size() - kPngChunkTail], crcOf(chunk));
}

} // namespace Ombrique::Hosts
