#pragma once

#include <EGL/egl.h>

#include <array>
#include <map>

namespace Ombrique::Tests {

/// "OpenGL" or "OpenGLES", for the names of tests.
inline const char* apiName(EGLenum api) { return api == EGL_OPENGL_API ? "OpenGL" : "OpenGLES"; }

/// A context as a host makes it that works on EGL itself: on a display that isn't the platform layer's, with two
/// pbuffers of its own, one to draw to and another to read from. Its state is nowhere the default. It is current on the
/// thread that made it until the end.
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
    /// and the client API; in the context viewport, scissor test, frame buffer, array buffer, texture, alignment of
    /// pixels on either way, no error.
    bool isUntouched() const;

private:
    using State = std::map<unsigned, std::array<int, 4>>;
    State state() const;
    void changeState() const;

    EGLenum mAPI;
    EGLDisplay mDisplay;
    EGLContext mContext = EGL_NO_CONTEXT;
    EGLSurface mDraw = EGL_NO_SURFACE;
    EGLSurface mRead = EGL_NO_SURFACE;
    State mState;
};

} // namespace Ombrique::Tests
