#pragma once

#include "Hosts/Engine/RenderQueue.h"

#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <stop_token>
#include <thread>

namespace Ombrique::Hosts {

/// The effect, set up on a thread of its own that renders all frames. The tool's threads never come near OpenGL: their
/// contexts, made by whatever means, stay as they are, and instances may move between them.
///
/// A thread that is released keeps the effect set up for kKept, as tools that change a parameter by building their
/// filter anew come back at once. Then it sets the effect down and ends.
///
/// The thread takes none of the tool's signals, and what it prints goes to standard error.
class FrameThread {
public:
    static constexpr std::chrono::seconds kKept{2};

    /// Sets the effect up, and returns when that is done. `bundle` must outlive this.
    /// @throw std::runtime_error where there is no OpenGL, or the plug-in refuses.
    explicit FrameThread(const PluginBundle& bundle);
    /// Waits until the thread has ended, so it must have been released.
    ~FrameThread() = default;
    FrameThread(const FrameThread&) = delete;
    FrameThread& operator=(const FrameThread&) = delete;

    /// The longest side of a frame that the driver can hold, in pixels.
    int longestSide() const { return mLongestSide; }

    /// Renders a frame, and waits for it. Any thread, several at once; not after release().
    FrameResult render(const FrameRequest& request) { return mQueue.render(request); }

    /// No frame may be under way.
    void release() { mUse.request_stop(); }
    /// Takes a released thread back; the result is whether it was still there.
    bool reclaim();

private:
    void run(const PluginBundle& bundle, std::promise<void>& ready);
    void serve(Effect& effect);

    int mLongestSide = 0;
    RenderQueue mQueue;
    std::mutex mMutex;
    std::condition_variable mReclaimed;
    /// Stopped by release(), and a new one after reclaim().
    std::stop_source mUse;
    bool mEnded = false;
    std::jthread mThread;
};

} // namespace Ombrique::Hosts
