#include "Hosts/Shots/RenderShot.h"

#include "Hosts/Pictures/Failure.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <new>
#include <thread>

namespace Ombrique::Hosts {

namespace {

class ShotRun {
public:
    ShotRun(const Shot& shot, const FrameSettings& settings, std::uint64_t memory, ShotObserver& observer)
        : mShot(shot), mSettings(settings), mObserver(observer), mMemory(memory) {}

    /// Returns when all frames are over.
    void run(Effect& effect, int jobs) {
        mRunning = jobs;
        std::vector<std::jthread> workers;
        workers.reserve(static_cast<std::size_t>(jobs));
        try {
            for (int job = 0; job < jobs; ++job)
                workers.emplace_back([this] { work(); });
        } catch (const std::exception&) { // no more threads, or no memory for one
            if (workers.empty())
                throw;
            leave(jobs - static_cast<int>(workers.size())); // fewer will do
        }
        mQueue.serve(mOver.get_token(), effect);
    }

    bool pluginRefused() const { return mPluginRefused; }

private:
    void work() {
        FrameWorlds worlds(mMemory);
        for (std::size_t i; !mObserver.stopRequested() && (i = mNext++) < mShot.frames.size();)
            render(mShot.frames[i], worlds);
        leave(1);
    }

    void leave(int workers) {
        if ((mRunning -= workers) == 0)
            mOver.request_stop();
    }

    void render(const ShotFrame& frame, FrameWorlds& worlds) {
        try {
            const auto start = std::chrono::steady_clock::now();
            const auto losses = renderFrame(mQueue, frame, mSettings, worlds);
            mObserver.frameDone(frame, losses,
                                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        } catch (const PluginFailure& failure) {
            mPluginRefused = true;
            mObserver.frameFailed(frame, {failure.what()});
        } catch (const std::bad_alloc&) {
            mObserver.frameFailed(frame, {frame.input.native(), ": there is not enough memory"});
        } catch (const std::exception& error) {
            mObserver.frameFailed(frame, {error.what()});
        }
    }

    const Shot& mShot;
    const FrameSettings& mSettings;
    ShotObserver& mObserver;
    FrameMemory mMemory;
    RenderQueue mQueue;
    std::atomic<std::size_t> mNext = 0;
    std::atomic<int> mRunning = 0;
    std::stop_source mOver;
    std::atomic<bool> mPluginRefused = false;
};

int workersFor(const Shot& shot, int jobs) {
    const int wanted = jobs > 0 ? jobs : static_cast<int>(std::thread::hardware_concurrency()) + 1;
    return std::min(wanted, static_cast<int>(shot.frames.size()));
}

} // namespace

bool renderShot(Effect& effect, const Shot& shot, const FrameSettings& settings, int jobs, ShotObserver& observer) {
    if (shot.frames.empty())
        return false;
    ShotRun run(shot, settings, jobs > 0 ? UINT64_MAX : memoryOfMachine() / 4, observer);
    run.run(effect, workersFor(shot, jobs));
    return run.pluginRefused();
}

} // namespace Ombrique::Hosts
