#include "Tests/Shared/GL/PipelineFixture.h"

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;

/// With and without multisampling.
class MainFrameBufferTest : public PipelineTest, public testing::WithParamInterface<bool> {
protected:
    /// Half a step of 8 bits.
    static constexpr double kTolerance = 0.5 / 255 + 1e-6;

    /// Fills the bound target with one colour, and its row 0 with another.
    static void paint(float red, float green) {
        gl::glClearColor(red, green, 0.2F, 1.0F);
        gl::glClear(gl::GL_COLOR_BUFFER_BIT);
        gl::glEnable(gl::GL_SCISSOR_TEST);
        gl::glScissor(0, 0, kWidth, 1);
        gl::glClearColor(green, red, 0.6F, 0.4F);
        gl::glClear(gl::GL_COLOR_BUFFER_BIT);
        gl::glDisable(gl::GL_SCISSOR_TEST);
    }

    static void expectTexel(const Texel& actual, const Texel& expected) {
        for (std::size_t channel = 0; channel < 4; ++channel)
            EXPECT_NEAR(actual[channel], expected[channel], kTolerance) << "channel " << channel;
    }

    static void expectPainted(unsigned texture, float red, float green) {
        const std::vector<Texel> texels = readTexture(texture);
        gl::glDeleteTextures(1, &texture);
        for (std::size_t i = 0; i < kTexels; ++i) {
            SCOPED_TRACE(i);
            expectTexel(texels[i], i < kWidth ? Texel{green, red, 0.6F, 0.4F} : Texel{red, green, 0.2F, 1.0F});
        }
    }

    static Texel readBack(int x, int y) {
        Texel texel{};
        gl::glReadPixels(x, y, 1, 1, gl::GL_RGBA, gl::GL_FLOAT, texel.data());
        return texel;
    }
};

INSTANTIATE_TEST_SUITE_P(Targets, MainFrameBufferTest, testing::Bool(),
                         [](const auto& multisample) { return multisample.param ? "Multisampled" : "Plain"; });

TEST_P(MainFrameBufferTest, NestedLevelsKeepTheirPictures) {
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    frameBuffer.beginDrawing();
    const int working = integer(gl::GL_FRAMEBUFFER_BINDING);
    paint(1.0F, 0.0F);
    frameBuffer.pushRenderContext(false, true);
    EXPECT_EQ(gl::glCheckFramebufferStatus(gl::GL_FRAMEBUFFER), gl::GL_FRAMEBUFFER_COMPLETE);
    paint(0.0F, 1.0F);
    const unsigned texture = frameBuffer.createRenderTexture(false);
    frameBuffer.pushNormalRenderContext(texture);
    paint(0.8F, 0.4F);
    frameBuffer.popNormalRenderContext();
    EXPECT_EQ(integer(gl::GL_FRAMEBUFFER_BINDING), working);
    expectPainted(texture, 0.8F, 0.4F);
    expectPainted(frameBuffer.popRenderContext(), 0.0F, 1.0F);
    EXPECT_EQ(integer(gl::GL_FRAMEBUFFER_BINDING), working);
    expectPainted(frameBuffer.popRenderContext(), 1.0F, 0.0F);
    EXPECT_EQ(frameBuffer.popRenderContext(), 0U);
}

/// What the read-back relies on.
TEST_P(MainFrameBufferTest, EndDrawingLeavesTheFinishedPictureBound) {
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    gl::glEnable(gl::GL_BLEND);
    frameBuffer.beginDrawing();
    EXPECT_EQ(gl::glIsEnabled(gl::GL_BLEND), gl::GL_FALSE);
    EXPECT_EQ(integer(gl::GL_SAMPLES) > 1, GetParam());
    paint(0.8F, 0.4F);
    frameBuffer.endDrawing(1.0F);
    gl::glReadBuffer(gl::GL_COLOR_ATTACHMENT0);
    const Texel last = readBack(kWidth - 1, kHeight - 1);
    expectTexel(last, {1.0F, 0.8F, 0.4F, 0.2F}); // alpha first, colours straight
    EXPECT_FLOAT_EQ(readBack(0, 0)[1], 1.0F);    // 0.4 of red over 0.4 of alpha
    EXPECT_EQ(gl::glIsEnabled(gl::GL_MULTISAMPLE), gl::GL_FALSE);
    EXPECT_EQ(viewport(), (std::array{0, 0, kWidth, kHeight}));

    frameBuffer.endDrawing(1.0F); // nothing on the stack: the picture stays
    EXPECT_EQ(readBack(kWidth - 1, kHeight - 1), last);
}

TEST_P(MainFrameBufferTest, PreparesOnceForASizeAndAgainAfterUnprepare) {
    const auto expectDraws = [this] {
        frameBuffer.beginDrawing();
        EXPECT_EQ(gl::glCheckFramebufferStatus(gl::GL_FRAMEBUFFER), gl::GL_FRAMEBUFFER_COMPLETE);
        paint(0.8F, 0.4F);
        expectPainted(frameBuffer.popRenderContext(), 0.8F, 0.4F);
    };
    frameBuffer.prepare(0, 0, GetParam());
    EXPECT_EQ(gl::glIsFramebuffer(1), gl::GL_FALSE);
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    expectDraws();
    const int bound = integer(gl::GL_FRAMEBUFFER_BINDING);
    frameBuffer.prepare(kWidth, kHeight, !GetParam()); // not looked at: the objects stay
    expectDraws();
    EXPECT_EQ(integer(gl::GL_FRAMEBUFFER_BINDING), bound);
    frameBuffer.unprepare();
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    expectDraws();
    frameBuffer.destory();
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    expectDraws();
    frameBuffer.beginDrawing();
    frameBuffer.prepare(70000, 3, GetParam()); // empties the stack
    EXPECT_EQ(frameBuffer.popRenderContext(), 0U);
    EXPECT_EQ(frameBuffer.width(), 4464);
}

TEST_P(MainFrameBufferTest, PoppingATargetOfTheCallersWithNothingBelow) {
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    gl::glViewport(1, 2, 3, 4);
    const unsigned texture = frameBuffer.createFloatRenderTexture(true, true);
    frameBuffer.pushNormalRenderContext(texture);
    const auto temporary = static_cast<unsigned>(integer(gl::GL_FRAMEBUFFER_BINDING));
    frameBuffer.popNormalRenderContext();
    EXPECT_EQ(integer(gl::GL_FRAMEBUFFER_BINDING), 0);
    EXPECT_EQ(gl::glIsFramebuffer(temporary), gl::GL_FALSE);
    EXPECT_EQ(viewport(), (std::array{1, 2, 3, 4}));
    gl::glDeleteTextures(1, &texture);
}

/// The driver shows frame buffer objects to the whole share group, so that a set that is wrongly shared gives right
/// pictures: the names are what tells.
TEST_P(MainFrameBufferTest, EachContextHasItsOwnSetAndKeepsItWhileTheSizeStays) {
    AEOpenGLContext second(&context);
    const auto drawIn = [this](AEOpenGLContext& current, int width) {
        current.makeContextCurrent();
        frameBuffer.prepare(width, kHeight, GetParam());
        frameBuffer.beginDrawing();
        const int working = integer(gl::GL_FRAMEBUFFER_BINDING);
        EXPECT_EQ(gl::glCheckFramebufferStatus(gl::GL_FRAMEBUFFER), gl::GL_FRAMEBUFFER_COMPLETE);
        frameBuffer.endDrawing(1.0F);
        return working;
    };
    const int first = drawIn(context, kWidth);
    const int other = drawIn(second, kWidth);
    EXPECT_NE(first, other);
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(drawIn(context, kWidth), first);
        EXPECT_EQ(drawIn(second, kWidth), other);
    }
    for (int size = 1; size <= 20; ++size) { // sets of old sizes go when their context comes by
        drawIn(context, kWidth + size);
        drawIn(second, kWidth + size);
    }
    int living = 0;
    for (unsigned name = 1; name < 500; ++name)
        living += gl::glIsFramebuffer(name) == gl::GL_TRUE ? 1 : 0;
    EXPECT_LE(living, 2 * 3);
    context.makeContextCurrent();
}

} // namespace

} // namespace Ombrique::Tests
