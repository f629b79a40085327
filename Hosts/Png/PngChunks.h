#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace Ombrique::Hosts {

// PNG, ISO/IEC 15948: a file is a signature and chunks behind it. A chunk is the length of its data, its type of four
// letters, its data, and the CRC-32 of type and data. Numbers have 32 bits, their highest byte first.

inline constexpr std::array<std::uint8_t, 8> kPngSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};

/// What the first byte of a row says: its other bytes are differences to the same channel of the pixel on the left, of
/// the one above, or of what several of them make.
enum class PngFilter : std::uint8_t { None, Left, Above, Average, Paeth };

/// A chunk, in the memory that holds its file.
struct PngChunk {
    std::string_view type;
    std::span<std::uint8_t> data;
    /// With what stands around the data.
    std::span<std::uint8_t> whole;
};

std::uint32_t pngNumber(const std::uint8_t* bytes);
void putPngNumber(std::uint8_t* bytes, std::uint32_t number);

/// Takes the first chunk off `rest`. Nothing where it is cut off, its type isn't made of letters, or its CRC is wrong.
std::optional<PngChunk> takePngChunk(std::span<std::uint8_t>& rest);

/// The bytes of a chunk before its data and behind it.
constexpr std::size_t kPngChunkHead = 8;
constexpr std::size_t kPngChunkTail = 4;

/// Fills in what stands around the data of a chunk, which take up the middle of `chunk`.
void sealPngChunk(std::span<std::uint8_t> chunk, std::string_view type);

} // namespace Ombrique::Hosts
