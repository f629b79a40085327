#pragma once

#include "Hosts/Engine/PluginBundle.h"

#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// A float slider of the plug-in as a parameter of frei0r: a position from 0 to 1, linear over the declared range.
struct SliderParameter {
    std::string name;
    /// What the positions stand for, for people.
    std::string explanation;
    double minimum;
    double maximum;
    /// The position of the declared default.
    double defaultPosition;

    double valueAt(double position) const { return minimum + position * (maximum - minimum); }
};

/// What a tool is told of the effect. All of it is the plug-in's own word.
struct EffectDescription {
    std::string name;
    std::string author;
    std::string explanation;
    int majorVersion;
    int minorVersion;
    /// In the order of their declaration: the parameter at position i has index i + 1 at the plug-in.
    std::vector<SliderParameter> parameters;
};

/// Reads the registration, and has the plug-in declare its parameters. Needs no OpenGL.
/// @throw BundleError where the plug-in refuses, or declares what isn't a float slider with a range.
EffectDescription describeEffect(const PluginBundle& bundle);

} // namespace Ombrique::Hosts
