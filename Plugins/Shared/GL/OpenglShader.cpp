#include "Plugins/Shared/GL/OpenglShader.h"

#include "Plugins/Shared/Helper/ScopeExit.h"

#include <glbinding/gl/gl.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>

using namespace gl;

namespace Ombrique::GaussianBlur {

namespace {

constexpr int kLogBytes = 512;

/// One shader of a program that is being built.
struct Stage {
    const char* name;
    const std::string* source;
    GLuint shader;
};

/// Reads a log through `read`, one of OpenGL's two functions for that, and prints it.
template <typename Read> void printLog(Read read, unsigned object, const char* format, const char* stage) {
    std::array<char, kLogBytes + 1> log;
    GLsizei length = 0;
    read(object, kLogBytes, &length, log.data());
    log[static_cast<std::size_t>(std::min(length, kLogBytes))] = '\0';
    if (stage != nullptr)
        std::printf(format, stage, log.data());
    else
        std::printf(format, log.data());
}

void dumpShaderErrorS(unsigned shader, const char* stage) {
    printLog(glGetShaderInfoLog, shader, "Shader %s error:\n%s\n", stage);
}

void dumpProgramError(unsigned program) { printLog(glGetProgramInfoLog, program, "Program error:\n%s\n", nullptr); }

bool compile(const Stage& stage) {
    const char* text = stage.source->c_str();
    glShaderSource(stage.shader, 1, &text, nullptr);
    glCompileShader(stage.shader);
    GLint status = 0;
    glGetShaderiv(stage.shader, GL_COMPILE_STATUS, &status);
    if (status != 1)
        dumpShaderErrorS(stage.shader, stage.name);
    return status == 1;
}

bool link(unsigned program, std::span<const Stage> stages, const std::map<std::string, int>& attributeBindings) {
    for (const Stage& stage : stages)
        glAttachShader(program, stage.shader);
    for (const auto& [name, location] : attributeBindings)
        glBindAttribLocation(program, static_cast<GLuint>(location), name.c_str());
    glLinkProgram(program);
    GLint status = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &status);
    if (status != 1)
        dumpProgramError(program);
    return status == 1;
}

void detach(unsigned program, std::span<const Stage> stages) {
    for (const Stage& stage : stages)
        glDetachShader(program, stage.shader);
}

void describeAttribute(int location, int components, GLenum type, const void* pointer, int stride) {
    glEnableVertexAttribArray(static_cast<GLuint>(location));
    glVertexAttribPointer(static_cast<GLuint>(location), components, type, GL_FALSE, stride, pointer);
}

/// The same where the program has such an attribute: its location isn't -1.
void describeExistingAttribute(int location, int components, GLenum type, const void* pointer, int stride) {
    if (location != -1)
        describeAttribute(location, components, type, pointer, stride);
}

} // namespace

OpenglShader::OpenglShader(const std::string& vertexSource, const std::string& fragmentSource)
    : OpenglShader(vertexSource, fragmentSource, std::string()) {}

OpenglShader::OpenglShader(const std::string& vertexSource, const std::string& fragmentSource,
                           const std::string& geometrySource)
    : mVertexSource(vertexSource), mFragmentSource(fragmentSource), mGeometrySource(geometrySource) {}

OpenglShader::~OpenglShader() {
    if (mProgram != 0)
        glDeleteProgram(mProgram);
}

void OpenglShader::addAttributeBinding(const std::string& name, int location) {
    mAttributeBindings.emplace(name, location);
}

void OpenglShader::buildShader() {
    std::array<Stage, 3> storage{{{"vert", &mVertexSource, glCreateShader(GL_VERTEX_SHADER)},
                                  {"frag", &mFragmentSource, glCreateShader(GL_FRAGMENT_SHADER)},
                                  {"geo", &mGeometrySource, 0}}};
    if (!mGeometrySource.empty())
        storage[2].shader = glCreateShader(GL_GEOMETRY_SHADER);
    const std::span<const Stage> stages(storage.data(), mGeometrySource.empty() ? 2 : 3);
    const ScopeExit deleteShaders([stages] {
        for (const Stage& stage : stages)
            glDeleteShader(stage.shader);
    });
    if (!std::all_of(stages.begin(), stages.end(), compile))
        return;
    const GLuint program = glCreateProgram();
    if (!link(program, stages, mAttributeBindings)) {
        glDeleteProgram(program);
        return;
    }
    mProgram = program;
    detach(program, stages);
}

void OpenglShader::useProgram() {
    if (mProgram == 0)
        buildShader();
    glUseProgram(mProgram);
}

int OpenglShader::getUniformLocation(const std::string& name) const {
    return mProgram == 0 ? -1 : glGetUniformLocation(mProgram, name.c_str());
}

int OpenglShader::getAttributeLocation(const std::string& name) const {
    return glGetAttribLocation(mProgram, name.c_str());
}

void OpenglShader::setUniformTexture(const std::string& name, int target, int texture, int unit) const {
    if (mProgram == 0)
        return;
    glActiveTexture(GL_TEXTURE0 + static_cast<unsigned>(unit));
    glBindTexture(static_cast<GLenum>(target), static_cast<GLuint>(texture));
    setUniform1i(name, unit);
}

void OpenglShader::setUniform1i(const std::string& name, int x) const {
    withUniform(name, [=](int location) { glUniform1i(location, x); });
}

void OpenglShader::setUniform2i(const std::string& name, int x, int y) const {
    withUniform(name, [=](int location) { glUniform2i(location, x, y); });
}

void OpenglShader::setUniform3i(const std::string& name, int x, int y, int z) const {
    withUniform(name, [=](int location) { glUniform3i(location, x, y, z); });
}

void OpenglShader::setUniform4i(const std::string& name, int x, int y, int z, int w) const {
    withUniform(name, [=](int location) { glUniform4i(location, x, y, z, w); });
}

void OpenglShader::setUniform1f(const std::string& name, float x) const {
    withUniform(name, [=](int location) { glUniform1f(location, x); });
}

void OpenglShader::setUniform2f(const std::string& name, float x, float y) const {
    withUniform(name, [=](int location) { glUniform2f(location, x, y); });
}

void OpenglShader::setUniform3f(const std::string& name, float x, float y, float z) const {
    withUniform(name, [=](int location) { glUniform3f(location, x, y, z); });
}

void OpenglShader::setUniform4f(const std::string& name, float x, float y, float z, float w) const {
    withUniform(name, [=](int location) { glUniform4f(location, x, y, z, w); });
}

void OpenglShader::setUniform1iv(const std::string& name, const int* values, int count) const {
    withUniform(name, [=](int location) { glUniform1iv(location, count, values); });
}

void OpenglShader::setUniform2iv(const std::string& name, const int* values, int count) const {
    withUniform(name, [=](int location) { glUniform2iv(location, count, values); });
}

void OpenglShader::setUniform3iv(const std::string& name, const int* values, int count) const {
    withUniform(name, [=](int location) { glUniform3iv(location, count, values); });
}

void OpenglShader::setUniform4iv(const std::string& name, const int* values, int count) const {
    withUniform(name, [=](int location) { glUniform4iv(location, count, values); });
}

void OpenglShader::setUniform1fv(const std::string& name, const float* values, int count) const {
    withUniform(name, [=](int location) { glUniform1fv(location, count, values); });
}

void OpenglShader::setUniform2fv(const std::string& name, const float* values, int count) const {
    withUniform(name, [=](int location) { glUniform2fv(location, count, values); });
}

void OpenglShader::setUniform3fv(const std::string& name, const float* values, int count) const {
    withUniform(name, [=](int location) { glUniform3fv(location, count, values); });
}

void OpenglShader::setUniform4fv(const std::string& name, const float* values, int count) const {
    withUniform(name, [=](int location) { glUniform4fv(location, count, values); });
}

void OpenglShader::setAttribute1iv(int location, const int* pointer, int stride) {
    if (mProgram != 0)
        describeExistingAttribute(location, 1, GL_INT, pointer, stride);
}

void OpenglShader::setAttribute1fv(const std::string& name, const float* pointer, int stride) {
    if (mProgram != 0)
        describeExistingAttribute(getAttributeLocation(name), 1, GL_FLOAT, pointer, stride);
}

void OpenglShader::setAttribute1fv(int location, const float* pointer, int stride) {
    if (mProgram != 0)
        describeExistingAttribute(location, 1, GL_FLOAT, pointer, stride);
}

void OpenglShader::setAttribute2fv(const std::string& name, const float* pointer, int stride) {
    if (mProgram != 0)
        describeExistingAttribute(getAttributeLocation(name), 2, GL_FLOAT, pointer, stride);
}

void OpenglShader::setAttribute2fv(int location, const float* pointer, int stride) {
    if (mProgram != 0)
        describeAttribute(location, 2, GL_FLOAT, pointer, stride);
}

void OpenglShader::setAttribute3fv(const std::string& name, const float* pointer, int stride) {
    if (mProgram != 0)
        describeExistingAttribute(getAttributeLocation(name), 3, GL_FLOAT, pointer, stride);
}

void OpenglShader::setAttribute3fv(int location, const float* pointer, int stride) {
    if (mProgram != 0)
        describeAttribute(location, 3, GL_FLOAT, pointer, stride);
}

void OpenglShader::setAttribute4fv(const std::string& name, const float* pointer, int stride) {
    if (mProgram != 0)
        describeExistingAttribute(getAttributeLocation(name), 4, GL_FLOAT, pointer, stride);
}

void OpenglShader::setAttribute4fv(int location, const float* pointer, int stride) {
    if (mProgram != 0)
        describeExistingAttribute(location, 4, GL_FLOAT, pointer, stride);
}

void OpenglShader::disableVertexAttributeArray(int location) {
    if (mProgram != 0)
        glDisableVertexAttribArray(static_cast<GLuint>(location));
}

void OpenglShader::disableVertexAttributeArray(const std::string& name) {
    if (mProgram == 0)
        return;
    const int location = getAttributeLocation(name);
    if (location != -1)
        glDisableVertexAttribArray(static_cast<GLuint>(location));
}

} // namespace Ombrique::GaussianBlur
