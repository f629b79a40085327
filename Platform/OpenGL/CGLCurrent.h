#pragma once

#include "Platform/OpenGL/CGLContextObj.h"

/// What is current on the calling thread, nullptr where nothing is.
CGLContextObj CGLGetCurrentContext();

/// Makes a context current on the calling thread, with the surfaces that the value records. nullptr lets go of what is
/// current. Returns whether that is current now; it isn't where the context no longer lives or is current on another
/// thread, and then the thread keeps what it had.
bool CGLSetCurrentContext(CGLContextObj context);
