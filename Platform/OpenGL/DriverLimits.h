#pragma once

/// The longest side, in pixels, of a picture that the driver can hold as a texture and draw into: what a host has to
/// know before it hands a picture to a plug-in that works on OpenGL. The same for all contexts that are made through
/// NSOpenGLContext. 0 where no such context can be made.
///
/// Makes a context for the question and gives it back: ask once. Any thread; what is current on it is so again
/// afterwards.
int longestRenderableSide();
