#pragma once

#include "Platform/HostInterface/Basics.h"
#include "Platform/HostInterface/Parameters.h"
#include "Platform/HostInterface/SmartRender.h"
#include "Platform/HostInterface/Suites.h"
#include "Platform/HostInterface/Worlds.h"

/// The whole interface: the entry point, and what the host hands to it with each command.

/// The host's functions for the effect's parameters.
struct PF_InteractCallbacks {
    /// Copies parameter `index`, with its value at a time, into `param`. The same structure is checked in afterwards.
    PF_Err (*checkout_param)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t what_time, std::int32_t time_step,
                             std::uint32_t time_scale, PF_ParamDef* param);
    PF_Err (*checkin_param)(PF_ProgPtr effect_ref, PF_ParamDef* param);
    /// Declares a parameter during PF_Cmd_PARAMS_SETUP; `index` -1 appends it.
    PF_Err (*add_param)(PF_ProgPtr effect_ref, std::int32_t index, PF_ParamDef* param);
};

/// Small services that need no suite.
struct PF_UtilCallbacks {
    PF_ANSICallbacksSuite1 ansi;
    /// The pixel at `pixel`, or the world's first one where that is null; null for a world of another depth.
    PF_Err (*get_pixel_data8)(PF_EffectWorld* world, void* pixel, PF_Pixel8** data);
    PF_Err (*get_pixel_data16)(PF_EffectWorld* world, void* pixel, PF_Pixel16** data);
};

/// What the host gives with each command. Times are `current_time` and `time_step` over `time_scale`, in seconds.
struct PF_InData {
    PF_InteractCallbacks inter;
    PF_UtilCallbacks* utils;
    PF_ProgPtr effect_ref;
    std::int32_t current_time;
    std::int32_t time_step;
    std::uint32_t time_scale;
    SPBasicSuite* pica_basicP;
};

/// What the plug-in answers. The host keeps what it declares at PF_Cmd_GLOBAL_SETUP and PF_Cmd_PARAMS_SETUP.
struct PF_OutData {
    std::uint32_t my_version;
    PF_OutFlags out_flags;
    PF_OutFlags2 out_flags2;
    /// Parameters of the effect, the input layer among them.
    std::int32_t num_params;
    /// A zero-terminated text for the user. Carriage returns separate its lines.
    char return_msg[256];
};

/// The form of a plug-in's entry point. `extra` depends on the command.
using PF_EntryPoint = PF_Err (*)(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                                 PF_LayerDef* output, void* extra);

/// The pixel of `world` at `pixel`, or its first pixel for null, stored at `data`. The macros reach the host through a
/// variable named `in_data`.
#define PF_GET_PIXEL_DATA8(world, pixel, data) (in_data->utils->get_pixel_data8((world), (pixel), (data)))
#define PF_GET_PIXEL_DATA16(world, pixel, data) (in_data->utils->get_pixel_data16((world), (pixel), (data)))
