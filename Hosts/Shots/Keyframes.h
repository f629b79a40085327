#pragma once

#include "Hosts/Engine/FrameRequest.h"
#include "Hosts/Engine/Slider.h"

#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// A slider's value at a frame.
struct Keyframe {
    int frame;
    double value;
};

/// The value of a slider that is animated: straight lines between the keys, the first and the last key's value before
/// and after them. `keys` are at least one, of different frames, in any order.
SliderValue keyframedValue(std::vector<Keyframe> keys);

/// The value of a slider that `text` spells, all of it: a number, or keys with the frame before the value,
/// "1001:1,1120:1.6", which keyframedValue() joins.
/// @throw Failure where it is neither, or a value is no finite number or out of range, or two keys have the same frame.
SliderValue parseSliderValue(const Slider& slider, const std::string& text);

/// The values of a slider in a list such as "0.8,1,1.2", in its order. Failures as above.
std::vector<double> parseSliderList(const Slider& slider, const std::string& text);

/// The moment of a frame, as keyframedValue() counts: the frame's number is FrameTime::frame().
inline FrameTime timeOfFrame(int frame) { return {.time = frame, .step = 1, .scale = 24}; }

} // namespace Ombrique::Hosts
