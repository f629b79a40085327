#include "Plugins/Shared/Math/Vec2.h"
#include "Tests/Shared/GL/PipelineTest.h"
#include "Tests/Shared/GL/RecordedCalls.h"

#include <glbinding/Binding.h>

#include <algorithm>
#include <functional>
#include <thread>

using namespace gl;

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;

/// With and without multisampling.
class TargetsTest : public PipelineTest, public testing::WithParamInterface<bool> {
protected:
    static constexpr Texel kColour = {0.8f, 0.4f, 0.2f, 1.0f};
    static constexpr Texel kOther = {0.4f, 0.8f, 0.6f, 0.4f};

    /// Fills the bound target with one colour, and its row 0 with another.
    static void paint(const Texel& colour, const Texel& row0) {
        glClearColor(colour[0], colour[1], colour[2], colour[3]);
        glClear(GL_COLOR_BUFFER_BIT);
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, kWidth, 1);
        glClearColor(row0[0], row0[1], row0[2], row0[3]);
        glClear(GL_COLOR_BUFFER_BIT);
        glDisable(GL_SCISSOR_TEST);
        glClearColor(0.0f, 0.0f, 0.0f, 0.0f); // as it was
    }

    static void expectTexel(const Texel& actual, const Texel& expected) {
        for (std::size_t channel = 0; channel < 4; ++channel)
            EXPECT_NEAR(actual[channel], expected[channel], 0.5 / 255 + 1e-6) << "channel " << channel; // half a step
    }

    /// The texture holds what paint() left, and goes.
    static void expectPainted(unsigned texture, const Texel& colour, const Texel& row0) {
        const std::vector<Texel> texels = readTexture(texture);
        glDeleteTextures(1, &texture);
        for (std::size_t i = 0; i < kTexels; ++i) {
            SCOPED_TRACE(i);
            expectTexel(texels[i], i < kWidth ? row0 : colour);
        }
    }

    static Texel readBack(int x, int y) {
        Texel texel{};
        glReadBuffer(GL_COLOR_ATTACHMENT0);
        glReadPixels(x, y, 1, 1, GL_RGBA, GL_FLOAT, texel.data());
        return texel;
    }

    /// A texture that is still attached somewhere keeps its memory after it has been deleted.
    static void expectNoTextureAttached() {
        const auto bound = static_cast<unsigned>(integer(GL_READ_FRAMEBUFFER_BINDING));
        for (unsigned name = 1; name < 50; ++name) {
            if (glIsFramebuffer(name) == GL_FALSE)
                continue;
            int type = 0;
            glBindFramebuffer(GL_READ_FRAMEBUFFER, name);
            glGetFramebufferAttachmentParameteriv(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                                  GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE, &type);
            EXPECT_NE(type, static_cast<int>(GL_TEXTURE)) << "frame buffer " << name;
        }
        glBindFramebuffer(GL_READ_FRAMEBUFFER, bound);
    }

    static bool isComplete() { return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE; }
};

INSTANTIATE_TEST_SUITE_P(Samples, TargetsTest, testing::Bool(),
                         [](const auto& multisample) { return multisample.param ? "Multisampled" : "Plain"; });

TEST_P(TargetsTest, NestedLevelsKeepTheirPicturesAndLeaveNoRenderbuffer) {
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    frameBuffer.beginDrawing();
    const int working = integer(GL_FRAMEBUFFER_BINDING);
    paint(kColour, kOther);
    frameBuffer.pushRenderContext(false, true);
    EXPECT_TRUE(isComplete());
    EXPECT_EQ(living(glIsRenderbuffer), 4) << "two colours, a stencil, the output";
    paint(kOther, kColour);
    unsigned texture = frameBuffer.createRenderTexture(false);
    frameBuffer.pushNormalRenderContext(texture);
    expectTexel(readBack(3, 3), {}); // cleared
    paint(kColour, kColour);
    frameBuffer.popNormalRenderContext();
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), working);
    expectPainted(texture, kColour, kColour);
    expectPainted(frameBuffer.popRenderContext(), kOther, kColour);
    expectNoTextureAttached();
    EXPECT_EQ(living(glIsRenderbuffer), 2);
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), working);
    expectPainted(frameBuffer.popRenderContext(), kColour, kOther);
    EXPECT_EQ(frameBuffer.popRenderContext(), 0u);
    for (const bool anew : {false, true}) {
        frameBuffer.pushRenderContext(false, true);
        anew ? frameBuffer.prepare(70000, 3, GetParam()) : frameBuffer.clearStack();
        EXPECT_EQ(living(glIsRenderbuffer), 1) << "anew " << anew;
        EXPECT_EQ(frameBuffer.popRenderContext(), 0u);
    }
    EXPECT_EQ(frameBuffer.width(), 4464);
}

/// What the read-back relies on.
TEST_P(TargetsTest, EndDrawingLeavesTheFinishedPictureBound) {
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    const auto draw = [this] {
        glEnable(GL_BLEND);
        frameBuffer.beginDrawing();
        EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE);
        EXPECT_EQ(glIsEnabled(GL_MULTISAMPLE) == GL_TRUE, GetParam());
        paint(kColour, kOther);
        frameBuffer.endDrawing(1.0f);
    };
    glDisable(GL_MULTISAMPLE);
    draw();
    expectNoTextureAttached();
    const Texel last = readBack(kWidth - 1, kHeight - 1);
    expectTexel(last, {1.0f, 0.8f, 0.4f, 0.2f});           // alpha first, colours straight
    expectTexel(readBack(0, 0), {0.4f, 1.0f, 1.0f, 1.0f}); // brighter than their alpha
    EXPECT_EQ(glIsEnabled(GL_MULTISAMPLE), GL_FALSE);
    std::array<int, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport, (std::array{0, 0, kWidth, kHeight}));

    frameBuffer.endDrawing(1.0f); // nothing on the stack: the picture stays
    EXPECT_EQ(readBack(kWidth - 1, kHeight - 1), last);
    glEnable(GL_CULL_FACE); // so that the screen pass draws nothing
    glCullFace(GL_FRONT_AND_BACK);
    draw();
    expectTexel(readBack(kWidth - 1, kHeight - 1), {}); // nothing of the frame before
}

TEST_P(TargetsTest, PreparesOnceForASizeAndAgainAfterUnprepare) {
    const auto expectDraws = [this] {
        frameBuffer.beginDrawing();
        EXPECT_TRUE(isComplete());
        paint(kColour, kOther);
        expectPainted(frameBuffer.popRenderContext(), kColour, kOther);
    };
    std::thread([this] { frameBuffer.prepare(0, 0, GetParam()); }).join(); // needs no context
    EXPECT_EQ(living(glIsFramebuffer), 0);
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    expectDraws();
    {
        const RecordedCalls made(glbinding::Binding::GenFramebuffers);
        frameBuffer.prepare(kWidth, kHeight, !GetParam()); // not looked at: the objects stay
        EXPECT_EQ(made.count(), 0);
    }
    expectDraws();
    frameBuffer.unprepare();
    EXPECT_EQ(living(glIsRenderbuffer), 0);
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    expectDraws();
    frameBuffer.destory();
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    expectDraws();
}

/// The driver may show frame buffer objects to the whole share group, so that a set that is wrongly shared gives right
/// pictures, and another may number each context's alike: what is made is what tells.
TEST_P(TargetsTest, EachContextHasItsOwnSetAndKeepsItWhileTheSizeStays) {
    AEOpenGLContext second(&context);
    const int set = GetParam() ? 3 : 1;
    const auto madeIn = [this](AEOpenGLContext& current, int width) {
        current.makeContextCurrent();
        const RecordedCalls made(glbinding::Binding::GenFramebuffers);
        frameBuffer.prepare(width, kHeight, GetParam());
        frameBuffer.beginDrawing();
        EXPECT_TRUE(isComplete());
        frameBuffer.endDrawing(1.0f);
        return made.count();
    };
    for (const int expected : {set, 0, 0}) {
        EXPECT_EQ(madeIn(context, kWidth), expected);
        EXPECT_EQ(madeIn(second, kWidth), expected);
    }
    for (int size = 1; size <= 20; ++size) { // sets of old sizes go when their context comes by
        EXPECT_EQ(madeIn(context, kWidth + size), set);
        EXPECT_EQ(madeIn(second, kWidth + size), set);
    }
    EXPECT_LE(living(glIsFramebuffer), 2 * set);
    context.makeContextCurrent();
}

using TargetTextures = PipelineTest;

/// 8 samples, or the driver's most. What is got tells nothing: drivers round up.
TEST_F(TargetTextures, AsManySamplesAreAskedForAsAreOffered) {
    auto& getInteger = glbinding::Binding::GetIntegerv;
    getInteger.addCallbackMask(glbinding::CallbackMask::After);
    for (const auto& [offered, wanted] : {std::pair{64, 8}, {8, 8}, {3, 3}}) {
        getInteger.setAfterCallback([most = offered](GLenum name, int* value) {
            if (name == GL_MAX_SAMPLES)
                *value = most;
        });
        std::vector<int> asked;
        const RecordedCalls calls(
            glbinding::Binding::RenderbufferStorageMultisample,
            std::function([&](GLenum, GLsizei samples, GLenum, GLsizei, GLsizei) { asked.push_back(samples); }));
        AEOpenglMainFrameBuffer fresh;
        fresh.prepare(kWidth, kHeight, true);
        fresh.pushRenderContext(false, true);
        getInteger.clearAfterCallback();
        EXPECT_EQ(asked, (std::vector{wanted, wanted})) << offered << " offered";
        fresh.destory();
    }
}

TEST_F(TargetTextures, AreMadeAsAskedFor) {
    frameBuffer.prepare(kWidth, kHeight, false);
    const Vec2 size(12.9, 6.2);
    AEOpenglMainFrameBuffer& f = frameBuffer;
    const struct {
        const char* name;
        unsigned texture;
        bool isPrepared; // of the prepared size
        GLenum format;
        GLenum minification;
        GLenum magnification;
    } rows[] = {
        {"plain", f.createRenderTexture(false), true, GL_RGBA, GL_LINEAR, GL_LINEAR},
        {"mipmap", f.createRenderTexture(size, true), false, GL_RGBA, GL_LINEAR_MIPMAP_LINEAR, GL_LINEAR},
        {"float", f.createFloatRenderTexture(false, false), true, GL_RGBA32F, GL_NEAREST, GL_NEAREST},
        {"linear", f.createFloatRenderTexture(true, false), true, GL_RGBA32F, GL_LINEAR, GL_LINEAR},
        {"both", f.createFloatRenderTexture(true, true), true, GL_RGBA32F, GL_LINEAR_MIPMAP_LINEAR, GL_LINEAR},
        {"mipmap float", f.createFloatRenderTexture(size, false, true), false, GL_RGBA32F, GL_LINEAR_MIPMAP_NEAREST,
         GL_LINEAR},
    };
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const int width = row.isPrepared ? kWidth : 12;
        const int height = row.isPrepared ? kHeight : 6;
        std::vector<float> texels(12 * 6 * 4, 9.0f);
        glBindTexture(GL_TEXTURE_2D, row.texture);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, texels.data());
        EXPECT_EQ(std::ranges::count(texels, 0.0f), width * height * 4);
        int actualWidth = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &actualWidth);
        EXPECT_EQ(actualWidth, width);
        expectTexture(row.texture, row.format, row.minification, row.magnification);
    }
}

TEST_F(TargetTextures, AMipLevelIsRenderedAtItsSizeAndTheDefaultComesBack) {
    const unsigned texture = frameBuffer.createRenderTexture(Vec2(12.9, 6.2), true);
    glBindTexture(GL_TEXTURE_2D, texture);
    glGenerateMipmap(GL_TEXTURE_2D);
    frameBuffer.pushNormalRenderContext(texture, Vec2(6.9, 3.5), 1);
    std::array<int, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport, (std::array{0, 0, 6, 3}));
    glClearColor(1.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    const auto temporary = static_cast<unsigned>(integer(GL_FRAMEBUFFER_BINDING));
    frameBuffer.popNormalRenderContext();
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), 0); // since nothing is on the stack
    EXPECT_EQ(glIsFramebuffer(temporary), GL_FALSE);
    for (const auto& [level, red] : {std::pair{0, 0}, {1, 255}, {2, 0}}) {
        std::vector<std::uint8_t> pixels(12 * 6 * 4);
        glGetTexImage(GL_TEXTURE_2D, level, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        EXPECT_EQ(pixels[0], red) << "level " << level;
    }
}

} // namespace

} // namespace Ombrique::Tests
