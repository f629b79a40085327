#pragma once

#include "Hosts/Engine/RenderQueue.h"
#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/OutputFile.h"
#include "Hosts/Shots/FrameMemory.h"
#include "Hosts/Shots/Shot.h"

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
    OutputRules rules = {};
    /// See PictureReader and PictureWriter.
    bool convertsColours = false;
};

/// Renders through `renderer`, a CheckedRenderer or a RenderQueue. `name` is the picture's file.
/// @throw Failure which names the file, where that gives no picture.
template <typename Renderer>
void requireRendered(Renderer& renderer, const FrameRequest& request, const std::string& name) {
    try {
        if (const FrameResult result = renderer.render(request); !result.clean())
            throw PluginFailure(name + ": could not be rendered: " + result.describe());
    } catch (const NoPicture& error) {
        throw Failure(name + ": " + error.what());
    }
}

/// Reads a picture, sends it through the effect, and writes the result. Any thread; somebody serves `queue`. Returns
/// what of the picture couldn't be kept, one line each, without the file's name.
/// @throw Failure which names the file, with no output left behind.
std::vector<std::string> renderFrame(RenderQueue& queue, const ShotFrame& frame, const FrameSettings& settings,
                                     FrameWorlds& worlds);

} // namespace Ombrique::Hosts
