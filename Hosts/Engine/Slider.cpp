#include "Hosts/Engine/Slider.h"

#include "Hosts/Engine/HostCall.h"

#include <sstream>
#include <string_view>

namespace Ombrique::Hosts {

std::string Slider::word() const {
    constexpr std::string_view kEnding = " Value";
    std::string result = name.ends_with(kEnding) ? name.substr(0, name.size() - kEnding.size()) : name;
    for (char& letter : result)
        letter = letter == ' ' ? '-' : letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    return result;
}

std::string Slider::describeRange() const {
    std::ostringstream text;
    text << minimum << " to " << maximum << ", default " << defaultValue;
    return text.str();
}

std::vector<Slider> declaredSliders(const PluginBundle& bundle) {
    HostCall call;
    if (const CommandResult result = call.send(bundle.entryPoint(), PF_Cmd_PARAMS_SETUP); !result.clean())
        throw BundleError(bundle.folder().string() + ": " + result.describe());
    std::vector<Slider> sliders;
    int index = 0;
    for (const PF_ParamDef& declared : call.addedParameters()) {
        ++index;
        const PF_FloatSliderDef& slider = declared.u.fs_d;
        if (declared.param_type == PF_Param_FLOAT_SLIDER && slider.valid_min < slider.valid_max)
            sliders.push_back(
                {index, declared.name, slider.valid_min, slider.valid_max, slider.dephault, slider.precision});
    }
    return sliders;
}

} // namespace Ombrique::Hosts
