#pragma once

#include "Tests/Support/PixelOracle.h"

/// Frames as tools have them: red, green, blue and straight alpha in each four bytes, without padding.
namespace Ombrique::Tests {

inline std::string rawFrame(const Hosts::World& picture) {
    std::string bytes;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const auto pixel = picture.pixel<PF_Pixel8>(x, y);
            for (const std::uint8_t channel : {pixel.red, pixel.green, pixel.blue, pixel.alpha})
                bytes.push_back(static_cast<char>(channel));
        }
    return bytes;
}

/// The picture at `offset` of `bytes`, which must hold all of it.
inline Hosts::World pictureOf(const std::string& bytes, std::size_t offset, int width, int height) {
    Hosts::World picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, offset += 4) {
            const auto at = [&](std::size_t i) { return static_cast<std::uint8_t>(bytes.at(offset + i)); };
            picture.setPixel(x, y, PF_Pixel8{at(3), at(0), at(1), at(2)});
        }
    return picture;
}

} // namespace Ombrique::Tests
