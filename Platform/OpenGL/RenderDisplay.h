#pragma once

#include "Platform/OpenGL/CGLContextObj.h"

#include <EGL/egl.h>

#include <string>
#include <vector>

namespace PlatformEGL {

/// The display that all contexts of the process are made on. It is chosen at the first call, by one thread while others
/// wait, and stays initialised to the end of the process: a host that works with the same display would lose its own
/// contexts with it. What is current on the calling thread is the same afterwards.
///
/// GPUs come first: the EGL devices that aren't software, in EGL's order. One that can't be opened, or on which a core
/// context can't be made and made current, is passed over for the next; on a shared machine another job may have it.
/// The surfaceless platform comes last. EGL_NO_DISPLAY where nothing serves.
///
/// The environment's OMBRIQUE_DEVICE chooses otherwise: the number of a device in EGL's order, or a part of its name as
/// renderDevices() has it. Then nothing else is tried.
EGLDisplay renderDisplay();

/// The names of all EGL devices, in EGL's order, software ones too.
std::vector<std::string> renderDevices();

/// A configuration for contexts of desktop OpenGL with at least so many bits; the colour bits may be missed in either
/// direction where `closestColor` says so. The one with the fewest colour bits off wins, EGL's order decides between
/// equals. Null where there is none.
struct ConfigRequest {
    EGLint colorBits = 0;
    EGLint alphaBits = 0;
    EGLint depthBits = 0;
    EGLint stencilBits = 0;
    bool closestColor = false;
};
EGLConfig chooseConfig(EGLDisplay display, const ConfigRequest& request);

/// Makes a core context, in the share group of `shareContext` unless that is EGL_NO_CONTEXT, with all that it needs to
/// become current: no surface, or a pbuffer of one pixel where the display can't do without. nullptr where the driver
/// refuses. The caller gives it to destroyContext in the end.
CGLContextObj createContext(EGLDisplay display, EGLConfig config, EGLContext shareContext);

/// Ends a context of createContext; on a thread that has it current, it lives until that thread lets go.
void destroyContext(const CGLContextObj& object);

} // namespace PlatformEGL
