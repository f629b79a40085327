#pragma once

#include "Hosts/Bundle/PluginBundle.h"

#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// A float slider as the plug-in declares it.
struct Slider {
    /// The parameter's index at the plug-in, from 1.
    int index;
    /// As "Contrast Value".
    std::string name;
    /// The values that may be set, in the slider's own unit.
    double minimum;
    double maximum;
    double defaultValue;
    /// Digits shown after the point.
    int precision = 0;

    /// The name as a word for a command line, as "contrast": in lower case, blanks as hyphens, without "Value" at its
    /// end.
    std::string word() const;
    /// Range and default for people, as "0 to 10, default 1".
    std::string describeRange() const;
};

/// Has the plug-in declare its parameters, without setting it up: no OpenGL is needed. Parameters that aren't float
/// sliders with a range are left out; they keep their defaults.
/// @throw BundleError where the plug-in refuses.
std::vector<Slider> declaredSliders(const PluginBundle& bundle);

} // namespace Ombrique::Hosts
