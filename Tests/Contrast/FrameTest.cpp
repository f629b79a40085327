#include "Tests/Support/EffectTest.h"

#include <cstring>
#include <limits>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const Case kCases[] = {
    {.name = "one pixel", .size = {1, 1}},
    {.name = "a column", .size = {1, 64}},
    {.name = "flat", .size = {129, 3}, .correction = {0.35, -20.5}},
    {.name = "many odd pixels", .size = {333, 217}},
    {.name = "defaults", .correction = {}},
    {.name = "mid grey", .correction = {0.0, 0.0}},
    {.name = "the most contrast", .size = {31, 17}, .correction = {10.0, 30.0}},

    {.name = "rows without padding", .size = {13, 9}, .input = {.paddingBytes = 0}, .output = {.paddingBytes = 0}},
    {.name = "rows far apart", .size = {13, 9}, .input = {.paddingBytes = 4096}, .output = {.paddingBytes = 12}},
    {.name = "input upwards", .size = {11, 6}, .input = {.paddingBytes = 20, .bottomUp = true}},
    {.name = "output upwards", .size = {11, 6}, .output = {.paddingBytes = 0, .bottomUp = true}},
    {.name = "both upwards", .size = {11, 6}, .input = {0, true}, .output = {20, true}},
    {.name = "one world for both", .size = {13, 9}, .inPlace = true},

    {.name = "wider output", .outputSize = Size{15, 5}},
    {.name = "higher output", .outputSize = Size{7, 11}},
    {.name = "larger output", .outputSize = Size{17, 9}},
    {.name = "smaller output", .outputSize = Size{4, 3}},
    {.name = "narrower and higher output", .outputSize = Size{4, 12}},
    {.name = "output without pixels", .outputSize = Size{0, 0}},
    {.name = "output without rows", .outputSize = Size{3, 0}},
    {.name = "output without columns", .outputSize = Size{0, 5}},
    {.name = "input without pixels", .size = {0, 0}, .outputSize = Size{2, 3}},
    {.name = "input without columns", .size = {0, 5}, .outputSize = Size{1, 6}},
    {.name = "input without rows", .size = {5, 0}, .outputSize = Size{6, 1}},
    {.name = "output of negative width", .outputSize = Size{-7, 5}, .error = PF_Err_BAD_CALLBACK_PARAM},
    {.name = "output of negative height", .outputSize = Size{7, -5}, .error = PF_Err_BAD_CALLBACK_PARAM},
    {.name = "only the output negative", .size = {0, 0}, .outputSize = Size{-7, 5}, .error = PF_Err_BAD_CALLBACK_PARAM},
    {.name = "input of negative height", .size = {7, -5}, .outputSize = Size{7, 5}, .error = PF_Err_BAD_CALLBACK_PARAM},
    {.name = "input of negative width", .size = {-7, 5}, .outputSize = Size{7, 5}, .error = PF_Err_BAD_CALLBACK_PARAM},
    {.name = "no input", .outputSize = Size{5, 4}, .hasInput = false},
    {.name = "no output", .hasOutput = false},

    {.name = "contrast not a number", .size = {33, 21}, .correction = {kNaN, 0.0}},
    {.name = "brightness not a number", .size = {33, 21}, .correction = {1.0, kNaN}},
    {.name = "infinite contrast", .size = {33, 21}, .correction = {kInfinity, 0.0}},
    {.name = "infinite negative contrast", .size = {33, 21}, .correction = {-kInfinity, 0.0}},
    {.name = "infinite brightness", .size = {33, 21}, .correction = {1.0, kInfinity}},
    {.name = "infinite darkness", .size = {33, 21}, .correction = {kInfinity, -kInfinity}},
    {.name = "contrast beyond float", .size = {33, 21}, .correction = {1e200, 3.0}},
    {.name = "brightness beyond float", .size = {33, 21}, .correction = {1.0, 1e300}},
    {.name = "inverted", .size = {33, 21}, .correction = {-2.5, 0.0}},
    {.name = "much of both", .size = {33, 21}, .correction = {1e6, -2e7}},
    {.name = "negative zero", .size = {33, 21}, .correction = {-0.0, 50.0}},
};

class Frame : public EffectTest {};

TEST_F(Frame, MatchesTheOracle) {
    for (const Case& testCase : kCases)
        render(testCase);
}

TEST_F(Frame, IsAsLargeAsTheDriverCanAndNoLarger) {
    const int most = mostPixels();
    render({.name = "highest", .size = {1, most}, .outputSize = Size{2, most + 1}});
    render({.name = "widest", .size = {most, 1}});
    render({.name = "too high", .size = {1, most + 1}, .error = PF_Err_BAD_CALLBACK_PARAM});
    render({.name = "too wide", .size = {most + 1, 1}, .error = PF_Err_BAD_CALLBACK_PARAM});
    render({.name = "too high without pixels", .size = {0, most + 1}, .error = PF_Err_BAD_CALLBACK_PARAM});
}

/// What a picture looks like that needs no oracle.
TEST_F(Frame, DefaultsChangeNoByteAndTheEndsOfBrightnessGiveWhiteAndBlack) {
    World input(256, 3);
    for (int x = 0; x < 256; ++x) { // each value in each channel
        const auto value = static_cast<std::uint8_t>(x);
        input.setPixel(x, 0, PF_Pixel8{255, value, 7, 200});
        input.setPixel(x, 1, PF_Pixel8{255, 90, value, 31});
        input.setPixel(x, 2, PF_Pixel8{255, 254, 1, value});
    }
    World white(256, 3);
    white.fill(PF_Pixel8{255, 255, 255, 255});
    World black(256, 3);
    black.fill(PF_Pixel8{255, 0, 0, 0});
    const std::pair<const Correction, const World*> rows[] = {
        {{}, &input}, {{1.0, 100.0}, &white}, {{1.0, -100.0}, &black}};
    for (const auto& [correction, expected] : rows) {
        World output(256, 3);
        EXPECT_TRUE(effect.render({.input = &input, .output = &output, .values = correction.sliders()}).clean());
        EXPECT_EQ(comparePixels(*expected, output), "") << correction.brightness;
    }
}

/// Each row begins at a whole pixel, up- and downwards: uploaded, as many of them beyond the one before as the row
/// bytes hold; downloaded, at the last one on the way from row 0 to its place. Nothing outside the worlds is touched.
TEST_F(Frame, RowBytesThatSplitAPixel) {
    constexpr int kWidth = 5;
    constexpr int kHeight = 4;
    for (const auto& [upIn, upOut] : {std::pair{false, false}, {false, true}, {true, false}, {true, true}}) {
        World input = makePicture(kWidth, kHeight, 78, true, {.paddingBytes = 7, .bottomUp = upIn}); // 27 bytes a row
        World output(kWidth, kHeight, PixelDepth::Bits8, {.paddingBytes = 6, .bottomUp = upOut});    // 26 bytes a row
        World seen(kWidth, kHeight);
        World expected(kWidth, kHeight);
        for (int y = 0; y < kHeight; ++y)
            std::memcpy(seen.row(y), input.row(0) + y * (upIn ? -24 : 24), kWidth * 4);
        EXPECT_EQ(effect.render({.input = &input, .output = &output}).error, 0);
        EXPECT_TRUE(effect.render({.input = &seen, .output = &expected}).clean());
        for (int y = 0; y < kHeight; ++y)
            EXPECT_EQ(std::memcmp(output.row(0) + (upOut ? -1 : 1) * (y * 26 / 4 * 4), expected.row(y), kWidth * 4), 0)
                << "row " << y << ", upwards: input " << upIn << ", output " << upOut;
        for (const std::string& damage : output.damage())
            EXPECT_NE(damage.find("padding"), std::string::npos) << damage;
    }
}

/// The sliders' values are those of the frame's time, in all three of its numbers.
TEST_F(Frame, SlidersFollowTheTime) {
    for (const FrameTime& time : {FrameTime{0, 1, 24}, {10, 2, 25}, {3, 5, 600}}) {
        const auto at = [](const FrameTime& asked) {
            return 0.1 * asked.time + 0.3 * asked.step + 0.001 * asked.scale;
        };
        World input = makePicture(9, 7, 4);
        World output(9, 7);
        const FrameResult result =
            effect.render({.input = &input, .output = &output, .values = {{1, at}, {2, at}}, .time = time});
        EXPECT_TRUE(result.clean()) << result.describe();
        EXPECT_EQ(compareWithOracle(input, output, {at(time), at(time)}), "") << "time " << time.time;
    }
}

TEST_F(Frame, LeavesNothingOfTheSizesBefore) {
    check([&] {
        for (unsigned i = 0; i < 60; ++i) {
            const Size size{static_cast<int>(1 + i * 37 % 90), static_cast<int>(1 + i * 53 % 70)};
            EXPECT_EQ(plainFrame({1.1, i - 30.0}, i, size), "") << size.width << " by " << size.height;
        }
    });
}

} // namespace

} // namespace Ombrique::Tests
