#pragma once

#include "Platform/OpenGL/CGLContextObj.h"
#include "Platform/OpenGL/NSObject.h"

class NSOpenGLPixelFormat;

/// An OpenGL context without a drawable. Any thread may make, retain and release contexts; a context is current on one
/// thread at a time.
///
/// A thread that has a context current holds a reference to it, so that a context whose owner releases it lives on
/// until that thread makes another current, lets go, or ends. A context that a host made on EGL itself is never a
/// "current context" here; CGLGetCurrentContext sees it. Where a host has replaced the current context, the thread
/// gives up its reference when it next asks for or sets what is current, or ends.
///
/// Which client API a host has bound on EGL (eglBindAPI) is the same after every call as before it.
class NSOpenGLContext : public NSObject {
public:
    /// A new context with one reference, the caller's, that shares textures, renderbuffers, buffers and programs with
    /// `shareContext` and its group; null shares with nothing. It isn't made current. Null where the format is null or
    /// the driver refuses.
    static NSOpenGLContext* initWithFormat(const NSOpenGLPixelFormat* format, const NSOpenGLContext* shareContext);

    /// The context that is current on the calling thread; null where none is, or one that was made elsewhere. The
    /// reference stays the thread's: retain the context to use it beyond the time that it is current.
    static NSOpenGLContext* currentContext();

    /// Makes the context current on the calling thread. Returns whether it is; where it is current on another thread,
    /// it isn't, and the thread keeps what it had.
    bool makeCurrentContext();

    /// The context as the lower level knows it; the same value while the context lives, nullptr never.
    ::CGLContextObj CGLContextObj() const { return mObject; }

private:
    explicit NSOpenGLContext(const ::CGLContextObj& object);
    ~NSOpenGLContext() override;

    /// The living context with EGL's handle, with a reference for the caller; null for a foreign one.
    static NSOpenGLContext* retainedContext(const void* handle);

    ::CGLContextObj mObject;
    NSOpenGLContext* mNext = nullptr;
};
