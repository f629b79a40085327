#include "Plugins/Shared/GL/FullTargetQuad.h"
#include "Plugins/Shared/Math/Affine.h"
#include "Plugins/Shared/Math/Color.h"
#include "Plugins/Shared/Math/Mat4.h"
#include "Plugins/Shared/Math/Vec2.h"
#include "Plugins/Shared/Math/Vec3.h"
#include "Plugins/Shared/Math/Vec4.h"
#include "Tests/Shared/GL/PipelineFixture.h"

#include <string>

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;

class MathFormsTest : public PipelineTest {
protected:
    MathFormsTest() { frameBuffer.prepare(kWidth, kHeight, false); }

    static int levelParameter(int level, gl::GLenum name) {
        int value = 0;
        gl::glGetTexLevelParameteriv(gl::GL_TEXTURE_2D, level, name, &value);
        return value;
    }

    /// What a program draws whose colour is the GLSL expression `colour` of the uniforms that it declares and `set`
    /// sets.
    template <typename Set> Texel drawn(const std::string& uniforms, const std::string& colour, Set set) {
        OpenglShader shader("#version 330\nin vec2 position; void main() { gl_Position = vec4(position, 0.0, 1.0); }",
                            "#version 330\n" + uniforms + "out vec4 c; void main() { c = " + colour + "; }");
        FullTargetQuad::bindAttributes(shader);
        FullTargetQuad quad(2);
        const unsigned texture = frameBuffer.createFloatRenderTexture(false, false);
        gl::glViewport(0, 0, kWidth, kHeight);
        frameBuffer.pushNormalRenderContext(texture);
        quad.draw(shader, [&] { set(shader); });
        frameBuffer.popNormalRenderContext();
        const Texel texel = readTexture(texture).back();
        gl::glDeleteTextures(1, &texture);
        EXPECT_EQ(gl::glGetError(), gl::GL_NO_ERROR);
        return texel;
    }
};

TEST_F(MathFormsTest, VectorsAndColoursArriveInFieldOrder) {
    EXPECT_EQ(drawn("uniform vec2 u;", "vec4(u, 0.0, 1.0)", [](auto& s) { s.setUniform2f("u", Vec2(0.1, 2.5)); }),
              (Texel{0.1F, 2.5F, 0.0F, 1.0F}));
    EXPECT_EQ(drawn("uniform vec3 u;", "vec4(u, 1.0)", [](auto& s) { s.setUniform3f("u", Vec3(0.1, 2.5, -3.0)); }),
              (Texel{0.1F, 2.5F, -3.0F, 1.0F}));
    EXPECT_EQ(drawn("uniform vec4 u;", "u", [](auto& s) { s.setUniform4f("u", Vec4(0.1, 2.5, -3.0, 4.0)); }),
              (Texel{0.1F, 2.5F, -3.0F, 4.0F}));
    EXPECT_EQ(drawn("uniform vec4 u;", "u", [](auto& s) { s.setUniform4f("u", Color(0.5, 0.25, 0.75, 0.125)); }),
              (Texel{0.5F, 0.25F, 0.75F, 0.125F}));
}

/// Each matrix moves a point in the shader as it does on the CPU; every element counts.
TEST_F(MathFormsTest, MatricesMapPointsAsTheirTypesDo) {
    Affine affines[] = {Affine(1, 2, 3, 4, 5, 6), Affine(-7, 8, 9, -10, 11, 12)};
    for (const std::string index : {"0", "1"}) {
        const Texel point = drawn("uniform mat3 u[2];", "vec4(u[" + index + "] * vec3(3.0, 5.0, 1.0), 7.0)",
                                  [&](auto& s) { s.setUniformMatrix3f("u", affines, 2); });
        const double* m = affines[index == "1"].m;
        EXPECT_EQ(point, (Texel{static_cast<float>(m[0] * 3 + m[1] * 5 + m[2]),
                                static_cast<float>(m[3] * 3 + m[4] * 5 + m[5]), 1.0F, 7.0F}));
    }
    Mat4 matrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17, true);
    const Vec4 mapped = matrix * Vec4(2, 3, 5, 7);
    EXPECT_EQ(drawn("uniform mat4 u;", "u * vec4(2.0, 3.0, 5.0, 7.0)",
                    [&](auto& s) { s.setUniformMatrix4f("u", matrix, 1); }),
              (Texel{static_cast<float>(mapped.x), static_cast<float>(mapped.y), static_cast<float>(mapped.z),
                     static_cast<float>(mapped.w)}));
    OpenglShader unbuilt("", "");
    EXPECT_DEBUG_DEATH(unbuilt.setUniformMatrix4f("u", matrix, 2), "one matrix");
}

TEST_F(MathFormsTest, AMipLevelIsRenderedAtItsSize) {
    const unsigned texture = frameBuffer.createRenderTexture(Vec2(12.9, 6.2), true);
    gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
    gl::glGenerateMipmap(gl::GL_TEXTURE_2D);
    frameBuffer.pushNormalRenderContext(texture, Vec2(6.9, 3.5), 1);
    EXPECT_EQ(viewport(), (std::array{0, 0, 6, 3}));
    gl::glClearColor(1.0F, 0.0F, 0.0F, 1.0F);
    gl::glClear(gl::GL_COLOR_BUFFER_BIT);
    frameBuffer.popNormalRenderContext();
    gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
    for (const auto& [level, width, height, red] : {std::array{0, 12, 6, 0}, {1, 6, 3, 255}, {2, 3, 1, 0}}) {
        EXPECT_EQ(levelParameter(level, gl::GL_TEXTURE_WIDTH), width);
        EXPECT_EQ(levelParameter(level, gl::GL_TEXTURE_HEIGHT), height);
        std::vector<std::uint8_t> pixels(12 * 6 * 4);
        gl::glGetTexImage(gl::GL_TEXTURE_2D, level, gl::GL_RGBA, gl::GL_UNSIGNED_BYTE, pixels.data());
        EXPECT_EQ(pixels[0], red) << "level " << level;
    }
    gl::glDeleteTextures(1, &texture);
    const unsigned floats = frameBuffer.createFloatRenderTexture(Vec2(3.0, 2.0), true, false);
    gl::glBindTexture(gl::GL_TEXTURE_2D, floats);
    EXPECT_EQ(static_cast<gl::GLenum>(levelParameter(0, gl::GL_TEXTURE_INTERNAL_FORMAT)), gl::GL_RGBA32F);
    gl::glDeleteTextures(1, &floats);
}

} // namespace

} // namespace Ombrique::Tests
