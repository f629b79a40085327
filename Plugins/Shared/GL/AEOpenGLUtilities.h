#pragma once

#include "Platform/HostInterface/HostInterface.h"

#include <glbinding/gl/enum.h>

#include <cstdint>
#include <string>

namespace Ombrique::GaussianBlur {

/// What the float path's iterate callbacks work on: a packed array of pixels, row after row.
struct CopyPixelFloatRefcon {
    PF_PixelFloat* buffer;
    /// Its width is the array's row length.
    PF_LayerDef* world;
};

/// Moves pixels between the host's worlds and OpenGL, in the host's three depths.
///
/// A pixel format is one of PF_PixelFormat_ARGB32 (8 bits a channel), PF_PixelFormat_ARGB64 (16 bits, white at 32768)
/// and PF_PixelFormat_ARGB128 (floats). A world doesn't say its depth: the caller does. Nothing here swaps channels or
/// turns the picture over: the host's alpha, red, green, blue become a texture's red, green, blue, alpha, and row 0
/// stays row 0. Rows may run upwards in memory, with negative row bytes, and two worlds may share their pixels: all of
/// the input is read before any output is written. A world without pixels needs no memory. Row bytes that are no
/// multiple of the pixel size skew the picture: an uploaded row begins as many whole pixels beyond the one before as
/// the row bytes hold, a downloaded one at the last whole pixel that begins, counted from row 0, up to its place. So
/// nothing outside the world is touched.
///
/// The functions keep no state. They need a current context on the calling thread, and `in_data` of the command that
/// runs there. Failures are thrown as std::int32_t: 13 for a suite that the host hasn't got, 4 for a handle that it
/// can't make or lock, 516 for an unknown format or a world whose pixels the host doesn't hand out, and the host's own
/// error where iterating fails. Whatever a call made is given back then, and OpenGL's state is as after a success.
/// OpenGL errors are not read.
class AEOpenGLUtilities {
public:
    /// Makes a texture of floats, clamped at its edges, from the pixels of `input`, and returns its name, which the
    /// caller owns. `output` isn't read. `mipmap` chooses a mipmap filter for minification; no mip levels are made.
    /// Outputs: `pixelSize`, bytes a pixel; `glType`, the type of its channels; `multiplier16bit`, by which a sampled
    /// value must be multiplied to have white at 1 (65535 / 32768 for 16 bits, else 1). Afterwards nothing is bound to
    /// GL_TEXTURE_2D on the active unit and GL_UNPACK_ROW_LENGTH is 0.
    static unsigned int UploadTexture(int format, PF_LayerDef* input, PF_LayerDef* output, PF_InData* in_data,
                                      unsigned long& pixelSize, gl::GLenum& glType, float& multiplier16bit,
                                      bool mipmap);

    /// Reads GL_COLOR_ATTACHMENT0 of the frame buffer bound for reading, of `width` by `height` pixels, into `output`.
    /// What the picture doesn't cover of a larger `output` becomes transparent black; a smaller one gets the picture's
    /// top left part. Padding isn't written. `pixelSize` and `glType` are what UploadTexture gave for `format`. `input`
    /// serves the float path, and has the picture's size.
    static void DownloadTexture(unsigned int width, unsigned int height, PF_LayerDef* input, PF_LayerDef* output,
                                PF_InData* in_data, int format, unsigned long pixelSize, gl::GLenum glType);

    /// Makes all of `output` transparent black. Needs no context.
    static void ClearWorld(PF_LayerDef* output, PF_InData* in_data, int format);

    /// The state of the frame buffer bound to GL_FRAMEBUFFER, in words; "OK" when it is complete.
    static std::string CheckFramebufferStatus();

    // Callbacks of PF_iterateFloatSuite1; `refcon` points to a CopyPixelFloatRefcon.

    /// Copies `in` to the array.
    static PF_Err CopyPixelFloatIn(void* refcon, int x, int y, PF_PixelFloat* in, PF_PixelFloat* out);
    /// Copies from the array to `out`.
    static PF_Err CopyPixelFloatOut(void* refcon, int x, int y, PF_PixelFloat* in, PF_PixelFloat* out);
};

} // namespace Ombrique::GaussianBlur
