#include "Plugins/Shared/GL/AEOpenglMainFrameBuffer.h"

#include "Plugins/Shared/Helper/ScopeExit.h"
#include "Plugins/Shared/Math/Vec2.h"

#include <glbinding/gl/gl.h>

#include <algorithm>
#include <cstddef>
#include <memory>

using namespace gl;

namespace Ombrique::GaussianBlur {

namespace {

/// Drivers may offer fewer; asked for more than they offer, they give a renderbuffer without storage.
constexpr int kWantedSamples = 8;

int offeredSamples() {
    int most = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &most);
    return std::min(kWantedSamples, most);
}

void deleteFrameBuffer(unsigned& name) {
    if (name != 0) {
        glDeleteFramebuffers(1, &name);
        name = 0;
    }
}

bool isMipmapFilter(GLenum filter) { return filter != GL_LINEAR && filter != GL_NEAREST; }

/// `minification` serves magnification too, unless it is a mipmap filter: then that keeps OpenGL's default.
unsigned createTexture(const Vec2& size, GLenum internalFormat, GLenum minification) {
    unsigned texture = 0;
    glGenTextures(1, &texture);
    ScopeExit deleteTexture([&] { glDeleteTextures(1, &texture); });
    glBindTexture(GL_TEXTURE_2D, texture);
    const ScopeExit unbind([] { glBindTexture(GL_TEXTURE_2D, 0); });
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, minification);
    if (!isMipmapFilter(minification))
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, minification);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    const auto zeros = std::make_unique<std::byte[]>(static_cast<std::size_t>(size.x * size.y * 4.0));
    glTexImage2D(GL_TEXTURE_2D, 0, internalFormat, static_cast<GLsizei>(size.x), static_cast<GLsizei>(size.y), 0,
                 GL_RGBA, GL_UNSIGNED_BYTE, zeros.get());
    deleteTexture.dismiss();
    return texture;
}

void clearTransparent() {
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
}

/// Binds a new frame buffer object with one level of `texture`, cleared.
void drawToTexture(unsigned texture, int level) {
    unsigned temporary = 0;
    glGenFramebuffers(1, &temporary);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, temporary);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, level);
    clearTransparent();
}

} // namespace

AEOpenglMainFrameBuffer* AEOpenglMainFrameBuffer::mainFrameBuffer() {
    static auto* const kSharedMainFrameBuffer = new AEOpenglMainFrameBuffer;
    return kSharedMainFrameBuffer;
}

AEOpenglMainFrameBuffer::AEOpenglMainFrameBuffer() : mScreenRender(new ScreenRender) {}

void AEOpenglMainFrameBuffer::prepare(long width, long height, bool multisample) {
    if (mScreenRender == nullptr)
        mScreenRender = new ScreenRender;
    const bool sameSize = width == long{mWidth} && height == long{mHeight};
    if (sameSize && width == 0 && height == 0)
        return; // of a new object, too
    if (sameSize && mMainRenderBuffer != 0)
        return createFrameBuffers();
    unprepare();
    mWidth = static_cast<std::uint32_t>(width);
    mHeight = static_cast<std::uint32_t>(height);
    mMultisample = multisample;
    ++mGeneration;
    createFrameBuffers();
    glGenRenderbuffers(1, &mMainRenderBuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, mMainRenderBuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA, static_cast<GLsizei>(mWidth), static_cast<GLsizei>(mHeight));
}

void AEOpenglMainFrameBuffer::unprepare() {
    deleteFrameBuffers();
    if (mMainRenderBuffer != 0) {
        glDeleteRenderbuffers(1, &mMainRenderBuffer);
        mMainRenderBuffer = 0;
    }
    clearStack();
}

void AEOpenglMainFrameBuffer::destory() {
    unprepare();
    delete mScreenRender;
    mScreenRender = nullptr;
}

/// Makes the current context's set, unless it has one for the prepared size.
void AEOpenglMainFrameBuffer::createFrameBuffers() {
    FrameBuffers& own = mFrameBuffers.current();
    if (own.mGeneration == mGeneration)
        return;
    deleteFrameBuffers();
    glGenFramebuffers(1, &own.mFrameBuffer);
    if (mMultisample) {
        glGenFramebuffers(1, &own.mResolveFrameBuffer);
        glGenFramebuffers(1, &own.mMultisampleFrameBuffer);
    }
    own.mGeneration = mGeneration;
}

void AEOpenglMainFrameBuffer::deleteFrameBuffers() {
    FrameBuffers* const own = mFrameBuffers.find();
    if (own == nullptr)
        return;
    deleteFrameBuffer(own->mResolveFrameBuffer);
    deleteFrameBuffer(own->mFrameBuffer);
    deleteFrameBuffer(own->mMultisampleFrameBuffer);
    own->mGeneration = 0;
}

unsigned AEOpenglMainFrameBuffer::workingFrameBuffer() {
    const FrameBuffers& own = mFrameBuffers.current();
    return mMultisample ? own.mMultisampleFrameBuffer : own.mFrameBuffer;
}

void AEOpenglMainFrameBuffer::clearStack() {
    for (const unsigned colour : mRenderBufferStack)
        deleteEntry(colour);
    mRenderBufferStack.clear();
}

/// Deletes a colour renderbuffer of the stack with the stencil renderbuffer that belongs to it.
void AEOpenglMainFrameBuffer::deleteEntry(unsigned colour) {
    glDeleteRenderbuffers(1, &colour);
    if (const auto stencil = mStencilBuffers.find(colour); stencil != mStencilBuffers.end()) {
        glDeleteRenderbuffers(1, &stencil->second);
        mStencilBuffers.erase(stencil);
    }
}

void AEOpenglMainFrameBuffer::beginDrawing() {
    glDrawBuffer(GL_COLOR_ATTACHMENT0);
    glDisable(GL_BLEND);
    if (mMultisample)
        glEnable(GL_MULTISAMPLE);
    pushRenderContext(false, false);
    glViewport(0, 0, static_cast<GLsizei>(mWidth), static_cast<GLsizei>(mHeight));
}

void AEOpenglMainFrameBuffer::endDrawing(float multiplier) {
    unsigned texture = popRenderContext();
    if (texture == 0)
        return;
    const ScopeExit deleteTexture([&] { glDeleteTextures(1, &texture); });
    detachResolved();
    glBindFramebuffer(GL_FRAMEBUFFER, mFrameBuffers.current().mFrameBuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, mMainRenderBuffer);
    glDisable(GL_BLEND);
    glDisable(GL_MULTISAMPLE);
    glClear(GL_COLOR_BUFFER_BIT);
    mScreenRender->draw(texture, multiplier);
}

/// A new renderbuffer with storage of the prepared size and sample count, left bound.
unsigned AEOpenglMainFrameBuffer::createRenderBuffer(unsigned format) const {
    unsigned name = 0;
    glGenRenderbuffers(1, &name);
    glBindRenderbuffer(GL_RENDERBUFFER, name);
    const auto width = static_cast<GLsizei>(mWidth);
    const auto height = static_cast<GLsizei>(mHeight);
    if (mMultisample)
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, mSamples, static_cast<GLenum>(format), width, height);
    else
        glRenderbufferStorage(GL_RENDERBUFFER, static_cast<GLenum>(format), width, height);
    return name;
}

void AEOpenglMainFrameBuffer::pushRenderContext(bool, bool stencil) {
    if (mSamples == 0)
        mSamples = offeredSamples();
    mRenderBufferStack.reserve(mRenderBufferStack.size() + 1);
    const unsigned colour = createRenderBuffer(static_cast<unsigned>(GL_RGBA));
    ScopeExit deleteColour([&] { glDeleteRenderbuffers(1, &colour); });
    glBindFramebuffer(GL_FRAMEBUFFER, workingFrameBuffer());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colour);
    if (stencil) {
        unsigned& stencilBuffer = mStencilBuffers[colour];
        stencilBuffer = createRenderBuffer(static_cast<unsigned>(GL_STENCIL_INDEX8));
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_STENCIL_ATTACHMENT, GL_RENDERBUFFER, stencilBuffer);
    }
    mRenderBufferStack.push_back(colour);
    deleteColour.dismiss();
    clearTransparent();
}

unsigned AEOpenglMainFrameBuffer::popRenderContext() {
    if (mRenderBufferStack.empty())
        return 0;
    const unsigned texture = createRenderTexture(false);
    copyTop(texture);
    deleteEntry(mRenderBufferStack.back());
    mRenderBufferStack.pop_back();
    if (!mRenderBufferStack.empty()) {
        detachResolved();
        attachTop();
    }
    return texture;
}

/// Brings the picture on top of the stack into `texture`.
void AEOpenglMainFrameBuffer::copyTop(unsigned texture) {
    const auto width = static_cast<GLsizei>(mWidth);
    const auto height = static_cast<GLsizei>(mHeight);
    if (!mMultisample) {
        glBindTexture(GL_TEXTURE_2D, texture);
        glCopyTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 0, 0, width, height, 0);
        return;
    }
    const FrameBuffers& own = mFrameBuffers.current();
    glBindFramebuffer(GL_READ_FRAMEBUFFER, own.mMultisampleFrameBuffer);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, own.mResolveFrameBuffer);
    glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
}

/// After copyTop(): lets the resolve target go of the texture, which would keep its memory beyond its end.
void AEOpenglMainFrameBuffer::detachResolved() const {
    if (mMultisample)
        glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0, 0);
}

/// Attaches the top of the stack to the working frame buffer, and binds that.
void AEOpenglMainFrameBuffer::attachTop() {
    const unsigned top = mRenderBufferStack.back();
    glBindRenderbuffer(GL_RENDERBUFFER, top);
    glBindFramebuffer(GL_FRAMEBUFFER, workingFrameBuffer());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, top);
}

void AEOpenglMainFrameBuffer::pushNormalRenderContext(unsigned texture) { drawToTexture(texture, 0); }

void AEOpenglMainFrameBuffer::pushNormalRenderContext(unsigned texture, const Vec2& size, int level) {
    drawToTexture(texture, level);
    glViewport(0, 0, static_cast<GLsizei>(size.x), static_cast<GLsizei>(size.y));
}

void AEOpenglMainFrameBuffer::popNormalRenderContext() {
    int bound = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    auto temporary = static_cast<unsigned>(bound);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0, 0);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &temporary);
    if (mRenderBufferStack.empty())
        return;
    attachTop();
    const GLenum drawBuffer = GL_COLOR_ATTACHMENT0;
    glDrawBuffers(1, &drawBuffer);
    glViewport(0, 0, static_cast<GLsizei>(mWidth), static_cast<GLsizei>(mHeight));
}

unsigned AEOpenglMainFrameBuffer::createRenderTexture(bool mipmap) {
    return createRenderTexture(Vec2(mWidth, mHeight), mipmap);
}

unsigned AEOpenglMainFrameBuffer::createRenderTexture(const Vec2& size, bool mipmap) {
    return createTexture(size, GL_RGBA, mipmap ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
}

unsigned AEOpenglMainFrameBuffer::createFloatRenderTexture(bool linear, bool mipmap) {
    return createFloatRenderTexture(Vec2(mWidth, mHeight), linear, mipmap);
}

unsigned AEOpenglMainFrameBuffer::createFloatRenderTexture(const Vec2& size, bool linear, bool mipmap) {
    const GLenum plain = linear ? GL_LINEAR : GL_NEAREST;
    const GLenum mipmapped = linear ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST;
    return createTexture(size, GL_RGBA32F, mipmap ? mipmapped : plain);
}

} // namespace Ombrique::GaussianBlur
