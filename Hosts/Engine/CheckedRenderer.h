#pragma once

#include "Hosts/Engine/Effect.h"

#include <shared_mutex>
#include <stdexcept>

namespace Ombrique::Hosts {

/// The plug-in reported success, but the driver produced no picture.
class NoPicture : public std::runtime_error {
public:
    NoPicture() : std::runtime_error("OpenGL gave no picture; the driver may be out of memory") {}
};

/// Renders frames, and believes none that the effect can't have made. A plug-in that reads no OpenGL errors reports
/// success whatever the driver did. But the effects that these hosts drive keep alpha, so a frame whose alpha isn't
/// its input's has failed. The effect is then set down and up again, which clears what the driver has spoiled, and the
/// frame is rendered once more.
///
/// A frame that is transparent throughout, one whose output isn't of the input's size, and one whose output is its
/// input can't be judged.
class CheckedRenderer {
public:
    /// `effect` is set up, and must outlive this.
    explicit CheckedRenderer(Effect& effect) : mEffect(effect) {}

    /// As Effect::render(). Any thread, several at once: before the effect is set down, frames under way end, and
    /// others wait until it is set up again.
    /// @throw NoPicture where the second try fails as well; the output's pixels are then unspecified.
    FrameResult render(const FrameRequest& request);

private:
    bool tryRender(const FrameRequest& request, FrameResult& result, unsigned& round);
    void setUpAnew(unsigned round);

    Effect& mEffect;
    std::shared_mutex mMutex;
    /// How often the effect was set up anew.
    unsigned mRound = 0;
};

} // namespace Ombrique::Hosts
