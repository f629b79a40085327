#pragma once

#include <compare>
#include <cstddef>

/// The lower level of the platform's OpenGL: what a thread has current, whoever made it. Where NSOpenGLContext knows
/// the contexts that were made through it, this level knows every context, also those that a host made on EGL itself.

/// A context together with the display and the surfaces that it was current with: all that it takes to make it current
/// again exactly as it was. A plain value that owns nothing and says nothing about whether the context still lives. Use
/// it as one would use a pointer: copy it, compare it with another or with nullptr, key a map with it.
///
/// Two values are equal where display, context and both surfaces are, so the same context with another surface is
/// another value. A context of NSOpenGLContext has one value as long as it lives; after that the driver may give the
/// same value to a new context.
struct CGLContextObj {
    CGLContextObj() = default;
    CGLContextObj(std::nullptr_t) {}

    friend auto operator<=>(const CGLContextObj&, const CGLContextObj&) = default;

    /// Handles of EGL, null for none. Only the platform reads them.
    void* display = nullptr;
    void* context = nullptr;
    void* drawSurface = nullptr;
    void* readSurface = nullptr;
};
