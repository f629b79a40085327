#pragma once

#include "Hosts/CommandLine/SliderOption.h"
#include "Hosts/Engine/Effect.h"

#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// The plug-in's About text, and a line for each slider with its option, name, range and default.
/// @throw Failure where the plug-in doesn't answer.
std::string aboutText(const Effect& effect, const std::vector<SliderOption>& sliders);

} // namespace Ombrique::Hosts
