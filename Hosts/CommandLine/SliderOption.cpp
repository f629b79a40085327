#include "Hosts/CommandLine/SliderOption.h"

#include "Hosts/CommandLine/Failure.h"
#include "Hosts/CommandLine/Keyframes.h"
#include "Hosts/CommandLine/TextParts.h"

#include <charconv>
#include <cmath>
#include <set>
#include <sstream>

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

double SliderOption::parseNumber(std::string_view part, const std::string& text) const {
    const std::string where = option + " " + text + ": " + (part == text ? "" : "\"" + std::string(part) + "\" is ");
    // A plus sign is fine for people, but not for from_chars.
    std::string_view digits = part;
    if (digits.starts_with('+') && !digits.starts_with("+-"))
        digits.remove_prefix(1);
    double value = 0.0;
    const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc::invalid_argument || rest != digits.data() + digits.size() || std::isnan(value))
        throw Failure(where + "not a number");
    if (error != std::errc{} || value < minimum || value > maximum)
        throw Failure(where + "out of range (" + describeRange() + ")");
    return value;
}

SliderValue SliderOption::parse(const std::string& text) const {
    if (text.find(':') == std::string::npos)
        return parseNumber(text, text);
    std::vector<Keyframe> keys;
    std::set<int> frames;
    for (const std::string_view part : split(text, ',')) {
        const std::size_t colon = part.find(':');
        const auto frame = parseCount(part.substr(0, colon));
        if (colon == std::string_view::npos || !frame)
            throw Failure(option + " " + text + ": \"" + std::string(part) + "\" is no key, as 1001:1.5");
        if (!frames.insert(*frame).second)
            throw Failure(option + " " + text + ": has two keys at frame " + std::to_string(*frame));
        keys.push_back({*frame, parseNumber(part.substr(colon + 1), text)});
    }
    return keyframedValue(std::move(keys));
}

std::vector<double> SliderOption::parseList(const std::string& text) const {
    std::vector<double> values;
    for (const std::string_view part : split(text, ','))
        values.push_back(parseNumber(part, text));
    return values;
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
