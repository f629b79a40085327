#include "Plugins/Shared/GL/AEOpenGLContext.h"

#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/NSAutoreleasePool.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Platform/OpenGL/NSOpenGLPixelFormat.h"
#include "Plugins/Shared/GL/PerContext.h"
#include "Plugins/Shared/Helper/ScopeExit.h"

#include <glbinding/Binding.h>
#include <glbinding/ContextInfo.h>
#include <glbinding/Meta.h>
#include <glbinding/Version.h>
#include <glbinding/gl/gl.h>

#include <algorithm>
#include <array>
#include <iostream>

using namespace gl;

namespace Ombrique::GaussianBlur {

namespace {

/// The pixel format of every context. The frame buffer that it describes is never drawn to, so it has no alpha, depth
/// or stencil.
constexpr NSOpenGLPixelFormatAttribute kPixelFormat[] = {
    NSOpenGLPFAClosestPolicy,
    NSOpenGLPFANoRecovery,
    NSOpenGLPFAAlphaSize,
    0,
    NSOpenGLPFAColorSize,
    24,
    NSOpenGLPFAStencilSize,
    0,
    NSOpenGLPFADepthSize,
    0,
    NSOpenGLPFAOpenGLProfile,
    NSOpenGLProfileVersion3_2Core,
    0,
};

/// Of the current context.
int readLongestSide() {
    int texture = 0;
    int renderbuffer = 0;
    std::array<int, 2> viewport{};
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &texture);
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &renderbuffer);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport.data());
    return std::min({texture, renderbuffer, viewport[0], viewport[1]});
}

} // namespace

// The delegation makes the object whole first, so that the destructor gives back the platform's context where something
// later throws.
AEOpenGLContext::AEOpenGLContext(const AEOpenGLContext* shareContext) : AEOpenGLContext() {
    mNSContext = createNSContext(shareContext ? shareContext->mNSContext : nullptr, mCGLContext);
    if (mNSContext)
        mNSContext->makeCurrentContext();
    // The platform may have refused while the host has nothing current: then there is nothing to bind to or to ask.
    if (CGLGetCurrentContext() == nullptr)
        return;
    InitializeOpenGLBindings();
    mExtensions = glbinding::ContextInfo::extensions(nullptr);
    mLongestSide = readLongestSide();
}

AEOpenGLContext::~AEOpenGLContext() {
    if (!mNSContext)
        return;
    PerContextTable::dropContext(mCGLContext);
    mNSContext->release();
}

void AEOpenGLContext::makeContextCurrent() {
    const NSAutoreleasePool pool;
    if (mNSContext)
        mNSContext->makeCurrentContext();
    makeCurrentFlush(mCGLContext);
    glbinding::Binding::useCurrentContext();
}

NSOpenGLContext* AEOpenGLContext::createNSContext(NSOpenGLContext* shareContext, CGLContextObj& outContext) {
    const NSAutoreleasePool pool;
    NSOpenGLPixelFormat* const format = NSOpenGLPixelFormat::initWithAttributes(kPixelFormat);
    const ScopeExit releaseFormat([format] {
        if (format)
            format->release();
    });
    NSOpenGLContext* const context = NSOpenGLContext::initWithFormat(format, shareContext);
    outContext = context ? context->CGLContextObj() : nullptr;
    return context;
}

void AEOpenGLContext::makeCurrentFlush(CGLContextObj context) {
    const CGLContextObj current = CGLGetCurrentContext();
    if (current == context)
        return;
    if (current != nullptr) {
        GLint frameBuffer = 0;
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &frameBuffer);
        if (frameBuffer == 0 || glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE)
            glFlush();
    }
    CGLSetCurrentContext(context);
}

void AEOpenGLContext::InitializeOpenGLBindings() {
    glbinding::Binding::initialize(false);
    // The binding may take all contexts of a process for one. On a thread other than the first it then finds the
    // context known, and leaves the thread without the state that the next call needs.
    glbinding::Binding::useCurrentContext();
    // Number by number, since the binding prints a version that is newer than itself as "-.-".
    const glbinding::Version version = glbinding::ContextInfo::version();
    std::cout << std::endl
              << "OpenGL Version:  " << +version.majorVersion() << '.' << +version.minorVersion() << std::endl
              << "OpenGL Vendor:   " << glbinding::ContextInfo::vendor() << std::endl
              << "OpenGL Renderer: " << glbinding::ContextInfo::renderer() << std::endl
              << "OpenGL Revision: " << glbinding::Meta::glRevision() << " (gl.xml)" << std::endl
              << std::endl;
}

} // namespace Ombrique::GaussianBlur
