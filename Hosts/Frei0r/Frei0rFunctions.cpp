#include "Hosts/Frei0r/FilterInstance.h"

#include <exception>
#include <type_traits>
#include <utility>

#pragma GCC visibility push(default)
extern "C" {
#include <frei0r.h>
}
#pragma GCC visibility pop

// The functions that a tool calls. No exception passes from here to the tool.
namespace {

using Ombrique::Hosts::EffectDescription;
using Ombrique::Hosts::FilterInstance;
using Ombrique::Hosts::SharedEffect;

/// Runs `action`; what it throws is told on standard error, and `failed` is the result.
template <typename Action, typename Result> Result guarded(Result failed, Action action) noexcept {
    try {
        return action();
    } catch (const std::exception& error) {
        SharedEffect::report(error.what());
    } catch (...) {
        SharedEffect::report("something unforeseen happened");
    }
    return failed;
}

FilterInstance& instanceOf(f0r_instance_t instance) { return *static_cast<FilterInstance*>(instance); }

} // namespace

int f0r_init() {
    return guarded(-1, [] {
        SharedEffect::instance().open();
        return 1;
    });
}

void f0r_deinit() {
    guarded(0, [] {
        SharedEffect::instance().close();
        return 0;
    });
}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
    // A type that tools ignore, for those that ask although f0r_init failed.
    constexpr int kNoType = -1;
    *info = {.name = "ombrique_contrast",
             .author = "",
             .plugin_type = kNoType,
             .color_model = F0R_COLOR_MODEL_RGBA8888,
             .frei0r_version = FREI0R_MAJOR_VERSION,
             .major_version = 0,
             .minor_version = 0,
             .num_params = 0,
             .explanation = "The effect's bundle can't be loaded"};
    guarded(0, [info] {
        const EffectDescription& effect = SharedEffect::instance().description();
        info->name = effect.registration.name.c_str();
        info->author = effect.registration.author.c_str();
        info->plugin_type = F0R_PLUGIN_TYPE_FILTER;
        info->major_version = PF_MajorVersion(effect.registration.version);
        info->minor_version = PF_MinorVersion(effect.registration.version);
        info->num_params = static_cast<int>(effect.parameters.size());
        info->explanation = effect.registration.explanation.c_str();
        return 0;
    });
}

void f0r_get_param_info(f0r_param_info_t* info, int param_index) {
    *info = {.name = "", .type = F0R_PARAM_DOUBLE, .explanation = ""};
    guarded(0, [info, param_index] {
        const auto& parameters = SharedEffect::instance().description().parameters;
        if (std::cmp_greater_equal(param_index, 0) && std::cmp_less(param_index, parameters.size())) {
            const auto& parameter = parameters[static_cast<std::size_t>(param_index)];
            info->name = parameter.name.c_str();
            info->explanation = parameter.explanation.c_str();
        }
        return 0;
    });
}

f0r_instance_t f0r_construct(unsigned int width, unsigned int height) {
    return guarded(f0r_instance_t{}, [=]() -> f0r_instance_t { return new FilterInstance(width, height); });
}

void f0r_destruct(f0r_instance_t instance) {
    guarded(0, [instance] {
        delete static_cast<FilterInstance*>(instance); // null where construction failed
        return 0;
    });
}

void f0r_set_param_value(f0r_instance_t instance, f0r_param_t param, int param_index) {
    instanceOf(instance).setPosition(param_index, *static_cast<const f0r_param_double*>(param));
}

void f0r_get_param_value(f0r_instance_t instance, f0r_param_t param, int param_index) {
    *static_cast<f0r_param_double*>(param) = instanceOf(instance).position(param_index);
}

void f0r_update(f0r_instance_t instance, double time, const uint32_t* inframe, uint32_t* outframe) {
    instanceOf(instance).update(time, inframe, outframe);
}

void f0r_update2(f0r_instance_t instance, double time, const uint32_t* inframe1, const uint32_t*, const uint32_t*,
                 uint32_t* outframe) {
    f0r_update(instance, time, inframe1, outframe);
}
