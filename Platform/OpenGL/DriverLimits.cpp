#include "Platform/OpenGL/DriverLimits.h"

#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/NSAutoreleasePool.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Platform/OpenGL/NSOpenGLPixelFormat.h"

#include <EGL/egl.h>

#include <algorithm>
#include <array>

namespace {

constexpr unsigned kMaxTextureSize = 0x0D33;
constexpr unsigned kMaxViewportDims = 0x0D3A;
constexpr unsigned kMaxRenderbufferSize = 0x84E8;

/// Of the current context. OpenGL's own headers aren't needed for one function that EGL can look up.
int askLongestSide() {
    using GetIntegers = void (*)(unsigned name, int* values);
    const auto getIntegers = reinterpret_cast<GetIntegers>(eglGetProcAddress("glGetIntegerv"));
    if (!getIntegers)
        return 0;
    int texture = 0;
    int renderbuffer = 0;
    std::array<int, 2> viewport{};
    getIntegers(kMaxTextureSize, &texture);
    getIntegers(kMaxRenderbufferSize, &renderbuffer);
    getIntegers(kMaxViewportDims, viewport.data());
    return std::min({texture, renderbuffer, viewport[0], viewport[1]});
}

} // namespace

int longestRenderableSide() {
    static constexpr NSOpenGLPixelFormatAttribute kAttributes[] = {NSOpenGLPFAOpenGLProfile,
                                                                   NSOpenGLProfileVersion3_2Core, 0};
    const NSAutoreleasePool pool;
    NSOpenGLPixelFormat* format = NSOpenGLPixelFormat::initWithAttributes(kAttributes);
    if (!format)
        return 0;
    NSAutoreleasePool::addObject(format);
    NSOpenGLContext* context = NSOpenGLContext::initWithFormat(format, nullptr);
    if (!context)
        return 0;
    NSAutoreleasePool::addObject(context);
    const CGLContextObj before = CGLGetCurrentContext();
    const int side = context->makeCurrentContext() ? askLongestSide() : 0;
    CGLSetCurrentContext(before);
    return side;
}
