#include "Plugins/Contrast/Sources/ContrastRender.h"

#include <memory>

namespace Ombrique::GaussianBlur {

namespace {

/// From the slider's units to those of the shader.
constexpr float kBrightnessScale = 100.0f;

constexpr const char* kVertexSource =
    "#version 330\n"
    "in vec2 position; in vec2 input_uv; out vec2 uv; void main() {uv = input_uv; gl_Position = vec4(position, 0.0, "
    "1.0); }";

constexpr const char* kFragmentSource =
    "#version 330\n"
    "in vec2 uv;uniform sampler2D videoTexture;uniform float multiplier16bit;uniform float contrast;"
    "uniform float brightness;out vec4 colourOut;"
    "void main() {"
    "     colourOut = texture(videoTexture, uv);"
    "     colourOut = vec4(colourOut.g, colourOut.b, colourOut.a, colourOut.r); "
    "     colourOut = vec4(((colourOut.rgb - vec3(0.5)) * contrast + vec3(0.5)), colourOut.w);"
    "     colourOut = vec4((colourOut.rgb + vec3(brightness)), colourOut.w);"
    "     colourOut = colourOut * multiplier16bit; "
    "     colourOut = vec4(colourOut.a * colourOut.r, colourOut.a * colourOut.g, colourOut.a * colourOut.b, "
    "colourOut.a); }";

} // namespace

ContrastRender::ContrastRender() : mQuad(2) {
    auto shader = std::make_unique<OpenglShader>(kVertexSource, kFragmentSource);
    FullTargetQuad::bindAttributes(*shader);
    mShader = shader.release();
}

ContrastRender::~ContrastRender() { delete mShader; }

void ContrastRender::draw(unsigned int texture, float multiplier) {
    mQuad.draw(*mShader, [&] {
        FullTargetQuad::setTextureUniforms(*mShader, texture, multiplier);
        mShader->setUniform1f("contrast", mContrast);
        mShader->setUniform1f("brightness", mBrightness / kBrightnessScale);
    });
}

} // namespace Ombrique::GaussianBlur
