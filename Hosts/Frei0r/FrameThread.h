#pragma once

#include "Hosts/Engine/RenderQueue.h"

#include <future>
#include <thread>

namespace Ombrique::Hosts {

/// The effect, set up on a thread of its own that renders all frames. The tool's threads never come near OpenGL: their
/// contexts, made by whatever means, stay as they are, and instances may move between them.
///
/// The thread takes none of the tool's signals, and what it prints goes to standard error.
class FrameThread {
public:
    /// Sets the effect up, and returns when that is done. `bundle` must outlive this.
    /// @throw std::runtime_error where there is no OpenGL, or the plug-in refuses.
    explicit FrameThread(const PluginBundle& bundle);
    /// Sets the effect down. No frame may be under way.
    ~FrameThread() = default;
    FrameThread(const FrameThread&) = delete;
    FrameThread& operator=(const FrameThread&) = delete;

    /// The longest side of a frame that the driver can hold, in pixels.
    int longestSide() const { return mLongestSide; }

    /// Renders a frame, and waits for it. Any thread, several at once.
    FrameResult render(const FrameRequest& request) { return mQueue.render(request); }

private:
    void run(const std::stop_token& stop, const PluginBundle& bundle, std::promise<void>& ready);

    int mLongestSide = 0;
    RenderQueue mQueue;
    std::jthread mThread;
};

} // namespace Ombrique::Hosts
