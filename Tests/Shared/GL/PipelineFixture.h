#pragma once

#include "Plugins/Shared/GL/AEOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenglMainFrameBuffer.h"

#include <glbinding/gl/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
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

    /// A texture of floats, `kWidth` by `kHeight`. Its texels are never mixed: between floats, the least bit of a
    /// neighbour's alpha would show where there is none.
    static unsigned makeTexture(const std::vector<Texel>& texels) {
        unsigned texture = 0;
        gl::glGenTextures(1, &texture);
        gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
        gl::glTexParameteri(gl::GL_TEXTURE_2D, gl::GL_TEXTURE_MIN_FILTER, gl::GL_NEAREST);
        gl::glTexParameteri(gl::GL_TEXTURE_2D, gl::GL_TEXTURE_MAG_FILTER, gl::GL_NEAREST);
        gl::glTexImage2D(gl::GL_TEXTURE_2D, 0, gl::GL_RGBA32F, kWidth, kHeight, 0, gl::GL_RGBA, gl::GL_FLOAT,
                         texels.data());
        gl::glBindTexture(gl::GL_TEXTURE_2D, 0);
        return texture;
    }

    static std::vector<Texel> readTexture(unsigned texture) {
        std::vector<Texel> texels(kTexels);
        gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
        gl::glGetTexImage(gl::GL_TEXTURE_2D, 0, gl::GL_RGBA, gl::GL_FLOAT, texels.data());
        gl::glBindTexture(gl::GL_TEXTURE_2D, 0);
        return texels;
    }

    /// Texels without symmetry, some of them beyond 0 to 1 and some without alpha (in either layout).
    static std::vector<Texel> asymmetricTexels() {
        std::vector<Texel> texels;
        for (std::size_t i = 0; i < kTexels; ++i) {
            const auto t = static_cast<float>(i) / kTexels;
            texels.push_back(i % 5 == 4 ? Texel{0.0F, 0.7F, t, 0.0F}
                                        : Texel{1.0F - 0.5F * t, 1.2F * t, 0.25F + t * t, 0.1F + 0.9F * t});
        }
        return texels;
    }

    static int integer(gl::GLenum name) {
        int value = 0;
        gl::glGetIntegerv(name, &value);
        return value;
    }

    static std::array<int, 4> viewport() {
        std::array<int, 4> values{};
        gl::glGetIntegerv(gl::GL_VIEWPORT, values.data());
        return values;
    }

    GaussianBlur::AEOpenGLContext context{nullptr};
    GaussianBlur::AEOpenglMainFrameBuffer frameBuffer;
};

} // namespace Ombrique::Tests
