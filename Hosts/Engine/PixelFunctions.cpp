#include "Hosts/Engine/HostTables.h"
#include "Hosts/Engine/Serve.h"

#include <algorithm>

// What the host does with pixels for a plug-in: it tells where they are, and runs over them.
namespace Ombrique::Hosts {

namespace {

template <typename Pixel> PF_Err getPixelData(const char* name, PF_EffectWorld* layer, void* pixel, Pixel** data) {
    if (data)
        *data = nullptr;
    return serve(name, {}, [&](HostCall& call, bool) -> PF_Err {
        if (!layer || !data)
            return PF_Err_BAD_CALLBACK_PARAM;
        // The fields of a world that the plug-in made are trusted.
        const World* world = call.worldOf(layer);
        if (!world || world->depth() == kDepthOf<Pixel>)
            *data = static_cast<Pixel*>(pixel ? pixel : layer->data);
        return PF_Err_NONE;
    });
}

PF_PixelFloat* floatPixel(const PF_LayerDef* layer, int x, int y) {
    auto* const row = static_cast<std::byte*>(layer->data) + std::ptrdiff_t{y} * layer->rowbytes;
    return reinterpret_cast<PF_PixelFloat*>(row) + x;
}

bool isFloat(HostCall& call, const PF_LayerDef* layer) {
    const World* world = call.worldOf(layer);
    if (!world || world->depth() == PixelDepth::Float)
        return true;
    call.ledger().note("iterate over the floats of a world of another depth");
    return false;
}

PF_Err iterate(PF_InData*, std::int32_t, std::int32_t, PF_LayerDef* source, const PF_LRect* area, void* refcon,
               PF_IteratePixelFloatFunc function, PF_LayerDef* destination) {
    return serve("iterate", {}, [&](HostCall& call, bool) -> PF_Err {
        if (!source || !function || !destination || !isFloat(call, source) || !isFloat(call, destination))
            return PF_Err_BAD_CALLBACK_PARAM;
        PF_LRect common{0, 0, std::min(source->width, destination->width),
                        std::min(source->height, destination->height)};
        if (area)
            common = {std::max(area->left, 0), std::max(area->top, 0), std::min(area->right, common.right),
                      std::min(area->bottom, common.bottom)};
        for (int y = common.top; y < common.bottom; ++y)
            for (int x = common.left; x < common.right; ++x)
                if (const PF_Err error =
                        function(refcon, x, y, floatPixel(source, x, y), floatPixel(destination, x, y)))
                    return error;
        return PF_Err_NONE;
    });
}

} // namespace

PF_Err getPixelData8(PF_EffectWorld* world, void* pixel, PF_Pixel8** data) {
    return getPixelData("get_pixel_data8", world, pixel, data);
}

PF_Err getPixelData16(PF_EffectWorld* world, void* pixel, PF_Pixel16** data) {
    return getPixelData("get_pixel_data16", world, pixel, data);
}

const PF_iterateFloatSuite1 kIterateFloatSuite = {iterate};

} // namespace Ombrique::Hosts
