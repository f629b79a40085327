#include "Hosts/Frei0r/EffectDescription.h"

#include <sstream>
#include <utility>

namespace Ombrique::Hosts {

SliderParameter::SliderParameter(Slider slider) : Slider(std::move(slider)) {
    std::ostringstream text;
    text << "0 to 1 stand for " << minimum << " to " << maximum << "; the default, " << defaultPosition() << ", for "
         << defaultValue;
    explanation = text.str();
}

EffectDescription::EffectDescription(const PluginBundle& bundle) : registration(bundle.registration()) {
    for (Slider& slider : declaredSliders(bundle))
        parameters.emplace_back(std::move(slider));
}

} // namespace Ombrique::Hosts
