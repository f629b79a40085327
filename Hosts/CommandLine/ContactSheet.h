#pragma once

#include "Hosts/CommandLine/SliderOption.h"
#include "Hosts/Engine/Effect.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// Writes a contact sheet of a picture: its reduction under each pair of values of the first two sliders, with the
/// values below it, the first slider's from left to right and the second's from top to bottom. `lists` holds the values
/// by parameter index; a slider without a list gets five values around its default. Transparent pictures lie on grey.
/// `effect` is set up. Returns what of the picture couldn't be kept, without the file's name.
/// @throw Failure which names the file, with no sheet left behind.
std::vector<std::string> writeContactSheet(const Effect& effect, const std::vector<SliderOption>& sliders,
                                           const std::map<int, std::vector<double>>& lists,
                                           const std::filesystem::path& input, const std::filesystem::path& sheet,
                                           const std::string& compression);

} // namespace Ombrique::Hosts
