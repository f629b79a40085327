#pragma once

#include "Plugins/Shared/GL/FullTargetQuad.h"
#include "Plugins/Shared/GL/OpenglShader.h"

namespace Ombrique::GaussianBlur {

/// Lays the host's picture under what a frame draws: reads a texture in the host's layout, alpha, red, green, blue,
/// straight, and writes it premultiplied as red, green, blue, alpha, with no correction.
///
/// A texel is multiplied by the multiplier, brought into red, green, blue, alpha order, and its colours are multiplied
/// by its alpha.
///
/// Construction needs no context; all else needs one of the share group. No lock: one thread at a time.
class BackgroundRender {
public:
    BackgroundRender();

    /// Draws `texture`, a GL_TEXTURE_2D, over the whole of the bound render target. `multiplier` is the one that the
    /// upload of the frame's pixels gave; 1 for 8-bit pixels. Leaves its program in use and the texture on unit 0.
    void draw(unsigned int texture, float multiplier);

private:
    OpenglShader mShader;
    FullTargetQuad mQuad;
};

} // namespace Ombrique::GaussianBlur
