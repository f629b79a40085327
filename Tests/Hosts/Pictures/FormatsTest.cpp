#include "Hosts/Pictures/PictureReader.h"
#include "Hosts/Pictures/PictureWriter.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <iterator>
#include <numeric>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

constexpr int kLongestSide = 16384;

struct Copy {
    World pixels;
    /// What couldn't be kept, all of it.
    std::string losses;
};

/// Reads a picture and writes what came out.
Copy copyPicture(const std::string& input, const std::string& output, const std::string& compression = {}) {
    PictureReader reader(input, kLongestSide);
    World pixels(reader.width(), reader.height());
    reader.read(pixels);
    std::vector<std::string> losses = reader.origin().losses;
    std::ranges::move(PictureWriter(output, compression).write(pixels, reader.origin()), std::back_inserter(losses));
    return {std::move(pixels), OIIO::Strutil::join(losses, "; ")};
}

/// A picture that 8-bit samples hold exactly, multiplied by alpha or not.
World makeExactPicture(int width, int height) {
    World picture = makePicture(width, height, 11);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            auto pixel = picture.pixel<PF_Pixel8>(x, y);
            const int third = (x + y) % 4;
            pixel.alpha = static_cast<std::uint8_t>(third * 85);
            for (std::uint8_t* const colour : {&pixel.red, &pixel.green, &pixel.blue})
                *colour = third == 0 ? std::uint8_t{0} : static_cast<std::uint8_t>(*colour / 3 * 3);
            picture.setPixel(x, y, pixel);
        }
    return picture;
}

const PictureForm kGrey{"Y"};
const PictureForm kGreyAlpha{"YA"};
const PictureForm kRgb{"RGB"};
const PictureForm kRgba{"RGBA"};
const PictureForm kAssociated{"RGBA", OIIO::TypeDesc::UINT8, true};
const PictureForm kExr{"RGBA", OIIO::TypeDesc::HALF, true};

struct FormatCase {
    const char* name;
    const char* input;
    PictureForm inputForm;
    const char* output;
    PictureForm outputForm;
    /// A part of what is said to be lost; empty where nothing is.
    const char* loss = "";
};

const FormatCase kFormats[] = {
    {"GreyPng", "in.png", kGrey, "out.png", kGrey},
    {"GreyAlphaPng", "in.png", kGreyAlpha, "out.png", kGreyAlpha},
    {"RgbPng", "in.png", kRgb, "out.png", kRgb},
    {"RgbaPng", "in.png", kRgba, "out.png", kRgba},
    {"Deep16Png", "in.png", {"RGBA", OIIO::TypeDesc::UINT16}, "out.png", kRgba, "(uint16) are rounded to 8 bits"},
    {"StraightTiffStaysStraight", "in.tif", kRgba, "out.tif", kRgba},
    {"AssociatedTiffStaysAssociated", "in.tif", kAssociated, "out.tif", kAssociated},
    {"AssociatedTiffToPng", "in.tif", kAssociated, "out.png", kRgba},
    {"FloatTiff", "in.tif", {"RGBA", OIIO::TypeDesc::FLOAT}, "out.tif", kRgba, "(float) are rounded to 8 bits"},
    {"ExrToPng", "in.exr", kExr, "out.png", kRgba, "(half) are rounded to 8 bits"},
    {"PngToExr", "in.png", kRgba, "out.exr", kExr},
    {"LinearExrToPng", "in.exr", kExr, "out.png", kRgba, "linear values are kept"},
    {"ExrWithDepth", "in.exr", {"RGBZ", OIIO::TypeDesc::HALF}, "out.png", kRgb, "other channels (Z) are left out"},
    {"TargaToBmp", "in.tga", kRgba, "out.bmp", kRgba},
    {"PngToJpeg2000", "in.png", kRgba, "out.jp2", kRgba},
};

// Wrong kinds of alpha, swapped or lost channels, and cut instead of rounded samples all show.
TEST(FormatsTest, AreReadAndWritten) {
    for (const FormatCase& row : kFormats) {
        SCOPED_TRACE(row.name);
        const ScratchFolder folder;
        const bool isMultiplied = row.inputForm.associated || row.outputForm.associated;
        // More rows than are read or written at a time; and some encoders refuse the very smallest pictures.
        const World picture = asHeld(isMultiplied ? makeExactPicture(41, 67) : makePicture(41, 67, 11), row.inputForm);
        writePictureFile(folder / row.input, picture, row.inputForm);
        const Copy copy = copyPicture(folder / row.input, folder / row.output);
        EXPECT_EQ(comparePixels(picture, copy.pixels), "") << "read";
        EXPECT_EQ(comparePixels(picture, readPictureFile(folder / row.output, row.outputForm)), "") << "written";
        EXPECT_NE(copy.losses.find(row.loss), std::string::npos) << copy.losses;
        EXPECT_EQ(copy.losses.empty(), *row.loss == '\0') << copy.losses;
    }
}

/// A format whose files name their channels in an order of their own.
class MixedChannels : public OIIO::ImageInput {
public:
    const char* format_name() const override { return "mixed"; }
    bool open(const std::string& path, OIIO::ImageSpec& spec) override {
        m_spec = OIIO::ImageSpec(2, 1, 5, OIIO::TypeDesc::UINT8);
        m_spec.channelnames = {"Z", "b", "A", "G", "R"};
        m_spec.alpha_channel = 2;
        m_spec.attribute("oiio:UnassociatedAlpha", 1);
        spec = m_spec;
        return path.ends_with(".mixed");
    }
    bool read_native_scanline(int, int, int, int, void* samples) override {
        std::iota(static_cast<std::uint8_t*>(samples), static_cast<std::uint8_t*>(samples) + 10, std::uint8_t{1});
        return true;
    }
    bool close() override { return true; }
};

TEST(FormatsTest, ChannelsAreFoundByName) {
    const char* extensions[] = {"mixed", nullptr};
    OIIO::declare_imageio_format(
        "mixed", [] { return static_cast<OIIO::ImageInput*>(new MixedChannels); }, extensions, nullptr, nullptr,
        nullptr);
    const ScratchFolder folder;
    writeFile(folder / "in.mixed", "anything");
    const Copy copy = copyPicture(folder / "in.mixed", folder / "out.png");
    World expected(2, 1);
    expected.setPixel(0, 0, PF_Pixel8{3, 5, 4, 2});
    expected.setPixel(1, 0, PF_Pixel8{8, 10, 9, 7});
    EXPECT_EQ(comparePixels(expected, copy.pixels), "");
    EXPECT_EQ(comparePixels(expected, readPictureFile(folder / "out.png", kRgba)), "");
}

struct WindowCase {
    const char* name;
    /// Where the picture of 7 by 5 pixels lies.
    int x, y;
    OIIO::ROI display;
    const char* output;
    /// What the output holds of the display's plane.
    OIIO::ROI data;
    PictureForm form = kRgba;
};

TEST(FormatsTest, WindowsAreKeptOrFilled) {
    const WindowCase rows[] = {
        {"crop", 2, 1, {0, 12, 0, 9}, "out.exr", {2, 9, 1, 6}, kAssociated},
        {"crop without a display window", 2, 1, {0, 12, 0, 9}, "out.png", {0, 12, 0, 9}},
        {"overscan", -2, -1, {0, 4, 0, 3}, "out.exr", {-2, 5, -1, 4}, kAssociated},
        {"overscan without a display window", -2, -1, {0, 4, 0, 3}, "out.png", {0, 4, 0, 3}},
        {"overscan without negative places", -2, -1, {0, 4, 0, 3}, "out.dpx", {0, 4, 0, 3}, kAssociated},
        {"across an edge", -2, 2, {0, 4, 0, 4}, "out.png", {0, 4, 0, 4}},
        {"beside the display", 20, 2, {0, 4, 0, 4}, "out.png", {0, 4, 0, 4}},
    };
    const World picture = makeExactPicture(7, 5);
    for (const WindowCase& row : rows) {
        SCOPED_TRACE(row.name);
        const ScratchFolder folder;
        OIIO::ImageSpec windows;
        windows.x = row.x;
        windows.y = row.y;
        windows.set_roi_full(row.display);
        writePictureFile(folder / "in.exr", picture, kExr, windows);
        copyPicture(folder / "in.exr", folder / row.output);
        const OIIO::ImageSpec spec = describePictureFile(folder / row.output);
        EXPECT_EQ(OIIO::ROI(spec.x, spec.x + spec.width, spec.y, spec.y + spec.height), row.data);
        EXPECT_EQ(spec.full_width, row.display.width());
        World expected(row.data.width(), row.data.height());
        for (int y = 0; y < expected.height(); ++y)
            for (int x = 0; x < expected.width(); ++x)
                if (const int fromX = x + row.data.xbegin - row.x, fromY = y + row.data.ybegin - row.y;
                    fromX >= 0 && fromX < 7 && fromY >= 0 && fromY < 5)
                    expected.setPixel(x, y, picture.pixel<PF_Pixel8>(fromX, fromY));
        EXPECT_EQ(comparePixels(expected, readPictureFile(folder / row.output, row.form)), "");
    }
}

TEST(FormatsTest, TranslucentPictureIsLaidOverBlackWhereTheFormatHasNoAlpha) {
    const ScratchFolder folder;
    World picture(7, 5);
    picture.fill(PF_Pixel8{51, 200, 100, 50});
    writePictureFile(folder / "in.png", picture, kRgba);
    EXPECT_NE(copyPicture(folder / "in.png", folder / "out.ppm").losses.find("laid over black"), std::string::npos);
    picture.fill(PF_Pixel8{255, 40, 20, 10});
    EXPECT_EQ(comparePixels(picture, readPictureFile(folder / "out.ppm", kRgb)), "");
}

TEST(FormatsTest, ConvertsLinearLightBothWays) {
    const ScratchFolder folder;
    World grey(3, 2);
    grey.fill(PF_Pixel8{255, 46, 46, 46}); // 0.18
    writePictureFile(folder / "in.exr", grey, {"RGB", OIIO::TypeDesc::HALF});
    PictureReader reader(folder / "in.exr", kLongestSide, true);
    World pixels(3, 2);
    reader.read(pixels);
    EXPECT_EQ(pixels.pixel<PF_Pixel8>(1, 1).green, 118);
    PictureWriter(folder / "out.exr").write(pixels, reader.origin(), true);
    EXPECT_EQ(comparePixels(grey, readPictureFile(folder / "out.exr", {"RGB", OIIO::TypeDesc::HALF})), "");
    EXPECT_EQ(describePictureFile(folder / "out.exr").get_string_attribute("oiio:ColorSpace"), "Linear");
}

TEST(FormatsTest, TellsWhatShareIsClipped) {
    const ScratchFolder folder;
    OIIO::ImageSpec spec(4, 2, 3, OIIO::TypeDesc::HALF);
    std::vector<float> samples(24, 0.5f);
    samples[3] = 1.5f;
    samples[4] = -0.25f;
    samples[5] = 1.001f; // as 1 in 8 bits
    const auto file = OIIO::ImageOutput::create(folder / "in.exr");
    ASSERT_TRUE(file->open(folder / "in.exr", spec) && file->write_image(OIIO::TypeDesc::FLOAT, samples.data()));
    file->close();
    EXPECT_NE(copyPicture(folder / "in.exr", folder / "out.png").losses.find("clipped (8.3 % of"), std::string::npos);
}

/// A picture of 3 by 2 whose samples are numbered, as the camera held it.
TEST(FormatsTest, PicturesAreTurnedUpright) {
    const char* upright[] = {"012345", "210543", "543210", "345012", "031425", "304152", "524130", "251403"};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        SCOPED_TRACE(orientation);
        const ScratchFolder folder;
        World lying(3, 2);
        for (int i = 0; i < 6; ++i)
            lying.setPixel(i % 3, i / 3, PF_Pixel8{255, static_cast<std::uint8_t>(i), 9, 9});
        OIIO::ImageSpec metadata;
        metadata.attribute("Orientation", orientation);
        writePictureFile(folder / "in.tif", lying, kRgb, metadata);
        const World pixels = copyPicture(folder / "in.tif", folder / "out.tif").pixels;
        ASSERT_EQ(pixels.width(), orientation < 5 ? 3 : 2);
        std::string seen;
        for (int i = 0; i < 6; ++i)
            seen += static_cast<char>('0' + pixels.pixel<PF_Pixel8>(i % pixels.width(), i / pixels.width()).red);
        EXPECT_EQ(seen, upright[orientation - 1]);
        EXPECT_EQ(describePictureFile(folder / "out.tif").get_int_attribute("Orientation", 1), 1);
        EXPECT_EQ(comparePixels(pixels, readPictureFile(folder / "out.tif", kRgb)), "");
    }
}

TEST(FormatsTest, MetadataComesAlong) {
    const ScratchFolder folder;
    OIIO::ImageSpec metadata;
    metadata.attribute("ImageDescription", "shot 12");
    metadata.attribute("PixelAspectRatio", 2.0f);
    metadata.attribute("Exif:LensModel", "50 mm");
    writePictureFile(folder / "in.tif", makePicture(7, 5, 1), kRgba, metadata);
    copyPicture(folder / "in.tif", folder / "out.tif");
    const OIIO::ImageSpec written = describePictureFile(folder / "out.tif");
    EXPECT_EQ(written.get_string_attribute("ImageDescription"), "shot 12");
    EXPECT_EQ(written.get_string_attribute("Exif:LensModel"), "50 mm");
    EXPECT_EQ(written.get_float_attribute("PixelAspectRatio"), 2.0f);
}

TEST(FormatsTest, CompressionIsTheInputsOrTheOneAskedFor) {
    const ScratchFolder folder;
    OIIO::ImageSpec metadata;
    metadata.attribute("compression", "piz");
    writePictureFile(folder / "in.exr", makePicture(7, 5, 1), kExr, metadata);
    for (const auto& [asked, used] : {std::pair{"", "piz"}, {"zips", "zips"}}) {
        copyPicture(folder / "in.exr", folder / "out.exr", asked);
        EXPECT_EQ(describePictureFile(folder / "out.exr").get_string_attribute("compression"), used);
    }
    // A level that nobody would choose shows in the size, as nothing is easier to compress.
    writePictureFile(folder / "in.png", World(400, 300), kRgba);
    copyPicture(folder / "in.png", folder / "out.png", "fixed:0");
    EXPECT_GT(std::filesystem::file_size(folder / "out.png"), 400u * 300u * 4u);
}

} // namespace

} // namespace Ombrique::Tests
