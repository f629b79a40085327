#include "Tests/Hosts/CommandLine/ProgramRun.h"
#include "Tests/Hosts/CommandLine/TestPicture.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

namespace Ombrique::Tests {

namespace {

// Some encoders refuse the very smallest pictures.
constexpr int kWidth = 67;
constexpr int kHeight = 41;

constexpr PictureForm kGrey{1};
constexpr PictureForm kRgb{3};
constexpr PictureForm kRgba{4};
constexpr PictureForm kAssociated{4, OIIO::TypeDesc::UINT8, true};

struct FormatCase {
    const char* name;
    const char* input;
    PictureForm inputForm;
    const char* output;
    PictureForm outputForm;
    /// What the program has to say of it, if anything.
    const char* note = "";
};

class Formats : public testing::TestWithParam<FormatCase> {};

// Wrong kinds of alpha, swapped or lost channels, and cut instead of rounded samples all show against the oracle, which
// works on straight 8-bit pixels.
TEST_P(Formats, ComeThroughTheEffect) {
    const FormatCase& row = GetParam();
    const ScratchFolder folder;
    // Multiplied colours of low alpha don't tell the straight ones exactly, so those forms get pictures that do.
    Hosts::World picture = asHeld(makePicture(kWidth, kHeight, 11), row.inputForm);
    if (row.inputForm.associated && row.inputForm.depth == OIIO::TypeDesc::UINT8) {
        for (int i = 0; i < kWidth * kHeight; ++i) {
            auto pixel = picture.pixel<PF_Pixel8>(i % kWidth, i / kWidth);
            pixel.alpha = static_cast<std::uint8_t>(i % 3 * 85 + 85);
            pixel.red = static_cast<std::uint8_t>(pixel.red / 3 * 3);
            pixel.green = static_cast<std::uint8_t>(pixel.green / 3 * 3);
            pixel.blue = static_cast<std::uint8_t>(pixel.blue / 3 * 3);
            picture.setPixel(i % kWidth, i / kWidth, pixel);
        }
    }
    writeTestPicture(folder / row.input, picture, row.inputForm);
    const ProgramRun run =
        runProgram({folder / row.input, folder / row.output, "--contrast", "1.3", "--brightness", "-8"});
    ASSERT_EQ(run.status, 0) << run.messages;
    EXPECT_NE(run.messages.find(row.note), std::string::npos) << run.messages;
    EXPECT_EQ(run.messages.find("note:") == std::string::npos, *row.note == '\0') << run.messages;
    EXPECT_EQ(compareWithOracle(picture, readTestPicture(folder / row.output, row.outputForm), {1.3, -8.0}), "");
}

INSTANTIATE_TEST_SUITE_P(
    All, Formats,
    testing::Values(
        FormatCase{"GreyPng", "in.png", kGrey, "out.png", kGrey},
        FormatCase{"GreyAlphaPng", "in.png", {2}, "out.png", {2}},
        FormatCase{"RgbPng", "in.png", kRgb, "out.png", kRgb}, //
        FormatCase{"RgbaPng", "in.png", kRgba, "out.png", kRgba},
        FormatCase{"Deep16Png", "in.png", {4, OIIO::TypeDesc::UINT16}, "out.png", kRgba, "rounded to 8 bits"},
        FormatCase{"StraightTiffStaysStraight", "in.tif", kRgba, "out.tif", kRgba},
        FormatCase{"AssociatedTiffStaysAssociated", "in.tif", kAssociated, "out.tif", kAssociated},
        FormatCase{"AssociatedTiffToPng", "in.tif", kAssociated, "out.png", kRgba},
        FormatCase{"FloatTiff", "in.tif", {4, OIIO::TypeDesc::FLOAT}, "out.tif", kRgba, "rounded to 8 bits"},
        FormatCase{"ExrToPng", "in.exr", {4, OIIO::TypeDesc::FLOAT, true}, "out.png", kRgba, "rounded to 8 bits"},
        FormatCase{"PngToExr", "in.png", kRgb, "out.exr", kRgb},
        FormatCase{"TargaToBmp", "in.tga", kRgba, "out.bmp", kRgba},
        FormatCase{"PngToJpeg2000", "in.png", kRgba, "out.jp2", kRgba}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(FormatsTest, DefaultIsANoOpOnAnOpaquePicture) {
    const ScratchFolder folder;
    const Hosts::World picture = makePicture(31, 17, 3, true);
    for (const PictureForm& form : {kRgba, kRgb}) {
        writeTestPicture(folder / "in.png", picture, form);
        ASSERT_EQ(runProgram({folder / "in.png", folder / "out.png"}).status, 0);
        EXPECT_EQ(comparePixels(picture, readTestPicture(folder / "out.png", form)), "");
    }
}

TEST(FormatsTest, TranslucentPictureIsLaidOverBlackWhereTheFormatHasNoAlpha) {
    const ScratchFolder folder;
    Hosts::World picture(7, 5);
    picture.fill(PF_Pixel8{51, 200, 100, 50});
    writeTestPicture(folder / "in.png", picture, kRgba);
    const ProgramRun run = runProgram({folder / "in.png", folder / "out.ppm"});
    ASSERT_EQ(run.status, 0) << run.messages;
    EXPECT_NE(run.messages.find("laid over black"), std::string::npos) << run.messages;
    Hosts::World expected(7, 5);
    expected.fill(PF_Pixel8{255, 40, 20, 10});
    EXPECT_EQ(comparePixels(expected, readTestPicture(folder / "out.ppm", kRgb)), "");
}

TEST(FormatsTest, MetadataComesAlong) {
    const ScratchFolder folder;
    OIIO::ImageSpec metadata;
    metadata.attribute("ImageDescription", "shot 12");
    metadata.attribute("oiio:ColorSpace", "sRGB");
    metadata.attribute("PixelAspectRatio", 2.0f);
    metadata.attribute("Exif:LensModel", "50 mm");
    writeTestPicture(folder / "in.tif", makePicture(7, 5, 1), kRgba, metadata);
    ASSERT_EQ(runProgram({folder / "in.tif", folder / "out.tif"}).status, 0);
    const auto written = OIIO::ImageInput::open(folder / "out.tif");
    ASSERT_TRUE(written) << OIIO::geterror();
    EXPECT_EQ(written->spec().get_string_attribute("ImageDescription"), "shot 12");
    EXPECT_EQ(written->spec().get_string_attribute("Exif:LensModel"), "50 mm");
    EXPECT_EQ(written->spec().get_float_attribute("PixelAspectRatio"), 2.0f);
}

} // namespace

} // namespace Ombrique::Tests
