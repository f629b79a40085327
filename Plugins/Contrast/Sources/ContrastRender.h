#pragma once

#include "Plugins/Shared/GL/FullTargetQuad.h"
#include "Plugins/Shared/GL/OpenglShader.h"

namespace Ombrique::GaussianBlur {

/// The effect proper: one pass that corrects contrast and brightness.
///
/// Reads a texture in the host's layout, alpha, red, green, blue, straight, and writes premultiplied red, green, blue,
/// alpha. Each colour channel v becomes (v - 0.5) * contrast + 0.5 + brightness / 100; then all four are multiplied by
/// the multiplier, and the colours by alpha. Nothing is clamped but by the render target, and alpha has no part in the
/// correction.
///
/// Construction and the setters need no context; all else needs one of the share group. No lock: the values that are
/// set and the draw that follows belong to one frame, and the caller keeps frames apart.
class ContrastRender {
public:
    ContrastRender();
    ContrastRender(const ContrastRender&) = delete;
    ContrastRender& operator=(const ContrastRender&) = delete;
    ~ContrastRender();

    /// The factor of the next draw: 1 changes nothing, 0 gives mid grey. Accepts any value.
    void setContrast(float contrast) { mContrast = contrast; }
    /// The brightness of the next draw, in the slider's units: -100 takes 1 off each colour, 100 adds 1. Accepts any
    /// value.
    void setBrightness(float brightness) { mBrightness = brightness; }

    /// Draws `texture`, a GL_TEXTURE_2D, over the whole of the bound render target. `multiplier` is the one that the
    /// upload of the frame's pixels gave; 1 for 8-bit pixels. Leaves its program in use and the texture on unit 0. If
    /// the program can't be built its log is printed, and the target stays as it was.
    void draw(unsigned int texture, float multiplier);

private:
    OpenglShader* mShader = nullptr;
    FullTargetQuad mQuad;
    float mContrast = 1.0f;
    float mBrightness = 0.0f;
};

} // namespace Ombrique::GaussianBlur
