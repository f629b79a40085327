#include "Hosts/Engine/CheckedRenderer.h"

#include <mutex>

namespace Ombrique::Hosts {

namespace {

bool keepsAlpha(const World& input, const World& output) {
    for (int y = 0; y < input.height(); ++y) {
        const auto* before = reinterpret_cast<const PF_Pixel8*>(input.row(y));
        const auto* after = reinterpret_cast<const PF_Pixel8*>(output.row(y));
        unsigned differing = 0;
        for (int x = 0; x < input.width(); ++x) // without a branch, so that the compiler takes many pixels at a time
            differing += static_cast<unsigned>(before[x].alpha - after[x].alpha + 1) > 2;
        if (differing > 0)
            return false;
    }
    return true;
}

bool isPicture(const FrameRequest& request) {
    const World* const input = request.input;
    const World* const output = request.output;
    const bool canBeJudged = input && output && input != output && input->depth() == PixelDepth::Bits8 &&
                             output->depth() == PixelDepth::Bits8 && input->width() == output->width() &&
                             input->height() == output->height();
    return !canBeJudged || keepsAlpha(*input, *output);
}

} // namespace

FrameResult CheckedRenderer::render(const FrameRequest& request) {
    FrameResult result;
    unsigned round = 0;
    if (tryRender(request, result, round))
        return result;
    setUpAnew(round);
    if (tryRender(request, result, round))
        return result;
    throw NoPicture();
}

/// Whether `result` stands: a picture, or the plug-in's own error. `round` is that of the try.
bool CheckedRenderer::tryRender(const FrameRequest& request, FrameResult& result, unsigned& round) {
    const std::shared_lock lock(mMutex);
    round = mRound;
    if (!mEffect.isSetUp())
        return false;
    result = mEffect.render(request);
    return !result.clean() || isPicture(request);
}

void CheckedRenderer::setUpAnew(unsigned round) {
    const std::unique_lock lock(mMutex);
    if (mRound != round) // another thread's frame failed, too
        return;
    ++mRound;
    if (mEffect.isSetUp())
        mEffect.setDown();
    mEffect.setUp(); // where that fails, the next try finds it
}

} // namespace Ombrique::Hosts
