#include "Hosts/Engine/World.h"

#include <gtest/gtest.h>

#include <ostream>
#include <set>

using namespace Ombrique::Hosts;

namespace {

struct Shape {
    int width;
    int height;
    PixelDepth depth;
    WorldLayout layout;
};

void PrintTo(const Shape& shape, std::ostream* stream) {
    *stream << shape.width << " by " << shape.height << ", " << bytesPerPixel(shape.depth) << " bytes a pixel";
}

class WorldTest : public testing::TestWithParam<Shape> {};

// Each byte from 80 bytes before the picture to 80 bytes behind it is changed in turn: what is a pixel's is no damage,
// and changes the checksum; all else is damage, and doesn't.
TEST_P(WorldTest, DamageIsWhatIsntAPixel) {
    const auto& [width, height, depth, layout] = GetParam();
    World world(width, height, depth, layout);
    const int rowOfPixels = width * bytesPerPixel(depth);
    EXPECT_EQ(std::abs(world.rowBytes()), rowOfPixels + layout.paddingBytes);
    std::set<const std::byte*> pixels;
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < rowOfPixels; ++i)
            pixels.insert(world.row(y) + i);

    const std::uint64_t checksum = world.checksum();
    std::byte* const start = layout.bottomUp && height > 0 ? world.row(height - 1) : world.row(0);
    for (std::ptrdiff_t i = -80; i < std::abs(world.rowBytes()) * height + 80; ++i) {
        start[i] ^= std::byte{0x10};
        const bool isPixel = pixels.count(start + i) == 1;
        EXPECT_EQ(world.damage().empty(), isPixel) << "byte " << i;
        EXPECT_EQ(world.checksum() != checksum, isPixel) << "byte " << i;
        start[i] ^= std::byte{0x10};
    }
    EXPECT_TRUE(world.damage().empty());
}

INSTANTIATE_TEST_SUITE_P(Shapes, WorldTest,
                         testing::Values(Shape{7, 5, PixelDepth::Bits8, {}},
                                         Shape{5, 3, PixelDepth::Bits16, {.bottomUp = true}},
                                         Shape{3, 2, PixelDepth::Float, {.paddingBytes = 3}},
                                         Shape{4, 2, PixelDepth::Bits8, {.paddingBytes = 0}},
                                         Shape{0, 0, PixelDepth::Bits8, {}}));

TEST(World, RowsStandWhereTheLayerSaysInBothLayouts) {
    for (const bool bottomUp : {false, true}) {
        World world(3, 2, PixelDepth::Bits16, {.paddingBytes = 8, .bottomUp = bottomUp});
        world.setPixel(2, 1, PF_Pixel16{1, 2, 3, 4});
        const PF_LayerDef& layer = *world.layer();
        PF_Pixel16 found{};
        std::memcpy(&found, static_cast<std::byte*>(layer.data) + layer.rowbytes + 2 * sizeof found, sizeof found);
        EXPECT_EQ(found.blue, 4) << "bottom-up: " << bottomUp;
    }
}

TEST(World, PaddingOfOneIsDamageInAnother) {
    World from(4, 2);
    World to(4, 2);
    std::memcpy(to.row(0), from.row(0), static_cast<std::size_t>(from.rowBytes()));
    EXPECT_EQ(to.damage(), std::vector<std::string>{"written into the padding of row 0"});
}

TEST(World, ARowTooLongForTheInterfaceIsRefused) {
    EXPECT_THROW(World(1 << 27, 1, PixelDepth::Float), std::length_error);
}

} // namespace
