#include "Hosts/Png/PngReader.h"

#include "Hosts/Png/PngChunks.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <libdeflate.h>
#include <memory>
#include <new>
#include <optional>

namespace Ombrique::Hosts {

namespace {

using Bytes = std::span<std::uint8_t>;

/// The byte that the neighbours foretell best: the one next to left + above - corner.
int paeth(int left, int above, int corner) {
    const int toLeft = std::abs(above - corner);
    const int toAbove = std::abs(left - corner);
    const int toCorner = std::abs(left + above - 2 * corner);
    const int other = toAbove <= toCorner ? above : corner;
    return toLeft <= toAbove && toLeft <= toCorner ? left : other;
}

/// Adds `predict(left, above, corner)` to each byte of a row. The last pixels' bytes are kept apart from the rows, so
/// that the channels of a pixel run side by side in registers.
template <int Channels, typename Predict>
void addPredicted(std::uint8_t* row, const std::uint8_t* above, std::size_t length, Predict predict) {
    std::array<std::uint8_t, Channels> left{};
    std::array<std::uint8_t, Channels> corner{};
    for (std::size_t x = 0; x < length; x += Channels)
        for (std::size_t channel = 0; channel < Channels; ++channel) {
            std::uint8_t& byte = row[x + channel];
            byte = static_cast<std::uint8_t>(byte + predict(left[channel], above[x + channel], corner[channel]));
            left[channel] = byte;
            corner[channel] = above[x + channel];
        }
}

/// Undoes the filter of a row. False where there is no such filter.
template <int Channels>
bool unfilter(PngFilter filter, std::uint8_t* row, const std::uint8_t* above, std::size_t length) {
    switch (filter) {
    case PngFilter::None:
        return true;
    case PngFilter::Left:
        addPredicted<Channels>(row, above, length, [](int left, int, int) { return left; });
        return true;
    case PngFilter::Above:
        addPredicted<Channels>(row, above, length, [](int, int over, int) { return over; });
        return true;
    case PngFilter::Average:
        addPredicted<Channels>(row, above, length, [](int left, int over, int) { return (left + over) / 2; });
        return true;
    case PngFilter::Paeth:
        addPredicted<Channels>(row, above, length, paeth);
        return true;
    }
    return false;
}

/// Indexed by the count of channels, from 1 on.
constexpr std::array kUnfilter = {unfilter<1>, unfilter<2>, unfilter<3>, unfilter<4>};

/// A whole file, but none that is larger than `most`.
struct FileBytes {
    std::unique_ptr<std::uint8_t[]> memory;
    Bytes bytes;

    /// Empty where the file can't be read, or is larger.
    FileBytes(const std::filesystem::path& path, std::size_t most) {
        std::ifstream file(path, std::ios::binary | std::ios::ate);
        const std::streamoff size = file.tellg();
        if (size < 0 || static_cast<std::size_t>(size) > most)
            return;
        memory = std::make_unique_for_overwrite<std::uint8_t[]>(static_cast<std::size_t>(size));
        if (file.seekg(0).read(reinterpret_cast<char*>(memory.get()), size))
            bytes = {memory.get(), static_cast<std::size_t>(size)};
    }
};

/// Whether the header is that of a plain picture of this size.
bool isPlain(Bytes header, const OIIO::ImageSpec& spec) {
    // Colour type by count of channels; then deflate, the five filters above, no interlacing.
    constexpr std::array<std::uint8_t, 4> kColourTypes = {0, 4, 2, 6};
    return header.size() == 13 && spec.nchannels >= 1 && spec.nchannels <= 4 &&
           pngNumber(&header[0]) == static_cast<std::uint32_t>(spec.width) &&
           pngNumber(&header[4]) == static_cast<std::uint32_t>(spec.height) && header[8] == 8 &&
           header[9] == kColourTypes[static_cast<std::size_t>(spec.nchannels - 1)] && header[10] == 0 &&
           header[11] == 0 && header[12] == 0;
}

/// The zlib stream of the picture, moved together at the place of its first piece. Nothing where a chunk is damaged, or
/// means that the picture isn't plain, or the file doesn't end properly.
std::optional<Bytes> pixelStream(Bytes file, const OIIO::ImageSpec& spec) {
    if (file.size() < kPngSignature.size() || !std::ranges::equal(file.first(kPngSignature.size()), kPngSignature))
        return std::nullopt;
    file = file.subspan(kPngSignature.size());
    auto chunk = takePngChunk(file);
    if (!chunk || chunk->type != "IHDR" || !isPlain(chunk->data, spec))
        return std::nullopt;
    Bytes stream;
    bool isOver = false;
    while ((chunk = takePngChunk(file)) && chunk->type != "IEND") {
        const bool isCritical = (chunk->type[0] & 0x20) == 0;
        if (chunk->type == "IDAT" && !isOver) {
            if (stream.empty())
                stream = chunk->data.first(0);
            std::ranges::copy(chunk->data, stream.data() + stream.size());
            stream = {stream.data(), stream.size() + chunk->data.size()};
        } else if (isCritical || chunk->type == "tRNS") {
            return std::nullopt;
        } else {
            isOver = !stream.empty();
        }
    }
    return chunk && chunk->data.empty() ? std::optional(stream) : std::nullopt;
}

/// Inflates a zlib stream that has to fill `rows` to the last byte.
bool inflate(Bytes stream, Bytes rows) {
    // A stream that looks back further than the window that it declares is refused by others, not by libdeflate.
    if (stream.empty() || (rows.size() > std::size_t{256} << (stream[0] >> 4) && stream[0] >> 4 < 7))
        return false;
    const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> decompressor(
        libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    if (!decompressor)
        throw std::bad_alloc();
    std::size_t taken = 0;
    return libdeflate_zlib_decompress_ex(decompressor.get(), stream.data(), stream.size(), rows.data(), rows.size(),
                                         &taken, nullptr) == LIBDEFLATE_SUCCESS &&
           taken == stream.size();
}

} // namespace

bool readPlainPng(const std::filesystem::path& path, const OIIO::ImageSpec& spec,
                  const std::function<void(int, const std::uint8_t*)>& take) {
    const std::size_t length = static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.nchannels);
    const std::size_t size = (1 + length) * static_cast<std::size_t>(spec.height);
    // What is stored without compression, and as much beside the pixels as is usual.
    FileBytes file(path, size + size / 16 + (1 << 20));
    const auto stream = pixelStream(file.bytes, spec);
    // No stream shrinks its content further.
    constexpr std::size_t kMostOfDeflate = 1032;
    if (!stream || stream->size() < size / kMostOfDeflate)
        return false;
    const auto rows = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    if (!inflate(*stream, {rows.get(), size}))
        return false;
    file.memory.reset();
    const std::vector<std::uint8_t> blank(length);
    const std::uint8_t* above = blank.data();
    std::uint8_t* row = rows.get();
    for (int y = 0; y < spec.height; ++y, above = row + 1, row += 1 + length) {
        if (!kUnfilter[static_cast<std::size_t>(spec.nchannels - 1)](PngFilter{row[0]}, row + 1, above, length))
            return false;
        take(y, row + 1);
    }
    return true;
}

} // namespace Ombrique::Hosts
