#pragma once

#include "Hosts/CommandLine/SliderOption.h"
#include "Hosts/Engine/FrameRequest.h"

#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// What the user asked for.
struct Arguments {
    /// What to print instead of doing anything else: the text of --help or --version. Empty otherwise.
    std::string answer;
    bool about = false;
    std::string input;
    std::string output;
    /// The sliders that the command line sets, within their ranges.
    ParameterValues values;
};

/// Reads the command line, with an option for each slider.
/// @throw UsageError where it isn't one of the program's, Failure where the value of a slider is no good.
Arguments parseArguments(int count, const char* const* words, const std::vector<SliderOption>& sliders);

} // namespace Ombrique::Hosts
