#include "Hosts/Engine/HostTables.h"
#include "Hosts/Engine/Serve.h"

#include <algorithm>
#include <string>

// The callbacks that in_data and the commands' extras carry.
namespace Ombrique::Hosts {

namespace {

PF_Err checkoutParam(PF_ProgPtr effectRef, std::int32_t index, std::int32_t whatTime, std::int32_t timeStep,
                     std::uint32_t timeScale, PF_ParamDef* definition) {
    return serve("checkout_param", std::to_string(index), [&](HostCall& call, bool optional) -> PF_Err {
        const auto& parameters = call.environment().parameters;
        if (!call.owns(effectRef) || !definition)
            return PF_Err_BAD_CALLBACK_PARAM;
        if (index < 1 || static_cast<std::size_t>(index) > parameters.size()) {
            call.ledger().note("parameter " + std::to_string(index) + " checked out, but not declared");
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        PF_ParamDef result = parameters[static_cast<std::size_t>(index) - 1];
        const ParameterValues& values = call.request().values;
        const auto value = values.find(index);
        result.u.fs_d.value =
            value == values.end() ? result.u.fs_d.dephault : value->second.at({whatTime, timeStep, timeScale});
        call.ledger().parameterCheckedOut(definition, index, optional);
        *definition = result;
        return PF_Err_NONE;
    });
}

PF_Err checkinParam(PF_ProgPtr effectRef, PF_ParamDef* definition) {
    return serveReturn("checkin_param", {}, [&](HostCall& call) -> PF_Err {
        const bool good = call.owns(effectRef) && definition && call.ledger().parameterCheckedIn(definition);
        return good ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
    });
}

PF_Err addParam(PF_ProgPtr effectRef, std::int32_t index, PF_ParamDef* definition) {
    return serve("add_param", {}, [&](HostCall& call, bool) -> PF_Err {
        auto& parameters = call.addedParameters();
        if (!call.owns(effectRef) || !definition)
            return PF_Err_BAD_CALLBACK_PARAM;
        if (definition->param_type != PF_Param_FLOAT_SLIDER)
            return PF_Err_UNRECOGNIZED_PARAM_TYPE;
        // Index 1 is the first beside the layer; -1 appends.
        const auto count = static_cast<std::int32_t>(parameters.size());
        if (index != -1 && (index < 1 || index > count + 1))
            return PF_Err_BAD_CALLBACK_PARAM;
        parameters.insert(parameters.begin() + (index == -1 ? count : index - 1), *definition);
        return PF_Err_NONE;
    });
}

PF_LRect layerRectOf(const FrameRequest& request) {
    if (request.layerRect)
        return *request.layerRect;
    return request.input ? PF_LRect{0, 0, request.input->width(), request.input->height()} : PF_LRect{};
}

/// The intersection of both; all zero where it is empty.
PF_LRect intersection(const PF_LRect& a, const PF_LRect& b) {
    const PF_LRect common{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                          std::min(a.bottom, b.bottom)};
    return common.left < common.right && common.top < common.bottom ? common : PF_LRect{};
}

PF_Err checkoutLayer(PF_ProgPtr effectRef, std::int32_t index, std::int32_t checkoutId, const PF_RenderRequest* request,
                     std::int32_t, std::int32_t, std::uint32_t, PF_CheckoutResult* result) {
    return serve("checkout_layer", std::to_string(checkoutId), [&](HostCall& call, bool) -> PF_Err {
        if (!call.owns(effectRef) || !request || !result)
            return PF_Err_BAD_CALLBACK_PARAM;
        if (index != 0) {
            call.ledger().note("parameter " + std::to_string(index) + " checked out as a layer, but is none");
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        const PF_LRect layer = layerRectOf(call.request());
        *result = {intersection(request->rect, layer), layer};
        call.layerCheckouts().push_back(checkoutId);
        return PF_Err_NONE;
    });
}

PF_LayerDef* layerOf(World* world) { return world ? world->layer() : nullptr; }

PF_Err checkoutLayerPixels(PF_ProgPtr effectRef, std::int32_t checkoutId, PF_LayerDef** pixels) {
    if (pixels)
        *pixels = nullptr;
    return serve("checkout_layer_pixels", std::to_string(checkoutId), [&](HostCall& call, bool) -> PF_Err {
        const auto& checkouts = call.layerCheckouts();
        const bool known = std::find(checkouts.begin(), checkouts.end(), checkoutId) != checkouts.end();
        if (!call.owns(effectRef) || !pixels || !known)
            return PF_Err_BAD_CALLBACK_PARAM;
        *pixels = layerOf(call.request().input);
        return PF_Err_NONE;
    });
}

PF_Err checkoutOutput(PF_ProgPtr effectRef, PF_LayerDef** output) {
    if (output)
        *output = nullptr;
    return serve("checkout_output", {}, [&](HostCall& call, bool) -> PF_Err {
        if (!call.owns(effectRef) || !output)
            return PF_Err_BAD_CALLBACK_PARAM;
        *output = layerOf(call.request().output);
        return PF_Err_NONE;
    });
}

} // namespace

const PF_InteractCallbacks kInteractCallbacks = {checkoutParam, checkinParam, addParam};
const PF_PreRenderCallbacks kPreRenderCallbacks = {checkoutLayer};
const PF_SmartRenderCallbacks kSmartRenderCallbacks = {checkoutLayerPixels, checkoutOutput};

} // namespace Ombrique::Hosts
