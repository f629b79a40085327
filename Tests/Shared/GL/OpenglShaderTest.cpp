#include "Plugins/Shared/GL/OpenglShader.h"

#include "Tests/Shared/GL/PipelineFixture.h"

#include <string>

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;

const std::string kVertex = "#version 330\nin vec2 a; in vec2 b; void main() { gl_Position = vec4(a, b); }";
const std::string kFragment = "#version 330\nout vec4 c; uniform vec3 used; uniform float spare;"
                              "void main() { c = vec4(used, 1.0); }";
const std::string kGeometry = "#version 330\nlayout(points) in; layout(points, max_vertices = 1) out;"
                              "void main() { gl_Position = gl_in[0].gl_Position; EmitVertex(); }";

class OpenglShaderTest : public PipelineTest {
protected:
    /// What useProgram prints.
    static std::string use(OpenglShader& shader) {
        testing::internal::CaptureStdout();
        shader.useProgram();
        std::fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }

    /// Shaders and programs have their names in common.
    static int livingObjects() {
        int count = 0;
        for (unsigned name = 1; name < 200; ++name)
            count += gl::glIsShader(name) == gl::GL_TRUE || gl::glIsProgram(name) == gl::GL_TRUE ? 1 : 0;
        return count;
    }

    static Texel readUniform(const OpenglShader& shader, const std::string& name) {
        Texel values{};
        gl::glGetUniformfv(static_cast<unsigned>(integer(gl::GL_CURRENT_PROGRAM)), shader.getUniformLocation(name),
                           values.data());
        return values;
    }
};

TEST_F(OpenglShaderTest, FailuresPrintOneLogEachTimeAndLeaveNothingBehind) {
    const std::string broken = "#version 330\n" + std::string(3000, '!');
    const std::string unlinked = "#version 330\nvoid other(); void main() { other(); }";
    struct Case {
        std::string start;
        OpenglShader shader;
    };
    Case cases[] = {{"Shader vert error:\n", {broken, broken}},
                    {"Shader frag error:\n", {kVertex, broken}},
                    {"Shader geo error:\n", {kVertex, kFragment, broken}},
                    {"Program error:\n", {unlinked, kFragment}}};
    for (Case& testCase : cases) {
        SCOPED_TRACE(testCase.start);
        const std::string text = use(testCase.shader);
        EXPECT_EQ(text.substr(0, testCase.start.size()), testCase.start);
        EXPECT_EQ(text.find(" error:\n", testCase.start.size()), std::string::npos) << text;
        EXPECT_LE(text.size(), testCase.start.size() + 512 + 1);
        EXPECT_EQ(use(testCase.shader), text);
        EXPECT_EQ(integer(gl::GL_CURRENT_PROGRAM), 0);
        EXPECT_EQ(testCase.shader.getUniformLocation("used"), -1);
        testCase.shader.setUniform3f("used", 1.0F, 2.0F, 3.0F);
        testCase.shader.setAttribute3fv(0, nullptr, 0);
        EXPECT_EQ(livingObjects(), 0);
    }
    EXPECT_EQ(gl::glGetError(), gl::GL_NO_ERROR);
}

TEST_F(OpenglShaderTest, AttributesKeepTheirFirstLocationAndSettersSkipWhatIsNotThere) {
    {
        OpenglShader shader(kVertex, kFragment);
        shader.addAttributeBinding("b", 3);
        shader.addAttributeBinding("a", 5);
        shader.addAttributeBinding("b", 1);
        EXPECT_EQ(use(shader), "");
        EXPECT_EQ(livingObjects(), 1); // the program alone
        EXPECT_EQ(shader.getAttributeLocation("a"), 5);
        EXPECT_EQ(shader.getAttributeLocation("b"), 3);
        shader.setUniform1f("spare", 1.0F); // optimised away
        shader.setUniform1f("never there", 1.0F);
        shader.setAttribute4fv("never there", nullptr, 16);
        shader.setAttribute1iv(-1, nullptr, 4);
        shader.disableVertexAttributeArray("never there");
        EXPECT_EQ(gl::glGetError(), gl::GL_NO_ERROR);
        shader.setAttribute2fv(-1, nullptr, 8); // handed on
        EXPECT_EQ(gl::glGetError(), gl::GL_INVALID_VALUE);
    }
    gl::glUseProgram(0); // a program in use outlives its deletion
    EXPECT_EQ(livingObjects(), 0);
}

TEST_F(OpenglShaderTest, AGeometryStageIsBuiltInWhenThereIsOne) {
    OpenglShader shader(kVertex, kFragment, kGeometry);
    EXPECT_EQ(use(shader), "");
    int vertices = 0;
    gl::glGetProgramiv(static_cast<unsigned>(integer(gl::GL_CURRENT_PROGRAM)), gl::GL_GEOMETRY_VERTICES_OUT, &vertices);
    EXPECT_EQ(vertices, 1);
}

TEST_F(OpenglShaderTest, UniformsArriveInTheirOrder) {
    OpenglShader shader(kVertex,
                        "#version 330\nout vec4 c; uniform vec2 f2; uniform vec3 f3; uniform vec4 f4;"
                        "uniform ivec2 i2; uniform ivec3 i3; uniform ivec4 i4; uniform vec3 fv[2]; uniform ivec2 iv[2];"
                        "void main() { c = f2.xyxy * f3.xyzx * f4 * vec4(i2, i2) * vec4(i3, 1) * vec4(i4) *"
                        "vec4(fv[0] + fv[1], 1.0) * vec4(iv[0], iv[1]); }");
    ASSERT_EQ(use(shader), "");
    const float floats[] = {1, 2, 3, 4, 5, 6};
    const int integers[] = {7, 8, 9, 10};
    shader.setUniform2f("f2", 1, 2);
    shader.setUniform3f("f3", 1, 2, 3);
    shader.setUniform4f("f4", 1, 2, 3, 4);
    shader.setUniform2i("i2", 1, 2);
    shader.setUniform3i("i3", 1, 2, 3);
    shader.setUniform4i("i4", 1, 2, 3, 4);
    shader.setUniform3fv("fv", floats, 2);
    shader.setUniform2iv("iv", integers, 2);
    EXPECT_EQ(gl::glGetError(), gl::GL_NO_ERROR);
    for (const std::string kind : {"f", "i"}) {
        EXPECT_EQ(readUniform(shader, kind + "2"), (Texel{1, 2}));
        EXPECT_EQ(readUniform(shader, kind + "3"), (Texel{1, 2, 3}));
        EXPECT_EQ(readUniform(shader, kind + "4"), (Texel{1, 2, 3, 4}));
    }
    EXPECT_EQ(readUniform(shader, "fv[1]"), (Texel{4, 5, 6}));
    EXPECT_EQ(readUniform(shader, "iv[1]"), (Texel{9, 10}));
}

} // namespace

} // namespace Ombrique::Tests
