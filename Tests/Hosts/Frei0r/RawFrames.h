#pragma once

#include "Tests/Support/PixelOracle.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// Frames as tools have them: red, green, blue and straight alpha in each four bytes, without padding.
namespace Ombrique::Tests {

inline void appendRaw(const Hosts::World& picture, std::string& bytes) {
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const auto pixel = picture.pixel<PF_Pixel8>(x, y);
            for (const std::uint8_t channel : {pixel.red, pixel.green, pixel.blue, pixel.alpha})
                bytes.push_back(static_cast<char>(channel));
        }
}

inline std::string rawFrame(const Hosts::World& picture) {
    std::string bytes;
    appendRaw(picture, bytes);
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

/// Pictures of one size, each another one.
struct Clip {
    Clip(int w, int h, int count, unsigned seed, bool opaque = false) : width(w), height(h) {
        frames.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            frames.push_back(makePicture(w, h, seed + static_cast<unsigned>(i), opaque));
    }
    std::size_t frameBytes() const { return std::size_t{4} * static_cast<std::size_t>(width * height); }
    std::string raw() const {
        std::string bytes;
        for (const Hosts::World& frame : frames)
            appendRaw(frame, bytes);
        return bytes;
    }

    int width;
    int height;
    std::vector<Hosts::World> frames;
};

inline std::string readFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace Ombrique::Tests
