#include "Platform/OpenGL/CGLCurrent.h"

#include "Platform/OpenGL/EGLBinding.h"
#include "Platform/OpenGL/NSOpenGLContext.h"

using namespace PlatformEGL;

CGLContextObj CGLGetCurrentContext() { return currentBinding(); }

bool CGLSetCurrentContext(CGLContextObj context) {
    const bool done = setBinding(context);
    // Asking for it lets the thread's reference follow what is current.
    NSOpenGLContext::currentContext();
    return done;
}
