#pragma once

#include <cstdint>

/// The host's plug-in interface: the basic types.
///
/// The host and the plug-in are two binaries that meet in plain C structures. This folder declares those structures
/// under the host's own names and as far as the plug-in uses them. All of it is passive data: who owns what, and which
/// calls may come from which thread, is said where a structure is declared. Nothing throws across this border; errors
/// travel as PF_Err.

/// The result of a command or of a callback; 0 is success.
using PF_Err = std::int32_t;

enum : PF_Err {
    PF_Err_NONE = 0,
    PF_Err_OUT_OF_MEMORY = 4,
    /// The host doesn't have a suite. Thrown inside the plug-in, never a command's result.
    A_Err_MISSING_SUITE = 13,
    /// The host's own codes count from here.
    PF_FIRST_ERR = 512,
    PF_Err_INTERNAL_STRUCT_DAMAGED = 512,
    PF_Err_UNRECOGNIZED_PARAM_TYPE = 514,
    PF_Err_BAD_CALLBACK_PARAM = 516,
};

/// What the host asks of a plug-in: the first argument of its entry point.
using PF_Cmd = std::int32_t;

enum : PF_Cmd {
    PF_Cmd_ABOUT = 0,
    PF_Cmd_GLOBAL_SETUP = 1,
    PF_Cmd_UNUSED_0 = 2,
    PF_Cmd_GLOBAL_SETDOWN = 3,
    PF_Cmd_PARAMS_SETUP = 4,
    PF_Cmd_RENDER = 11,
    PF_Cmd_SMART_PRE_RENDER = 23,
    PF_Cmd_SMART_RENDER = 24,
};

/// What a plug-in tells of itself in PF_OutData::out_flags.
using PF_OutFlags = std::int32_t;

enum : PF_OutFlags {
    PF_OutFlag_NONE = 0,
    /// return_msg holds a text that the host shows.
    PF_OutFlag_DISPLAY_ERROR_MESSAGE = 1 << 8,
};

/// What a plug-in tells of itself in PF_OutData::out_flags2.
using PF_OutFlags2 = std::int32_t;

enum : PF_OutFlags2 {
    PF_OutFlag2_NONE = 0,
    /// The plug-in answers PF_Cmd_SMART_PRE_RENDER and PF_Cmd_SMART_RENDER.
    PF_OutFlag2_SUPPORTS_SMART_RENDER = 1 << 10,
};

/// The stage of a release, one field of a version.
enum : std::uint32_t {
    PF_Stage_DEVELOP = 0,
};

/// Packs a version into one number: version from bit 19, sub-version from bit 15, bug-fix from bit 11, stage from
/// bit 9, build in the lowest 9 bits.
constexpr std::uint32_t PF_VERSION(std::uint32_t version, std::uint32_t subversion, std::uint32_t bugfix,
                                   std::uint32_t stage, std::uint32_t build) {
    return version << 19 | subversion << 15 | bugfix << 11 | stage << 9 | build;
}
/// The version, and the sub-version, of a number so packed.
constexpr int PF_MajorVersion(std::uint32_t packed) { return static_cast<int>(packed >> 19); }
constexpr int PF_MinorVersion(std::uint32_t packed) { return static_cast<int>(packed >> 15 & 0xF); }

/// A rectangle of pixels; right and bottom lie outside. Empty when left >= right or top >= bottom.
struct PF_LRect {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;
};

/// The host's handle on the effect that a call is about; only the host looks inside.
struct PF_ProgressInfo;
using PF_ProgPtr = PF_ProgressInfo*;
