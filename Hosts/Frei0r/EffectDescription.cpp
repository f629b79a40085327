#include "Hosts/Frei0r/EffectDescription.h"

#include "Hosts/Engine/HostCall.h"

#include <sstream>

namespace Ombrique::Hosts {

namespace {

SliderParameter sliderParameter(const PluginBundle& bundle, const PF_ParamDef& declared) {
    const PF_FloatSliderDef& slider = declared.u.fs_d;
    if (declared.param_type != PF_Param_FLOAT_SLIDER || !(slider.valid_min < slider.valid_max))
        throw BundleError(bundle.folder().string() + ": the parameter \"" + declared.name +
                          "\" isn't a float slider with a range");
    const double minimum = slider.valid_min;
    const double maximum = slider.valid_max;
    const double defaultPosition = (slider.dephault - minimum) / (maximum - minimum);
    std::ostringstream explanation;
    explanation << "0 to 1 stand for " << minimum << " to " << maximum << "; the default, " << defaultPosition
                << ", for " << slider.dephault;
    return {declared.name, explanation.str(), minimum, maximum, defaultPosition};
}

} // namespace

EffectDescription describeEffect(const PluginBundle& bundle) {
    HostCall call;
    if (const CommandResult result = call.send(bundle.entryPoint(), PF_Cmd_PARAMS_SETUP); !result.clean())
        throw BundleError(bundle.folder().string() + ": " + result.describe());
    const Registration& registration = bundle.registration();
    EffectDescription description{.name = registration.name,
                                  .author = registration.author,
                                  .explanation = registration.explanation,
                                  .majorVersion = PF_MajorVersion(registration.version),
                                  .minorVersion = PF_MinorVersion(registration.version),
                                  .parameters = {}};
    for (const PF_ParamDef& declared : call.addedParameters())
        description.parameters.push_back(sliderParameter(bundle, declared));
    return description;
}

} // namespace Ombrique::Hosts
