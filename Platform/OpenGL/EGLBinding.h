#pragma once

#include "Platform/OpenGL/CGLContextObj.h"

#include <EGL/egl.h>

namespace PlatformEGL {

/// What EGL has bound on the calling thread.

/// The current context with its display and surfaces, nullptr for none.
CGLContextObj currentBinding();

/// Makes `object` current exactly as it was recorded; nullptr lets go of what is current, through the display of that,
/// because some drivers refuse EGL_NO_DISPLAY. Returns whether it did.
bool setBinding(const CGLContextObj& object);

/// Binds desktop OpenGL as the client API for a scope, which is what makes a context or a configuration one of OpenGL,
/// and puts the host's API back at the end.
class BoundOpenGLAPI {
public:
    BoundOpenGLAPI();
    BoundOpenGLAPI(const BoundOpenGLAPI&) = delete;
    BoundOpenGLAPI& operator=(const BoundOpenGLAPI&) = delete;
    ~BoundOpenGLAPI();

    /// Whether this EGL knows desktop OpenGL.
    bool isBound() const { return mBound; }

private:
    EGLenum mHostAPI;
    bool mBound;
};

} // namespace PlatformEGL
