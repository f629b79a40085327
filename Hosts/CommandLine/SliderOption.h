#pragma once

#include "Hosts/Engine/FrameRequest.h"

#include <string>
#include <string_view>
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
    /// The value that `text` spells, all of it: a number, or keys with the frame before the value, "1001:1,1120:1.6",
    /// which keyframedValue() joins.
    /// @throw Failure which names the option and the text, where it is neither, or a value is no finite number or out
    /// of range, or two keys have the same frame.
    SliderValue parse(const std::string& text) const;
    /// The numbers of a list such as "0.8,1,1.2", in its order. Failures as above.
    std::vector<double> parseList(const std::string& text) const;

private:
    double parseNumber(std::string_view part, const std::string& text) const;
};

/// The float sliders among the declared parameters, the first of which has index 1.
std::vector<SliderOption> sliderOptions(const std::vector<PF_ParamDef>& parameters);

} // namespace Ombrique::Hosts
