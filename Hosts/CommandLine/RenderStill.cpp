#include "Hosts/CommandLine/RenderStill.h"

#include "Hosts/CommandLine/Failure.h"
#include "Hosts/CommandLine/PictureReader.h"
#include "Hosts/CommandLine/PictureWriter.h"

#include <algorithm>

namespace Ombrique::Hosts {
namespace {

void requireFitting(const std::filesystem::path& path, int width, int height, int longestSide) {
    if (std::max(width, height) > longestSide)
        throw Failure(path.string() + ": is " + std::to_string(width) + " by " + std::to_string(height) +
                      " pixels, and the OpenGL driver takes " + std::to_string(longestSide) + " at most");
}

void addLosses(std::vector<std::string>& all, const std::filesystem::path& path,
               const std::vector<std::string>& losses) {
    for (const std::string& loss : losses)
        all.push_back(path.string() + ": " + loss);
}

} // namespace

std::vector<std::string> renderStill(const Effect& effect, const std::filesystem::path& input,
                                     const std::filesystem::path& output, const ParameterValues& values,
                                     int longestSide) {
    PictureReader reader(input);
    requireFitting(input, reader.width(), reader.height(), longestSide);
    PictureWriter writer(output);
    Picture picture = reader.read();
    World corrected(reader.width(), reader.height());
    const FrameResult result =
        effect.render({.input = &picture.pixels, .output = &corrected, .values = values, .verifyInput = false});
    if (!result.clean())
        throw PluginFailure(input.string() + ": could not be rendered: " + result.describe());

    std::vector<std::string> losses;
    addLosses(losses, input, picture.origin.losses);
    addLosses(losses, output, writer.write(corrected, picture.origin));
    return losses;
}

} // namespace Ombrique::Hosts
