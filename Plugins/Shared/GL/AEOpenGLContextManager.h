#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>

namespace Ombrique::GaussianBlur {

class AEOpenGLContext;

/// Owner of all contexts of the plug-in: the shared data context, which is the root of the share group, and a render
/// context for each thread that renders. A context outlives the thread that asked for it: all of them last until
/// releaseContextManager.
///
/// So each thread that ever renders costs a context. With Mesa's software driver that is 5 MB, kept until the release,
/// and 80 ms of CPU time at the thread's first frame, since the driver compiles programs of its own for each context; a
/// frame of 16 by 16 pixels takes 0.5 ms from then on. Render on a few threads that stay, not on many that come and go.
/// A thread whose context the platform refused keeps an invalid one until the release.
///
/// Set-up and release rely on the host's order: no frame is under way while they run.
class AEOpenGLContextManager {
public:
    AEOpenGLContextManager() = delete;

    /// Makes the shared data context, which is current on the calling thread afterwards.
    static void setupContextManager();

    /// The shared data context; null before set-up and after release.
    static AEOpenGLContext* getSharedDataContext();

    /// The calling thread's render context, never null. Made at the thread's first call, and current then; later calls
    /// only look it up, at the price of a lock, and make nothing current. A thread that rendered before a release gets
    /// a new context afterwards, under the id that it has. Any thread may call at any time between set-up and release.
    static AEOpenGLContext* getCurrentRenderContext();

    /// Destroys the render contexts, in the order in which their threads first came, then the shared data context.
    /// setupContextManager may follow again.
    static void releaseContextManager();

private:
    /// Source of thread ids. An id isn't the operating system's, is never handed to a second thread, and stays with its
    /// thread beyond a release.
    static std::atomic<std::int32_t> mContextCount;
    static std::map<int, AEOpenGLContext*> mRenderContexts;
    static std::recursive_mutex mMutex;
    static AEOpenGLContext* mSharedDataContext;
};

} // namespace Ombrique::GaussianBlur
