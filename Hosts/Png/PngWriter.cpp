#include "Hosts/Png/PngWriter.h"

#include "Hosts/Png/PngChunks.h"
#include "Hosts/Png/QuickDeflate.h"

#include <algorithm>
#include <cassert>
#include <libdeflate.h>
#include <stdexcept>
#include <vector>

namespace Ombrique::Hosts {

namespace {

using Bytes = std::vector<std::uint8_t>;
using PackRows = std::function<void(int, int, std::uint8_t*)>;

/// The file of a picture of one black row that is otherwise as `spec` says.
Bytes encodeOneRow(const std::filesystem::path& path, OIIO::ImageSpec spec) {
    spec.height = 1;
    Bytes bytes;
    OIIO::Filesystem::IOVecOutput memory(bytes); // outlives the encoder
    const auto encoder = OIIO::ImageOutput::create("png");
    encoder->set_ioproxy(&memory);
    const Bytes black(spec.scanline_bytes());
    if (!encoder->open(path.string(), spec) ||
        !encoder->write_scanline(spec.y, 0, OIIO::TypeDesc::UINT8, black.data()) || !encoder->close())
        throw std::runtime_error(path.string() + ": can't be written as PNG");
    return bytes;
}

/// Writes a row's filter, and the difference of each byte to that of the pixel on the left: the other filters cost more
/// time than they save space. Returns the end of what it wrote.
std::uint8_t* filterRow(const std::uint8_t* row, std::size_t length, std::size_t channels, std::uint8_t* to) {
    *to++ = static_cast<std::uint8_t>(PngFilter::Left);
    to = std::copy_n(row, channels, to);
    return std::transform(row + channels, row + length, row, to, std::minus<std::uint8_t>());
}

/// So many rows make a chunk and a block of the compressor as stay in the processor's cache.
int rowsOfBlock(std::size_t rowBytes, int height) {
    constexpr std::size_t kBlockBytes = 1 << 18;
    return static_cast<int>(std::clamp<std::size_t>(kBlockBytes / rowBytes, 1, static_cast<std::size_t>(height)));
}

/// Writes the pixels, as a zlib stream (RFC 1950) in chunks.
void writePixels(const OIIO::ImageSpec& spec, const PackRows& packRows, OIIO::Filesystem::IOProxy& file) {
    constexpr std::array<std::uint8_t, 2> kZlibHead = {0x78, 0x01};
    constexpr std::size_t kZlibTail = 4;
    const auto channels = static_cast<std::size_t>(spec.nchannels);
    const std::size_t rowBytes = static_cast<std::size_t>(spec.width) * channels;
    const int rowsAtATime = rowsOfBlock(rowBytes, spec.height);
    Bytes samples(rowBytes * static_cast<std::size_t>(rowsAtATime));
    Bytes filtered((1 + rowBytes) * static_cast<std::size_t>(rowsAtATime));
    Bytes chunk(kPngChunkHead + kZlibHead.size() + QuickDeflate::mostOf(filtered.size()) + kZlibTail + kPngChunkTail);
    QuickDeflate deflate(channels);
    std::uint32_t adler = 1;
    for (int top = 0; top < spec.height; top += rowsAtATime) {
        const int rows = std::min(rowsAtATime, spec.height - top);
        const bool isLast = top + rows == spec.height;
        packRows(spec.y + top, rows, samples.data());
        std::uint8_t* to = filtered.data();
        for (std::size_t row = 0; row < static_cast<std::size_t>(rows); ++row)
            to = filterRow(samples.data() + row * rowBytes, rowBytes, channels, to);
        const std::span block(filtered.data(), to);
        adler = libdeflate_adler32(adler, block.data(), block.size());

        to = chunk.data() + kPngChunkHead;
        if (top == 0)
            to = std::ranges::copy(kZlibHead, to).out;
        to += deflate.compress(block, isLast, to);
        if (isLast) {
            putPngNumber(to, adler);
            to += kZlibTail;
        }
        const std::span whole(chunk.data(), to + kPngChunkTail);
        sealPngChunk(whole, "IDAT");
        file.write(whole.data(), whole.size());
    }
}

} // namespace

void writePng(const std::filesystem::path& path, const OIIO::ImageSpec& spec, const PackRows& packRows,
              OIIO::Filesystem::IOProxy& file) {
    Bytes oneRow = encodeOneRow(path, spec);
    auto rest = std::span(oneRow).subspan(kPngSignature.size());
    file.write(oneRow.data(), kPngSignature.size());
    bool hasPixels = false;
    while (const auto chunk = takePngChunk(rest)) {
        if (chunk->type == "IHDR") {
            putPngNumber(&chunk->data[4], static_cast<std::uint32_t>(spec.height));
            sealPngChunk(chunk->whole, "IHDR");
        }
        if (chunk->type != "IDAT")
            file.write(chunk->whole.data(), chunk->whole.size());
        else if (!std::exchange(hasPixels, true))
            writePixels(spec, packRows, file);
    }
    assert(hasPixels && rest.empty());
}

} // namespace Ombrique::Hosts
