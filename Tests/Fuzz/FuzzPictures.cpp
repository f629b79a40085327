#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/PictureReader.h"
#include "Tests/Fuzz/Require.h"

#include <filesystem>
#include <fstream>
#include <span>
#include <unistd.h>

// Reads any bytes as a picture. The first byte of an input is a place in kFormats, the others are the file. Either a
// whole picture comes out or a Failure that names the file.
namespace Ombrique::Tests {

namespace {

/// Places in this list stand in the corpus: new ones go to the end.
constexpr const char* kFormats[] = {"png", "jpg", "exr", "tif",  "tga", "bmp", "ppm", "dpx", "fits",
                                    "hdr", "sgi", "gif", "webp", "pfm", "jp2", "psd", "ico"};
/// Beyond it a picture is refused by its size alone, so that none takes long.
constexpr int kLongestSide = 128;

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
    const auto file = folder() / ("picture." + std::string(kFormats[data[0] % std::size(kFormats)]));
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data + 1), static_cast<std::streamsize>(size - 1));
    read(file);
    return 0;
}
