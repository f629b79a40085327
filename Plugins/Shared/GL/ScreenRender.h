#pragma once

#include "Plugins/Shared/GL/FullTargetQuad.h"
#include "Plugins/Shared/GL/OpenglShader.h"

namespace Ombrique::GaussianBlur {

/// The last pass of a frame: takes the finished picture, which is premultiplied red, green, blue, alpha, and writes it
/// in the host's layout, straight colour with the channels alpha, red, green, blue.
///
/// A texel (r, g, b, a) becomes (a, r / a, g / a, b / a) divided by the multiplier, and all zero where a is 0. Colours
/// brighter than their alpha give values above 1, which a target of integers clamps.
///
/// Construction needs no context; all else needs one of the share group. No lock: one thread at a time.
class ScreenRender {
public:
    ScreenRender();

    /// Draws `texture`, a GL_TEXTURE_2D, over the whole of the bound render target. `multiplier` is the one that the
    /// upload of the frame's pixels gave; 1 for 8-bit pixels. Leaves its program in use and the texture on unit 0.
    void draw(unsigned int texture, float multiplier);

private:
    OpenglShader mShader;
    FullTargetQuad mQuad;
};

} // namespace Ombrique::GaussianBlur
