#include "Plugins/Contrast/Sources/ContrastRender.h"
#include "Plugins/Shared/GL/BackgroundRender.h"
#include "Plugins/Shared/GL/ScreenRender.h"
#include "Tests/Shared/GL/PipelineFixture.h"

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;

/// Each pass alone, into a target of floats, where nothing is clamped or rounded to 8 bits.
class PassTest : public PipelineTest {
protected:
    PassTest() { frameBuffer.prepare(kWidth, kHeight, false); }

    /// Draws the asymmetric texels with `pass` and compares each pixel with `oracle`, in double.
    template <typename Pass, typename Oracle> void expectDraws(Pass& pass, float multiplier, Oracle oracle) {
        const std::vector<Texel> source = asymmetricTexels();
        const unsigned textures[] = {makeTexture(source), frameBuffer.createFloatRenderTexture(false, false)};
        gl::glViewport(0, 0, kWidth, kHeight);
        frameBuffer.pushNormalRenderContext(textures[1]);
        pass.draw(textures[0], multiplier);
        frameBuffer.popNormalRenderContext();
        const std::vector<Texel> drawn = readTexture(textures[1]);
        gl::glDeleteTextures(2, textures);
        for (std::size_t i = 0; i < kTexels; ++i) {
            const std::array<double, 4> expected = oracle(source[i]);
            for (std::size_t channel = 0; channel < 4; ++channel) {
                // Single precision on values up to 10, in a handful of operations.
                EXPECT_NEAR(drawn[i][channel], expected[channel], 1e-5)
                    << "channel " << channel << " at (" << i % kWidth << ", " << i / kWidth << ")";
            }
        }
        EXPECT_EQ(gl::glGetError(), gl::GL_NO_ERROR);
        EXPECT_EQ(integer(gl::GL_VERTEX_ARRAY_BINDING), 0);
        EXPECT_EQ(integer(gl::GL_ARRAY_BUFFER_BINDING), 0);
    }

    static std::array<double, 4> premultiplied(const Texel& host, double multiplier) {
        const double alpha = host[0] * multiplier;
        return {host[1] * multiplier * alpha, host[2] * multiplier * alpha, host[3] * multiplier * alpha, alpha};
    }
};

TEST_F(PassTest, ContrastThenBrightnessThenMultiplierThenPremultiplied) {
    ContrastRender pass;
    struct Setting {
        float contrast;
        float brightness;
        float multiplier;
    };
    for (const Setting set :
         {Setting{1.0F, 0.0F, 1.0F}, {0.0F, 0.0F, 1.0F}, {1.4F, 5.0F, 1.0F}, {3.0F, -70.0F, 1.9F}}) {
        pass.setContrast(set.contrast);
        pass.setBrightness(set.brightness);
        expectDraws(pass, set.multiplier, [set](const Texel& host) {
            const double alpha = double{host[0]} * set.multiplier;
            const auto correct = [&](double value) {
                return ((value - 0.5) * set.contrast + 0.5 + set.brightness / 100.0) * set.multiplier * alpha;
            };
            return std::array{correct(host[1]), correct(host[2]), correct(host[3]), alpha};
        });
    }
}

TEST_F(PassTest, ScreenBringsBackTheHostsLayout) {
    ScreenRender pass;
    for (const float multiplier : {1.0F, 65535.0F / 32768.0F}) {
        expectDraws(pass, multiplier, [multiplier](const Texel& picture) {
            const double alpha = picture[3];
            if (alpha == 0.0)
                return std::array{0.0, 0.0, 0.0, 0.0};
            return std::array{alpha / multiplier, picture[0] / alpha / multiplier, picture[1] / alpha / multiplier,
                              picture[2] / alpha / multiplier};
        });
    }
}

TEST_F(PassTest, BackgroundPremultipliesWithoutACorrection) {
    BackgroundRender pass;
    for (const float multiplier : {1.0F, 1.5F})
        expectDraws(pass, multiplier, [multiplier](const Texel& host) { return premultiplied(host, multiplier); });
}

/// A pass that was first drawn in one context draws in another, which doesn't know its vertex array.
TEST_F(PassTest, OnePassServesTwoContextsInTurn) {
    ContrastRender pass;
    AEOpenGLContext second(&context);
    for (AEOpenGLContext* current : {&context, &second, &context, &second}) {
        current->makeContextCurrent();
        frameBuffer.prepare(kWidth, kHeight, false);
        expectDraws(pass, 1.0F, [](const Texel& host) { return premultiplied(host, 1.0); });
    }
    context.makeContextCurrent();
}

} // namespace

} // namespace Ombrique::Tests
