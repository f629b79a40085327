#pragma once

#include <EGL/egl.h>
#include <EGL/eglext.h>

/// The EGL device that is marked as software, which every machine with this driver has, whatever GPUs stand beside it.
/// Null where there is none. `getProcAddress` is where EGL's own functions come from.
EGLDeviceEXT softwareDevice(decltype(eglGetProcAddress)* getProcAddress = eglGetProcAddress);
