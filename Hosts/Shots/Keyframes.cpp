#include "Hosts/Shots/Keyframes.h"

#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/TextParts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

namespace Ombrique::Hosts {

namespace {

/// The number that `part` of `text` spells.
double parseNumber(const Slider& slider, std::string_view part, const std::string& text) {
    const std::string which = part == text ? "" : "\"" + std::string(part) + "\" is ";
    // A plus sign is fine for people, but not for from_chars.
    std::string_view digits = part;
    if (digits.starts_with('+') && !digits.starts_with("+-"))
        digits.remove_prefix(1);
    double value = 0.0;
    const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc::invalid_argument || rest != digits.data() + digits.size() || std::isnan(value))
        throw Failure(which + "not a number");
    if (error != std::errc{} || value < slider.minimum || value > slider.maximum)
        throw Failure(which + "out of range (" + slider.describeRange() + ")");
    return value;
}

} // namespace

SliderValue keyframedValue(std::vector<Keyframe> keys) {
    std::ranges::sort(keys, {}, &Keyframe::frame);
    return [keys = std::move(keys)](const FrameTime& time) {
        const double frame = time.frame();
        const auto next =
            std::ranges::upper_bound(keys, frame, {}, [](const Keyframe& key) { return double(key.frame); });
        if (next == keys.begin())
            return next->value;
        const auto& before = next[-1];
        if (next == keys.end())
            return before.value;
        return std::lerp(before.value, next->value, (frame - before.frame) / (double(next->frame) - before.frame));
    };
}

SliderValue parseSliderValue(const Slider& slider, const std::string& text) {
    if (text.find(':') == std::string::npos)
        return parseNumber(slider, text, text);
    std::vector<Keyframe> keys;
    std::set<int> frames;
    for (const std::string_view part : split(text, ',')) {
        const std::size_t colon = part.find(':');
        const auto frame = parseCount(part.substr(0, colon));
        if (colon == std::string_view::npos || !frame)
            throw Failure("\"" + std::string(part) + "\" is no key, as 1001:1.5");
        if (!frames.insert(*frame).second)
            throw Failure("has two keys at frame " + std::to_string(*frame));
        keys.push_back({*frame, parseNumber(slider, part.substr(colon + 1), text)});
    }
    return keyframedValue(std::move(keys));
}

std::vector<double> parseSliderList(const Slider& slider, const std::string& text) {
    std::vector<double> values;
    for (const std::string_view part : split(text, ','))
        values.push_back(parseNumber(slider, part, text));
    return values;
}

} // namespace Ombrique::Hosts
