#pragma once

#include <string>
#include <vector>

/// The longest side, in pixels, of a picture that the driver can hold as a texture and draw into: what a host has to
/// know before it hands a picture to a plug-in that works on OpenGL. The same for all contexts that are made through
/// NSOpenGLContext. 0 where no such context can be made.
///
/// Makes a context to ask, and destroys it: call it once. Any thread; what was current on the thread is current again
/// afterwards.
int longestRenderableSide();

/// The renderer and the version of the driver, as it names them; empty where no context can be made. Rules as above.
std::string driverName();

/// The names of the devices that a user may choose by OMBRIQUE_DEVICE, in the order of their numbers, from 0 on.
std::vector<std::string> driverDevices();
