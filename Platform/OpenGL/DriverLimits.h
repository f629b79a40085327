#pragma once

/// The longest side, in pixels, of a picture that the driver can hold as a texture and draw into: what a host has to
/// know before it hands a picture to a plug-in that works on OpenGL. The same for all contexts that are made through
/// NSOpenGLContext. 0 where no such context can be made.
///
/// Makes a context to ask, and destroys it: call it once. Any thread; what was current on the thread is current again
/// afterwards.
int longestRenderableSide();
