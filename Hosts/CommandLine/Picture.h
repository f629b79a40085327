#pragma once

#include "Hosts/Engine/World.h"

#include <OpenImageIO/imageio.h>

#include <array>
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

} // namespace Ombrique::Hosts
