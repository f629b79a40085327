#include "Tests/Support/HostContext.h"

#include "Tests/Support/SoftwareDevice.h"

#include <stdexcept>

namespace Ombrique::Tests {

namespace {

EGLDisplay deviceDisplay() {
    const EGLDeviceEXT device = softwareDevice();
    if (!device)
        throw std::runtime_error("EGL offers no software device for the host's display");
    return eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
}

} // namespace

HostContext::HostContext(EGLenum api) : mAPI(api), mDisplay(deviceDisplay()) {
    const EGLint attributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                 api == EGL_OPENGL_API ? EGL_OPENGL_BIT : EGL_OPENGL_ES2_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglInitialize(mDisplay, nullptr, nullptr) || !eglBindAPI(api) ||
        !eglChooseConfig(mDisplay, attributes, &config, 1, &count) || count < 1)
        throw std::runtime_error("the host's display can't be used");
    const EGLint version[] = {EGL_CONTEXT_MAJOR_VERSION, 2, EGL_NONE};
    const EGLint size[] = {EGL_WIDTH, 5, EGL_HEIGHT, 3, EGL_NONE};
    mContext = eglCreateContext(mDisplay, config, EGL_NO_CONTEXT, version);
    mDraw = eglCreatePbufferSurface(mDisplay, config, size);
    mRead = eglCreatePbufferSurface(mDisplay, config, size);
    makeCurrent();
}

HostContext::~HostContext() {
    if (eglGetCurrentContext() == mContext)
        eglMakeCurrent(mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroySurface(mDisplay, mDraw);
    eglDestroySurface(mDisplay, mRead);
    eglDestroyContext(mDisplay, mContext);
}

void HostContext::makeCurrent() const {
    if (!eglMakeCurrent(mDisplay, mDraw, mRead, mContext))
        throw std::runtime_error("the host's context can't be made current");
}

bool HostContext::isUntouched() const {
    return eglGetCurrentContext() == mContext && eglGetCurrentDisplay() == mDisplay &&
           eglGetCurrentSurface(EGL_DRAW) == mDraw && eglGetCurrentSurface(EGL_READ) == mRead && eglQueryAPI() == mAPI;
}

} // namespace Ombrique::Tests
