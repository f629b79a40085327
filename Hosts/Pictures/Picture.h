#pragma once

#include "Hosts/Engine/World.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// What a picture's file said of itself, so that the corrected picture can be written as the same kind of picture. The
/// pixels themselves stand in a World of the size of the data window as the plug-in takes them: 8 bits a channel,
/// straight alpha, opaque where the file has no alpha, all three colours alike where the file is grey.
struct PictureOrigin {
    /// OpenImageIO's name of the format.
    std::string format;
    /// Size, windows, channels and metadata as the file has them.
    OIIO::ImageSpec spec;
    /// The channels that make the picture, as indices into spec.channelnames: three colours, or in `colours[0]` the
    /// only one of a grey picture.
    std::array<int, 3> colours{};
    int colourCount = 0;
    /// The index of the alpha channel, or -1.
    int alpha = -1;
    /// What of the file doesn't come along, one line each, without the file's name. Empty for the usual picture.
    std::vector<std::string> losses;
};

/// A sample from 0 to 1 in 8 bits, rounded, halves up; what lies outside is clamped, and what isn't a number becomes 0.
inline std::uint8_t quantised(float value) {
    constexpr float kHalf = 0.5f; // rounds what isn't negative, once it is cut off
    return static_cast<std::uint8_t>((value > 0.0f ? std::min(value, 1.0f) : 0.0f) * 255.0f + kHalf);
}

/// The first line of what OpenImageIO says of an error, which may run to several; `otherwise` where it says nothing.
inline std::string firstErrorLine(const std::string& text, const std::string& otherwise) {
    const std::string line = text.substr(0, text.find('\n'));
    return line.empty() ? otherwise : line;
}

} // namespace Ombrique::Hosts
