#include "Platform/OpenGL/DriverLimits.h"

#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/NSAutoreleasePool.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Platform/OpenGL/NSOpenGLPixelFormat.h"
#include "Platform/OpenGL/RenderDisplay.h"

#include <EGL/egl.h>

#include <algorithm>
#include <array>

namespace {

constexpr unsigned kRenderer = 0x1F01;
constexpr unsigned kVersion = 0x1F02;
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

/// What `ask` learns in a context of its own; nothing where there can be none.
template <typename Ask> auto askInContext(const Ask& ask) -> decltype(ask()) {
    static constexpr NSOpenGLPixelFormatAttribute kAttributes[] = {NSOpenGLPFAOpenGLProfile,
                                                                   NSOpenGLProfileVersion3_2Core, 0};
    const NSAutoreleasePool pool;
    NSOpenGLPixelFormat* format = NSOpenGLPixelFormat::initWithAttributes(kAttributes);
    if (!format)
        return {};
    NSAutoreleasePool::addObject(format);
    NSOpenGLContext* context = NSOpenGLContext::initWithFormat(format, nullptr);
    if (!context)
        return {};
    NSAutoreleasePool::addObject(context);
    const CGLContextObj before = CGLGetCurrentContext();
    auto answer = context->makeCurrentContext() ? ask() : decltype(ask()){};
    CGLSetCurrentContext(before);
    return answer;
}

} // namespace

int longestRenderableSide() { return askInContext(askLongestSide); }

std::string driverName() {
    return askInContext([] {
        using GetString = const char* (*)(unsigned name);
        const auto getString = reinterpret_cast<GetString>(eglGetProcAddress("glGetString"));
        const char* const renderer = getString ? getString(kRenderer) : nullptr;
        const char* const version = getString ? getString(kVersion) : nullptr;
        return renderer && version ? std::string(renderer) + ", OpenGL " + version : std::string();
    });
}

std::vector<std::string> driverDevices() { return PlatformEGL::renderDevices(); }
