#pragma once

#include "Platform/OpenGL/CGLContextObj.h"

#include <glbinding/gl/types.h>

#include <set>

class NSOpenGLContext;

namespace Ombrique::GaussianBlur {

/// One OpenGL context of the plug-in's own, without a drawable: all rendering goes to frame buffer objects.
///
/// A wrapper belongs to one thread at a time. Nothing here reports an error; isValid tells whether the platform gave a
/// context.
class AEOpenGLContext {
public:
    /// Makes a core-profile context in the share group of `shareContext`, or one that shares with nothing where that is
    /// null. Afterwards it is current on the calling thread, and the binding of OpenGL's functions is ready there; what
    /// was current before isn't put back. Writes the context's identity to standard output.
    ///
    /// Where the platform refuses, the context that was current stays current, and its identity is written; without
    /// one, nothing is written.
    explicit AEOpenGLContext(const AEOpenGLContext* shareContext);
    AEOpenGLContext(const AEOpenGLContext&) = delete;
    AEOpenGLContext& operator=(const AEOpenGLContext&) = delete;
    /// Drops what PerContext holds for this context, and gives up the platform's. What is current stays so: a context
    /// that is current on some thread lives until that thread makes another current.
    virtual ~AEOpenGLContext();

    /// Whether there is a platform context behind this object.
    bool isValid() const { return mNSContext != nullptr; }

    /// The longest side, in pixels, of a picture that this context can hold as a texture and draw into: the least of
    /// the driver's limits for textures, renderbuffers and viewports. 0 for an invalid context.
    int longestSide() const { return mLongestSide; }

    /// Makes this context current on the calling thread and points the binding at it.
    void makeContextCurrent();

    /// A new platform context of the plug-in's pixel format, with one reference, the caller's, and its lower-level
    /// value in `outContext`. Null, and nullptr, where the platform refuses.
    static NSOpenGLContext* createNSContext(NSOpenGLContext* shareContext, CGLContextObj& outContext);

    /// Switches the calling thread to `context`, unless it is current already. The old context, where there is one, is
    /// flushed first, except with an incomplete frame buffer bound, where a flush would be an error.
    static void makeCurrentFlush(CGLContextObj context);

    /// Makes the binding ready for the calling thread, whose current context it needs, and writes that context's
    /// identity to standard output: version, vendor, renderer and the binding's revision, between two empty lines.
    static void InitializeOpenGLBindings();

private:
    AEOpenGLContext() = default;

    CGLContextObj mCGLContext;
    NSOpenGLContext* mNSContext = nullptr;
    std::set<gl::GLextension> mExtensions;
    int mLongestSide = 0;
};

} // namespace Ombrique::GaussianBlur
