#include "Tests/Support/EffectTest.h"
#include "Tests/Support/OpenGLObjects.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// A frame that a host asks for. A row names what isn't as here.
struct Case {
    const char* name = "";
    /// Without pixels, a world has no memory.
    Size size{7, 5};
    Correction correction{1.3, 4.0};
    /// Of the output; the input's where nothing is said.
    std::optional<Size> outputSize{};
    WorldLayout input{};
    WorldLayout output{};
    /// Input and output are one world.
    bool inPlace = false;
    PF_Err error = PF_Err_NONE;
};

const Case kCases[] = {
    {.name = "one pixel", .size = {1, 1}},
    {.name = "many odd pixels", .size = {333, 217}},
    {.name = "defaults", .size = {64, 33}, .correction = {}},
    {.name = "the most contrast", .size = {31, 17}, .correction = {10.0, 30.0}},

    {.name = "rows without padding", .size = {13, 9}, .input = {.paddingBytes = 0}, .output = {.paddingBytes = 0}},
    {.name = "rows far apart", .size = {13, 9}, .input = {.paddingBytes = 4096}, .output = {.paddingBytes = 12}},
    {.name = "input upwards", .size = {11, 6}, .input = {.paddingBytes = 20, .bottomUp = true}},
    {.name = "output upwards", .size = {11, 6}, .output = {.paddingBytes = 0, .bottomUp = true}},
    {.name = "one world for both", .size = {13, 9}, .inPlace = true},

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
    {.name = "input of negative height", .size = {7, -5}, .outputSize = Size{7, 5}, .error = PF_Err_BAD_CALLBACK_PARAM},
    {.name = "input of negative width", .size = {-7, 5}, .outputSize = Size{7, 5}, .error = PF_Err_BAD_CALLBACK_PARAM},

    {.name = "contrast not a number", .size = {33, 21}, .correction = {kNaN, 0.0}},
    {.name = "infinite contrast", .size = {33, 21}, .correction = {kInfinity, 0.0}},
    {.name = "infinite darkness", .size = {33, 21}, .correction = {kInfinity, -kInfinity}},
    {.name = "inverted", .size = {33, 21}, .correction = {-2.5, 0.0}},
};

/// A picture, for a negative side of as many pixels.
World makeWorld(Size size, WorldLayout layout = {}) {
    return makePicture(std::abs(size.width), std::abs(size.height), 12, false, layout);
}

/// Tells the plug-in this size, and of a world without pixels no memory.
void describe(World& world, Size size) {
    PF_LayerDef& layer = *world.layer();
    layer.width = size.width;
    layer.height = size.height;
    if (size.width == 0 || size.height == 0)
        layer.data = nullptr;
}

class Frame : public EffectTest {
protected:
    /// The picture is the oracle's, or where an error is due, the output is untouched, and so is all around the worlds.
    void render(const Case& testCase) {
        SCOPED_TRACE(testCase.name);
        const Size outputSize = testCase.outputSize.value_or(testCase.size);
        const World before = makeWorld(testCase.size);
        World input = makeWorld(testCase.size, testCase.input);
        World separate = makeWorld(outputSize, testCase.output);
        World& output = testCase.inPlace ? input : separate;
        describe(input, testCase.size);
        describe(separate, outputSize);
        const std::size_t described = input.damage().size() + (testCase.inPlace ? 0 : separate.damage().size());
        check([&] {
            const FrameResult result =
                effect.render({.input = &input, .output = &output, .values = testCase.correction.sliders()});
            EXPECT_EQ(result.error, testCase.error);
            EXPECT_EQ(result.findings.size(), described) << result.describe(); // that it isn't as it was made
        });
        EXPECT_EQ(testCase.error == PF_Err_NONE ? compareWithOracle(before, output, testCase.correction)
                                                : comparePixels(makeWorld(outputSize), output),
                  "");
    }
};

TEST_F(Frame, MatchesTheOracle) {
    for (const Case& testCase : kCases)
        render(testCase);
}

TEST_F(Frame, IsAsLargeAsTheDriverCanAndNoLarger) {
    host.makeCurrent();
    constexpr unsigned kMaxRenderbufferSize = 0x84E8;
    int most = 0;
    openGLFunction<void(unsigned, int*)>("glGetIntegerv")(kMaxRenderbufferSize, &most);
    render({.name = "highest", .size = {1, most}, .outputSize = Size{2, most + 1}});
    render({.name = "widest", .size = {most, 1}});
    render({.name = "too high", .size = {1, most + 1}, .error = PF_Err_BAD_CALLBACK_PARAM});
    render({.name = "too wide without pixels", .size = {most + 1, 0}, .error = PF_Err_BAD_CALLBACK_PARAM});
}

TEST_F(Frame, WithoutAWorld) {
    World picture = makePicture(5, 4, 12);
    check([&] { EXPECT_TRUE(effect.render({.input = &picture}).clean()); });
    check([&] { EXPECT_TRUE(effect.render({.output = &picture}).clean()); });
    EXPECT_EQ(comparePixels(World(5, 4), picture), "");
}

/// Each row begins at a whole pixel, up- and downwards: uploaded, as many of them beyond the one before as the row
/// bytes hold; downloaded, at the last one on the way from row 0 to its place. Nothing outside the worlds is touched.
TEST_F(Frame, RowBytesThatSplitAPixel) {
    constexpr int kWidth = 5;
    constexpr int kHeight = 4;
    for (const bool up : {false, true}) {
        World input = makePicture(kWidth, kHeight, 78, true, {.paddingBytes = 7, .bottomUp = up}); // 27 bytes a row
        World output(kWidth, kHeight, PixelDepth::Bits8, {.paddingBytes = 6, .bottomUp = up});     // 26 bytes a row
        World seen(kWidth, kHeight);
        World expected(kWidth, kHeight);
        for (int y = 0; y < kHeight; ++y)
            std::memcpy(seen.row(y), input.row(0) + y * (up ? -24 : 24), kWidth * 4);
        EXPECT_EQ(effect.render({.input = &input, .output = &output}).error, 0);
        EXPECT_TRUE(effect.render({.input = &seen, .output = &expected}).clean());
        for (int y = 0; y < kHeight; ++y)
            EXPECT_EQ(std::memcmp(output.row(0) + (up ? -1 : 1) * (y * 26 / 4 * 4), expected.row(y), kWidth * 4), 0)
                << "row " << y << ", upwards: " << up;
        for (const std::string& damage : output.damage())
            EXPECT_NE(damage.find("padding"), std::string::npos) << damage;
    }
}

/// The sliders' values are those of the frame's time, in all three of its numbers.
TEST_F(Frame, SlidersFollowTheTime) {
    const auto at = [](const FrameTime& asked) { return 0.1 * asked.time + 0.3 * asked.step + 0.001 * asked.scale; };
    const FrameTime time{3, 5, 600};
    World input = makePicture(9, 7, 4);
    World output(9, 7);
    const FrameRequest request{.input = &input, .output = &output, .values = {{1, at}, {2, at}}, .time = time};
    EXPECT_TRUE(effect.render(request).clean());
    EXPECT_EQ(compareWithOracle(input, output, {at(time), at(time)}), "");
}

} // namespace

} // namespace Ombrique::Tests
