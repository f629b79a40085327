#include "Plugins/Shared/GL/OpenglShader.h"
#include "Plugins/Shared/Math/Affine.h"
#include "Plugins/Shared/Math/Color.h"
#include "Plugins/Shared/Math/Mat4.h"
#include "Plugins/Shared/Math/Vec2.h"
#include "Plugins/Shared/Math/Vec3.h"
#include "Plugins/Shared/Math/Vec4.h"

#include <glbinding/gl/gl.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <memory>

using namespace gl;

namespace Ombrique::GaussianBlur {

namespace {

constexpr std::size_t kFloatsOfMatrix3 = 9;

float narrow(double value) { return static_cast<float>(value); }

/// The three columns of a 2 by 3 matrix that stands row by row, each with its element of the row (0, 0, 1).
void writeColumns(const Affine& affine, float* columns) {
    const double* m = affine.m;
    const std::array<float, kFloatsOfMatrix3> values = {
        narrow(m[0]), narrow(m[3]), 0.0f, narrow(m[1]), narrow(m[4]), 0.0f, narrow(m[2]), narrow(m[5]), 1.0f};
    std::copy(values.begin(), values.end(), columns);
}

} // namespace

void OpenglShader::setUniform2f(const std::string& name, const Vec2& value) const {
    setUniform2f(name, narrow(value.x), narrow(value.y));
}

void OpenglShader::setUniform3f(const std::string& name, const Vec3& value) const {
    setUniform3f(name, narrow(value.x), narrow(value.y), narrow(value.z));
}

void OpenglShader::setUniform4f(const std::string& name, const Vec4& value) const {
    setUniform4f(name, narrow(value.x), narrow(value.y), narrow(value.z), narrow(value.w));
}

void OpenglShader::setUniform4f(const std::string& name, const Color& value) const {
    setUniform4f(name, narrow(value.r()), narrow(value.g()), narrow(value.b()), narrow(value.a()));
}

void OpenglShader::setUniformMatrix3f(const std::string& name, Affine* matrices, int count) const {
    withUniform(name, [=](int location) {
        const auto matrixCount = static_cast<std::size_t>(count);
        const auto floats = std::make_unique<float[]>(kFloatsOfMatrix3 * matrixCount);
        for (std::size_t i = 0; i < matrixCount; ++i)
            writeColumns(matrices[i], &floats[kFloatsOfMatrix3 * i]);
        glUniformMatrix3fv(location, count, GL_FALSE, floats.get());
    });
}

void OpenglShader::setUniformMatrix4f(const std::string& name, const Mat4& matrix, int count) const {
    assert(count == 1 && "setUniformMatrix4f takes one matrix");
    withUniform(name, [&](int location) {
        std::array<float, 16> floats;
        std::transform(std::begin(matrix.m), std::end(matrix.m), floats.begin(), narrow);
        glUniformMatrix4fv(location, count, GL_FALSE, floats.data());
    });
}

} // namespace Ombrique::GaussianBlur
