#include "Platform/HostInterface/HostInterface.h"

#include <cmath>

/// What a test has the plug-in do in PF_Cmd_SMART_RENDER; null for what smartRender() does.
extern "C" {
__attribute__((visibility("default"))) PF_EntryPoint testConduct = nullptr;
}

// A plug-in that adds to each colour the value of its slider and a hundred for each second that has passed, and fails
// where the slider is at 77.
namespace {

PF_Err addSlider(PF_InData* in_data) {
    PF_ParamDef definition{};
    definition.uu.id = 1;
    definition.param_type = PF_Param_FLOAT_SLIDER;
    in_data->utils->ansi.strcpy(definition.name, "Added");
    definition.u.fs_d.valid_max = definition.u.fs_d.slider_max = 100;
    return in_data->inter.add_param(in_data->effect_ref, -1, &definition);
}

PF_Err preRender(PF_InData* in_data, PF_PreRenderExtra* extra) {
    PF_CheckoutResult result{};
    const PF_Err error =
        extra->cb->checkout_layer(in_data->effect_ref, 0, 7, &extra->input->output_request, in_data->current_time,
                                  in_data->time_step, in_data->time_scale, &result);
    extra->output->result_rect = result.result_rect;
    extra->output->max_result_rect = result.max_result_rect;
    return error;
}

PF_Err smartRender(PF_InData* in_data, PF_SmartRenderExtra* extra) {
    PF_LayerDef* input = nullptr;
    PF_LayerDef* output = nullptr;
    if (const PF_Err error = extra->cb->checkout_layer_pixels(in_data->effect_ref, 7, &input))
        return error;
    if (const PF_Err error = extra->cb->checkout_output(in_data->effect_ref, &output))
        return error;
    PF_ParamDef slider{};
    in_data->inter.checkout_param(in_data->effect_ref, 1, in_data->current_time, in_data->time_step,
                                  in_data->time_scale, &slider);
    in_data->inter.checkin_param(in_data->effect_ref, &slider);
    const auto value = static_cast<int>(std::lround(slider.u.fs_d.value));
    const int added = value + 100 * in_data->current_time / static_cast<int>(in_data->time_scale);
    for (int y = 0; y < output->height; ++y) {
        const auto* from = static_cast<const unsigned char*>(input->data) + y * input->rowbytes;
        auto* to = static_cast<unsigned char*>(output->data) + y * output->rowbytes;
        for (int x = 0; x < output->width * 4; ++x)
            to[x] = static_cast<unsigned char>(from[x] + (x % 4 == 0 ? 0 : added)); // alpha stands first
    }
    return value == 77 ? 77 : PF_Err_NONE;
}

} // namespace

extern "C" __attribute__((visibility("default"))) PF_Err
TestEntry(PF_Cmd command, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef*[], PF_LayerDef*, void* extra) {
    switch (command) {
    case PF_Cmd_ABOUT:
        in_data->utils->ansi.sprintf(out_data->return_msg, "%s\r%d", "Test", 1);
        return PF_Err_NONE;
    case PF_Cmd_GLOBAL_SETUP:
        out_data->my_version = 5;
        out_data->out_flags2 = PF_OutFlag2_SUPPORTS_SMART_RENDER;
        return PF_Err_NONE;
    case PF_Cmd_PARAMS_SETUP:
        out_data->num_params = 2;
        return addSlider(in_data);
    case PF_Cmd_SMART_PRE_RENDER:
        return preRender(in_data, static_cast<PF_PreRenderExtra*>(extra));
    case PF_Cmd_SMART_RENDER:
        return testConduct != nullptr ? testConduct(command, in_data, out_data, nullptr, nullptr, extra)
                                      : smartRender(in_data, static_cast<PF_SmartRenderExtra*>(extra));
    default:
        return PF_Err_NONE;
    }
}
