#pragma once

#include "Platform/HostInterface/Basics.h"

#include <mutex>

namespace Ombrique::GaussianBlur {

/// For one thread at a time: held over the part of a frame that uses what all frames share, the passes and the render
/// targets. Also held over global setup and setdown, so that neither meets a frame.
///
/// Construction waits for other threads. On a thread that holds one already it would wait for itself, since the host
/// sent a command from within a call that the effect made to it: there it throws the 32-bit PF_Err_BAD_CALLBACK_PARAM.
class FrameLock {
public:
    FrameLock() : mLock(mMutex, std::defer_lock) {
        if (mHeldByThisThread)
            throw PF_Err{PF_Err_BAD_CALLBACK_PARAM};
        mLock.lock();
        mHeldByThisThread = true;
    }
    FrameLock(const FrameLock&) = delete;
    FrameLock& operator=(const FrameLock&) = delete;
    ~FrameLock() { mHeldByThisThread = false; }

private:
    static inline std::mutex mMutex;
    static inline thread_local bool mHeldByThisThread = false;
    std::unique_lock<std::mutex> mLock;
};

} // namespace Ombrique::GaussianBlur
