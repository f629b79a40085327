#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/PictureReader.h"
#include "Hosts/Pictures/PictureWriter.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <set>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

struct FormatRow {
    const char* format;
    const char* extension;
    /// The channels of the file for grey, grey with alpha, RGB and RGBA, 0 where it is refused.
    int channels[4];
    /// How far samples may be off, in 8-bit steps: what the format's compression costs at the edges of the bands.
    int loss = 0;
};

const FormatRow kRows[] = {
    {"openexr", "exr", {1, 2, 3, 4}},
    {"tiff", "tif", {1, 2, 3, 4}},
    {"jpeg", "jpg", {1, 1, 3, 3}, 25},
    {"bmp", "bmp", {1, 4, 3, 4}},
    {"cineon", "cin", {}},
    {"dds", "dds", {}},
    {"dicom", "dcm", {}},
    {"dpx", "dpx", {1, 4, 3, 4}},
    {"ffmpeg", "avi", {}},
    {"fits", "fits", {}},
    {"gif", "gif", {4, 4, 4, 4}, 30},
    {"heif", "heic", {3, 4, 3, 4}, 12},
    {"hdr", "hdr", {3, 3, 3, 3}, 1},
    {"ico", "ico", {1, 2, 3, 4}},
    {"iff", "iff", {4, 4, 4, 4}},
    {"jpeg2000", "jp2", {1, 4, 3, 4}},
    {"null", "null", {}},
    {"openvdb", "vdb", {}},
    {"png", "png", {1, 2, 3, 4}},
    {"pnm", "ppm", {3, 3, 3, 3}},
    {"pnm", "pgm", {1, 1, 0, 0}},
    {"pnm", "pbm", {}},
    {"psd", "psd", {}},
    {"raw", "dng", {}},
    {"rla", "rla", {1, 2, 3, 4}},
    {"sgi", "sgi", {1, 4, 3, 4}},
    {"sgi", "bw", {1, 1, 0, 0}},
    {"softimage", "pic", {}},
    {"targa", "tga", {1, 4, 3, 4}},
    {"term", "term", {}},
    {"webp", "webp", {3, 3, 3, 3}, 25},
    {"zfile", "zfile", {1, 1, 0, 0}},
};

/// Smooth, so that lossy formats hold it; in bands of alpha that 8-bit samples, multiplied by it, hold exactly.
World makeSmoothPicture(bool isGrey, bool hasAlpha) {
    World picture(67, 41);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
            const auto alpha = byte(hasAlpha ? (x / 23 + 1) * 85 : 255);
            picture.setPixel(x, y,
                             isGrey ? PF_Pixel8{alpha, byte(3 * x), byte(3 * x), byte(3 * x)}
                                    : PF_Pixel8{alpha, byte(3 * x), byte(6 * y), byte(255 - 3 * x)});
        }
    return picture;
}

/// What a file without alpha holds of a picture.
World laidOverBlack(const World& picture) {
    World result(picture.width(), picture.height());
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            auto pixel = picture.pixel<PF_Pixel8>(x, y);
            for (std::uint8_t* const colour : {&pixel.red, &pixel.green, &pixel.blue})
                *colour = static_cast<std::uint8_t>(*colour * pixel.alpha / 255);
            pixel.alpha = 255;
            result.setPixel(x, y, pixel);
        }
    return result;
}

int worstDifference(const World& expected, const World& actual) {
    int worst = 0;
    for (int y = 0; y < expected.height(); ++y)
        for (int x = 0; x < expected.width(); ++x) {
            const auto a = expected.pixel<PF_Pixel8>(x, y);
            const auto b = actual.pixel<PF_Pixel8>(x, y);
            for (const int difference : {a.alpha - b.alpha, a.red - b.red, a.green - b.green, a.blue - b.blue})
                worst = std::max(worst, std::abs(difference));
        }
    return worst;
}

TEST(FormatTableTest, HoldsAPictureOrRefusesIt) {
    for (const FormatRow& row : kRows) {
        SCOPED_TRACE(row.extension);
        const ScratchFolder folder;
        for (int kind = 0; kind < 4; ++kind) {
            SCOPED_TRACE(kind);
            const bool isGrey = kind < 2;
            const bool hasAlpha = kind % 2 == 1;
            const World picture = makeSmoothPicture(isGrey, hasAlpha);
            writePictureFile(folder / "in.png", picture,
                             {isGrey ? (hasAlpha ? "YA" : "Y") : (hasAlpha ? "RGBA" : "RGB")});
            const std::string output = folder / ("out." + std::string(row.extension));
            try {
                PictureReader png(folder / "in.png", 1000);
                PictureWriter(output).write(picture, png.origin());
                EXPECT_EQ(OIIO::ImageInput::open(output)->format_name(), std::string(row.format));
                PictureReader reader(output, 1000);
                World again(reader.width(), reader.height());
                reader.read(again);
                EXPECT_EQ(reader.origin().spec.nchannels, row.channels[kind]);
                // GIF's decoder always states an alpha, of which its encoder writes none.
                const bool hasNoAlpha = row.channels[kind] % 2 == 1 || row.format == std::string("gif");
                const int off =
                    hasNoAlpha ? worstDifference(laidOverBlack(picture), again) : worstDifference(picture, again);
                EXPECT_LE(off, row.loss);
                std::cout << row.extension << " " << kind << ": " << row.channels[kind] << " channels, " << off
                          << " off\n";
            } catch (const Failure& failure) {
                EXPECT_EQ(row.channels[kind], 0) << failure.what();
                EXPECT_TRUE(std::string_view(failure.what()).starts_with(output)) << failure.what();
            }
            writeFile(output, "what no decoder knows");
            EXPECT_THROW(PictureReader(output, 1000), Failure);
        }
    }
}

/// 200, 100, 50 and alpha 128 throughout, as another program wrote it, without loss.
TEST(FormatTableTest, ReadsTheColoursOfATranslucentWebP) {
    const ScratchFolder folder;
    writeFile(folder / "in.webp",
              std::string("\122\111\106\106\036\000\000\000\127\105\102\120\126\120\070\114\021\000\000\000\057\017\300"
                          "\003\020\007\120\262\042\127\246\200\201\210\350\177\000\000",
                          38));
    PictureReader reader(folder / "in.webp", 1000);
    World pixels(reader.width(), reader.height());
    reader.read(pixels);
    World expected(reader.width(), reader.height());
    expected.fill(PF_Pixel8{128, 200, 100, 50});
    EXPECT_LE(worstDifference(expected, pixels), 2);
}

TEST(FormatTableTest, IsComplete) {
    std::string known;
    OIIO::getattribute("format_list", known);
    std::set<std::string> rows;
    for (const FormatRow& row : kRows)
        rows.insert(row.format);
    for (const std::string& format : OIIO::Strutil::splits(known, ","))
        EXPECT_TRUE(rows.contains(format)) << format;
}

} // namespace

} // namespace Ombrique::Tests
