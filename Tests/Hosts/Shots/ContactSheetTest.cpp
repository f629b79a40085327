#include "Hosts/Shots/ContactSheet.h"

#include "Hosts/Pictures/Failure.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

class ContactSheets : public testing::Test {
protected:
    ContactSheets() {
        EXPECT_TRUE(effect.setUp().clean());
        World flat(37, 19);
        flat.fill(PF_Pixel8{128, 100, 100, 100});
        writePictureFile(folder / "in.png", flat, {});
        sliders.resize(2); // those that a sheet shows
    }

    World write(const std::map<int, std::vector<double>>& lists) {
        writeContactSheet(effect, sliders, {folder / "in.png", folder / "sheet.png", lists, "", 4096});
        return readPictureFile(folder / "sheet.png", {"RGB"});
    }

    const ScratchFolder folder;
    PluginBundle bundle{OMBRIQUE_TEST_BUNDLE};
    Effect effect{bundle};
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
