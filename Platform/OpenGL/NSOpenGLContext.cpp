#include "Platform/OpenGL/NSOpenGLContext.h"

#include "Platform/OpenGL/EGLBinding.h"
#include "Platform/OpenGL/NSOpenGLPixelFormat.h"
#include "Platform/OpenGL/RenderDisplay.h"

#include <mutex>

using namespace PlatformEGL;

namespace {

/// The living contexts, as a linked list. It has no destructor, since a thread that outlives the program's statics may
/// still let go of its context.
struct LivingContexts {
    std::mutex mutex;
    NSOpenGLContext* first = nullptr;
};
constinit LivingContexts living;

/// The calling thread's reference to the context that it has current.
struct ThreadReference {
    NSOpenGLContext* context = nullptr;

    /// Takes over a reference, or null, in the place of the one that it holds.
    void reset(NSOpenGLContext* next) {
        NSOpenGLContext* previous = context;
        context = next;
        if (previous)
            previous->release();
    }

    // A context that stayed current on an ended thread could be neither used by another nor destroyed. Where this code
    // is part of a plug-in, the C library keeps it loaded until the threads that used it have ended.
    ~ThreadReference() {
        if (context && currentBinding() == context->CGLContextObj())
            setBinding(nullptr);
        reset(nullptr);
    }
};
thread_local ThreadReference tReference;

} // namespace

NSOpenGLContext::NSOpenGLContext(const ::CGLContextObj& object) : mObject(object) {
    const std::lock_guard lock(living.mutex);
    mNext = living.first;
    living.first = this;
}

NSOpenGLContext::~NSOpenGLContext() {
    {
        const std::lock_guard lock(living.mutex);
        NSOpenGLContext** link = &living.first;
        while (*link != this)
            link = &(*link)->mNext;
        *link = mNext;
    }
    destroyContext(mObject);
}

NSOpenGLContext* NSOpenGLContext::initWithFormat(const NSOpenGLPixelFormat* format,
                                                 const NSOpenGLContext* shareContext) {
    if (!format)
        return nullptr;
    const EGLContext share = shareContext ? shareContext->mObject.context : EGL_NO_CONTEXT;
    const ::CGLContextObj object = createContext(renderDisplay(), format->mConfig, share);
    if (object == nullptr)
        return nullptr;
    try {
        return new NSOpenGLContext(object);
    } catch (...) {
        destroyContext(object);
        throw;
    }
}

NSOpenGLContext* NSOpenGLContext::retainedContext(const void* handle) {
    const std::lock_guard lock(living.mutex);
    for (NSOpenGLContext* context = living.first; context; context = context->mNext)
        if (context->mObject.context == handle)
            return context->retainIfAlive() ? context : nullptr;
    return nullptr;
}

NSOpenGLContext* NSOpenGLContext::currentContext() {
    // EGL is asked for the handle alone, since each question costs a system call. That is enough: a context that is
    // held is alive, so no other has its handle.
    const EGLContext current = eglGetCurrentContext();
    const EGLContext held = tReference.context ? tReference.context->mObject.context : EGL_NO_CONTEXT;
    if (current != held)
        tReference.reset(current != EGL_NO_CONTEXT ? retainedContext(current) : nullptr);
    return tReference.context;
}

bool NSOpenGLContext::makeCurrentContext() {
    if (currentContext() == this)
        return true;
    const bool done = setBinding(mObject);
    currentContext();
    return done;
}
