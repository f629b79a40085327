#pragma once

#include "Platform/HostInterface/HostInterface.h"

/// The effect as the host sees it: one entry point, which answers the host's commands.
///
/// Hosts may call from any thread, and may move frames between threads or overlap them: the part of a frame that uses
/// OpenGL runs one frame at a time, under a lock. During it the effect calls the host for suites, parameters and
/// memory; a host that asks for another frame of this effect from within such a call, on the same thread, is refused.
/// Until it has checked out its worlds, a frame waits for no other.
///
/// The host's OpenGL context is current again when a command returns, whatever the result. Where the host had none, the
/// effect's own stays current on that thread. Whatever a command opened at the host it has closed again.
///
/// Results, beside the errors of the host's callbacks, which are passed on: PF_Err_BAD_CALLBACK_PARAM for all that the
/// effect itself can't do (a missing suite, a handle that the host can't make, no OpenGL, a world with a negative
/// side, an input larger than the driver can draw, a frame before global setup or after global setdown, a command from
/// within a frame's own call), PF_Err_OUT_OF_MEMORY when the effect
/// ran out of memory, PF_Err_INTERNAL_STRUCT_DAMAGED for anything unforeseen. No exception passes. After each of them
/// the next frame is as good as any. Global setup of an effect that is set up, and global setdown of one that isn't, do
/// nothing and succeed.
///
/// Worlds: a frame whose output is null is done at once; a null input gives transparent black; where the output is
/// larger than the input, the rest of it becomes transparent black, all of it where the input has no pixels. Both may
/// be one world. Rows may be padded or run upwards; see AEOpenGLUtilities for row bytes that split a pixel.
///
/// Sliders are taken as they are, beyond their ranges, too: the shader computes in IEEE single precision and the 8-bit
/// targets clamp, so that an infinite contrast parts the colours at mid grey. What becomes of a colour that isn't a
/// number is the driver's choice, Mesa's is 0; alpha stays as it is.
extern "C" __attribute__((visibility("default"))) PF_Err EntryPointFunc(PF_Cmd cmd, PF_InData* in_data,
                                                                        PF_OutData* out_data, PF_ParamDef* params[],
                                                                        PF_LayerDef* output, void* extra);

namespace Ombrique::GaussianBlur {

/// True when left >= right or top >= bottom.
bool IsEmptyRect(const PF_LRect* rect);

} // namespace Ombrique::GaussianBlur
