#include "Hosts/Frei0r/PixelOrder.h"

#include <bit>
#include <cstring>

namespace Ombrique::Hosts {

namespace {

/// How many bits to rotate a pixel to the left, so that its last byte in memory becomes the first.
constexpr int kLastByteFirst = std::endian::native == std::endian::little ? 8 : -8;

void copyTurned(const std::byte* from, std::byte* to, std::size_t pixels, int bits) {
    for (std::size_t i = 0; i < pixels; ++i) {
        std::uint32_t pixel;
        std::memcpy(&pixel, from + 4 * i, sizeof pixel);
        pixel = std::rotl(pixel, bits);
        std::memcpy(to + 4 * i, &pixel, sizeof pixel);
    }
}

} // namespace

void copyToWorld(const std::uint32_t* frame, World& world) {
    const auto width = static_cast<std::size_t>(world.width());
    const auto* from = reinterpret_cast<const std::byte*>(frame);
    for (int y = 0; y < world.height(); ++y, from += 4 * width)
        copyTurned(from, world.row(y), width, kLastByteFirst);
}

void copyToFrame(const World& world, std::uint32_t* frame) {
    const auto width = static_cast<std::size_t>(world.width());
    auto* to = reinterpret_cast<std::byte*>(frame);
    for (int y = 0; y < world.height(); ++y, to += 4 * width)
        copyTurned(world.row(y), to, width, -kLastByteFirst);
}

} // namespace Ombrique::Hosts
