#include "Hosts/Frei0r/FilterInstance.h"

#include "Hosts/Frei0r/PixelOrder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace Ombrique::Hosts {

namespace {

/// To the millisecond, over the whole range of the host's clock.
FrameTime frameTime(double seconds) {
    constexpr std::uint32_t kScale = 1000;
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    const double time = std::isfinite(seconds) ? std::clamp(seconds * kScale, -kMost, kMost) : 0.0;
    return {.time = static_cast<std::int32_t>(std::lround(time)), .step = 1, .scale = kScale};
}

/// The size of a frame as the host counts.
/// @throw std::runtime_error where the driver can't hold it
int checkedSide(unsigned side, int longest) {
    if (side == 0 || side > static_cast<unsigned>(longest))
        throw std::runtime_error("a frame can't be " + std::to_string(side) +
                                 " pixels wide or high: the driver takes 1 to " + std::to_string(longest));
    return static_cast<int>(side);
}

} // namespace

// Without padding, which the tool's frames don't have either.
FilterInstance::Worlds::Worlds(int width, int height)
    : input(width, height, PixelDepth::Bits8, {.paddingBytes = 0}),
      output(width, height, PixelDepth::Bits8, {.paddingBytes = 0}) {}

/// Worlds out of the instance's stock, which grows to the number of frames that were under way at once.
class FilterInstance::BorrowedWorlds {
public:
    explicit BorrowedWorlds(FilterInstance& instance) : mInstance(instance) {
        std::unique_lock lock(instance.mMutex);
        if (!instance.mFreeWorlds.empty()) {
            mWorlds.splice(mWorlds.begin(), instance.mFreeWorlds, instance.mFreeWorlds.begin());
            return;
        }
        lock.unlock();
        mWorlds.emplace_back(instance.mWidth, instance.mHeight);
    }
    ~BorrowedWorlds() {
        const std::lock_guard lock(mInstance.mMutex);
        mInstance.mFreeWorlds.splice(mInstance.mFreeWorlds.begin(), mWorlds);
    }
    BorrowedWorlds(const BorrowedWorlds&) = delete;
    BorrowedWorlds& operator=(const BorrowedWorlds&) = delete;

    Worlds* operator->() { return &mWorlds.front(); }

private:
    FilterInstance& mInstance;
    std::list<Worlds> mWorlds;
};

FilterInstance::FilterInstance(unsigned width, unsigned height)
    : mDescription(SharedEffect::instance().description()), mWidth(checkedSide(width, mFrameThread->longestSide())),
      mHeight(checkedSide(height, mFrameThread->longestSide())), mPositions(mDescription.parameters.size()) {
    for (std::size_t i = 0; i < mPositions.size(); ++i)
        mPositions[i] = mDescription.parameters[i].defaultPosition();
    BorrowedWorlds(*this); // without the memory for one frame there is no instance
}

void FilterInstance::setPosition(int index, double position) {
    if (index >= 0 && static_cast<std::size_t>(index) < mPositions.size() && !std::isnan(position))
        mPositions[static_cast<std::size_t>(index)] = std::clamp(position, 0.0, 1.0);
}

double FilterInstance::position(int index) const {
    const bool exists = index >= 0 && static_cast<std::size_t>(index) < mPositions.size();
    return exists ? mPositions[static_cast<std::size_t>(index)].load() : 0.0;
}

void FilterInstance::update(double seconds, const std::uint32_t* input, std::uint32_t* output) noexcept {
    try {
        render(seconds, input, output);
        return;
    } catch (const std::exception& error) {
        reportOnce(error.what());
    } catch (...) {
        reportOnce("a frame failed");
    }
    std::memmove(output, input, sizeof *output * static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight));
}

void FilterInstance::render(double seconds, const std::uint32_t* input, std::uint32_t* output) {
    BorrowedWorlds worlds(*this);
    copyToWorld(input, worlds->input);
    const FrameResult result = mFrameThread->render({.input = &worlds->input,
                                                     .output = &worlds->output,
                                                     .values = values(),
                                                     .time = frameTime(seconds),
                                                     .verifyInput = false});
    if (result.error)
        throw std::runtime_error(result.describe());
    copyToFrame(worlds->output, output);
    if (!result.clean())
        reportOnce(result.describe().c_str());
}

ParameterValues FilterInstance::values() const {
    ParameterValues values;
    for (std::size_t i = 0; i < mPositions.size(); ++i)
        values.emplace(mDescription.parameters[i].index, mDescription.parameters[i].valueAt(mPositions[i]));
    return values;
}

void FilterInstance::reportOnce(const char* text) noexcept {
    if (!mReported.test_and_set())
        SharedEffect::report(text);
}

} // namespace Ombrique::Hosts
