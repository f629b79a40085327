#include "Hosts/Shots/ContactSheet.h"
#include "Hosts/Shots/Keyframes.h"
#include "Hosts/Shots/RenderShot.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <mutex>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

constexpr int kWidth = 37;
constexpr int kHeight = 19;

World pictureOf(int frame) { return makePicture(kWidth, kHeight, static_cast<unsigned>(frame)); }

/// Small pictures, all of them different, from frame 8 on.
class Shots : public testing::Test {
protected:
    Shots() {
        for (int frame = 8; frame < 14; ++frame)
            writePictureFile(input(frame), pictureOf(frame), {});
    }

    std::string input(int frame) const { return folder / ("in." + std::to_string(10000 + frame).substr(1) + ".png"); }
    std::string output(int frame) const { return folder / ("out-" + std::to_string(frame) + ".png"); }
    ShotRequest request(const char* frames = nullptr, const char* from = "in.####.png",
                        const char* to = "out-%d.png") const {
        ShotRequest request;
        request.input = folder / from;
        request.output = folder / to;
        if (frames)
            request.frames = parseFrameRanges(frames);
        return request;
    }
    static std::vector<int> framesOf(const ShotRequest& request) {
        std::vector<int> numbers;
        for (const ShotFrame& frame : planShot(request).frames)
            numbers.push_back(frame.number);
        return numbers;
    }

    const ScratchFolder folder;
};

TEST_F(Shots, ArePlanned) {
    EXPECT_EQ(framesOf(request()), (std::vector{8, 9, 10, 11, 12, 13}));
    EXPECT_EQ(framesOf(request("12-20x4")), (std::vector{12, 16, 20}));
    EXPECT_EQ(firstInput(request("12-20x4")), input(12));
    writeFile(output(9), "precious");
    writeFile(output(10), ""); // never a finished picture
    ShotRequest missing = request();
    missing.skipExisting = true;
    EXPECT_EQ(framesOf(missing), (std::vector{8, 10, 11, 12, 13}));
    EXPECT_EQ(planShot(missing).skipped, 1);
    missing.part = {1, 3}; // of all frames, however far the others are
    EXPECT_EQ(framesOf(missing), std::vector{8});

    writeFile(folder / "v#.png", "one picture, by its very name");
    const Shot one = planShot(request(nullptr, "v#.png", "v.out.png"));
    ASSERT_EQ(one.frames.size(), 1u);
    EXPECT_EQ(one.frames[0].input, folder / "v#.png");
    EXPECT_EQ(one.frames[0].output, folder / "v.out.png");
}

TEST_F(Shots, TellTheirGaps) {
    EXPECT_EQ(planShot(request()).gaps, "");
    for (const int frame : {16, 20, 21, 24})
        writePictureFile(input(frame), pictureOf(frame), {});
    EXPECT_EQ(planShot(request()).gaps, "missing: 14-15,17-19,22-23");
    EXPECT_EQ(planShot(request("8-24")).gaps, "");
    EXPECT_EQ(describeGaps({1, 3}), "missing: 2");
    EXPECT_EQ(describeGaps({1, 2'000'000'000}), "missing: 2-101 and more");
}

TEST_F(Shots, AreManyPicturesOfTheirOwnNames) {
    ShotRequest many;
    many.pictures = {input(8), input(9)};
    many.into = folder / ".";
    EXPECT_THROW(planShot(many), UsageError); // each would replace itself
    many.format = "tif";
    const Shot shot = planShot(many);
    ASSERT_EQ(shot.frames.size(), 2u);
    EXPECT_EQ(shot.frames[1].number, 2);
    EXPECT_EQ(shot.frames[1].output.filename(), "in.0009.tif");
    many.pictures.push_back("elsewhere/in.0008.png");
    EXPECT_THROW(planShot(many), UsageError);
    many.into = folder / "none";
    EXPECT_THROW(planShot(many), Failure);
}

TEST_F(Shots, ArePlannedOnlyWhereFramesAndFilesFit) {
    EXPECT_THROW(planShot(request(nullptr, "no.####.png")), Failure);
    EXPECT_THROW(planShot(request(nullptr, "in.####.png", "none/out-%d.png")), Failure);
    EXPECT_THROW(planShot(request(nullptr, "in.####.png", "out.png")), UsageError);
    EXPECT_THROW(planShot(request(nullptr, "in.####.png", "in.%04d.png")), UsageError); // it would be corrected twice
    EXPECT_THROW(planShot(request(nullptr, "in.0008.png", "out-%d.png")), UsageError);
    EXPECT_EQ(planShot(request(nullptr, "in.0008.png", "out@2x.png")).frames[0].output, folder / "out@2x.png");
}

/// With the real effect; keeps what it is told.
class RenderedShots : public Shots, protected ShotObserver {
protected:
    void SetUp() override {
        const CommandResult result = effect.setUp();
        ASSERT_TRUE(result.clean()) << result.describe();
    }

    bool render(const ShotRequest& asked, int jobs) {
        settings.longestSide = 4096;
        return renderShot(effect, planShot(asked), settings, jobs, *this);
    }
    void expectFrame(int frame, const Correction& correction) const {
        EXPECT_EQ(compareWithOracle(pictureOf(frame), readPictureFile(output(frame), {}), correction), "") << frame;
    }

    bool stopRequested() const noexcept override { return static_cast<int>(done.size()) >= stopAfter; }
    void frameDone(const ShotFrame& frame, const std::vector<std::string>&, double seconds) noexcept override {
        const std::lock_guard lock(mutex);
        EXPECT_GT(seconds, 0.0);
        done.insert(frame.number);
    }
    void frameFailed(const ShotFrame&, std::initializer_list<std::string_view> text) noexcept override {
        const std::lock_guard lock(mutex);
        std::string& line = failed.emplace_back();
        for (const std::string_view part : text)
            line += part;
    }

    FrameSettings settings;
    PluginBundle bundle{OMBRIQUE_TEST_BUNDLE};
    Effect effect{bundle};
    std::mutex mutex;
    std::set<int> done;
    std::vector<std::string> failed;
    int stopAfter = std::numeric_limits<int>::max();
};

TEST_F(RenderedShots, HaveTheSlidersOfEachFramesTime) {
    settings.values = {{1, keyframedValue({{10, 1.0}, {14, 2.0}})}, {2, -10.0}};
    EXPECT_FALSE(render(request(), 3));
    for (int frame = 8; frame < 14; ++frame)
        expectFrame(frame, {std::max(1.0, 1.0 + (frame - 10) / 4.0), -10.0});
}

TEST_F(RenderedShots, GoOnAfterABrokenFrame) {
    writeFile(input(10), readFile(input(10)).substr(0, 700));
    writeFile(output(10), "what was there before");
    EXPECT_FALSE(render(request("8-14x2"), 2)); // 14 isn't there
    EXPECT_EQ(done, (std::set{8, 12}));
    expectFrame(8, {});
    expectFrame(12, {});
    EXPECT_EQ(readFile(output(10)), "what was there before");
    std::ranges::sort(failed);
    ASSERT_EQ(failed.size(), 2u);
    EXPECT_TRUE(failed[0].starts_with(input(10) + ": is damaged")) << failed[0];
    EXPECT_TRUE(failed[1].starts_with(input(14) + ": can't be read: No such file")) << failed[1];
}

TEST_F(RenderedShots, AreOneHeldPictureWhereFramesAreAskedOfIt) {
    settings.values = {{1, keyframedValue({{1, 1.0}, {3, 3.0}})}};
    EXPECT_FALSE(render(request("1-3", "in.0008.png"), 0));
    EXPECT_EQ(compareWithOracle(pictureOf(8), readPictureFile(output(2), {}), {2.0, 0.0}), "");
    EXPECT_EQ(done, (std::set{1, 2, 3}));
}

TEST_F(RenderedShots, AreOverWhenAStopIsAskedFor) {
    stopAfter = 2;
    EXPECT_FALSE(render(request(), 1));
    EXPECT_EQ(done, (std::set{8, 9}));
    EXPECT_FALSE(std::filesystem::exists(output(10)));
}

/// A picture that is larger than its display window, so that what a comparison fills shows.
TEST_F(RenderedShots, CompareSideBySide) {
    OIIO::ImageSpec windows;
    windows.x = windows.y = -3;
    windows.set_roi_full({0, 9, 0, 8});
    writePictureFile(folder / "in.exr", asHeld(pictureOf(8), {"RGB"}), {"RGB", OIIO::TypeDesc::HALF}, windows);
    settings.values = {{1, 2.0}};
    settings.compare = true;
    EXPECT_FALSE(render(request(nullptr, "in.exr", "out.png"), 1));
    const World both = readPictureFile(folder / "out.png", {"RGB"});
    ASSERT_EQ(both.width(), 2 * kWidth + 2);
    ASSERT_EQ(both.height(), kHeight);
    World before(kWidth, kHeight);
    World after(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            before.setPixel(x, y, both.pixel<PF_Pixel8>(x, y));
            after.setPixel(x, y, both.pixel<PF_Pixel8>(kWidth + 2 + x, y));
        }
    EXPECT_EQ(comparePixels(asHeld(pictureOf(8), {"RGB"}), before), "");
    EXPECT_EQ(compareWithOracle(before, after, {2.0, 0.0}), "");
}

class ContactSheets : public RenderedShots {
protected:
    ContactSheets() {
        World flat(kWidth, kHeight);
        flat.fill(PF_Pixel8{128, 100, 100, 100});
        writePictureFile(input(8), flat, {});
        sliders.resize(2); // those that a sheet shows
    }

    World write(const std::map<int, std::vector<double>>& lists) {
        writeContactSheet(effect, sliders, {input(8), folder / "sheet.png", lists, "", 4096});
        return readPictureFile(folder / "sheet.png", {"RGB"});
    }

    std::vector<Slider> sliders = declaredSliders(bundle);
};

TEST_F(ContactSheets, HaveAPictureForEachPairOfValues) {
    const World sheet = write({{1, {0.0, 1.0}}, {2, {0.0, 10.0, 20.0}}});
    // Cells are as wide as their labels at least, with their pictures in the middle. Half of each is the grey below it.
    const int columnWidth = sheet.width() / 2;
    const int rowHeight = sheet.height() / 3;
    constexpr int kValues[3][2] = {{87, 73}, {100, 86}, {113, 99}};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 2; ++column)
            EXPECT_NEAR(sheet.pixel<PF_Pixel8>(columnWidth * column + columnWidth / 2, rowHeight * row + 20).red,
                        kValues[row][column], 1)
                << row << ", " << column;
    // Without a label below it, a row's last lines would be empty.
    int lit = 0;
    for (int x = 0; x < columnWidth; ++x)
        for (int y = 33; y < 53; ++y)
            lit += sheet.pixel<PF_Pixel8>(x, y).red > 150;
    EXPECT_GT(lit, 50);
}

TEST_F(ContactSheets, ShowTwoSlidersAlone) {
    sliders.push_back({3, "Third Value", 0.0, 10.0, 5.0});
    EXPECT_THROW(write({{1, {1.0}}, {2, {0.0}}, {3, {1.0, 2.0}}}), UsageError);
    EXPECT_FALSE(std::filesystem::exists(folder / "sheet.png"));
    const World one = write({{1, {1.0}}, {2, {0.0}}, {3, {1.0}}});
    EXPECT_LT(one.height(), 100);
    EXPECT_THROW(write({{1, std::vector(21, 1.0)}, {2, std::vector(20, 0.0)}}), Failure);
}

TEST_F(ContactSheets, ShowFiveValuesAroundADefault) {
    const World one = write({{1, {1.0}}, {2, {0.0}}});
    const World all = write({});
    EXPECT_NEAR(all.width(), 5 * one.width(), 60);
    EXPECT_NEAR(all.height(), 5 * one.height(), 60);
    // The default is in the middle.
    EXPECT_EQ(all.pixel<PF_Pixel8>(all.width() / 2, all.height() / 2 - 10).red,
              one.pixel<PF_Pixel8>(one.width() / 2, one.height() / 2 - 10).red);
}

} // namespace

} // namespace Ombrique::Tests
