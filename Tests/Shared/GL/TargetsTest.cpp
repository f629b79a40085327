#include "Plugins/Shared/Math/Vec2.h"
#include "Tests/Shared/GL/PipelineTest.h"
#include "Tests/Shared/GL/RecordedCalls.h"

#include <glbinding/Binding.h>

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
    static constexpr double kHalfAStep = 0.5 / 255 + 1e-6;

    /// Fills the bound target.
    static void paint(const Texel& colour) { glClearBufferfv(GL_COLOR, 0, colour.data()); }

    /// The texture holds what paint() left, and goes.
    static void expectPainted(unsigned texture, const Texel& colour, int level = 0) {
        expectTexels(readTexture(texture, level), kHalfAStep, [&](std::size_t) { return colour; });
        glDeleteTextures(1, &texture);
    }

    static void expectBound(const Texel& colour) {
        std::vector<Texel> texels(kTexels);
        glReadBuffer(GL_COLOR_ATTACHMENT0);
        glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_FLOAT, texels.data());
        expectTexels(texels, kHalfAStep, [&](std::size_t) { return colour; });
    }

    /// A texture that is still attached somewhere keeps its memory after it has been deleted.
    static void expectNoTextureAttached() {
        const auto bound = static_cast<unsigned>(integer(GL_READ_FRAMEBUFFER_BINDING));
        for (unsigned name = 1; name < 50; ++name) {
            int type = 0;
            glBindFramebuffer(GL_READ_FRAMEBUFFER, name); // the one before stays bound where there is none
            glGetFramebufferAttachmentParameteriv(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                                  GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE, &type);
            EXPECT_NE(type, static_cast<int>(GL_TEXTURE)) << "frame buffer " << name;
        }
        glBindFramebuffer(GL_READ_FRAMEBUFFER, bound);
    }
};

INSTANTIATE_TEST_SUITE_P(Samples, TargetsTest, testing::Bool(),
                         [](const auto& multisample) { return multisample.param ? "Multisampled" : "Plain"; });

TEST_P(TargetsTest, NestedLevelsKeepTheirPicturesAndLeaveNoRenderbuffer) {
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    frameBuffer.beginDrawing();
    paint(kColour);
    frameBuffer.pushRenderContext(false, true);
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GL_FRAMEBUFFER_COMPLETE);
    EXPECT_EQ(living("Renderbuffer"), 4) << "two colours, a stencil, the output";
    paint(kOther);
    const unsigned texture = frameBuffer.createRenderTexture(Vec2(2 * kWidth + 0.9, 2 * kHeight + 0.2), true);
    glBindTexture(GL_TEXTURE_2D, texture);
    glGenerateMipmap(GL_TEXTURE_2D);
    frameBuffer.pushNormalRenderContext(texture, Vec2(kWidth + 0.9, kHeight + 0.5), 1);
    paint(kColour);
    frameBuffer.popNormalRenderContext();
    expectPainted(texture, kColour, 1);
    expectPainted(frameBuffer.popRenderContext(), kOther);
    expectNoTextureAttached();
    EXPECT_EQ(living("Renderbuffer"), 2);
    expectPainted(frameBuffer.popRenderContext(), kColour);
    frameBuffer.pushRenderContext(false, true);
    frameBuffer.destory();
    EXPECT_EQ(living("Renderbuffer"), 0);
}

/// What the read-back relies on.
TEST_P(TargetsTest, EndDrawingLeavesTheFinishedPictureBound) {
    frameBuffer.prepare(kWidth, kHeight, GetParam());
    const auto draw = [this] {
        frameBuffer.beginDrawing();
        paint(kColour);
        frameBuffer.endDrawing(1.0f);
    };
    draw();
    expectNoTextureAttached();
    expectBound({1.0f, 0.8f, 0.4f, 0.2f}); // alpha first
    glEnable(GL_CULL_FACE);                // so that the screen pass draws nothing
    glCullFace(GL_FRONT_AND_BACK);
    draw();
    expectBound({}); // nothing of the frame before
}

/// The driver may show frame buffer objects to the whole share group, so that a set that is wrongly shared gives right
/// pictures, and another may number each context's alike: what is made is what tells.
TEST_P(TargetsTest, EachContextMakesItsOwnSetAndKeepsItWhileTheSizeStays) {
    std::thread([this] { frameBuffer.prepare(0, 0, GetParam()); }).join(); // needs no context
    AEOpenGLContext second(&context);
    const int set = GetParam() ? 3 : 1;
    const auto madeIn = [this](AEOpenGLContext& current, int width) {
        current.makeContextCurrent();
        const RecordedCalls made(glbinding::Binding::GenFramebuffers);
        frameBuffer.prepare(width, kHeight, GetParam());
        frameBuffer.beginDrawing();
        frameBuffer.endDrawing(1.0f);
        return made.count();
    };
    for (int frame = 0; frame < 60; ++frame) { // sets of old sizes go when their context comes by
        const int expected = frame % 3 == 0 ? set : 0;
        EXPECT_EQ(madeIn(context, kWidth + frame / 3), expected) << "frame " << frame;
        EXPECT_EQ(madeIn(second, kWidth + frame / 3), expected) << "frame " << frame;
    }
    EXPECT_LE(living("Framebuffer"), 2 * set);
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
        const RecordedCalls asked(glbinding::Binding::RenderbufferStorageMultisample);
        AEOpenglMainFrameBuffer fresh;
        fresh.prepare(kWidth, kHeight, true);
        fresh.pushRenderContext(false, true);
        getInteger.clearAfterCallback();
        ASSERT_EQ(asked.count(), 2) << "colour and stencil";
        for (const auto& call : asked.calls())
            EXPECT_EQ(std::get<1>(call), wanted) << offered << " offered";
        fresh.destory();
    }
}

TEST_F(TargetTextures, AreMadeAsAskedFor) {
    frameBuffer.prepare(kWidth, kHeight, false);
    AEOpenglMainFrameBuffer& f = frameBuffer;
    const struct {
        const char* name;
        unsigned texture;
        GLenum type;
        GLenum minification;
        GLenum magnification;
    } rows[] = {
        {"plain", f.createRenderTexture(false), GL_UNSIGNED_NORMALIZED, GL_LINEAR, GL_LINEAR},
        {"mipmap", f.createRenderTexture(true), GL_UNSIGNED_NORMALIZED, GL_LINEAR_MIPMAP_LINEAR, GL_LINEAR},
        {"float", f.createFloatRenderTexture(false, false), GL_FLOAT, GL_NEAREST, GL_NEAREST},
        {"linear", f.createFloatRenderTexture(true, false), GL_FLOAT, GL_LINEAR, GL_LINEAR},
        {"both", f.createFloatRenderTexture(true, true), GL_FLOAT, GL_LINEAR_MIPMAP_LINEAR, GL_LINEAR},
        {"mipmap float", f.createFloatRenderTexture(false, true), GL_FLOAT, GL_LINEAR_MIPMAP_NEAREST, GL_LINEAR},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        expectTexture(row.texture, row.type, row.minification, row.magnification);
    }
}

} // namespace

} // namespace Ombrique::Tests
