#pragma once

#include "Plugins/Shared/GL/PerContext.h"
#include "Plugins/Shared/GL/ScreenRender.h"

#include <cstdint>
#include <map>
#include <vector>

namespace Ombrique::GaussianBlur {

struct Vec2;

/// The render targets of a frame. The plug-in's contexts have no drawable, so whatever a pass draws, it draws into what
/// this class has bound.
///
/// A frame: prepare() for its size; beginDrawing(); passes draw into the top of a stack of colour renderbuffers;
/// endDrawing() resolves the top and runs the screen pass into the output renderbuffer, which is then attached to
/// GL_COLOR_ATTACHMENT0 of the bound frame buffer object, ready to be read back. pushRenderContext() and
/// popRenderContext() nest further targets in between; only the top of the stack is attached.
///
/// One object serves all contexts of the share group. Frame buffer objects live only in the context that made them, so
/// each context has its own set, made when it first prepares a size and kept while the size stays; contexts that take
/// turns at one size rebuild nothing. The renderbuffers are shared. The output renderbuffer of an old size stays in
/// memory for as long as another context's set still has it attached, that is until that context's next frame.
///
/// There is no lock: the caller holds one from prepare() until the picture has been read back. Every operation except
/// mainFrameBuffer(), width() and height() needs a current context. No OpenGL error is read and none reported; a
/// failed allocation throws std::bad_alloc, and leaves the stack to clearStack().
class AEOpenglMainFrameBuffer {
public:
    /// The one that all frames share, made at the first call. Never null, never deleted.
    static AEOpenglMainFrameBuffer* mainFrameBuffer();

    /// No OpenGL call.
    AEOpenglMainFrameBuffer();
    AEOpenglMainFrameBuffer(const AEOpenglMainFrameBuffer&) = delete;
    AEOpenglMainFrameBuffer& operator=(const AEOpenglMainFrameBuffer&) = delete;

    /// Gets ready for frames of `width` by `height` pixels. Does nothing when that size is prepared already in the
    /// current context; `multisample` is not looked at then. A new size empties the stack. A new object is prepared for
    /// 0 by 0, which needs no context. After unprepare() and destory(), the next prepare() builds, whatever the size.
    void prepare(long width, long height, bool multisample);
    /// Deletes what depends on the size: the current context's frame buffer objects, the output renderbuffer, the
    /// stack. Other contexts delete theirs when they next prepare; those of a context that doesn't end with it.
    void unprepare();
    /// The clean-up before the contexts go: unprepare(), and the screen pass is deleted.
    void destory();

    /// Opens a frame: pushes a cleared colour renderbuffer and sets the viewport; blending is off, and multisampling is
    /// on if it was prepared.
    void beginDrawing();
    /// Closes the frame. `multiplier` is the one that the upload gave. Nothing happens if the stack is empty.
    void endDrawing(float multiplier);

    /// Pushes a cleared colour renderbuffer of the prepared size, with a stencil renderbuffer (whose content is
    /// undefined) if `stencil` says so. The viewport stays. The first argument has no effect.
    void pushRenderContext(bool, bool stencil);
    /// Takes the top off the stack and returns its picture as a new texture, which the caller owns; 0 if the stack was
    /// empty. What was below is attached again, its stencil renderbuffer is not. A multisampled picture that was the
    /// last on the stack stays attached to the context's resolve target: its texture, 4 bytes a pixel, keeps its memory
    /// until the context's next pop, also where the caller deletes it. endDrawing() leaves none behind.
    unsigned popRenderContext();

    /// Renders into a texture of the caller's, beside the stack: binds a temporary frame buffer object with level 0 of
    /// `texture`, and clears it. The viewport stays.
    void pushNormalRenderContext(unsigned texture);
    /// The same with mip level `level`, whose size in pixels is `size`, and the viewport set to that.
    void pushNormalRenderContext(unsigned texture, const Vec2& size, int level);
    /// Ends that and goes back to the top of the stack with the prepared viewport; with an empty stack, frame buffer 0
    /// stays bound and the viewport stays.
    void popNormalRenderContext();

    /// Deletes all that is on the stack.
    void clearStack();

    // Textures of the prepared size or of `size`, in pixels and truncated to integers; filled with transparent black,
    // clamped at their edges, owned by the caller. `mipmap` chooses a mipmap filter for minification; no mip levels
    // are made. GL_TEXTURE_2D is unbound afterwards.

    /// 8 bits a channel, linear filters.
    unsigned createRenderTexture(bool mipmap);
    unsigned createRenderTexture(const Vec2& size, bool mipmap);
    /// 32-bit floats; nearest filters unless `linear`.
    unsigned createFloatRenderTexture(bool linear, bool mipmap);
    unsigned createFloatRenderTexture(const Vec2& size, bool linear, bool mipmap);

    /// The low 16 bits of the size last prepared, in pixels: 70000 gives 4464.
    std::uint16_t width() const { return static_cast<std::uint16_t>(mWidth); }
    std::uint16_t height() const { return static_cast<std::uint16_t>(mHeight); }

private:
    /// The frame buffer objects of one context.
    struct FrameBuffers {
        unsigned mResolveFrameBuffer = 0;
        unsigned mFrameBuffer = 0;
        unsigned mMultisampleFrameBuffer = 0;
        /// The mGeneration for which they were made; 0 for none.
        unsigned mGeneration = 0;
    };

    void createFrameBuffers();
    void deleteFrameBuffers();
    unsigned workingFrameBuffer();
    unsigned createRenderBuffer(unsigned format) const;
    void attachTop();
    void copyTop(unsigned texture);
    void detachResolved() const;
    void deleteEntry(unsigned colour);

    PerContext<FrameBuffers> mFrameBuffers;
    unsigned mMainRenderBuffer = 0;
    bool mMultisample = true;
    std::uint32_t mWidth = 0;
    std::uint32_t mHeight = 0;
    std::vector<unsigned> mRenderBufferStack;
    std::map<unsigned, unsigned> mStencilBuffers;
    ScreenRender* mScreenRender;
    /// Counts the times that the frame buffer objects of all contexts went out of date.
    unsigned mGeneration = 0;
    /// Samples of a multisampled renderbuffer; 0 until the driver has been asked.
    int mSamples = 0;
};

} // namespace Ombrique::GaussianBlur
