#include "Tests/Support/EffectHarness.h"

#include <chrono>
#include <cstring>
#include <semaphore>
#include <thread>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

/// Worlds as a host may describe them, whatever lies behind: width and height of either, and what the effect answers.
struct WorldsCase {
    int input[2];
    int output[2];
    PF_Err result;
};

TEST(OddRequests, WorldsWithoutPixelsNeedNoMemoryAndNegativeSidesAreRefused) {
    const EffectHarness harness;
    const WorldsCase cases[] = {
        {{0, 0}, {7, 5}, 0},    {{0, 5}, {7, 5}, 0},    {{5, 0}, {7, 5}, 0},    {{7, 5}, {0, 0}, 0},
        {{7, 5}, {0, 5}, 0},    {{7, 5}, {5, 0}, 0},    {{7, 5}, {9, 3}, 0},    {{7, 5}, {3, 9}, 0},
        {{7, 5}, {-7, 5}, 516}, {{7, 5}, {7, -5}, 516}, {{0, 0}, {-7, 5}, 516}, {{7, -5}, {7, 5}, 516},
    };
    for (const auto& [in, out, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(std::array{in[0], in[1], out[0], out[1]}));
        World input = makePicture(in[0], std::abs(in[1]), 5);
        World output(std::abs(out[0]), std::abs(out[1]));
        output.fill(PF_Pixel8{9, 9, 9, 9});
        for (const auto& [world, sides] : {std::pair{&input, in}, {&output, out}}) {
            world->layer()->width = sides[0];
            world->layer()->height = sides[1];
            if (sides[0] == 0 || sides[1] == 0)
                world->layer()->data = nullptr;
        }
        const FrameResult result =
            harness.effect.render({.input = &input, .output = &output, .values = EffectHarness::sliders(1.3, 4.0)});
        EXPECT_EQ(result.error, expected);
        EXPECT_EQ(result.error == 0 ? compareWithOracle(input, output, 1.3, 4.0) : "", "");
        World picture = makePicture(7, 5, 3);
        harness.expectRight(picture, 1.3, 4.0);
    }
}

/// Each row begins at a whole pixel, up- and downwards: uploaded, as many of them beyond the one before as the row
/// bytes hold; downloaded, at the last one on the way from row 0 to its place.
TEST(OddRequests, RowBytesThatSplitAPixelTouchNothingOutside) {
    constexpr int kWidth = 5;
    constexpr int kHeight = 4;
    const EffectHarness harness;
    for (const bool upIn : {false, true}) {
        for (const bool upOut : {false, true}) {
            SCOPED_TRACE(testing::Message() << "upwards: input " << upIn << ", output " << upOut);
            World input = makePicture(kWidth, kHeight, 78, true, {.paddingBytes = 7, .bottomUp = upIn}); // 27 bytes
            World seen(kWidth, kHeight);
            World output(kWidth, kHeight, PixelDepth::Bits8, {.paddingBytes = 6, .bottomUp = upOut}); // 26 bytes
            for (int y = 0; y < kHeight; ++y)
                std::memcpy(seen.row(y), input.row(0) + y * (upIn ? -24 : 24), kWidth * 4);
            EXPECT_EQ(harness.effect.render({.input = &input, .output = &output}).error, 0);
            const World expected = harness.render(seen, 1.0, 0.0);
            for (int y = 0; y < kHeight; ++y)
                EXPECT_EQ(std::memcmp(output.row(0) + (upOut ? -1 : 1) * (y * 26 / 4 * 4), expected.row(y), kWidth * 4),
                          0)
                    << "row " << y;
            for (const std::string& damage : output.damage())
                EXPECT_NE(damage.find("padding"), std::string::npos) << damage;
        }
    }
}

/// With every size of the frame before at nothing, also across a set-down.
TEST(OddRequests, FramesOfNothingAroundASetdown) {
    EffectHarness harness;
    World nothing(0, 0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(harness.effect.render({.input = &nothing, .output = &nothing}).clean());
        EXPECT_TRUE(harness.effect.setDown().clean());
        EXPECT_TRUE(harness.effect.setUp().clean());
    }
}

TEST(OddRequests, CommandsFromWithinAFrameAreRefused) {
    EffectHarness harness;
    World input = makePicture(9, 7, 4);
    World output(9, 7);
    World inner = makePicture(4, 3, 2);
    int sent = 0;
    const auto contrast = [&](const FrameTime&) {
        EXPECT_EQ(harness.effect.render({.input = &inner, .output = &inner}).error, PF_Err_BAD_CALLBACK_PARAM);
        for (const PF_Cmd command : {PF_Cmd_GLOBAL_SETUP, PF_Cmd_GLOBAL_SETDOWN}) {
            HostCall call;
            EXPECT_EQ(call.send(harness.bundle.entryPoint(), command).error, PF_Err_BAD_CALLBACK_PARAM);
            ++sent;
        }
        return 1.6;
    };
    const FrameResult result =
        harness.effect.render({.input = &input, .output = &output, .values = {{1, contrast}, {2, 3.0}}});
    EXPECT_TRUE(result.clean()) << result.describe();
    EXPECT_EQ(compareWithOracle(input, output, 1.6, 3.0), "");
    EXPECT_EQ(sent, 2);
    harness.expectRight(input, 1.2, 3.0);
}

std::binary_semaphore checkedOut{0};

PF_Err noPixels(PF_ProgPtr, std::int32_t, PF_LayerDef**) {
    checkedOut.release();
    return 83;
}

TEST(OddRequests, AFrameChecksOutItsInputWhileAnotherIsUnderWay) {
    const EffectHarness harness;
    World input = makePicture(6, 4, 9);
    World output(6, 4);
    std::jthread other;
    const auto contrast = [&](const FrameTime&) {
        other = std::jthread([&] {
            const PF_SmartRenderCallbacks callbacks{noPixels, nullptr};
            PF_SmartRenderExtra extra{&callbacks};
            HostCall call;
            EXPECT_EQ(call.send(harness.bundle.entryPoint(), PF_Cmd_SMART_RENDER, &extra).error, 83);
        });
        EXPECT_TRUE(checkedOut.try_acquire_for(std::chrono::seconds(5)));
        return 1.0;
    };
    EXPECT_TRUE(harness.effect.render({.input = &input, .output = &output, .values = {{1, contrast}}}).clean());
}

} // namespace

} // namespace Ombrique::Tests
