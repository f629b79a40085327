#include "Plugins/Shared/GL/OpenglShader.h"
#include "Plugins/Shared/Math/Affine.h"
#include "Plugins/Shared/Math/Color.h"
#include "Plugins/Shared/Math/Mat4.h"
#include "Plugins/Shared/Math/Vec2.h"
#include "Plugins/Shared/Math/Vec3.h"
#include "Plugins/Shared/Math/Vec4.h"
#include "Tests/Shared/GL/PipelineTest.h"

#include <functional>

using namespace gl;

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;

using ShaderTest = PipelineTest;

TEST_F(ShaderTest, AttributesAreDescribed) {
    OpenglShader shader("#version 330\nin float a1; in vec2 a2; in vec3 a3; in vec4 a4;"
                        "void main() { gl_Position = a4 + vec4(a3, a1) + vec4(a2, a2); }",
                        "#version 330\nout vec4 c; void main() { c = vec4(1.0); }");
    for (const auto& [name, location] : {std::pair{"a4", 2}, {"a3", 7}, {"a1", 5}, {"a2", 3}, {"a4", 1}})
        shader.addAttributeBinding(name, location); // the first for a name stays
    shader.useProgram();
    unsigned vertexArray = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    const struct {
        const char* name;
        std::function<void()> set;
        unsigned location;
        int components;
        GLenum type = GL_FLOAT;
    } rows[] = {
        {"1iv", [&] { shader.setAttribute1iv(9, nullptr, 48); }, 9, 1, GL_INT},
        {"1fv", [&] { shader.setAttribute1fv(9, nullptr, 48); }, 9, 1},
        {"2fv", [&] { shader.setAttribute2fv(9, nullptr, 48); }, 9, 2},
        {"3fv", [&] { shader.setAttribute3fv(9, nullptr, 48); }, 9, 3},
        {"4fv", [&] { shader.setAttribute4fv(9, nullptr, 48); }, 9, 4},
        {"1fv by name", [&] { shader.setAttribute1fv("a1", nullptr, 48); }, 5, 1},
        {"2fv by name", [&] { shader.setAttribute2fv("a2", nullptr, 48); }, 3, 2},
        {"3fv by name", [&] { shader.setAttribute3fv("a3", nullptr, 48); }, 7, 3},
        {"4fv by name", [&] { shader.setAttribute4fv("a4", nullptr, 48); }, 2, 4},
    };
    for (const auto& row : rows) {
        row.set();
        std::vector<int> state;
        for (const GLenum name : {GL_VERTEX_ATTRIB_ARRAY_ENABLED, GL_VERTEX_ATTRIB_ARRAY_SIZE,
                                  GL_VERTEX_ATTRIB_ARRAY_TYPE, GL_VERTEX_ATTRIB_ARRAY_STRIDE})
            glGetVertexAttribiv(row.location, name, &state.emplace_back());
        EXPECT_EQ(state, (std::vector{1, row.components, static_cast<int>(row.type), 48})) << row.name;
        shader.disableVertexAttributeArray(static_cast<int>(row.location));
        glVertexAttribPointer(row.location, 4, GL_SHORT, GL_TRUE, 0, nullptr); // another than any row
    }
    shader.setAttribute4fv("never there", nullptr, 16);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_F(ShaderTest, UniformsArriveInTheirOrder) {
    OpenglShader shader(
        "#version 330\nvoid main() { gl_Position = vec4(0); }",
        "#version 330\nout vec4 c; uniform float f1; uniform vec2 f2; uniform vec3 f3; uniform vec4 f4;"
        "uniform int i1; uniform ivec2 i2; uniform ivec3 i3; uniform ivec4 i4;"
        "uniform float fv1[2]; uniform vec2 fv2[2]; uniform vec3 fv3[2]; uniform vec4 fv4[2];"
        "uniform int iv1[2]; uniform ivec2 iv2[2]; uniform ivec3 iv3[2]; uniform ivec4 iv4[2];"
        "uniform mat3 m3[2]; uniform mat4 m4;"
        "void main() { c = vec4(f1 + fv1[1] + float(i1 + iv1[1])) + (f2 + fv2[1] + vec2(i2 + iv2[1])).xyxy +"
        "(m3[0] * m3[1] * (f3 + fv3[1] + vec3(i3 + iv3[1]))).xyzx + m4 * (f4 + fv4[1] + vec4(i4 + iv4[1])) ; }");
    shader.useProgram();
    const float floats[] = {1, 2, 3, 4, 5, 6, 7, 8};
    const int integers[] = {9, 10, 11, 12, 13, 14, 15, 16};
    Affine affines[] = {Affine(1, 2, 3, 4, 5, 6), Affine(-7, 8, 9, -10, 11, 12)};
    const Mat4 rows(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17, false);
    const struct {
        const char* uniform;
        std::function<void()> set;
        std::vector<float> value; // matrices column by column, as OpenGL keeps them
    } cases[] = {
        {"f1", [&] { shader.setUniform1f("f1", 1); }, {1}},
        {"f2", [&] { shader.setUniform2f("f2", 1, 2); }, {1, 2}},
        {"f3", [&] { shader.setUniform3f("f3", 1, 2, 3); }, {1, 2, 3}},
        {"f4", [&] { shader.setUniform4f("f4", 1, 2, 3, 4); }, {1, 2, 3, 4}},
        {"i1", [&] { shader.setUniform1i("i1", 1); }, {1}},
        {"i2", [&] { shader.setUniform2i("i2", 1, 2); }, {1, 2}},
        {"i3", [&] { shader.setUniform3i("i3", 1, 2, 3); }, {1, 2, 3}},
        {"i4", [&] { shader.setUniform4i("i4", 1, 2, 3, 4); }, {1, 2, 3, 4}},
        {"fv1[1]", [&] { shader.setUniform1fv("fv1", floats, 2); }, {2}},
        {"fv2[1]", [&] { shader.setUniform2fv("fv2", floats, 2); }, {3, 4}},
        {"fv3[1]", [&] { shader.setUniform3fv("fv3", floats, 2); }, {4, 5, 6}},
        {"fv4[1]", [&] { shader.setUniform4fv("fv4", floats, 2); }, {5, 6, 7, 8}},
        {"iv1[1]", [&] { shader.setUniform1iv("iv1", integers, 2); }, {10}},
        {"iv2[1]", [&] { shader.setUniform2iv("iv2", integers, 2); }, {11, 12}},
        {"iv3[1]", [&] { shader.setUniform3iv("iv3", integers, 2); }, {12, 13, 14}},
        {"iv4[1]", [&] { shader.setUniform4iv("iv4", integers, 2); }, {13, 14, 15, 16}},
        {"f2", [&] { shader.setUniform2f("f2", Vec2(0.1, 2.5)); }, {0.1f, 2.5f}},
        {"f3", [&] { shader.setUniform3f("f3", Vec3(0.1, 2.5, -3)); }, {0.1f, 2.5f, -3}},
        {"f4", [&] { shader.setUniform4f("f4", Vec4(0.1, 2.5, -3, 4)); }, {0.1f, 2.5f, -3, 4}},
        {"f4", [&] { shader.setUniform4f("f4", Color(0.5, 0.25, 0.75, 0.125)); }, {0.5, 0.25, 0.75, 0.125}},
        {"m3[0]", [&] { shader.setUniformMatrix3f("m3", affines, 2); }, {1, 2, 0, 3, 4, 0, 5, 6, 1}},
        {"m3[1]", [] {}, {-7, 8, 0, 9, -10, 0, 11, 12, 1}},
        {"m4",
         [&] { shader.setUniformMatrix4f("m4", rows, 1); },
         {1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 17}},
    };
    const auto program = static_cast<unsigned>(integer(GL_CURRENT_PROGRAM));
    for (const auto& row : cases) {
        row.set();
        std::vector<float> value(16);
        glGetUniformfv(program, shader.getUniformLocation(row.uniform), value.data());
        value.resize(row.value.size());
        EXPECT_EQ(value, row.value) << row.uniform;
    }
}

} // namespace

} // namespace Ombrique::Tests
