#pragma once

#include "Hosts/Engine/CheckedRenderer.h"

#include <condition_variable>
#include <deque>
#include <future>
#include <mutex>
#include <stop_token>

namespace Ombrique::Hosts {

/// Brings frames of many threads to the one that renders. The plug-in renders one frame at a time anyway, so a second
/// rendering thread would gain nothing, and cost an OpenGL context.
class RenderQueue {
public:
    /// Renders a frame on the serving thread, and waits for it. Any thread, several at once; somebody must serve.
    /// @throw what CheckedRenderer::render() throws.
    FrameResult render(const FrameRequest& request);

    /// Renders what is asked for with `effect`, which is set up, on the calling thread, until a stop is requested.
    void serve(const std::stop_token& stop, Effect& effect);

private:
    using Job = std::packaged_task<FrameResult(CheckedRenderer&)>;

    std::mutex mMutex;
    std::condition_variable_any mArrived;
    std::deque<Job> mJobs;
};

} // namespace Ombrique::Hosts
