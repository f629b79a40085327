#pragma once

#include "Hosts/Engine/FrameRequest.h"
#include "Hosts/Engine/World.h"

#include <string>

namespace Ombrique::Tests {

/// What the sliders say; the defaults change nothing. Tests that aren't about the sliders pass it on as one value.
struct Correction {
    double contrast = 1.0;
    double brightness = 0.0;

    /// As a frame's request takes them.
    Hosts::ParameterValues sliders() const { return {{1, contrast}, {2, brightness}}; }
};

/// A world of 8-bit pixels without symmetry, so that a flip, a swap of channels or half a pixel's shift shows: opaque,
/// translucent and empty pixels, the empty ones with colours. `opaque` makes all of them opaque.
Hosts::World makePicture(int width, int height, unsigned seed, bool opaque = false, Hosts::WorldLayout layout = {});

/// Compares `output` with what the effect makes of `input`, computed in double from the definition: correct,
/// premultiply, round to 8 bits, divide by alpha, round. Where `output` is larger, the rest must be transparent black.
/// Returns an empty text when all pixels agree, else how many don't, the worst one's place and its values.
///
/// No tolerance but this: a value near half way between two 8-bit steps may be rounded either way, since the GPU
/// computes in single precision. Near is 0.01 of a step, and in the first pass more for large pictures, since the
/// coordinates of their texels are less exact: by 0.0004 of a texel at 3840 by 2160, times what the neighbours differ.
/// GALLIUM_DRIVER=softpipe filters 8-bit textures in float, so there the second pass misses as much, divided by alpha:
/// pixels without alpha take on any colour.
/// Sliders may be infinite or not a number; a channel that isn't a number is stored as 0.
std::string compareWithOracle(const Hosts::World& input, const Hosts::World& output, const Correction& correction);

/// Compares two worlds of 8-bit pixels byte for byte, in the same form.
std::string comparePixels(const Hosts::World& expected, const Hosts::World& actual);

} // namespace Ombrique::Tests
