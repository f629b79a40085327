#pragma once

#include "Hosts/Engine/RenderQueue.h"
#include "Hosts/Shots/Shot.h"

#include <optional>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// What is the same for all frames of a run.
struct FrameSettings {
    ParameterValues values;
    /// The longest side of a picture that the driver can hold, in pixels.
    int longestSide = 0;
    bool compare = false;
    /// See PictureWriter.
    std::string compression;
};

/// The two worlds of a frame, kept from one frame to the next: pages that are new to the process cost more than what is
/// done with them.
struct FrameWorlds {
    std::optional<World> input;
    std::optional<World> output;

    /// Makes both anew where they have another size.
    void fit(int width, int height);
};

/// Reads a picture, sends it through the effect, and writes the result. Any thread; somebody serves `queue`. Returns
/// what of the picture couldn't be kept, one line each, without the file's name.
/// @throw Failure which names the file, with no output left behind.
std::vector<std::string> renderFrame(RenderQueue& queue, const ShotFrame& frame, const FrameSettings& settings,
                                     FrameWorlds& worlds);

} // namespace Ombrique::Hosts
