#include "Hosts/CommandLine/Keyframes.h"

#include <algorithm>
#include <cmath>

namespace Ombrique::Hosts {

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

} // namespace Ombrique::Hosts
