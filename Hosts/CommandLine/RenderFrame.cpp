#include "Hosts/CommandLine/RenderFrame.h"

#include "Hosts/CommandLine/Failure.h"
#include "Hosts/CommandLine/Keyframes.h"
#include "Hosts/CommandLine/PictureReader.h"
#include "Hosts/CommandLine/PictureWriter.h"
#include "Hosts/CommandLine/SideBySide.h"

#include <algorithm>
#include <iterator>

namespace Ombrique::Hosts {
namespace {

void requireFitting(const std::filesystem::path& path, int width, int height, int longestSide) {
    if (std::max(width, height) > longestSide)
        throw Failure(path.string() + ": is " + std::to_string(width) + " by " + std::to_string(height) +
                      " pixels, and the OpenGL driver takes " + std::to_string(longestSide) + " at most");
}

} // namespace

void FrameWorlds::fit(int width, int height) {
    if (input && input->width() == width && input->height() == height)
        return;
    input.reset();
    output.reset();
    input.emplace(width, height);
    output.emplace(width, height);
}

std::vector<std::string> renderFrame(RenderQueue& queue, const ShotFrame& frame, const FrameSettings& settings,
                                     FrameWorlds& worlds) {
    PictureReader reader(frame.input);
    requireFitting(frame.input, reader.width(), reader.height(), settings.longestSide);
    PictureWriter writer(frame.output, settings.compression);
    worlds.fit(reader.width(), reader.height());
    reader.read(*worlds.input);
    const FrameResult result = queue.render({.input = &*worlds.input,
                                             .output = &*worlds.output,
                                             .values = settings.values,
                                             .time = timeOfFrame(frame.number),
                                             .verifyInput = false});
    if (!result.clean())
        throw PluginFailure(frame.input.string() + ": could not be rendered: " + result.describe());

    PictureOrigin origin = reader.origin();
    std::vector<std::string> losses = origin.losses;
    std::ranges::move(settings.compare ? writer.write(sideBySide(*worlds.input, *worlds.output, origin), origin)
                                       : writer.write(*worlds.output, origin),
                      std::back_inserter(losses));
    return losses;
}

} // namespace Ombrique::Hosts
