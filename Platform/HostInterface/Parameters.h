#pragma once

#include <cstdint>

/// The parameters of an effect, as it declares them and as the host hands out their values.

using PF_ParamType = std::int32_t;

enum : PF_ParamType {
    PF_Param_FLOAT_SLIDER = 10,
};

/// A float slider. `value` is the only field that changes from frame to frame.
struct PF_FloatSliderDef {
    double value;
    double phase;
    char value_desc[32];
    /// The values that may be set; the slider covers slider_min to slider_max of them.
    float valid_min;
    float valid_max;
    float slider_min;
    float slider_max;
    float dephault;
    /// Digits shown after the point.
    std::int16_t precision;
    std::int16_t display_flags;
    std::int32_t fs_flags;
    float curve_tolerance;
};

union PF_ParamDefUnion {
    PF_FloatSliderDef fs_d;
};

/// One parameter. Passive data: copied on its way to the host and back.
struct PF_ParamDef {
    union {
        /// The plug-in's own number for the parameter, kept in projects.
        std::int32_t id;
    } uu;
    std::int32_t ui_flags;
    PF_ParamType param_type;
    /// The name that the user sees, zero-terminated.
    char name[32];
    std::int32_t flags;
    PF_ParamDefUnion u;
};
