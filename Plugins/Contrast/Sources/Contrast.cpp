#include "Plugins/Contrast/Sources/Contrast.h"

#include "Plugins/Contrast/Sources/ContrastRender.h"
#include "Plugins/Contrast/Sources/Identity.h"
#include "Plugins/Shared/GL/AEOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenGLContextManager.h"
#include "Plugins/Shared/GL/AEOpenGLUtilities.h"
#include "Plugins/Shared/GL/AEOpenglMainFrameBuffer.h"
#include "Plugins/Shared/GL/FrameLock.h"
#include "Plugins/Shared/GL/SaveRestoreGLContextMac.h"
#include "Plugins/Shared/Helper/ScopeExit.h"
#include "Plugins/Shared/Helper/SuiteScoper.h"

#include <glbinding/gl/gl.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <limits>
#include <new>

using namespace gl;

namespace Ombrique::GaussianBlur {

namespace {

/// What the plug-in itself can't go on with.
[[noreturn]] void refuse() { throw std::int32_t{PF_Err_BAD_CALLBACK_PARAM}; }

/// The contrast pass as it is made at load: null where there is no memory, since an exception would end the host.
ContrastRender* passAtLoad() {
    try {
        return new ContrastRender;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

/// The contrast pass of the plug-in; null between global setdown and the next global setup.
ContrastRender* mWarpRender = passAtLoad();

/// Whether global setup came after the last global setdown. Changed under the frame lock, read without it, too.
std::atomic<bool> isSetUp = false;

/// A slider: what is declared of it, and what takes its value of each frame.
struct Slider {
    const char* name;
    float standard;
    float least;
    float most;
    std::int16_t precision;
    void (ContrastRender::*set)(float);
};

/// All of them, in the order of their indices. Saved projects know a slider by that, so a new one comes last.
constexpr Slider kSliders[] = {
    {"Contrast Value", 1.0f, 0.0f, 10.0f, 2, &ContrastRender::setContrast},
    {"Brightness Value", 0.0f, -100.0f, 100.0f, 1, &ContrastRender::setBrightness},
};
constexpr float kCurveTolerance = 0.05f;

constexpr std::int32_t kAppend = -1;
constexpr std::int32_t kInputLayerIndex = 0;
constexpr std::int32_t kInputCheckoutId = 0;

/// The index of a slider, which is also its id.
std::int32_t indexOf(const Slider& slider) {
    return kInputLayerIndex + 1 + static_cast<std::int32_t>(&slider - kSliders);
}

void UnionRect(const PF_LRect* src, PF_LRect* dest) {
    if (IsEmptyRect(dest)) {
        *dest = *src;
    } else if (!IsEmptyRect(src)) {
        dest->left = std::min(dest->left, src->left);
        dest->top = std::min(dest->top, src->top);
        dest->right = std::max(dest->right, src->right);
        dest->bottom = std::max(dest->bottom, src->bottom);
    }
}

PF_Err about(PF_InData* in_data, PF_OutData* out_data) {
    const SuiteScoper<PF_ANSICallbacksSuite1> ansi(in_data, "PF ANSI Suite", 1, nullptr, nullptr);
    ansi->sprintf(out_data->return_msg, "%s v%d.%d\r%s", kEffectName, kMajorVersion, kMinorVersion, kEffectDescription);
    return PF_Err_NONE;
}

PF_Err addSlider(PF_InData* in_data, const Slider& slider) {
    PF_ParamDef def{};
    def.param_type = PF_Param_FLOAT_SLIDER;
    in_data->utils->ansi.strcpy(def.name, slider.name);
    def.uu.id = indexOf(slider);
    PF_FloatSliderDef& values = def.u.fs_d;
    values.value = slider.standard;
    values.dephault = slider.standard;
    values.valid_min = slider.least;
    values.valid_max = slider.most;
    values.slider_min = slider.least;
    values.slider_max = slider.most;
    values.precision = slider.precision;
    values.curve_tolerance = kCurveTolerance;
    return in_data->inter.add_param(in_data->effect_ref, kAppend, &def);
}

PF_Err paramsSetup(PF_InData* in_data, PF_OutData* out_data) {
    out_data->num_params = 1 + static_cast<std::int32_t>(std::size(kSliders)); // the input layer counts
    for (const Slider& slider : kSliders)
        if (const PF_Err error = addSlider(in_data, slider); error != PF_Err_NONE)
            return error;
    return PF_Err_NONE;
}

PF_Err smartPreRender(PF_InData* in_data, PF_PreRenderExtra* extra) {
    const PF_RenderRequest request = extra->input->output_request;
    PF_CheckoutResult result{};
    const PF_Err error =
        extra->cb->checkout_layer(in_data->effect_ref, kInputLayerIndex, kInputCheckoutId, &request,
                                  in_data->current_time, in_data->time_step, in_data->time_scale, &result);
    if (error == PF_Err_NONE) {
        UnionRect(&result.result_rect, &extra->output->result_rect);
        UnionRect(&result.max_result_rect, &extra->output->max_result_rect);
    }
    return error;
}

PF_Err globalSetup(PF_OutData* out_data) {
    out_data->my_version = kEffectVersion;
    out_data->out_flags = kOutFlags;
    out_data->out_flags2 = kOutFlags2;

    const FrameLock lock;
    if (isSetUp)
        return PF_Err_NONE;
    if (mWarpRender == nullptr)
        mWarpRender = new ContrastRender;
    SaveRestoreGLContextMac hostContext;
    const ScopeExit restoreContext([&] { hostContext.restore(); });
    AEOpenGLContextManager::setupContextManager();
    if (!AEOpenGLContextManager::getSharedDataContext()->isValid()) {
        AEOpenGLContextManager::releaseContextManager();
        refuse();
    }
    isSetUp = true;
    return PF_Err_NONE;
}

PF_Err globalSetdown() {
    const FrameLock lock;
    if (!isSetUp)
        return PF_Err_NONE;
    SaveRestoreGLContextMac hostContext;
    const ScopeExit restoreContext([&] { hostContext.restore(); });
    AEOpenGLContextManager::getSharedDataContext()->makeContextCurrent();
    AEOpenglMainFrameBuffer::mainFrameBuffer()->destory();
    delete mWarpRender;
    mWarpRender = nullptr;
    AEOpenGLContextManager::releaseContextManager();
    isSetUp = false;
    return PF_Err_NONE;
}

/// Gives each slider's value at the frame's time to the pass, 0 where the host fails, and returns the first error. From
/// that on nothing is checked out, but all is checked in.
PF_Err takeSliders(PF_InData* in_data, ContrastRender& pass) {
    PF_Err firstError = PF_Err_NONE;
    const auto record = [&firstError](PF_Err error) {
        if (firstError == PF_Err_NONE)
            firstError = error;
    };
    for (const Slider& slider : kSliders) {
        PF_ParamDef def{};
        if (firstError == PF_Err_NONE)
            record(in_data->inter.checkout_param(in_data->effect_ref, indexOf(slider), in_data->current_time,
                                                 in_data->time_step, in_data->time_scale, &def));
        (pass.*slider.set)(static_cast<float>(def.u.fs_d.value));
        record(in_data->inter.checkin_param(in_data->effect_ref, &def));
    }
    return firstError;
}

/// Refuses frames that come before global setup or after global setdown.
void requireSetup() {
    if (!isSetUp)
        refuse();
}

/// Refuses a world with a negative side, or with one longer than `longest` pixels.
void requireSides(const PF_LayerDef& world, std::int32_t longest) {
    if (std::min(world.width, world.height) < 0 || std::max(world.width, world.height) > longest)
        refuse();
}

/// The calling thread's context, current.
const AEOpenGLContext& currentRenderContext() {
    AEOpenGLContext* const context = AEOpenGLContextManager::getCurrentRenderContext();
    if (!context->isValid())
        refuse();
    context->makeContextCurrent();
    return *context;
}

/// The road of a frame, from the input world to the output world, in the calling thread's context. Returns the first
/// error of the sliders, which doesn't stop the frame.
PF_Err renderFrame(PF_InData* in_data, PF_LayerDef* input, PF_LayerDef* output) {
    SaveRestoreGLContextMac hostContext;
    const ScopeExit restoreContext([&] { hostContext.restore(); });
    const FrameLock lock;
    requireSetup(); // again, since another thread's setdown may have come in between
    // What the driver can't hold would come out as whatever the memory held.
    requireSides(*input, currentRenderContext().longestSide());

    AEOpenglMainFrameBuffer* const frameBuffer = AEOpenglMainFrameBuffer::mainFrameBuffer();
    frameBuffer->prepare(input->width, input->height, true);
    const ScopeExit clearStack([&] { frameBuffer->clearStack(); });
    frameBuffer->beginDrawing();

    const SuiteScoper<AEGP_PFInterfaceSuite1> interfaceSuite(in_data, "AEGP PF Interface Suite", 1, nullptr, nullptr);
    const SuiteScoper<AEGP_LayerSuite5> layerSuite(in_data, "AEGP Layer Suite", 11, nullptr, nullptr);
    const SuiteScoper<AEGP_ItemSuite6> itemSuite(in_data, "AEGP Item Suite", 10, nullptr, nullptr);

    const PF_Err firstError = takeSliders(in_data, *mWarpRender);

    unsigned long pixelSize = sizeof(PF_Pixel8);
    GLenum glType = GL_UNSIGNED_BYTE;
    float multiplier = 1.0f;
    const unsigned texture = AEOpenGLUtilities::UploadTexture(PF_PixelFormat_ARGB32, input, output, in_data, pixelSize,
                                                              glType, multiplier, false);
    {
        const ScopeExit deleteTexture([&] { glDeleteTextures(1, &texture); });
        mWarpRender->draw(texture, multiplier);
    }
    frameBuffer->endDrawing(multiplier);
    AEOpenGLUtilities::DownloadTexture(static_cast<unsigned>(input->width), static_cast<unsigned>(input->height), input,
                                       output, in_data, PF_PixelFormat_ARGB32, pixelSize, glType);
    hostContext.restore(); // before the suites are released
    return firstError;
}

PF_Err smartRender(PF_InData* in_data, PF_SmartRenderExtra* extra) {
    requireSetup();
    PF_LayerDef* input = nullptr;
    PF_LayerDef* output = nullptr;
    PF_Err error = extra->cb->checkout_layer_pixels(in_data->effect_ref, kInputCheckoutId, &input);
    if (error == PF_Err_NONE)
        error = extra->cb->checkout_output(in_data->effect_ref, &output);
    if (error != PF_Err_NONE || output == nullptr)
        return error;
    requireSides(*output, std::numeric_limits<std::int32_t>::max());
    if (input == nullptr) {
        AEOpenGLUtilities::ClearWorld(output, in_data, PF_PixelFormat_ARGB32);
        return PF_Err_NONE;
    }
    return renderFrame(in_data, input, output);
}

PF_Err answer(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, void* extra) {
    switch (cmd) {
    case PF_Cmd_ABOUT:
        return about(in_data, out_data);
    case PF_Cmd_GLOBAL_SETUP:
        return globalSetup(out_data);
    case PF_Cmd_GLOBAL_SETDOWN:
        return globalSetdown();
    case PF_Cmd_PARAMS_SETUP:
        return paramsSetup(in_data, out_data);
    case PF_Cmd_SMART_PRE_RENDER:
        return smartPreRender(in_data, static_cast<PF_PreRenderExtra*>(extra));
    case PF_Cmd_SMART_RENDER:
        return smartRender(in_data, static_cast<PF_SmartRenderExtra*>(extra));
    default:
        return PF_Err_NONE;
    }
}

} // namespace

bool IsEmptyRect(const PF_LRect* rect) { return rect->left >= rect->right || rect->top >= rect->bottom; }

} // namespace Ombrique::GaussianBlur

PF_Err EntryPointFunc(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef*[], PF_LayerDef*, void* extra) {
    try {
        return Ombrique::GaussianBlur::answer(cmd, in_data, out_data, extra);
    } catch (std::int32_t) {
        return PF_Err_BAD_CALLBACK_PARAM;
    } catch (const std::bad_alloc&) {
        return PF_Err_OUT_OF_MEMORY;
    } catch (...) {
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
}
