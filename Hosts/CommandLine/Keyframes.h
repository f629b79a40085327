#pragma once

#include "Hosts/Engine/FrameRequest.h"

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

/// The moment of a frame, as keyframedValue() counts: the frame's number is FrameTime::frame().
inline FrameTime timeOfFrame(int frame) { return {.time = frame, .step = 1, .scale = 24}; }

} // namespace Ombrique::Hosts
