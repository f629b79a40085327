#pragma once

#include <EGL/egl.h>

#include <map>
#include <string>

namespace Ombrique::Tests {

/// A function of OpenGL, by its name, for tests that stand outside the plug-in.
template <typename Function> Function* openGLFunction(const char* name) {
    return reinterpret_cast<Function*>(eglGetProcAddress(name));
}

/// How many objects of each kind, with names up to `mostNames`, the calling thread's current context knows: a driver
/// may count on and on, however many are deleted. Where a host has no context, that is the effect's own after a frame,
/// so that a leak of the effect's shows from outside.
inline std::map<std::string, int> countOpenGLObjects(unsigned mostNames = 200'000) {
    std::map<std::string, int> counts;
    for (const char* kind : {"Texture", "Renderbuffer", "Framebuffer", "Buffer", "VertexArray", "Program", "Shader"}) {
        auto* const exists = openGLFunction<unsigned char(unsigned)>((std::string("glIs") + kind).c_str());
        for (unsigned name = 1; name <= mostNames; ++name)
            counts[kind] += exists(name);
    }
    return counts;
}

/// Leaves the calling thread without a context, as that of a host which has none.
inline void letGoOfContext() {
    if (eglGetCurrentContext() != EGL_NO_CONTEXT)
        eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

} // namespace Ombrique::Tests
