#pragma once

#include "Plugins/Shared/GL/AEOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenglMainFrameBuffer.h"

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

    static std::vector<Texel> readTexture(unsigned texture) {
        std::vector<Texel> texels(kTexels);
        gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
        gl::glGetTexImage(gl::GL_TEXTURE_2D, 0, gl::GL_RGBA, gl::GL_FLOAT, texels.data());
        gl::glBindTexture(gl::GL_TEXTURE_2D, 0);
        return texels;
    }

    static int integer(gl::GLenum name) {
        std::array<int, 4> values{};
        gl::glGetIntegerv(name, values.data());
        return values[0];
    }

    /// How many of the names up to 200 `exists` knows, such as glIsTexture.
    static int living(gl::GLboolean (*exists)(unsigned)) {
        int count = 0;
        for (unsigned name = 1; name <= 200; ++name)
            count += exists(name) == gl::GL_TRUE ? 1 : 0;
        return count;
    }

    /// How the texture was made; it goes. It is of floats for GL_RGBA32F.
    static void expectTexture(unsigned texture, gl::GLenum format, gl::GLenum minification, gl::GLenum magnification) {
        gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
        for (const auto& [name, expected] : {std::pair{gl::GL_TEXTURE_MIN_FILTER, minification},
                                             {gl::GL_TEXTURE_MAG_FILTER, magnification},
                                             {gl::GL_TEXTURE_WRAP_S, gl::GL_CLAMP_TO_EDGE},
                                             {gl::GL_TEXTURE_WRAP_T, gl::GL_CLAMP_TO_EDGE}}) {
            int value = 0;
            gl::glGetTexParameteriv(gl::GL_TEXTURE_2D, name, &value);
            EXPECT_EQ(static_cast<gl::GLenum>(value), expected) << static_cast<unsigned>(name);
        }
        int type = 0;
        gl::glGetTexLevelParameteriv(gl::GL_TEXTURE_2D, 0, gl::GL_TEXTURE_RED_TYPE, &type);
        EXPECT_EQ(static_cast<gl::GLenum>(type) == gl::GL_FLOAT, format == gl::GL_RGBA32F);
        gl::glDeleteTextures(1, &texture);
    }

    GaussianBlur::AEOpenGLContext context{nullptr};
    GaussianBlur::AEOpenglMainFrameBuffer frameBuffer;
};

} // namespace Ombrique::Tests
