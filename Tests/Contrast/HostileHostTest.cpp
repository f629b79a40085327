#include "Tests/Support/EffectHarness.h"
#include "Tests/Support/OpenGLObjects.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

class HostileHost : public testing::Test {
protected:
    FrameResult render(World& input, World& output, double contrast = 1.3, double brightness = 4.0) const {
        return harness.effect.render(
            {.input = &input, .output = &output, .values = EffectHarness::sliders(contrast, brightness)});
    }

    void TearDown() override {
        World picture = makePicture(7, 5, 3);
        harness.expectRight(picture, 1.3, 4.0); // whatever came before
    }

    EffectHarness harness;
};

TEST_F(HostileHost, SizesFromNothingToTheDriversLimit) {
    const struct {
        int width;
        int height;
        PF_Err result;
    } rows[] = {{0, 0, 0},     {0, 5, 0},     {5, 0, 0},       {1, 1, 0},
                {1, 16384, 0}, {16384, 1, 0}, {1, 16385, 516}, {0, 16385, 516}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.width) + " by " + std::to_string(row.height));
        World input = makePicture(row.width, row.height, 12);
        World output(row.width + 1, row.height + 1); // the rest of it is cleared
        World untouched(row.width + 1, row.height + 1);
        for (World* world : {&output, &untouched})
            world->fill(PF_Pixel8{9, 9, 9, 9});
        const FrameResult result = render(input, output);
        EXPECT_EQ(result.error, row.result);
        EXPECT_TRUE(result.findings.empty()) << result.describe();
        EXPECT_EQ(row.result == 0 ? compareWithOracle(input, output, 1.3, 4.0) : comparePixels(untouched, output), "");
    }
    World input = makePicture(6, 4, 1);
    World output(6, 4);
    input.layer()->width = -6;
    EXPECT_EQ(render(input, output).error, 516);
}

TEST_F(HostileHost, RowsThatRunUpwardsOrLieFarApart) {
    const WorldLayout layouts[] = {{.paddingBytes = 0, .bottomUp = true},
                                   {.paddingBytes = 20, .bottomUp = true},
                                   {.paddingBytes = 4096},
                                   {.paddingBytes = 0}};
    for (const WorldLayout& in : layouts) {
        for (const WorldLayout& out : layouts) {
            World input = makePicture(11, 6, 77, false, in);
            World output(11, 6, PixelDepth::Bits8, out);
            const FrameResult result = render(input, output);
            EXPECT_TRUE(result.clean()) << result.describe();
            EXPECT_EQ(compareWithOracle(input, output, 1.3, 4.0), "") << in.paddingBytes << ", " << out.paddingBytes;
        }
    }
}

/// Each row begins at a whole pixel: uploaded, as many of them after the one before as the row bytes hold; downloaded,
/// at or below its place. Nothing outside the worlds is touched.
TEST_F(HostileHost, RowBytesThatSplitAPixel) {
    constexpr int kWidth = 5;
    constexpr int kHeight = 4;
    World input = makePicture(kWidth, kHeight, 78, true, {.paddingBytes = 7}); // row bytes 27
    World seen(kWidth, kHeight);
    World output(kWidth, kHeight, PixelDepth::Bits8, {.paddingBytes = 6}); // row bytes 26
    for (int y = 0; y < kHeight; ++y)
        std::memcpy(seen.row(y), input.row(0) + y * 24, kWidth * 4);
    const FrameResult result = render(input, output);
    EXPECT_EQ(result.error, 0);
    const World expected = harness.render(seen, 1.3, 4.0);
    for (int y = 0; y < kHeight; ++y)
        EXPECT_EQ(std::memcmp(output.row(0) + y * 26 / 4 * 4, expected.row(y), kWidth * 4), 0) << "row " << y;
    for (const std::string& damage : output.damage())
        EXPECT_NE(damage.find("padding"), std::string::npos) << damage;
}

TEST_F(HostileHost, OneWorldForInputAndOutput) {
    World world = makePicture(13, 9, 5);
    const World before = makePicture(13, 9, 5);
    const FrameResult result = render(world, world);
    EXPECT_TRUE(result.clean()) << result.describe();
    EXPECT_EQ(compareWithOracle(before, world, 1.3, 4.0), "");
}

TEST_F(HostileHost, SlidersBeyondAllReason) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [contrast, brightness] : {std::pair{kNaN, 0.0},
                                               {1.0, kNaN},
                                               {kInfinity, 0.0},
                                               {-kInfinity, 0.0},
                                               {1.0, kInfinity},
                                               {1.0, -kInfinity},
                                               {kInfinity, -kInfinity},
                                               {1e200, 3.0},
                                               {-2.5, 0.0},
                                               {1e6, -2e7},
                                               {1.0, 1e300},
                                               {-0.0, 50.0}}) {
        World picture = makePicture(33, 21, 44);
        harness.expectRight(picture, contrast, brightness);
    }
}

TEST_F(HostileHost, AnotherSizeWithEachFrame) {
    letGoOfContext(); // so that the effect's own stays current, and its objects can be counted
    World first = makePicture(40, 30, 1);
    harness.expectRight(first, 0.5, 1.0);
    const auto before = countOpenGLObjects();
    EXPECT_GT(before.at("Renderbuffer"), 0);
    for (int i = 0; i < 60; ++i) {
        World picture = makePicture(1 + i * 37 % 90, 1 + i * 53 % 70, static_cast<unsigned>(i));
        harness.expectRight(picture, 1.1, i - 30.0);
    }
    harness.expectRight(first, 0.5, 1.0);
    EXPECT_EQ(countOpenGLObjects(), before);
}

TEST_F(HostileHost, CommandsOutOfOrder) {
    const auto send = [this](PF_Cmd command) {
        HostCall call;
        const CommandResult result = call.send(harness.bundle.entryPoint(), command);
        EXPECT_TRUE(result.clean()) << result.describe();
    };
    World picture = makePicture(9, 4, 6);
    send(PF_Cmd_GLOBAL_SETUP); // a second one
    harness.expectRight(picture, 1.0, 0.0);
    send(PF_Cmd_GLOBAL_SETDOWN);
    send(PF_Cmd_GLOBAL_SETDOWN);
    send(PF_Cmd_PARAMS_SETUP);
    EXPECT_EQ(render(picture, picture).error, 516);
    send(PF_Cmd_GLOBAL_SETUP);
    harness.expectRight(picture, 1.2, 0.0);
}

/// Two copies of one bundle share nothing but the driver: neither's set-down, nor its end, reaches the other.
TEST_F(HostileHost, ASecondCopyOfTheBundle) {
    const std::filesystem::path copy = std::filesystem::path(testing::TempDir()) / "Copy.plugin";
    std::filesystem::remove_all(copy);
    std::filesystem::copy(OMBRIQUE_TEST_BUNDLE, copy, std::filesystem::copy_options::recursive);
    World picture = makePicture(23, 18, 9);
    for (int round = 0; round < 3; ++round) {
        const PluginBundle second(copy);
        ASSERT_NE(second.entryPoint(), harness.bundle.entryPoint());
        Effect other(second);
        ASSERT_TRUE(other.setUp().clean());
        for (int frame = 0; frame < 3; ++frame) {
            harness.expectRight(picture, 1.5, frame);
            World output(23, 18);
            const FrameResult result =
                other.render({.input = &picture, .output = &output, .values = EffectHarness::sliders(0.7, frame)});
            EXPECT_TRUE(result.clean()) << result.describe();
            EXPECT_EQ(compareWithOracle(picture, output, 0.7, frame), "");
        }
        if (round == 1) {
            EXPECT_TRUE(other.setDown().clean());
            harness.expectRight(picture, 1.5, 1.0);
        }
    }
    std::filesystem::remove_all(copy);
}

/// Where the driver gives no context, set-up is refused, and so is each frame that is sent all the same.
TEST(HostileDriverDeathTest, GivesNoContext) {
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // a process of its own, which hasn't loaded a driver yet
    const auto refuses = [](const char* variable, const char* value) {
        setenv(variable, value, 1);
        const PluginBundle bundle(OMBRIQUE_TEST_BUNDLE);
        Effect effect(bundle);
        World input = makePicture(5, 3, 2);
        World output(5, 3);
        const CommandResult setUp = effect.setUp();
        const FrameResult frame = effect.render({.input = &input, .output = &output});
        return setUp.error == 516 && frame.error == 516 && setUp.findings.empty() && frame.findings.empty() &&
               comparePixels(World(5, 3), output).empty();
    };
    for (const auto& [variable, value] : {std::pair{"__EGL_VENDOR_LIBRARY_FILENAMES", "/nowhere.json"},
                                          {"MESA_GL_VERSION_OVERRIDE", "3.1"},
                                          {"MESA_GLSL_VERSION_OVERRIDE", "150"}})
        EXPECT_EXIT(std::exit(refuses(variable, value) ? 0 : 1), testing::ExitedWithCode(0), "") << variable;
}

} // namespace

} // namespace Ombrique::Tests
