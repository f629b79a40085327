#pragma once

#include "Platform/OpenGL/NSObject.h"

#include <cstdint>

/// One word of an attribute list: an attribute, or the argument of the attribute before it.
using NSOpenGLPixelFormatAttribute = std::uint32_t;

enum : NSOpenGLPixelFormatAttribute {
    /// Bits of red, green and blue together. At least as many, unless NSOpenGLPFAClosestPolicy is given.
    NSOpenGLPFAColorSize = 8,
    /// Bits of alpha, depth and stencil: at least as many.
    NSOpenGLPFAAlphaSize = 11,
    NSOpenGLPFADepthSize = 12,
    NSOpenGLPFAStencilSize = 13,
    /// No other renderer takes over when one fails; none ever does here. No argument.
    NSOpenGLPFANoRecovery = 72,
    /// The closest colour size will do. No argument.
    NSOpenGLPFAClosestPolicy = 74,
    /// What contexts offer. Takes a profile; NSOpenGLProfileVersion3_2Core is the only one there is here.
    NSOpenGLPFAOpenGLProfile = 99,
};

enum : NSOpenGLPixelFormatAttribute {
    /// A core profile of at least version 3.3 on this platform, so that it takes shaders of "#version 330".
    NSOpenGLProfileVersion3_2Core = 0x3200,
};

/// What a context is to be like: a configuration of the display that all contexts of the process are made on, which the
/// first pixel format chooses (a GPU where one can be used, else the driver's own fallback). Immutable; any thread.
class NSOpenGLPixelFormat : public NSObject {
public:
    /// A new pixel format with one reference, the caller's, for a list of attributes that ends with 0. Null where the
    /// list is null, holds an unknown attribute, asks for more than any configuration has or for another profile than
    /// the one above, which a list without a profile does; and where no display can be used at all.
    static NSOpenGLPixelFormat* initWithAttributes(const NSOpenGLPixelFormatAttribute* attributes);

private:
    friend class NSOpenGLContext;

    explicit NSOpenGLPixelFormat(void* config) : mConfig(config) {}

    void* mConfig;
};
