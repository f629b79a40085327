#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/PictureReader.h"
#include "Hosts/Png/PngChunks.h"
#include "Tests/Fuzz/Require.h"

#include <filesystem>
#include <fstream>
#include <span>
#include <unistd.h>

// Reads any bytes as a picture. The first byte of an input is a place in kFormats, the others are the file; a PNG file
// of the second place for PNG first gets the checksums that fit its chunks. Either a whole picture comes out or a
// Failure that names the file.
namespace Ombrique::Tests {

namespace {

/// Places in this list stand in the corpus: new ones go to the end. PSD is left out, whose decoder asks for gigabytes
/// by itself where a file of 89 bytes says so.
constexpr const char* kFormats[] = {"png", "jpg", "exr", "tif",  "tga", "bmp", "ppm",   "dpx", "fits",
                                    "hdr", "sgi", "gif", "webp", "pfm", "jp2", nullptr, "ico", "png"};
constexpr std::size_t kSealedPng = 17;
/// Beyond it a picture is refused by its size alone, so that none takes long.
constexpr int kLongestSide = 128;

/// Chance alone would hardly get beyond a checksum.
void sealChunks(std::span<unsigned char> file) {
    using namespace Hosts;
    constexpr std::size_t kAround = kPngChunkHead + kPngChunkTail;
    std::size_t at = kPngSignature.size();
    while (at + kAround <= file.size() && pngNumber(&file[at]) <= file.size() - at - kAround) {
        const auto chunk = file.subspan(at, pngNumber(&file[at]) + kAround);
        sealPngChunk(chunk, std::string(reinterpret_cast<const char*>(&chunk[4]), 4));
        at += chunk.size();
    }
}

void read(const std::filesystem::path& file) {
    try {
        Hosts::PictureReader reader(file, kLongestSide);
        require(reader.width() >= 1 && reader.width() <= kLongestSide, "a picture that isn't refused fits the driver");
        require(reader.height() >= 1 && reader.height() <= kLongestSide, "and has rows");
        Hosts::World world(reader.width(), reader.height());
        reader.read(world);
    } catch (const Hosts::Failure& failure) {
        const std::string_view text = failure.what();
        require(text.starts_with(file.native()), "a failure names the file");
        require(text.find('\n') == std::string_view::npos, "a failure is one line");
    }
}

/// What is the same for all inputs of the process.
const std::filesystem::path& folder() {
    static const std::filesystem::path path = [] {
        // A format that refuses its bytes is not asked in the name of all others.
        OIIO::attribute("try_all_readers", 0);
        // More is refused in our own terms, but some formats ask for memory as they open a file.
        OIIO::attribute("limits:imagesize_MB", 64);
        const auto own = std::filesystem::temp_directory_path() / ("ombrique-fuzz-" + std::to_string(getpid()));
        std::filesystem::create_directory(own);
        std::atexit([] { std::filesystem::remove_all(folder()); });
        return own;
    }();
    return path;
}

} // namespace

} // namespace Ombrique::Tests

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace Ombrique::Tests;
    if (size == 0)
        return 0;
    const std::size_t format = data[0] % std::size(kFormats);
    if (kFormats[format] == nullptr)
        return 0;
    const auto file = folder() / ("picture." + std::string(kFormats[format]));
    std::string bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    if (format == kSealedPng)
        sealChunks({reinterpret_cast<unsigned char*>(bytes.data()), bytes.size()});
    std::ofstream(file, std::ios::binary) << bytes;
    read(file);
    return 0;
}
