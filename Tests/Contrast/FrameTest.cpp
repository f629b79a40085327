#include "Tests/Support/EffectHarness.h"

#include <limits>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

struct Size {
    int width;
    int height;
};

constexpr Size kSizes[] = {{1, 1}, {7, 5}, {1, 64}, {129, 3}, {333, 217}};

TEST(Frame, MatchesTheOracleAtAnySizeAndSetting) {
    const EffectHarness harness;
    struct Setting {
        double contrast;
        double brightness;
    };
    unsigned seed = 1;
    for (const Size size : kSizes) {
        for (const Setting setting : {Setting{1.0, 0.0}, {1.4, 5.0}, {0.35, -20.5}, {0.0, 0.0}, {10.0, 30.0}}) {
            World picture = makePicture(size.width, size.height, seed++);
            harness.expectRight(picture, setting.contrast, setting.brightness);
        }
    }
}

TEST(Frame, DefaultsLeaveAnOpaquePictureByteForByte) {
    const EffectHarness harness;
    World picture(256, 3);
    for (int x = 0; x < 256; ++x) { // each value in each channel
        const auto value = static_cast<std::uint8_t>(x);
        picture.setPixel(x, 0, PF_Pixel8{255, value, 7, 200});
        picture.setPixel(x, 1, PF_Pixel8{255, 90, value, 31});
        picture.setPixel(x, 2, PF_Pixel8{255, 254, 1, value});
    }
    EXPECT_EQ(comparePixels(picture, harness.render(picture, 1.0, 0.0)), "");
}

TEST(Frame, TheEndsOfBrightnessGiveWhiteAndBlackAndNeverTouchAlpha) {
    const EffectHarness harness;
    World picture = makePicture(31, 17, 5);
    const World white = harness.render(picture, 1.0, 100.0);
    const World black = harness.render(picture, 1.0, -100.0);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const std::uint8_t alpha = picture.pixel<PF_Pixel8>(x, y).alpha;
            EXPECT_EQ(white.pixel<PF_Pixel8>(x, y).alpha, alpha);
            EXPECT_EQ(white.pixel<PF_Pixel8>(x, y).green, alpha == 0 ? 0 : 255);
            EXPECT_EQ(black.pixel<PF_Pixel8>(x, y).alpha, alpha);
            EXPECT_EQ(black.pixel<PF_Pixel8>(x, y).blue, 0);
        }
    }
}

TEST(Frame, RowsWithAndWithoutPadding) {
    const EffectHarness harness;
    for (const int paddingIn : {0, 4, 60}) {
        for (const int paddingOut : {0, 12, 64}) {
            World input = makePicture(13, 9, 21, false, {.paddingBytes = paddingIn});
            World output(13, 9, PixelDepth::Bits8, {.paddingBytes = paddingOut});
            const FrameResult result = harness.effect.render(
                {.input = &input, .output = &output, .values = EffectHarness::sliders(1.7, -3.0)});
            EXPECT_TRUE(result.clean()) << result.describe();
            EXPECT_EQ(compareWithOracle(input, output, 1.7, -3.0), "") << paddingIn << ", " << paddingOut;
        }
    }
}

TEST(Frame, ALargerOutputIsClearedBesideThePictureAndASmallerOneCutsIt) {
    const EffectHarness harness;
    World input = makePicture(10, 6, 3);
    for (const Size size : {Size{15, 6}, {10, 11}, {17, 9}, {4, 3}, {4, 12}, {0, 0}, {3, 0}}) {
        World output(size.width, size.height);
        output.fill(PF_Pixel8{200, 201, 202, 203});
        const FrameResult result =
            harness.effect.render({.input = &input, .output = &output, .values = EffectHarness::sliders(2.0, 1.0)});
        EXPECT_TRUE(result.clean()) << result.describe();
        EXPECT_EQ(compareWithOracle(input, output, 2.0, 1.0), "") << size.width << " by " << size.height;
    }
}

TEST(Frame, NullWorlds) {
    const EffectHarness harness;
    World world = makePicture(5, 4, 8);
    FaultPlan log;
    EXPECT_TRUE(harness.effect.render({.input = &world, .output = nullptr, .faults = &log}).clean());
    EXPECT_EQ(log.count("AcquireSuite"), 0);

    const FrameResult result = harness.effect.render({.input = nullptr, .output = &world});
    EXPECT_TRUE(result.clean()) << result.describe();
    EXPECT_EQ(comparePixels(World(5, 4), world), "");
}

/// The value of the frame's time reaches the shader, not a declared default or that of another frame.
TEST(Frame, SlidersFollowTheTime) {
    const EffectHarness harness;
    World input = makePicture(9, 7, 4);
    for (const int time : {0, 10, 3}) {
        World output(9, 7);
        const FrameResult result =
            harness.effect.render({.input = &input,
                                   .output = &output,
                                   .values = {{1, [](const FrameTime& at) { return 1.0 + 0.1 * at.frame(); }},
                                              {2, [](const FrameTime& at) { return 2.0 * at.frame(); }}},
                                   .time = {.time = time, .step = 1, .scale = 25}});
        EXPECT_TRUE(result.clean()) << result.describe();
        EXPECT_EQ(compareWithOracle(input, output, 1.0 + 0.1 * time, 2.0 * time), "") << "time " << time;
    }
}

TEST(Frame, IsRefusedOutsideSetupAndRightAgainAfterwards) {
    EffectHarness harness;
    World picture = makePicture(12, 8, 2);
    harness.expectRight(picture, 1.2, 2.0);
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(harness.effect.setDown().clean());
        FaultPlan log;
        World output(12, 8);
        HostCall call({.input = &picture, .output = &output, .faults = &log});
        PF_SmartRenderExtra extra{HostCall::smartRenderCallbacks()};
        EXPECT_EQ(call.send(harness.bundle.entryPoint(), PF_Cmd_SMART_RENDER, &extra).error, PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_TRUE(log.calls().empty());
        EXPECT_EQ(comparePixels(World(12, 8), output), "");
        EXPECT_TRUE(harness.effect.setUp().clean());
        harness.expectRight(picture, 1.2, 2.0);
    }
}

} // namespace

} // namespace Ombrique::Tests
