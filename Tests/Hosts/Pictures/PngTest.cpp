#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/PictureReader.h"
#include "Hosts/Pictures/PictureWriter.h"
#include "Hosts/Png/PngChunks.h"
#include "Hosts/Png/PngReader.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <libdeflate.h>
#include <numeric>
#include <random>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

constexpr int kLongestSide = 16384;

std::string chunk(std::string_view type, const std::string& data) {
    std::string whole(kPngChunkHead + data.size() + kPngChunkTail, '\0');
    data.copy(&whole[kPngChunkHead], data.size());
    sealPngChunk({reinterpret_cast<std::uint8_t*>(whole.data()), whole.size()}, type);
    return whole;
}

std::string zlib(const std::string& bytes) {
    const auto free = [](libdeflate_compressor* compressor) { libdeflate_free_compressor(compressor); };
    const std::unique_ptr<libdeflate_compressor, decltype(free)> compressor(libdeflate_alloc_compressor(6), free);
    std::string stream(libdeflate_zlib_compress_bound(compressor.get(), bytes.size()), '\0');
    stream.resize(libdeflate_zlib_compress(compressor.get(), bytes.data(), bytes.size(), stream.data(), stream.size()));
    return stream;
}

/// A kind of PNG file, full of bytes by chance.
struct Kind {
    const char* name;
    int width = 7, height = 5;
    int depth = 8;
    /// 0 grey, 2 RGB, 3 palette, 4 grey and alpha, 6 RGBA.
    int type = 6;
    bool isInterlaced = false;
    /// The data of a chunk that makes colours transparent.
    std::string transparent = "";
    /// Whether it goes the short road.
    bool isPlain = true;

    int channels() const { return type == 2 ? 3 : type == 4 ? 2 : type == 6 ? 4 : 1; }
    std::string header() const {
        std::string data(13, '\0');
        putPngNumber(reinterpret_cast<std::uint8_t*>(data.data()), static_cast<std::uint32_t>(width));
        putPngNumber(reinterpret_cast<std::uint8_t*>(&data[4]), static_cast<std::uint32_t>(height));
        data[8] = static_cast<char>(depth);
        data[9] = static_cast<char>(type);
        data[12] = isInterlaced;
        return data;
    }
    /// All filters in turn.
    std::string rows() const {
        struct Pass {
            int x, y, stepX, stepY;
        };
        const std::vector<Pass> all = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                       {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
        std::mt19937 random(3);
        std::string bytes;
        for (const Pass& pass : isInterlaced ? all : std::vector<Pass>{{0, 0, 1, 1}})
            for (int y = pass.y, filter = 0; pass.x < width && y < height; y += pass.stepY, ++filter) {
                bytes += static_cast<char>(4 - filter % 5);
                const int columns = (width - pass.x + pass.stepX - 1) / pass.stepX;
                for (int i = 0; i < (columns * channels() * depth + 7) / 8; ++i)
                    bytes += static_cast<char>(random());
            }
        return bytes;
    }
    std::string file(const std::string& pixels) const {
        std::string palette(type == 3 ? (3U << depth) : 0U, '\0');
        std::iota(palette.begin(), palette.end(), '\1');
        return std::string(kPngSignature.begin(), kPngSignature.end()) + chunk("IHDR", header()) +
               (palette.empty() ? "" : chunk("PLTE", palette)) +
               (transparent.empty() ? "" : chunk("tRNS", transparent)) + pixels + chunk("IEND", "");
    }
    std::string file() const {
        const std::string stream = zlib(rows());
        return file(chunk("IDAT", stream.substr(0, 9)) + chunk("IDAT", "") + chunk("IDAT", stream.substr(9)));
    }
};

bool isTakenAsPlain(const std::string& path, const OIIO::ImageSpec& spec) {
    return readPlainPng(path, spec, [](int, const std::uint8_t*) {});
}

World readPicture(const std::string& path) {
    PictureReader reader(path, kLongestSide);
    World pixels(reader.width(), reader.height());
    reader.read(pixels);
    return pixels;
}

/// A picture as OpenImageIO's own decoder gives it.
World readByOpenImageIO(const std::string& path) {
    OIIO::ImageSpec straight;
    straight.attribute("oiio:UnassociatedAlpha", 1);
    const auto file = OIIO::ImageInput::open(path, &straight);
    const OIIO::ImageSpec spec = file->spec();
    std::vector<float> samples(spec.image_pixels() * static_cast<std::size_t>(spec.nchannels));
    EXPECT_TRUE(file->read_image(0, 0, 0, -1, OIIO::TypeDesc::FLOAT, samples.data())) << file->geterror();
    World pixels(spec.width, spec.height);
    const float* sample = samples.data();
    for (int y = 0; y < spec.height; ++y)
        for (int x = 0; x < spec.width; ++x, sample += spec.nchannels) {
            const auto at = [&](int channel) { return quantised(sample[spec.nchannels < 3 ? 0 : channel]); };
            const bool hasAlpha = spec.nchannels % 2 == 0;
            pixels.setPixel(
                x, y,
                PF_Pixel8{hasAlpha ? quantised(sample[spec.nchannels - 1]) : std::uint8_t{255}, at(0), at(1), at(2)});
        }
    return pixels;
}

TEST(Png, EveryKindIsReadAsOpenImageIODoes) {
    const Kind kinds[] = {
        {.name = "grey", .type = 0},
        {.name = "grey and alpha", .type = 4},
        {.name = "RGB", .type = 2},
        {.name = "RGBA"},
        {.name = "one pixel", .width = 1, .height = 1},
        {.name = "one column", .width = 1, .height = 9, .type = 2},
        {.name = "one row", .width = 300, .height = 1, .type = 0},
        {.name = "larger than a window", .width = 211, .height = 103},
        {.name = "1 bit", .depth = 1, .type = 0, .isPlain = false},
        {.name = "2 bits", .depth = 2, .type = 0, .isPlain = false},
        {.name = "4 bits", .depth = 4, .type = 0, .isPlain = false},
        {.name = "16 bits", .depth = 16, .type = 0, .isPlain = false},
        {.name = "grey and alpha of 16 bits", .depth = 16, .type = 4, .isPlain = false},
        {.name = "RGB of 16 bits", .depth = 16, .type = 2, .isPlain = false},
        {.name = "RGBA of 16 bits", .depth = 16, .isPlain = false},
        {.name = "palette of 2", .depth = 1, .type = 3, .isPlain = false},
        {.name = "palette of 4", .depth = 2, .type = 3, .isPlain = false},
        {.name = "palette of 16", .depth = 4, .type = 3, .isPlain = false},
        {.name = "palette of 256", .type = 3, .isPlain = false},
        {.name = "palette with alpha", .type = 3, .transparent = "\x10\x20\x30", .isPlain = false},
        {.name = "transparent grey", .type = 0, .transparent = {"\0\x40", 2}, .isPlain = false},
        {.name = "transparent RGB", .type = 2, .transparent = {"\0\1\0\2\0\3", 6}, .isPlain = false},
        {.name = "interlaced", .width = 13, .height = 11, .isInterlaced = true, .isPlain = false},
        {.name = "interlaced 1 bit", .depth = 1, .type = 0, .isInterlaced = true, .isPlain = false},
        {.name = "interlaced pixel", .width = 1, .height = 1, .isInterlaced = true, .isPlain = false},
    };
    const ScratchFolder folder;
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        writeFile(folder / "in.png", kind.file());
        EXPECT_EQ(isTakenAsPlain(folder / "in.png", describePictureFile(folder / "in.png")), kind.isPlain);
        EXPECT_EQ(comparePixels(readByOpenImageIO(folder / "in.png"), readPicture(folder / "in.png")), "");
    }
}

TEST(Png, NoChangedOrMissingByteGoesUnseen) {
    const ScratchFolder folder;
    const std::string good = Kind{"RGBA"}.file();
    writeFile(folder / "good.png", good);
    const OIIO::ImageSpec spec = describePictureFile(folder / "good.png");
    for (std::size_t i = 0; i < good.size(); ++i) {
        std::string broken = good;
        broken[i] = static_cast<char>(broken[i] ^ 0x24);
        writeFile(folder / "changed.png", broken);
        EXPECT_FALSE(isTakenAsPlain(folder / "changed.png", spec)) << "byte " << i;
        writeFile(folder / "cut.png", good.substr(0, i));
        EXPECT_FALSE(isTakenAsPlain(folder / "cut.png", spec)) << i << " bytes";
    }
}

// With checksums that fit.
TEST(Png, WhatIsWrongGoesToOpenImageIO) {
    const Kind kind{"RGBA", 64, 65};
    const std::string rows = kind.rows();
    const std::size_t rowBytes = rows.size() / 65;
    const std::string stream = zlib(rows);
    const auto changed = [](std::string bytes, std::size_t place, int value) {
        bytes[place] = static_cast<char>(value);
        return bytes;
    };
    const auto idat = [](const std::string& data) { return chunk("IDAT", data); };
    const struct {
        const char* name;
        std::string pixels;
        /// Whether OpenImageIO refuses it as well.
        bool isRefused;
    } cases[] = {
        {"no such filter", idat(zlib(changed(rows, 3 * rowBytes, 5))), true},
        {"a row too few", idat(zlib(rows.substr(rowBytes))), true},
        {"a row too many", idat(zlib(rows + rows.substr(0, rowBytes))), false},
        {"wrong checksum of the stream", idat(changed(stream, stream.size() - 1, ~stream.back())), true},
        {"bytes behind the stream", idat(stream + "more"), false},
        {"no pixels", "", true},
        {"window of 256 bytes declared", idat("\x08\x1d" + stream.substr(2)), false},
        {"stream that stops", idat(stream.substr(0, 900)), true},
        {"pixels in two places", idat(stream.substr(0, 900)) + chunk("teXt", "") + idat(stream.substr(900)), true},
        {"critical chunk of no known kind", chunk("ABCD", "") + idat(stream), true},
        {"second header", chunk("IHDR", kind.header()) + idat(stream), true},
    };
    const ScratchFolder folder;
    writeFile(folder / "good.png", kind.file());
    const OIIO::ImageSpec spec = describePictureFile(folder / "good.png");
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        writeFile(folder / "in.png", kind.file(row.pixels));
        EXPECT_FALSE(isTakenAsPlain(folder / "in.png", spec));
        try {
            EXPECT_EQ(comparePixels(readPicture(folder / "good.png"), readPicture(folder / "in.png")), "");
            EXPECT_FALSE(row.isRefused);
        } catch (const Failure& failure) {
            EXPECT_TRUE(row.isRefused) << failure.what();
        }
    }
}

void copyPicture(const std::string& from, const std::string& to, const std::string& compression) {
    PictureReader reader(from, kLongestSide);
    World pixels(reader.width(), reader.height());
    reader.read(pixels);
    PictureWriter(to, compression).write(pixels, reader.origin());
}

/// The chunks of a file, those of the pixels less.
std::vector<std::string> chunksBesidePixels(const std::string& path) {
    std::string bytes = readFile(path);
    auto rest = std::span(reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()).subspan(kPngSignature.size());
    std::vector<std::string> chunks;
    while (const auto next = takePngChunk(rest))
        if (next->type != "IDAT")
            chunks.emplace_back(next->whole.begin(), next->whole.end());
    EXPECT_TRUE(rest.empty());
    return chunks;
}

/// The least that is a colour profile: a header, and no tags.
std::string colourProfile() {
    std::string profile(132, '\0');
    profile[3] = static_cast<char>(profile.size());
    profile.replace(12, 12, "mntrRGB XYZ ");
    profile.replace(36, 4, "acsp");
    profile.replace(68, 12, "\0\0\xf6\xd6\0\1\0\0\0\0\xd3\x2d", 12); // the white of D50
    return profile;
}

// A block of the compressor ends where no byte does, long runs end anywhere, and no content fills the room for it.
TEST(Png, WrittenPixelsAreReadByOpenImageIO) {
    const ScratchFolder folder;
    for (const char* channels : {"Y", "YA", "RGB", "RGBA"})
        for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {611, 457}})
            for (const int size : {1, 3, 97, 4096}) {
                SCOPED_TRACE(std::string(channels) + " " + std::to_string(width) + ", runs of " + std::to_string(size));
                const World noise = makePicture(width, height, 5);
                World picture(width, height);
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x)
                        picture.setPixel(x, y, noise.pixel<PF_Pixel8>(x - x % size, y));
                const PictureForm form{channels};
                picture = asHeld(picture, form);
                writePictureFile(folder / "in.png", picture, form);
                copyPicture(folder / "in.png", folder / "out.png", "");
                EXPECT_EQ(comparePixels(picture, readByOpenImageIO(folder / "out.png")), "");
                EXPECT_TRUE(isTakenAsPlain(folder / "out.png", describePictureFile(folder / "out.png")));
                const auto raw = static_cast<double>(width * height) * static_cast<double>(form.channels.size());
                EXPECT_LT(static_cast<double>(std::filesystem::file_size(folder / "out.png")),
                          400.0 + raw * (size < 97 ? 1.01 : 0.08));
            }
}

TEST(Png, EverythingButThePixelsIsOpenImageIOs) {
    const ScratchFolder folder;
    OIIO::ImageSpec metadata;
    metadata.x = 3;
    metadata.y = 2;
    metadata.attribute("oiio:Gamma", 2.2f);
    metadata.attribute("ImageDescription", "shot 12");
    metadata.attribute("DateTime", "2024:05:06 07:08:09");
    metadata.attribute("XResolution", 300.0f);
    metadata.attribute("YResolution", 150.0f);
    metadata.attribute("ResolutionUnit", "in");
    metadata.attribute("Exif:LensModel", "50 mm");
    metadata.attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, 132), colourProfile().data());
    writePictureFile(folder / "in.png", makePicture(31, 17, 5), {}, metadata);
    copyPicture(folder / "in.png", folder / "quick.png", "");
    copyPicture(folder / "in.png", folder / "slow.png", "default:9");
    const auto chunks = chunksBesidePixels(folder / "quick.png");
    EXPECT_GT(chunks.size(), 8U);
    EXPECT_EQ(chunks, chunksBesidePixels(folder / "slow.png"));
}

} // namespace

} // namespace Ombrique::Tests
