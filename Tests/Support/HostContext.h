#pragma once

#include <EGL/egl.h>

namespace Ombrique::Tests {

/// "OpenGL" or "OpenGLES", for the names of tests.
inline const char* apiName(EGLenum api) { return api == EGL_OPENGL_API ? "OpenGL" : "OpenGLES"; }

/// A context as a host makes it that works on EGL itself: on a display that isn't the platform layer's, with two
/// pbuffers of its own, one to draw to and another to read from. It is current on the thread that made it until the
/// end.
class HostContext {
public:
    /// `api` is EGL_OPENGL_API or EGL_OPENGL_ES_API, and stays bound.
    explicit HostContext(EGLenum api);
    HostContext(const HostContext&) = delete;
    HostContext& operator=(const HostContext&) = delete;
    ~HostContext();

    /// Makes it current again by EGL alone.
    void makeCurrent() const;

    /// Whether everything that the host set on this thread is as it left it: the context, its display, both surfaces
    /// and the client API.
    bool isUntouched() const;

private:
    EGLenum mAPI;
    EGLDisplay mDisplay;
    EGLContext mContext = EGL_NO_CONTEXT;
    EGLSurface mDraw = EGL_NO_SURFACE;
    EGLSurface mRead = EGL_NO_SURFACE;
};

} // namespace Ombrique::Tests
