#pragma once

#include "Platform/HostInterface/HostInterface.h"

#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// A float slider of the plug-in as an option of the command line. Everything in it comes from the plug-in's own
/// declaration.
struct SliderOption {
    /// The parameter's index at the plug-in, from 1.
    int index;
    /// The parameter's name, as "Contrast Value".
    std::string label;
    /// The option, as "--contrast": the name in lower case, blanks as hyphens, without "Value" at its end.
    std::string option;
    double minimum;
    double maximum;
    double defaultValue;

    /// Range and default for people, as "0 to 10, default 1".
    std::string describeRange() const;
    /// The number that `text` spells, all of it.
    /// @throw Failure which names the option and the text, where it is no finite number or is out of range.
    double parse(const std::string& text) const;
};

/// The float sliders among the declared parameters, the first of which has index 1.
std::vector<SliderOption> sliderOptions(const std::vector<PF_ParamDef>& parameters);

} // namespace Ombrique::Hosts
