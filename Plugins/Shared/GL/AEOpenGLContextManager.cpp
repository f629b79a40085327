#include "Plugins/Shared/GL/AEOpenGLContextManager.h"

#include "Plugins/Shared/GL/AEOpenGLContext.h"

namespace Ombrique::GaussianBlur {

namespace {

/// The calling thread's id, -1 as long as it has none.
thread_local std::int32_t mThread = -1;

} // namespace

std::atomic<std::int32_t> AEOpenGLContextManager::mContextCount = 0;
std::map<int, AEOpenGLContext*> AEOpenGLContextManager::mRenderContexts;
std::recursive_mutex AEOpenGLContextManager::mMutex;
AEOpenGLContext* AEOpenGLContextManager::mSharedDataContext = nullptr;

void AEOpenGLContextManager::setupContextManager() { mSharedDataContext = new AEOpenGLContext(nullptr); }

AEOpenGLContext* AEOpenGLContextManager::getSharedDataContext() { return mSharedDataContext; }

AEOpenGLContext* AEOpenGLContextManager::getCurrentRenderContext() {
    const std::lock_guard lock(mMutex);
    if (mThread == -1)
        mThread = mContextCount.fetch_add(1);
    // The entry is also missing after a release, and where an exception cut the making of the context short.
    AEOpenGLContext*& context = mRenderContexts[mThread];
    if (!context)
        context = new AEOpenGLContext(mSharedDataContext);
    return context;
}

void AEOpenGLContextManager::releaseContextManager() {
    for (const auto& [thread, context] : mRenderContexts)
        delete context;
    mRenderContexts.clear();
    delete mSharedDataContext;
    mSharedDataContext = nullptr;
}

} // namespace Ombrique::GaussianBlur
