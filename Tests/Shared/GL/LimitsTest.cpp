#include "Tests/Shared/GL/PipelineFixture.h"

#include <glbinding/Binding.h>

#include <thread>

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;

class LimitsTest : public PipelineTest {};

/// Whichever of the driver's limits is the lowest.
TEST_F(LimitsTest, LongestSideIsTheLeastOfAll) {
    auto& getInteger = glbinding::Binding::GetIntegerv;
    for (const gl::GLenum limit : {gl::GL_MAX_TEXTURE_SIZE, gl::GL_MAX_RENDERBUFFER_SIZE, gl::GL_MAX_VIEWPORT_DIMS}) {
        getInteger.addCallbackMask(glbinding::CallbackMask::After);
        getInteger.setAfterCallback([limit](gl::GLenum name, int* value) {
            if (name == limit)
                value[limit == gl::GL_MAX_VIEWPORT_DIMS] = 100; // the height alone
        });
        const AEOpenGLContext lowered(nullptr);
        getInteger.clearAfterCallback();
        EXPECT_EQ(lowered.longestSide(), 100) << static_cast<unsigned>(limit);
    }
    EXPECT_GE(context.longestSide(), 1024);
}

TEST_F(LimitsTest, ANewFrameBufferIsPreparedForNothingWithoutAContext) {
    AEOpenglMainFrameBuffer fresh;
    std::thread([&] { fresh.prepare(0, 0, true); }).join();
    EXPECT_EQ(gl::glIsFramebuffer(1), gl::GL_FALSE);
}

/// A texture that is still attached somewhere keeps its memory after it has been deleted.
TEST_F(LimitsTest, AFrameLeavesNoTextureAttached) {
    for (const bool nested : {false, true}) {
        frameBuffer.prepare(kWidth, kHeight, true);
        frameBuffer.beginDrawing();
        if (nested) {
            frameBuffer.pushRenderContext(false, false);
            const unsigned popped = frameBuffer.popRenderContext();
            gl::glDeleteTextures(1, &popped);
        } else
            frameBuffer.endDrawing(1.0f);
        int sets = 0;
        for (unsigned name = 1; name < 50; ++name) {
            if (gl::glIsFramebuffer(name) == gl::GL_FALSE)
                continue;
            gl::glBindFramebuffer(gl::GL_READ_FRAMEBUFFER, name);
            int type = 0;
            gl::glGetFramebufferAttachmentParameteriv(gl::GL_READ_FRAMEBUFFER, gl::GL_COLOR_ATTACHMENT0,
                                                      gl::GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE, &type);
            EXPECT_NE(type, static_cast<int>(gl::GL_TEXTURE)) << "frame buffer " << name << ", nested " << nested;
            ++sets;
        }
        EXPECT_EQ(sets, 3);
    }
}

} // namespace

} // namespace Ombrique::Tests
