#pragma once

#include "Hosts/Engine/Slider.h"

namespace Ombrique::Hosts {

/// A slider of the plug-in as a parameter of frei0r: a position from 0 to 1, linear over the declared range.
struct SliderParameter : Slider {
    explicit SliderParameter(Slider slider);

    /// The position of the declared default.
    double defaultPosition() const { return (defaultValue - minimum) / (maximum - minimum); }
    double valueAt(double position) const { return minimum + position * (maximum - minimum); }

    /// What the positions stand for, for people.
    std::string explanation;
};

/// What a tool is told of the effect. All of it is the plug-in's own word.
struct EffectDescription {
    /// Reads the registration, and has the plug-in declare its parameters. Needs no OpenGL. `bundle` must outlive this.
    /// @throw BundleError where the plug-in refuses.
    explicit EffectDescription(const PluginBundle& bundle);

    const Registration& registration;
    /// In the order of their declaration.
    std::vector<SliderParameter> parameters;
};

} // namespace Ombrique::Hosts
