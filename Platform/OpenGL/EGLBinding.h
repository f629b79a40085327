#pragma once

#include "Platform/OpenGL/CGLContextObj.h"

namespace PlatformEGL {

/// What EGL has bound on the calling thread.

/// The current context with its display and surfaces, nullptr for none.
CGLContextObj currentBinding();

/// Makes `object` current exactly as it was recorded; nullptr lets go of the current context. That goes through the
/// context's own display, because some drivers refuse EGL_NO_DISPLAY. Returns whether it did.
bool setBinding(const CGLContextObj& object);

} // namespace PlatformEGL
