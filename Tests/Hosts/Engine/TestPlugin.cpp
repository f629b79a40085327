#include "Tests/Hosts/Engine/TestPlugin.h"

#include "Platform/HostInterface/HostInterface.h"

#include <stdexcept>

// A plug-in that uses each service of the host, and misuses them on request.
namespace {

template <typename Suite> const Suite* acquire(PF_InData* in_data, const char* name, int version) {
    const void* suite = nullptr;
    in_data->pica_basicP->AcquireSuite(name, version, &suite);
    return static_cast<const Suite*>(suite);
}

double checkOut(PF_InData* in_data, int index, PF_ParamDef& definition) {
    in_data->inter.checkout_param(in_data->effect_ref, index, in_data->current_time, in_data->time_step,
                                  in_data->time_scale, &definition);
    return definition.u.fs_d.value;
}

PF_Err addSlider(PF_InData* in_data, int id, const char* name) {
    PF_ParamDef definition{};
    definition.uu.id = id;
    definition.param_type = PF_Param_FLOAT_SLIDER;
    in_data->utils->ansi.strcpy(definition.name, name);
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

void misuseHandles(PF_InData* in_data, Conduct conduct) {
    const auto* suite = acquire<PF_HandleSuite1>(in_data, "PF Handle Suite", 2);
    const PF_Handle handle = suite->host_new_handle(8);
    char* memory = static_cast<char*>(suite->host_lock_handle(handle));
    if (conduct == Conduct::OverrunHandle)
        ++memory[8];
    if (conduct != Conduct::DisposeLockedHandle)
        suite->host_unlock_handle(handle);
    if (conduct == Conduct::UnlockTwice)
        suite->host_unlock_handle(handle);
    if (conduct != Conduct::KeepHandle)
        suite->host_dispose_handle(handle);
    if (conduct == Conduct::UseDisposedHandle)
        suite->host_lock_handle(handle);
    in_data->pica_basicP->ReleaseSuite("PF Handle Suite", 2);
}

void misuseScripts(PF_InData* in_data) {
    AEGP_MemHandle result = nullptr;
    const auto* suite = acquire<AEGP_UtilitySuite5>(in_data, "AEGP Utility Suite", 11);
    suite->AEGP_ExecuteScript(0, "1", 0, &result, nullptr);
    in_data->pica_basicP->ReleaseSuite("AEGP Utility Suite", 11);
}

void misuseWorlds(Conduct conduct, PF_LayerDef* input, PF_LayerDef* output) {
    auto* const in = static_cast<unsigned char*>(input->data);
    auto* const out = static_cast<unsigned char*>(output->data);
    if (conduct == Conduct::WriteIntoPadding)
        ++out[output->rowbytes - 1];
    if (conduct == Conduct::WriteBeforePicture)
        --out[-1];
    if (conduct == Conduct::WriteBehindPicture)
        ++out[output->rowbytes * output->height];
    if (conduct == Conduct::WriteIntoInput)
        ++in[input->rowbytes * (input->height - 1)];
    if (conduct == Conduct::WriteIntoInputPadding)
        ++in[input->width * 4];
    if (conduct == Conduct::ChangeLayer)
        --output->height;
}

void misuseParameters(PF_InData* in_data, Conduct conduct, PF_ParamDef& definition) {
    if (conduct != Conduct::KeepParameter)
        in_data->inter.checkin_param(in_data->effect_ref, &definition);
    if (conduct == Conduct::CheckInTwice)
        in_data->inter.checkin_param(in_data->effect_ref, &definition);
    if (conduct == Conduct::AskForMissingParameter)
        checkOut(in_data, 3, definition);
    if (conduct == Conduct::UseForeignEffectRef)
        in_data->inter.checkin_param(nullptr, &definition);
}

void misuse(PF_InData* in_data, PF_OutData* out_data, Conduct conduct) {
    if (conduct >= Conduct::KeepHandle && conduct <= Conduct::UnlockTwice)
        misuseHandles(in_data, conduct);
    if (conduct == Conduct::KeepMemoryHandle)
        misuseScripts(in_data);
    if (conduct == Conduct::KeepSuite || conduct == Conduct::ReleaseOtherVersion)
        acquire<AEGP_ItemSuite6>(in_data, "AEGP Item Suite", 10);
    if (conduct == Conduct::ReleaseOtherVersion)
        in_data->pica_basicP->ReleaseSuite("AEGP Item Suite", 6);
    if (conduct == Conduct::WriteLongMessage)
        in_data->utils->ansi.sprintf(out_data->return_msg, "%300d", 1);
    if (conduct == Conduct::Throw)
        throw std::runtime_error("thrown");
}

PF_Err smartRender(PF_InData* in_data, PF_OutData* out_data, PF_SmartRenderExtra* extra) {
    PF_LayerDef* input = nullptr;
    PF_LayerDef* output = nullptr;
    if (const PF_Err error = extra->cb->checkout_layer_pixels(in_data->effect_ref, 7, &input))
        return error;
    if (const PF_Err error = extra->cb->checkout_output(in_data->effect_ref, &output))
        return error;
    PF_ParamDef definition{};
    const auto added = static_cast<int>(checkOut(in_data, 2, definition));
    in_data->inter.checkin_param(in_data->effect_ref, &definition);
    const auto conduct = static_cast<Conduct>(static_cast<int>(checkOut(in_data, 1, definition)));
    misuseParameters(in_data, conduct, definition);
    misuse(in_data, out_data, conduct);
    for (int y = 0; y < output->height; ++y)
        for (int x = 0; x < output->width * 4; ++x)
            static_cast<unsigned char*>(output->data)[y * output->rowbytes + x] =
                static_cast<unsigned char>(static_cast<unsigned char*>(input->data)[y * input->rowbytes + x] + added);
    misuseWorlds(conduct, input, output);
    return conduct == Conduct::ReturnError ? 77 : PF_Err_NONE;
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
        out_data->num_params = 3;
        if (const PF_Err error = addSlider(in_data, 1, "Conduct"))
            return error;
        return addSlider(in_data, 2, "Added");
    case PF_Cmd_SMART_PRE_RENDER:
        return preRender(in_data, static_cast<PF_PreRenderExtra*>(extra));
    case PF_Cmd_SMART_RENDER:
        return smartRender(in_data, out_data, static_cast<PF_SmartRenderExtra*>(extra));
    default:
        return PF_Err_NONE;
    }
}
