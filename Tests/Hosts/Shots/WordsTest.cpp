#include "Hosts/Pictures/Failure.h"
#include "Hosts/Shots/FramePattern.h"
#include "Hosts/Shots/FrameRanges.h"
#include "Hosts/Shots/Keyframes.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"

#include <gtest/gtest.h>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

TEST(FrameRanges, NameFrames) {
    const std::vector<std::pair<std::string, std::vector<int>>> rows = {
        {"7", {7}},
        {"0-3", {0, 1, 2, 3}},
        {"1-10x4", {1, 5, 9}},
        {"20-21,1-3,2-4", {1, 2, 3, 4, 20, 21}}, // in order, and each once
        {"2147483646-2147483647", {2147483646, 2147483647}},
        {"5-5x2147483647", {5}},
    };
    for (const auto& [text, frames] : rows)
        EXPECT_EQ(parseFrameRanges(text), frames) << text;
    EXPECT_EQ(describeFrames({1, 2, 3, 7, 9, 10}), "1-3,7,9-10");
}

TEST(FrameRanges, RefuseWhatNamesNone) {
    for (const char* text : {"", ",", "1,", "a", "1-", "-1", "3-1", "1-2-3", "1x2", "1-9x0", "1-9x", "1-9x-2", "1 -2",
                             "2147483648", "1-9x99999999999", "1-1000001", "0-2147483647", "1-900000,1-900000"})
        EXPECT_THROW(parseFrameRanges(text), Failure) << text;
}

TEST(FramePart, RefusesWhatIsNone) {
    for (const char* text : {"", "3", "0/2", "3/2", "1/2/3", "a/2", "1/", "-1/2"})
        EXPECT_THROW(parseFramePart(text), Failure) << text;
}

struct PatternCase {
    const char* pattern;
    /// The file of frame 42; null where the name is no pattern.
    const char* name;
};

TEST(FramePattern, NamesFiles) {
    const std::vector<PatternCase> rows = {
        {"shots/a.####.exr", "shots/a.0042.exr"},
        {"a.@@@@.exr", "a.0042.exr"},
        {"a.%04d.exr", "a.0042.exr"},
        {"a.%d.exr", "a.42.exr"},
        {"a#.png", "a42.png"},
        {"a@2x.###.png", "a@2x.042.png"},
        {"100%_%03d.png", "100%_042.png"},
        {"v##.####.png", "v##.0042.png"},
        {"plain.png", nullptr},
        {"####/a.png", nullptr},
        {"a%s.png", nullptr},
        {"a%04x.png", nullptr},
        {"a.############.png", nullptr},
        {"%.%02d.%0d.png", "%.42.%0d.png"},
        {"%", nullptr},
    };
    for (const PatternCase& row : rows) {
        const auto pattern = FramePattern::parse(row.pattern);
        ASSERT_EQ(pattern.has_value(), row.name != nullptr) << row.pattern;
        EXPECT_EQ(pattern ? pattern->at(42) : "", row.name ? row.name : "");
    }
    EXPECT_EQ(FramePattern::parse("a.##.png")->at(1234), "a.1234.png");
    EXPECT_FALSE(FramePattern::parse(std::string(1 << 20, '#')).has_value());
}

TEST(FramePattern, FindsItsOwnFilesAlone) {
    const ScratchFolder folder;
    for (const char* name : {"a.0009.png", "a.0010.png", "a.12345.png", "a.00011.png", "a.12.png", "a.-001.png",
                             "a.001x.png", "b.0001.png", "a.0001.jpg", ".a.0002.png.partial.png", "a..png"})
        writeFile(folder / name, "");
    EXPECT_EQ(FramePattern::parse(folder / "a.####.png")->framesThere(), (std::vector{9, 10, 12345}));
    EXPECT_TRUE(FramePattern::parse(folder / "none/a.####.png")->framesThere().empty());
}

class SliderText : public testing::Test {
protected:
    Slider slider{1, "Contrast Value", 0.0, 10.0, 1.0};
    double at(const char* text, int frame) const { return parseSliderValue(slider, text).at({.time = frame}); }
};

TEST_F(SliderText, TakesKeysInAnyOrder) {
    const char* const keys = "1120:1.6,1001:1,1240:0";
    EXPECT_EQ(at(keys, 1), 1.0);
    EXPECT_EQ(at(keys, 1001), 1.0);
    EXPECT_DOUBLE_EQ(at(keys, 1050), 1.0 + 0.6 * 49 / 119);
    EXPECT_EQ(at(keys, 1120), 1.6);
    EXPECT_DOUBLE_EQ(at(keys, 1210), 0.4);
    EXPECT_EQ(at(keys, 5000), 0.0);
    EXPECT_EQ(at("7:2", 0), 2.0);
}

TEST_F(SliderText, RefusesBadKeys) {
    for (const char* text :
         {":", "1:", ":1", "1:2,", "1:2,3", "1:2,1:3", "-1:2", "1:11", "1:nan", "1:2:3", "1.5:2", "1:1e999"})
        EXPECT_THROW(parseSliderValue(slider, text), Failure) << text;
    EXPECT_THROW(parseSliderList(slider, "1,,2"), Failure);
}

} // namespace

} // namespace Ombrique::Tests
