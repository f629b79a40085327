#pragma once

#include "Platform/HostInterface/Basics.h"
#include "Platform/HostInterface/Worlds.h"

/// The host's suites: tables of functions, acquired by name and version from SPBasicSuite and released again. A table
/// is the host's, and stays valid until it is released. The number in the name of a table's type is not the version by
/// which it is acquired. Suites that the plug-in only holds declare no members.

struct PF_InData;

using SPErr = PF_Err;

/// Gives out the host's suites. Callable from every thread on which the host calls the plug-in.
struct SPBasicSuite {
    SPErr (*AcquireSuite)(const char* name, std::int32_t version, const void** suite);
    SPErr (*ReleaseSuite)(const char* name, std::int32_t version);
};

/// "PF ANSI Suite", version 1, also found in PF_UtilCallbacks: the C library's functions.
struct PF_ANSICallbacksSuite1 {
    int (*sprintf)(char* buffer, const char* format, ...);
    char* (*strcpy)(char* destination, const char* source);
};

/// "AEGP PF Interface Suite", version 1.
struct AEGP_PFInterfaceSuite1 {};

/// "AEGP Layer Suite", version 11.
struct AEGP_LayerSuite5 {};

/// "AEGP Item Suite", version 10.
struct AEGP_ItemSuite6 {};

/// Called once for each pixel: `in` is the source's pixel at (x, y), `out` the destination's.
using PF_IteratePixelFloatFunc = PF_Err (*)(void* refcon, int x, int y, PF_PixelFloat* in, PF_PixelFloat* out);

/// "PF iterateFloat Suite", version 1.
struct PF_iterateFloatSuite1 {
    /// Calls `function` for each pixel that source and destination have in common, or for those of `area` where it
    /// isn't null, and stops at the first error, which is the result. A progress bar moves from one progress value to
    /// the other meanwhile.
    PF_Err (*iterate)(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final, PF_LayerDef* source,
                      const PF_LRect* area, void* refcon, PF_IteratePixelFloatFunc function, PF_LayerDef* destination);
};

/// Memory that the host owns and may move while it isn't locked.
using PF_Handle = char**;

/// "PF Handle Suite", version 2.
struct PF_HandleSuite1 {
    /// Null when there isn't enough memory. `size` is in bytes.
    PF_Handle (*host_new_handle)(std::uint64_t size);
    /// Keeps the memory in place and returns its address.
    void* (*host_lock_handle)(PF_Handle handle);
    void (*host_unlock_handle)(PF_Handle handle);
    void (*host_dispose_handle)(PF_Handle handle);
};

using AEGP_PluginID = std::int32_t;

/// Memory that the host's application layer owns; null is no memory.
struct AEGP_MemBlock;
using AEGP_MemHandle = AEGP_MemBlock*;

/// "AEGP Utility Suite", version 11.
struct AEGP_UtilitySuite5 {
    /// Runs a script. Result and error text come back as new handles, zero-terminated, which the caller frees.
    PF_Err (*AEGP_ExecuteScript)(AEGP_PluginID plugin_id, const char* script, std::uint8_t platform_encoding,
                                 AEGP_MemHandle* result, AEGP_MemHandle* error);
};

/// "AEGP Memory Suite", version 1.
struct AEGP_MemorySuite1 {
    PF_Err (*AEGP_LockMemHandle)(AEGP_MemHandle handle, void** memory);
    PF_Err (*AEGP_UnlockMemHandle)(AEGP_MemHandle handle);
    PF_Err (*AEGP_FreeMemHandle)(AEGP_MemHandle handle);
};

/// "DRAWBOT Draw Suite", version 1.
struct DRAWBOT_DrawSuite {};

/// "DRAWBOT Supplier Suite", version 1.
struct DRAWBOT_SupplierSuite {};

/// "DRAWBOT Surface Suite", version 2.
struct DRAWBOT_SurfaceSuite {};

/// "DRAWBOT Path Suite", version 1.
struct DRAWBOT_PathSuite {};

/// The drawing family, held together.
struct DRAWBOT_Suites {
    const DRAWBOT_DrawSuite* draw;
    const DRAWBOT_SupplierSuite* supplier;
    const DRAWBOT_SurfaceSuite* surface;
    const DRAWBOT_PathSuite* path;
};
