#include "Platform/OpenGL/CGLCurrent.h"

#include "Platform/OpenGL/EGLBinding.h"
#include "Platform/OpenGL/NSOpenGLContext.h"

using namespace PlatformEGL;

CGLContextObj CGLGetCurrentContext() {
    // A context of our own has one value, whatever EGL says of its surfaces.
    if (const NSOpenGLContext* const own = NSOpenGLContext::currentContext())
        return own->CGLContextObj();
    return currentBinding();
}

bool CGLSetCurrentContext(CGLContextObj context) {
    const bool done = setBinding(context);
    // Updates the thread's reference to what is current.
    NSOpenGLContext::currentContext();
    return done;
}
