#pragma once

#include "Platform/HostInterface/Basics.h"
#include "Platform/HostInterface/Worlds.h"

/// The two commands of a frame. In PF_Cmd_SMART_PRE_RENDER the effect says what it needs and what it will deliver; in
/// PF_Cmd_SMART_RENDER it gets the pixels. The structures, and the worlds that the callbacks hand out, are the host's
/// and live until the command returns. The callbacks may be called on the command's thread alone.

/// What is asked for. Coordinates are pixels of the layer.
struct PF_RenderRequest {
    PF_LRect rect;
    std::int32_t field;
    std::int32_t channel_mask;
    std::uint8_t preserve_rgb_of_zero_alpha;
};

/// What a checked-out layer will give: the pixels asked for, and all that it has.
struct PF_CheckoutResult {
    PF_LRect result_rect;
    PF_LRect max_result_rect;
};

struct PF_PreRenderInput {
    PF_RenderRequest output_request;
};

/// The effect's answer to a pre-render. The host clears it before the command.
struct PF_PreRenderOutput {
    PF_LRect result_rect;
    PF_LRect max_result_rect;
    std::int32_t flags;
    void* pre_render_data;
};

struct PF_PreRenderCallbacks {
    /// Asks for the layer parameter `index` at a time; `checkout_id` names the checkout in PF_Cmd_SMART_RENDER.
    PF_Err (*checkout_layer)(PF_ProgPtr effect_ref, std::int32_t index, std::int32_t checkout_id,
                             const PF_RenderRequest* request, std::int32_t what_time, std::int32_t time_step,
                             std::uint32_t time_scale, PF_CheckoutResult* result);
};

struct PF_PreRenderExtra {
    const PF_PreRenderInput* input;
    PF_PreRenderOutput* output;
    const PF_PreRenderCallbacks* cb;
};

struct PF_SmartRenderCallbacks {
    /// The pixels of a checkout of the pre-render; null where the layer has none.
    PF_Err (*checkout_layer_pixels)(PF_ProgPtr effect_ref, std::int32_t checkout_id, PF_LayerDef** pixels);
    /// The world that the effect writes its result to; null where the host wants none.
    PF_Err (*checkout_output)(PF_ProgPtr effect_ref, PF_LayerDef** output);
};

struct PF_SmartRenderExtra {
    const PF_SmartRenderCallbacks* cb;
};
