#pragma once

#include "Hosts/Frei0r/EffectDescription.h"
#include "Hosts/Frei0r/FrameThread.h"

#include <memory>
#include <mutex>
#include <optional>

namespace Ombrique::Hosts {

/// What all instances in a process share: the plug-in's bundle, loaded once and never unloaded, and the thread that
/// renders. The thread starts with the first instance. It is released when the last instance is gone and the tool has
/// called f0r_deinit as often as f0r_init, and ends FrameThread::kKept later, unless an instance was made meanwhile or
/// the process exits. Any thread may call, several at once.
class SharedEffect {
public:
    /// Never destroyed: tools exit without notice, with frames under way.
    static SharedEffect& instance();

    /// f0r_init: loads the bundle.
    /// @throw BundleError
    void open();
    /// f0r_deinit. One too many does nothing.
    void close();

    /// Loads the bundle where no open() did.
    /// @throw BundleError
    const EffectDescription& description();

    /// Writes one line to standard error.
    static void report(const char* text) noexcept;

private:
    friend class FrameThreadUse;

    SharedEffect() = default;
    FrameThread& enter();
    void leave();
    const EffectDescription& load();
    /// Whether the thread is there to be used; one that has ended is cleared away.
    bool reclaimThread();
    void releaseThreadWhereUnused();
    /// Keeps a set-down from meeting the end of the process, which takes the driver apart.
    void stayUntilExit();

    std::mutex mMutex;
    std::optional<PluginBundle> mBundle;
    std::optional<EffectDescription> mDescription;
    std::unique_ptr<FrameThread> mFrameThread;
    int mOpened = 0;
    int mInstances = 0;
};

/// An instance's claim on the thread that renders, which lives as long as this.
class FrameThreadUse {
public:
    /// @throw BundleError, std::runtime_error where the thread can't be had
    FrameThreadUse() : mThread(SharedEffect::instance().enter()) {}
    ~FrameThreadUse() { SharedEffect::instance().leave(); }
    FrameThreadUse(const FrameThreadUse&) = delete;
    FrameThreadUse& operator=(const FrameThreadUse&) = delete;

    FrameThread* operator->() const { return &mThread; }

private:
    FrameThread& mThread;
};

} // namespace Ombrique::Hosts
