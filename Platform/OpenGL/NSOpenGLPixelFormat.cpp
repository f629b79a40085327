#include "Platform/OpenGL/NSOpenGLPixelFormat.h"

#include "Platform/OpenGL/RenderDisplay.h"

#include <limits>
#include <optional>

using namespace PlatformEGL;

namespace {

/// What a list of attributes asks for; nothing where no display can serve it.
std::optional<ConfigRequest> parse(const NSOpenGLPixelFormatAttribute* attribute) {
    ConfigRequest request;
    bool core = false;
    while (*attribute != 0) {
        EGLint* bits = nullptr;
        switch (*attribute++) {
        case NSOpenGLPFANoRecovery:
            continue;
        case NSOpenGLPFAClosestPolicy:
            request.closestColor = true;
            continue;
        case NSOpenGLPFAOpenGLProfile:
            core = *attribute++ == NSOpenGLProfileVersion3_2Core;
            if (!core)
                return std::nullopt;
            continue;
        case NSOpenGLPFAColorSize:
            bits = &request.colorBits;
            break;
        case NSOpenGLPFAAlphaSize:
            bits = &request.alphaBits;
            break;
        case NSOpenGLPFADepthSize:
            bits = &request.depthBits;
            break;
        case NSOpenGLPFAStencilSize:
            bits = &request.stencilBits;
            break;
        default:
            return std::nullopt;
        }
        if (*attribute > static_cast<NSOpenGLPixelFormatAttribute>(std::numeric_limits<EGLint>::max()))
            return std::nullopt;
        *bits = static_cast<EGLint>(*attribute++);
    }
    return core ? std::optional(request) : std::nullopt;
}

} // namespace

NSOpenGLPixelFormat* NSOpenGLPixelFormat::initWithAttributes(const NSOpenGLPixelFormatAttribute* attributes) {
    const std::optional<ConfigRequest> request = attributes ? parse(attributes) : std::nullopt;
    const EGLDisplay display = request ? renderDisplay() : EGL_NO_DISPLAY;
    const EGLConfig config = display != EGL_NO_DISPLAY ? chooseConfig(display, *request) : nullptr;
    return config ? new NSOpenGLPixelFormat(config) : nullptr;
}
