#include "Tests/Support/HostContext.h"

#include "Tests/Support/OpenGLObjects.h"
#include "Tests/Support/SoftwareDevice.h"

#include <stdexcept>

namespace Ombrique::Tests {

HostContext::HostContext(EGLenum api)
    : mAPI(api), mDisplay(eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, softwareDevice(), nullptr)) {
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
    changeState();
    mState = state();
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
           eglGetCurrentSurface(EGL_DRAW) == mDraw && eglGetCurrentSurface(EGL_READ) == mRead &&
           eglQueryAPI() == mAPI && state() == mState && openGLFunction<unsigned()>("glGetError")() == 0;
}

HostContext::State HostContext::state() const {
    State state;
    for (const unsigned name : {0x0BA2u, 0x0C11u, 0x8CA6u, 0x8894u, 0x8069u, 0x0CF5u, 0x0D05u})
        openGLFunction<void(unsigned, int*)>("glGetIntegerv")(name, state[name].data());
    return state;
}

void HostContext::changeState() const {
    const auto call = [](const char* name, unsigned target, unsigned value) {
        openGLFunction<void(unsigned, unsigned)>(name)(target, value);
    };
    openGLFunction<void(int, int, int, int)>("glViewport")(1, 2, 3, 4);
    openGLFunction<void(unsigned)>("glEnable")(0x0C11); // the scissor test
    call("glBindFramebuffer", 0x8D40, 3);
    call("glBindBuffer", 0x8892, 5);
    call("glBindTexture", 0x0DE1, 6);
    call("glPixelStorei", 0x0CF5, 1);
    call("glPixelStorei", 0x0D05, 8);
}

} // namespace Ombrique::Tests
