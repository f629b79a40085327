#pragma once

#include "Hosts/Engine/Effect.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// Reads a picture, sends it through the effect, which is set up, and writes the result. `longestSide` is what the
/// driver can hold. Returns what of the picture couldn't be kept, one line each, beginning with the file's name.
/// @throw Failure, with no output left behind.
std::vector<std::string> renderStill(const Effect& effect, const std::filesystem::path& input,
                                     const std::filesystem::path& output, const ParameterValues& values,
                                     int longestSide);

} // namespace Ombrique::Hosts
