#include "Hosts/Engine/RenderQueue.h"

namespace Ombrique::Hosts {

FrameResult RenderQueue::render(const FrameRequest& request) {
    Job job([&request](CheckedRenderer& renderer) { return renderer.render(request); });
    std::future<FrameResult> result = job.get_future();
    {
        const std::lock_guard lock(mMutex);
        mJobs.push_back(std::move(job));
    }
    mArrived.notify_one();
    return result.get();
}

void RenderQueue::serve(const std::stop_token& stop, Effect& effect) {
    CheckedRenderer renderer(effect);
    std::unique_lock lock(mMutex);
    while (mArrived.wait(lock, stop, [this] { return !mJobs.empty(); })) {
        Job job = std::move(mJobs.front());
        mJobs.pop_front();
        lock.unlock();
        job(renderer);
        lock.lock();
    }
}

} // namespace Ombrique::Hosts
