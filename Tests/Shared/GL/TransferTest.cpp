#include "Hosts/Engine/HostCall.h"
#include "Plugins/Contrast/Sources/ContrastRender.h"
#include "Plugins/Shared/GL/AEOpenGLUtilities.h"
#include "Plugins/Shared/GL/BackgroundRender.h"
#include "Plugins/Shared/GL/ScreenRender.h"
#include "Tests/Shared/GL/PipelineTest.h"

using namespace gl;

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;
using namespace Hosts;

/// One of the host's depths: what white is as the host and as OpenGL count, and what the passes multiply by.
struct Depth {
    int format;
    GLenum type;
    double white;
    double sampled;
    float multiplier;
};
template <typename Pixel> constexpr Depth kDepth{PF_PixelFormat_ARGB32, GL_UNSIGNED_BYTE, 255.0, 255.0, 1.0f};
template <>
constexpr Depth kDepth<PF_Pixel16>{PF_PixelFormat_ARGB64, GL_UNSIGNED_SHORT, 32768.0, 65535.0, 65535.0f / 32768.0f};
template <> constexpr Depth kDepth<PF_PixelFloat>{PF_PixelFormat_ARGB128, GL_FLOAT, 1.0, 1.0, 1.0f};

template <typename Pixel> class TransferTest : public PipelineTest {
protected:
    static std::array<double, 4> channels(const Pixel& pixel) {
        return {double(pixel.alpha), double(pixel.red), double(pixel.green), double(pixel.blue)};
    }

    static World makeWorld(int width, int height, int paddingPixels) {
        World world(width, height, kDepthOf<Pixel>, {.paddingBytes = paddingPixels * static_cast<int>(sizeof(Pixel))});
        const auto value = [](double part) { return static_cast<decltype(Pixel::red)>(part * kDepth<Pixel>.white); };
        for (int n = 0; n < width * height; ++n)
            world.setPixel(n % width, n / width,
                           Pixel{value(1.0), value(n / 120.0), value(1.0 - n / 200.0), value(n * n / 14400.0)});
        return world;
    }

    unsigned upload(World& world, HostCall& call, bool mipmap) {
        multiplier = 0.0f;
        return AEOpenGLUtilities::UploadTexture(uploadFormat, world.layer(), nullptr, call.inData(), pixelSize, glType,
                                                multiplier, mipmap);
    }

    /// Upload, one pass, the screen pass and download; returns what was thrown. Nothing stays behind: no texture, no
    /// handle, no suite, no state.
    PF_Err transfer(World& input, World& output, FaultPlan& plan) {
        HostCall call({.input = &input, .output = &output, .faults = &plan});
        PF_Err error = PF_Err_NONE;
        try {
            const unsigned texture = upload(input, call, false);
            frameBuffer.prepare(kWidth, kHeight, true);
            frameBuffer.beginDrawing();
            BackgroundRender().draw(texture, multiplier);
            glDeleteTextures(1, &texture);
            frameBuffer.endDrawing(multiplier);
            AEOpenGLUtilities::DownloadTexture(kWidth, kHeight, input.layer(), output.layer(), call.inData(),
                                               downloadFormat, pixelSize, glType);
        } catch (std::int32_t thrown) {
            error = thrown;
        }
        EXPECT_EQ(integer(GL_UNPACK_ROW_LENGTH), 0);
        EXPECT_EQ(living(glIsTexture), 0);
        EXPECT_TRUE(output.damage().empty()) << output.damage().front();
        EXPECT_TRUE(call.findings().empty()) << call.findings().front();
        return error;
    }

    int uploadFormat = kDepth<Pixel>.format;
    int downloadFormat = kDepth<Pixel>.format;
    unsigned long pixelSize = 0;
    GLenum glType = GL_NONE;
    float multiplier = 0.0f;
};

using Depths = testing::Types<PF_Pixel8, PF_Pixel16, PF_PixelFloat>;
TYPED_TEST_SUITE(TransferTest, Depths);

TYPED_TEST(TransferTest, UploadKeepsRowsAndChannelsAndSkipsPadding) {
    for (const bool mipmap : {false, true}) {
        World world = this->makeWorld(this->kWidth, this->kHeight, mipmap ? 3 : 0);
        HostCall call({.input = &world});
        const unsigned texture = this->upload(world, call, mipmap);
        EXPECT_EQ(this->pixelSize, sizeof(TypeParam));
        EXPECT_EQ(this->glType, kDepth<TypeParam>.type);
        EXPECT_EQ(this->multiplier, kDepth<TypeParam>.multiplier);
        EXPECT_EQ(this->integer(GL_UNPACK_ROW_LENGTH), 0);
        EXPECT_EQ(this->integer(GL_TEXTURE_BINDING_2D), 0);
        const std::vector<Texel> texels = this->readTexture(texture);
        for (int i = 0; i < std::ssize(texels); ++i) {
            const auto source = this->channels(world.template pixel<TypeParam>(i % this->kWidth, i / this->kWidth));
            for (std::size_t channel = 0; channel < 4; ++channel)
                EXPECT_NEAR(texels[static_cast<std::size_t>(i)][channel], source[channel] / kDepth<TypeParam>.sampled,
                            1e-6)
                    << "texel " << i;
        }
        this->expectTexture(texture, GL_RGBA32F, mipmap ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR, GL_LINEAR);
    }
}

TYPED_TEST(TransferTest, DownloadBringsThePictureBackAndClearsTheRest) {
    World input = this->makeWorld(this->kWidth, this->kHeight, 2);
    // Half a step of 8 bits in either target, the second of which holds values divided by the multiplier.
    const double tolerance = 0.505 / 255 * kDepth<TypeParam>.white * (1.0 + kDepth<TypeParam>.multiplier);
    for (const auto& [width, height] : {std::pair{7, 5}, {9, 5}, {7, 8}, {3, 2}, {4, 9}, {5, 0}}) {
        SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
        World output = this->makeWorld(width, height, 4);
        FaultPlan none;
        EXPECT_EQ(this->transfer(input, output, none), PF_Err_NONE);
        for (int i = 0; i < width * height; ++i) {
            const int x = i % width;
            const int y = i / width;
            const bool covered = x < this->kWidth && y < this->kHeight;
            const auto expected = this->channels(covered ? input.template pixel<TypeParam>(x, y) : TypeParam{});
            const auto actual = this->channels(output.template pixel<TypeParam>(x, y));
            for (std::size_t channel = 0; channel < 4; ++channel)
                EXPECT_NEAR(actual[channel], expected[channel], tolerance)
                    << "channel " << channel << " at (" << x << ", " << y << ")";
        }
    }
}

/// What the host refuses is thrown, and an unknown format is, too.
TYPED_TEST(TransferTest, EachFaultIsThrownAndLeavesNothing) {
    World world = this->makeWorld(this->kWidth, this->kHeight, 1);
    World output = this->makeWorld(this->kWidth, this->kHeight, 0);
    FaultPlan log;
    EXPECT_EQ(this->transfer(world, output, log), PF_Err_NONE);
    for (int n = 1; n <= static_cast<int>(log.calls().size()); ++n) {
        const std::string& name = log.calls()[static_cast<std::size_t>(n) - 1];
        FaultPlan plan{{.nth = n}};
        const PF_Err thrown = this->transfer(world, output, plan);
        const PF_Err due = name.starts_with("AcquireSuite")     ? A_Err_MISSING_SUITE
                           : name.starts_with("iterate")        ? kInjectedError
                           : name.starts_with("get_pixel_data") ? PF_Err_BAD_CALLBACK_PARAM
                           : name.starts_with("host_")          ? PF_Err_OUT_OF_MEMORY
                                                                : PF_Err_NONE;
        EXPECT_EQ(thrown, plan.fired() > 0 ? due : PF_Err_NONE) << name;
    }
    FaultPlan none;
    this->downloadFormat = 0x61726762;
    EXPECT_EQ(this->transfer(world, output, none), PF_Err_BAD_CALLBACK_PARAM);
    this->uploadFormat = 7;
    EXPECT_EQ(this->transfer(world, output, none), PF_Err_BAD_CALLBACK_PARAM);
}

class PassTest : public PipelineTest {
protected:
    using Colour = std::array<double, 4>;

    static Colour premultiplied(double multiplier, double a, double r, double g, double b) {
        const double alpha = a * multiplier;
        return {r * multiplier * alpha, g * multiplier * alpha, b * multiplier * alpha, alpha};
    }

    /// Runs `draw(texture)` on texels without symmetry, some of them beyond 0 to 1 and some without alpha (in either
    /// layout), into a target of floats, where nothing is clamped or rounded to 8 bits.
    template <typename Draw, typename Expected> void expectDraws(const char* name, Draw draw, Expected expected) {
        std::vector<Texel> source;
        for (std::size_t i = 0; i < kTexels; ++i) {
            const auto t = static_cast<float>(i) / kTexels;
            source.push_back(i % 5 == 4 ? Texel{0.0f, 0.7f, t, 0.0f}
                                        : Texel{1.0f - 0.5f * t, 1.2f * t, 0.25f + t * t, 0.1f + 0.9f * t});
        }
        // Its texels are never mixed: between floats, the least bit of a neighbour's alpha would show where there is
        // none.
        const unsigned texture = frameBuffer.createFloatRenderTexture(false, false);
        const unsigned target = frameBuffer.createFloatRenderTexture(false, false);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, kWidth, kHeight, GL_RGBA, GL_FLOAT, source.data());
        glViewport(0, 0, kWidth, kHeight);
        frameBuffer.pushNormalRenderContext(target);
        draw(texture);
        frameBuffer.popNormalRenderContext();
        const std::vector<Texel> drawn = readTexture(target);
        for (std::size_t i = 0; i < kTexels; ++i)
            for (std::size_t channel = 0; channel < 4; ++channel)
                // Single precision on values up to 10, in a handful of operations.
                EXPECT_NEAR(drawn[i][channel], expected(source[i])[channel], 2e-5)
                    << name << ", channel " << channel << " of texel " << i;
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        EXPECT_EQ(integer(GL_VERTEX_ARRAY_BINDING), 0);
        EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
    }
};

TEST_F(PassTest, DrawsWhatItsDefinitionSays) {
    ContrastRender contrast;
    ScreenRender screen;
    BackgroundRender background;
    contrast.setContrast(3.0f);
    contrast.setBrightness(-70.0f);
    frameBuffer.prepare(kWidth, kHeight, false);
    for (const float m : {1.0f, 1.9f}) {
        const auto correct = [](double value) { return (value - 0.5) * 3.0 + 0.5 - 0.7; };
        expectDraws(
            "contrast", [&](unsigned texture) { contrast.draw(texture, m); },
            [&](const Texel& t) { return premultiplied(m, t[0], correct(t[1]), correct(t[2]), correct(t[3])); });
        expectDraws(
            "background", [&](unsigned texture) { background.draw(texture, m); },
            [&](const Texel& t) { return premultiplied(m, t[0], t[1], t[2], t[3]); });
        expectDraws(
            "screen", [&](unsigned texture) { screen.draw(texture, m); },
            [&](const Texel& t) {
                const double a = t[3];
                return a == 0.0 ? Colour{} : Colour{a / m, t[0] / a / m, t[1] / a / m, t[2] / a / m};
            });
    }
}

TEST_F(PassTest, FrameBufferStatesInWords) {
    frameBuffer.prepare(4, 4, false);
    frameBuffer.beginDrawing();
    EXPECT_EQ(AEOpenGLUtilities::CheckFramebufferStatus(), "OK");
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, 0);
    EXPECT_EQ(AEOpenGLUtilities::CheckFramebufferStatus(), "Framebuffer incomplete, missing attachment!");
}

} // namespace

} // namespace Ombrique::Tests
