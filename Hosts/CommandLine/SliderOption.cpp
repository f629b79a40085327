#include "Hosts/CommandLine/SliderOption.h"

#include "Hosts/CommandLine/Failure.h"

#include <charconv>
#include <cmath>
#include <sstream>
#include <string_view>

namespace Ombrique::Hosts {
namespace {

std::string optionName(std::string_view label) {
    static constexpr std::string_view kEnding = " Value";
    if (label.ends_with(kEnding))
        label.remove_suffix(kEnding.size());
    std::string option = "--";
    for (const char letter : label)
        option += letter == ' ' ? '-' : letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    return option;
}

} // namespace

std::string SliderOption::describeRange() const {
    std::ostringstream text;
    text << minimum << " to " << maximum << ", default " << defaultValue;
    return text.str();
}

double SliderOption::parse(const std::string& text) const {
    double value = 0.0;
    const char* end = text.data() + text.size();
    // A plus sign is fine for people, but not for from_chars.
    const char* begin = text.starts_with('+') && !text.starts_with("+-") ? text.data() + 1 : text.data();
    const auto [rest, error] = std::from_chars(begin, end, value);
    if (error == std::errc::invalid_argument || rest != end || std::isnan(value))
        throw Failure(option + " " + text + ": not a number");
    if (error != std::errc{} || value < minimum || value > maximum)
        throw Failure(option + " " + text + ": out of range (" + describeRange() + ")");
    return value;
}

std::vector<SliderOption> sliderOptions(const std::vector<PF_ParamDef>& parameters) {
    std::vector<SliderOption> options;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const PF_ParamDef& parameter = parameters[i];
        if (parameter.param_type != PF_Param_FLOAT_SLIDER)
            continue;
        const PF_FloatSliderDef& slider = parameter.u.fs_d;
        options.push_back({static_cast<int>(i) + 1, parameter.name, optionName(parameter.name), slider.valid_min,
                           slider.valid_max, slider.dephault});
    }
    return options;
}

} // namespace Ombrique::Hosts
