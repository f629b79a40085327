#include "Hosts/Frei0r/FrameThread.h"

#include "Hosts/Frei0r/StandardOutput.h"
#include "Platform/OpenGL/DriverLimits.h"

#include <csignal>
#include <stdexcept>

namespace Ombrique::Hosts {

namespace {

/// While it lives, the calling thread takes no signals; a thread that it makes meanwhile never does.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &mBefore);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t mBefore{};
};

} // namespace

FrameThread::FrameThread(const PluginBundle& bundle) {
    std::promise<void> ready;
    {
        const SignalsBlocked signalsBlocked;
        mThread = std::jthread([&] { run(bundle, ready); });
    }
    ready.get_future().get();
}

void FrameThread::run(const PluginBundle& bundle, std::promise<void>& ready) {
    divertStandardOutputOfThisThread();
    Effect effect(bundle);
    try {
        mLongestSide = longestRenderableSide();
        if (mLongestSide == 0)
            throw std::runtime_error("OpenGL: no driver on this machine gives a context of version 3.3 or more");
        if (const CommandResult result = effect.setUp(); !result.clean())
            throw std::runtime_error("the plug-in can't be set up: " + result.describe());
    } catch (...) {
        ready.set_exception(std::current_exception());
        return;
    }
    ready.set_value();
    serve(effect);
}

void FrameThread::serve(Effect& effect) {
    std::unique_lock lock(mMutex);
    do {
        const std::stop_token stop = mUse.get_token();
        lock.unlock();
        mQueue.serve(stop, effect);
        lock.lock();
    } while (mReclaimed.wait_for(lock, kKept, [this] { return !mUse.stop_requested(); }));
    mEnded = true;
}

bool FrameThread::reclaim() {
    const std::lock_guard lock(mMutex);
    if (!mEnded && mUse.stop_requested())
        mUse = std::stop_source();
    mReclaimed.notify_one();
    return !mEnded;
}

} // namespace Ombrique::Hosts
