#include "Platform/OpenGL/EGLBinding.h"

#include <EGL/egl.h>

namespace PlatformEGL {

CGLContextObj currentBinding() {
    CGLContextObj object;
    object.context = eglGetCurrentContext();
    if (object.context == EGL_NO_CONTEXT)
        return nullptr;
    object.display = eglGetCurrentDisplay();
    object.drawSurface = eglGetCurrentSurface(EGL_DRAW);
    object.readSurface = eglGetCurrentSurface(EGL_READ);
    return object;
}

bool setBinding(const CGLContextObj& object) {
    const EGLDisplay display = object == nullptr ? eglGetCurrentDisplay() : object.display;
    if (display == EGL_NO_DISPLAY)
        return true; // nothing to let go of
    return eglMakeCurrent(display, object.drawSurface, object.readSurface, object.context) == EGL_TRUE;
}

} // namespace PlatformEGL
