#include "Plugins/Shared/GL/BackgroundRender.h"

namespace Ombrique::GaussianBlur {

namespace {

constexpr const char* kVertexSource =
    "#version 330\n"
    "in vec3 position; in vec2 input_uv; out vec2 uv; void main() {uv = input_uv; gl_Position = vec4(position, 1.0); "
    "}";

constexpr const char* kFragmentSource =
    "#version 330\n"
    "in vec2 uv;uniform sampler2D videoTexture;uniform float multiplier16bit;out vec4 colourOut;\n"
    "void main() {\tcolourOut = texture( videoTexture, uv );\tcolourOut = colourOut * multiplier16bit; \tcolourOut = "
    "vec4(colourOut.g, colourOut.b, colourOut.a, colourOut.r); \tcolourOut = vec4(colourOut.a * colourOut.r, "
    "colourOut.a * colourOut.g, colourOut.a * colourOut.b, colourOut.a); }";

} // namespace

BackgroundRender::BackgroundRender() : mShader(kVertexSource, kFragmentSource), mQuad(3) {
    mQuad.bindAttributes(mShader);
}

void BackgroundRender::draw(unsigned int texture, float multiplier) { mQuad.drawTexture(mShader, texture, multiplier); }

} // namespace Ombrique::GaussianBlur
