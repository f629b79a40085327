#pragma once

#include "Plugins/Shared/GL/AEOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenglMainFrameBuffer.h"
#include "Tests/Support/OpenGLObjects.h"

#include <glbinding/gl/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace Ombrique::Tests {

using Texel = std::array<float, 4>;

/// A context of the plug-in's own, current for the test, and what tests of the pipeline need from OpenGL.
class PipelineTest : public testing::Test {
protected:
    static constexpr int kWidth = 7;
    static constexpr int kHeight = 5;
    static constexpr std::size_t kTexels = kWidth * kHeight;

    PipelineTest() { context.makeContextCurrent(); }
    ~PipelineTest() override { frameBuffer.destory(); }

    static int integer(gl::GLenum name) {
        std::array<int, 4> values{};
        gl::glGetIntegerv(name, values.data());
        return values[0];
    }

    /// How many objects of a kind, such as "Texture", there are.
    static int living(const char* kind) { return countOpenGLObjects(200).at(kind); }

    static std::vector<Texel> readTexture(unsigned texture, int level = 0) {
        std::vector<Texel> texels(kTexels);
        gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
        gl::glGetTexImage(gl::GL_TEXTURE_2D, level, gl::GL_RGBA, gl::GL_FLOAT, texels.data());
        gl::glBindTexture(gl::GL_TEXTURE_2D, 0);
        return texels;
    }

    /// Each texel is `expectedAt(index)`.
    template <typename Expected>
    static void expectTexels(const std::vector<Texel>& actual, double tolerance, Expected expectedAt) {
        for (std::size_t i = 0; i < actual.size(); ++i)
            for (std::size_t channel = 0; channel < 4; ++channel)
                EXPECT_NEAR(actual[i][channel], expectedAt(i)[channel], tolerance)
                    << "channel " << channel << " of texel " << i;
    }

    /// How the texture was made, of GL_FLOAT or of GL_UNSIGNED_NORMALIZED; it goes.
    static void expectTexture(unsigned texture, gl::GLenum type, gl::GLenum minification, gl::GLenum magnification) {
        gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
        for (const auto& [name, expected] : {std::pair{gl::GL_TEXTURE_MIN_FILTER, minification},
                                             {gl::GL_TEXTURE_MAG_FILTER, magnification},
                                             {gl::GL_TEXTURE_WRAP_S, gl::GL_CLAMP_TO_EDGE},
                                             {gl::GL_TEXTURE_WRAP_T, gl::GL_CLAMP_TO_EDGE}}) {
            int value = 0;
            gl::glGetTexParameteriv(gl::GL_TEXTURE_2D, name, &value);
            EXPECT_EQ(static_cast<gl::GLenum>(value), expected) << static_cast<unsigned>(name);
        }
        int actualType = 0;
        gl::glGetTexLevelParameteriv(gl::GL_TEXTURE_2D, 0, gl::GL_TEXTURE_RED_TYPE, &actualType);
        EXPECT_EQ(static_cast<gl::GLenum>(actualType), type);
        gl::glDeleteTextures(1, &texture);
    }

    GaussianBlur::AEOpenGLContext context{nullptr};
    GaussianBlur::AEOpenglMainFrameBuffer frameBuffer;
};

} // namespace Ombrique::Tests
