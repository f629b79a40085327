#include "Benchmarks/BareFrame.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/glcorearb.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Ombrique::Benchmarks {

namespace {

constexpr int kWantedSamples = 8;

constexpr const char* kFlatVertexSource = "#version 330\nin vec2 position; in vec2 input_uv; out vec2 uv;"
                                          "void main() { uv = input_uv; gl_Position = vec4(position, 0.0, 1.0); }";
constexpr const char* kDeepVertexSource = "#version 330\nin vec3 position; in vec2 input_uv; out vec2 uv;"
                                          "void main() { uv = input_uv; gl_Position = vec4(position, 1.0); }";

// The effect's arithmetic, operation by operation.
constexpr const char* kContrastSource = "#version 330\nin vec2 uv; out vec4 colourOut; uniform sampler2D videoTexture;"
                                        "uniform float multiplier16bit, contrast, brightness;"
                                        "void main() { vec4 t = texture(videoTexture, uv);"
                                        "vec4 c = vec4((t.gba - 0.5) * contrast + 0.5 + brightness, t.r);"
                                        "c *= multiplier16bit; colourOut = vec4(c.a * c.rgb, c.a); }";
constexpr const char* kScreenSource = "#version 330\nin vec2 uv; out vec4 colourOut; uniform sampler2D videoTexture;"
                                      "uniform float multiplier16bit;"
                                      "void main() { vec4 t = texture(videoTexture, uv); vec4 c = vec4(0);"
                                      "if (t.a != 0) c = vec4(t.a, t.r / t.a, t.g / t.a, t.b / t.a);"
                                      "colourOut = c / multiplier16bit; }";

constexpr float kCorners[6][2] = {{1, -1}, {1, 1}, {-1, 1}, {-1, 1}, {-1, -1}, {1, -1}};

const void* offset(int floats) {
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(floats) * sizeof(float));
}

void attachShader(GLuint program, GLenum stage, const char* source) {
    const GLuint shader = glCreateShader(stage);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    glAttachShader(program, shader);
    glDeleteShader(shader); // once the program is gone
}

void setUniform(GLuint program, const char* name, float value) {
    glUniform1f(glGetUniformLocation(program, name), value);
}

} // namespace

BareFrame::BareFrame(int width, int height)
    : mWidth(width), mHeight(height), mContrast(makePass(2, kContrastSource)), mScreen(makePass(3, kScreenSource)),
      mZeros(4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height)), mPicture(mZeros.size()) {
    glGetIntegerv(GL_MAX_SAMPLES, &mSamples);
    mSamples = std::min(mSamples, kWantedSamples);
    glGenFramebuffers(1, &mFrameBuffer);
    glGenFramebuffers(1, &mResolveFrameBuffer);
    glGenFramebuffers(1, &mMultisampleFrameBuffer);
    glGenRenderbuffers(1, &mOutput);
    glBindRenderbuffer(GL_RENDERBUFFER, mOutput);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA, mWidth, mHeight);
}

BareFrame::~BareFrame() {
    glDeleteFramebuffers(1, &mFrameBuffer);
    glDeleteFramebuffers(1, &mResolveFrameBuffer);
    glDeleteFramebuffers(1, &mMultisampleFrameBuffer);
    glDeleteRenderbuffers(1, &mOutput);
    deletePass(mContrast);
    deletePass(mScreen);
}

BareFrame::Pass BareFrame::makePass(int positionComponents, const char* fragmentSource) {
    Pass pass;
    pass.positionComponents = positionComponents;
    pass.program = glCreateProgram();
    attachShader(pass.program, GL_VERTEX_SHADER, positionComponents == 2 ? kFlatVertexSource : kDeepVertexSource);
    attachShader(pass.program, GL_FRAGMENT_SHADER, fragmentSource);
    glBindAttribLocation(pass.program, 0, "position");
    glBindAttribLocation(pass.program, 1, "input_uv");
    glLinkProgram(pass.program);

    std::vector<float> vertices;
    for (const auto& [x, y] : kCorners) {
        vertices.insert(vertices.end(), {x, y});
        vertices.resize(vertices.size() + static_cast<std::size_t>(positionComponents) - 2);
        vertices.insert(vertices.end(), {(x + 1) / 2, (y + 1) / 2});
    }
    glGenVertexArrays(1, &pass.vertexArray);
    glGenBuffers(1, &pass.vertexBuffer);
    glBindBuffer(GL_ARRAY_BUFFER, pass.vertexBuffer);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(float)), vertices.data(),
                 GL_STATIC_DRAW);
    return pass;
}

void BareFrame::deletePass(const Pass& pass) {
    glDeleteProgram(pass.program);
    glDeleteVertexArrays(1, &pass.vertexArray);
    glDeleteBuffers(1, &pass.vertexBuffer);
}

void BareFrame::beginPass(const Pass& pass, unsigned texture) {
    glUseProgram(pass.program);
    glBindVertexArray(pass.vertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, pass.vertexBuffer);
    const int stride = (pass.positionComponents + 2) * static_cast<int>(sizeof(float));
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, pass.positionComponents, GL_FLOAT, GL_FALSE, stride, offset(0));
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, stride, offset(pass.positionComponents));
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    glUniform1i(glGetUniformLocation(pass.program, "videoTexture"), 0);
    setUniform(pass.program, "multiplier16bit", 1.0F);
}

void BareFrame::endPass() {
    glDrawArrays(GL_TRIANGLES, 0, 6);
    glDisableVertexAttribArray(0);
    glDisableVertexAttribArray(1);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

unsigned BareFrame::makeTexture() {
    unsigned texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return texture;
}

void BareFrame::makeTarget() {
    glDrawBuffer(GL_COLOR_ATTACHMENT0);
    glDisable(GL_BLEND);
    glEnable(GL_MULTISAMPLE);
    glGenRenderbuffers(1, &mTarget);
    glBindRenderbuffer(GL_RENDERBUFFER, mTarget);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, mSamples, GL_RGBA, mWidth, mHeight);
    glBindFramebuffer(GL_FRAMEBUFFER, mMultisampleFrameBuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, mTarget);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glViewport(0, 0, mWidth, mHeight);
}

void BareFrame::upload(const void* input) {
    mTexture = makeTexture();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, mWidth, mHeight, 0, GL_RGBA, GL_FLOAT, nullptr);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, mWidth);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, mWidth, mHeight, GL_RGBA, GL_UNSIGNED_BYTE, input);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void BareFrame::contrastPass(float contrast, float brightness) {
    beginPass(mContrast, mTexture);
    setUniform(mContrast.program, "contrast", contrast);
    setUniform(mContrast.program, "brightness", brightness / 100.0F);
    endPass();
    glDeleteTextures(1, &mTexture);
}

void BareFrame::resolve() {
    mTexture = makeTexture();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, mWidth, mHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE, mZeros.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, mMultisampleFrameBuffer);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, mResolveFrameBuffer);
    glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, mTexture, 0);
    glBlitFramebuffer(0, 0, mWidth, mHeight, 0, 0, mWidth, mHeight, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glDeleteRenderbuffers(1, &mTarget);
}

void BareFrame::screenPass() {
    glBindFramebuffer(GL_FRAMEBUFFER, mFrameBuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, mOutput);
    glDisable(GL_BLEND);
    glDisable(GL_MULTISAMPLE);
    glClear(GL_COLOR_BUFFER_BIT);
    beginPass(mScreen, mTexture);
    endPass();
    glDeleteTextures(1, &mTexture);
}

void BareFrame::readBack() {
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    glReadPixels(0, 0, mWidth, mHeight, GL_RGBA, GL_UNSIGNED_BYTE, mPicture.data());
}

void BareFrame::copyRows(std::byte* output, std::ptrdiff_t outputRowBytes) const {
    const std::size_t packed = 4 * static_cast<std::size_t>(mWidth);
    for (int y = 0; y < mHeight; ++y)
        std::memcpy(output + y * outputRowBytes, mPicture.data() + static_cast<std::size_t>(y) * packed, packed);
}

void BareFrame::render(const void* input, std::byte* output, std::ptrdiff_t outputRowBytes, float contrast,
                       float brightness) {
    makeTarget();
    upload(input);
    contrastPass(contrast, brightness);
    resolve();
    screenPass();
    readBack();
    copyRows(output, outputRowBytes);
}

} // namespace Ombrique::Benchmarks
