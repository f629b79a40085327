#include "Platform/OpenGL/CGLCurrent.h"

#include "Platform/OpenGL/EGLBinding.h"
#include "Platform/OpenGL/NSOpenGLContext.h"

using namespace PlatformEGL;

CGLContextObj CGLGetCurrentContext() {
    // A host's context may have other surfaces each time, one of our own has the same.
    if (const NSOpenGLContext* const own = NSOpenGLContext::currentContext())
        return own->CGLContextObj();
    return currentBinding();
}

bool CGLSetCurrentContext(CGLContextObj context) {
    const bool done = setBinding(context);
    // Asking for it lets the thread's reference follow what is current.
    NSOpenGLContext::currentContext();
    return done;
}
