#include "Plugins/Shared/GL/FullTargetQuad.h"

#include <glbinding/gl/gl.h>

#include <cstdint>
#include <vector>

using namespace gl;

namespace Ombrique::GaussianBlur {

namespace {

constexpr int kPositionLocation = 0;
constexpr int kTextureCoordinateLocation = 1;
constexpr int kTextureCoordinateComponents = 2;

/// Two triangles over the whole of clip space.
constexpr float kCorners[][2] = {{1.0f, -1.0f}, {1.0f, 1.0f},   {-1.0f, 1.0f},
                                 {-1.0f, 1.0f}, {-1.0f, -1.0f}, {1.0f, -1.0f}};

/// For each corner its position, with a third coordinate of 0 where there are to be three, and its texture coordinate.
std::vector<float> makeVertices(int positionComponents) {
    std::vector<float> vertices;
    for (const auto& [x, y] : kCorners) {
        vertices.insert(vertices.end(), {x, y});
        if (positionComponents == 3)
            vertices.push_back(0.0f);
        vertices.insert(vertices.end(), {0.5f * (x + 1.0f), 0.5f * (y + 1.0f)});
    }
    return vertices;
}

/// A byte offset into the bound buffer, in the form that the attribute setters take.
const float* offset(int floats) {
    return reinterpret_cast<const float*>(static_cast<std::uintptr_t>(floats) * sizeof(float));
}

} // namespace

FullTargetQuad::~FullTargetQuad() {
    if (const unsigned* const vertexArray = mVertexArray.find(); vertexArray && *vertexArray != 0)
        glDeleteVertexArrays(1, vertexArray);
    if (mVertexBuffer != 0)
        glDeleteBuffers(1, &mVertexBuffer);
}

void FullTargetQuad::bindAttributes(OpenglShader& shader) {
    shader.addAttributeBinding("position", kPositionLocation);
    shader.addAttributeBinding("input_uv", kTextureCoordinateLocation);
}

void FullTargetQuad::drawTexture(OpenglShader& shader, unsigned texture, float multiplier) {
    draw(shader, [&] { setTextureUniforms(shader, texture, multiplier); });
}

void FullTargetQuad::setTextureUniforms(const OpenglShader& shader, unsigned texture, float multiplier) {
    shader.setUniformTexture("videoTexture", static_cast<int>(GL_TEXTURE_2D), static_cast<int>(texture), 0);
    shader.setUniform1f("multiplier16bit", multiplier);
}

/// Makes what is missing, and returns the current context's vertex array.
unsigned FullTargetQuad::makeVertexObjects() {
    unsigned& vertexArray = mVertexArray.current();
    if (vertexArray == 0) {
        glGenVertexArrays(1, &vertexArray);
        glBindVertexArray(vertexArray);
    }
    if (mVertexBuffer == 0) {
        const std::vector<float> vertices = makeVertices(mPositionComponents);
        glGenBuffers(1, &mVertexBuffer);
        glBindBuffer(GL_ARRAY_BUFFER, mVertexBuffer);
        glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(float)), vertices.data(),
                     GL_STATIC_DRAW);
    }
    return vertexArray;
}

void FullTargetQuad::begin(OpenglShader& shader) {
    const unsigned vertexArray = makeVertexObjects();
    shader.useProgram();
    glBindVertexArray(vertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, mVertexBuffer);
    const int stride = (mPositionComponents + kTextureCoordinateComponents) * static_cast<int>(sizeof(float));
    if (mPositionComponents == 2)
        shader.setAttribute2fv(kPositionLocation, offset(0), stride);
    else
        shader.setAttribute3fv(kPositionLocation, offset(0), stride);
    shader.setAttribute2fv(kTextureCoordinateLocation, offset(mPositionComponents), stride);
}

void FullTargetQuad::end(OpenglShader& shader) {
    glDrawArrays(GL_TRIANGLES, 0, 6);
    shader.disableVertexAttributeArray(kPositionLocation);
    shader.disableVertexAttributeArray(kTextureCoordinateLocation);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

} // namespace Ombrique::GaussianBlur
