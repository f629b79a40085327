#pragma once

#include "Hosts/Frei0r/SharedEffect.h"

#include <atomic>
#include <cstdint>
#include <list>
#include <mutex>
#include <vector>

namespace Ombrique::Hosts {

/// One use of the effect in a tool: frames of one size, with parameters of its own. Any thread may call, several at
/// once: some tools cut a frame into slices and hand them to one instance from as many threads. A frame takes the
/// parameters as they are when it begins.
class FilterInstance {
public:
    /// `width` by `height` pixels, with the declared defaults.
    /// @throw BundleError, std::runtime_error where the plug-in, OpenGL or memory doesn't allow such frames
    FilterInstance(unsigned width, unsigned height);
    ~FilterInstance() = default;
    FilterInstance(const FilterInstance&) = delete;
    FilterInstance& operator=(const FilterInstance&) = delete;

    /// Sets a parameter of index 0 and up, to a position from 0 to 1. What lies outside is taken as the nearer end;
    /// an index that doesn't exist and what isn't a number are ignored.
    void setPosition(int index, double position);
    /// The position that was last set; 0 for an index that doesn't exist.
    double position(int index) const;

    /// Renders `input` into `output`, which may be the same memory. Where that fails, the output becomes a copy of the
    /// input; the first failure of the instance is told on standard error. `seconds` is the time of the frame.
    void update(double seconds, const std::uint32_t* input, std::uint32_t* output) noexcept;

private:
    /// The memory of a frame.
    struct Worlds {
        Worlds(int width, int height);
        World input;
        World output;
    };
    class BorrowedWorlds;

    void render(double seconds, const std::uint32_t* input, std::uint32_t* output);
    ParameterValues values() const;
    void reportOnce(const char* text) noexcept;

    FrameThreadUse mFrameThread;
    const EffectDescription& mDescription;
    int mWidth;
    int mHeight;
    std::vector<std::atomic<double>> mPositions;
    std::mutex mMutex;
    /// Those that no frame uses at the moment.
    std::list<Worlds> mFreeWorlds;
    std::atomic_flag mReported;
};

} // namespace Ombrique::Hosts
