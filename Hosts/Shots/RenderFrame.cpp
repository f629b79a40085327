#include "Hosts/Shots/RenderFrame.h"

#include "Hosts/Pictures/PictureReader.h"
#include "Hosts/Pictures/PictureWriter.h"
#include "Hosts/Shots/Keyframes.h"
#include "Hosts/Shots/SideBySide.h"

#include <iterator>

namespace Ombrique::Hosts {

std::vector<std::string> renderFrame(RenderQueue& queue, const ShotFrame& frame, const FrameSettings& settings,
                                     FrameWorlds& worlds) {
    PictureReader reader(frame.input, settings.longestSide, settings.convertsColours);
    PictureWriter writer(frame.output, settings.compression, settings.rules);
    worlds.fit(reader.width(), reader.height());
    reader.read(*worlds.input);
    requireRendered(queue,
                    {.input = &*worlds.input,
                     .output = &*worlds.output,
                     .values = settings.values,
                     .time = timeOfFrame(frame.number),
                     .verifyInput = false},
                    frame.input.string());

    PictureOrigin origin = reader.origin();
    std::vector<std::string> losses = origin.losses;
    std::ranges::move(settings.compare ? writer.write(sideBySide(*worlds.input, *worlds.output, origin), origin,
                                                      settings.convertsColours)
                                       : writer.write(*worlds.output, origin, settings.convertsColours),
                      std::back_inserter(losses));
    return losses;
}

} // namespace Ombrique::Hosts
