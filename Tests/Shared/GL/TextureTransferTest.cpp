#include "Hosts/Engine/HostCall.h"
#include "Plugins/Shared/GL/AEOpenGLUtilities.h"
#include "Plugins/Shared/GL/BackgroundRender.h"
#include "Tests/Shared/GL/PipelineFixture.h"

#include <cmath>

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;
using namespace Hosts;

/// One of the host's depths.
template <typename Pixel> struct Depth;

template <> struct Depth<PF_Pixel8> {
    static constexpr int format = PF_PixelFormat_ARGB32;
    static constexpr gl::GLenum type = gl::GL_UNSIGNED_BYTE;
    static constexpr float multiplier = 1.0F;
    static constexpr double white = 255.0;   // as the host counts
    static constexpr double sampled = 255.0; // as OpenGL counts
    static PF_Pixel8 pixel(unsigned n) {
        return {255, std::uint8_t(n * 7), std::uint8_t(255 - n), std::uint8_t(n * n)};
    }
};

template <> struct Depth<PF_Pixel16> {
    static constexpr int format = PF_PixelFormat_ARGB64;
    static constexpr gl::GLenum type = gl::GL_UNSIGNED_SHORT;
    static constexpr float multiplier = 1.999969482421875F;
    static constexpr double white = 32768.0;
    static constexpr double sampled = 65535.0;
    static PF_Pixel16 pixel(unsigned n) {
        return {32768, std::uint16_t(n * 900), std::uint16_t(32768 - n), std::uint16_t(n * n * 11)};
    }
};

template <> struct Depth<PF_PixelFloat> {
    static constexpr int format = PF_PixelFormat_ARGB128;
    static constexpr gl::GLenum type = gl::GL_FLOAT;
    static constexpr float multiplier = 1.0F;
    static constexpr double white = 1.0;
    static constexpr double sampled = 1.0;
    static PF_PixelFloat pixel(unsigned n) {
        const auto t = static_cast<float>(n);
        return {1.0F, t / 40.0F, 1.0F - t / 90.0F, t * t / 2000.0F};
    }
};

template <typename Pixel> class TextureTransferTest : public PipelineTest {
protected:
    using Host = Depth<Pixel>;

    static World makeWorld(int width, int height, int paddingPixels) {
        World world(width, height, kDepthOf<Pixel>, {.paddingBytes = paddingPixels * static_cast<int>(sizeof(Pixel))});
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                world.setPixel(x, y, Host::pixel(static_cast<unsigned>(y * width + x)));
        return world;
    }

    static std::array<double, 4> channels(const Pixel& pixel) {
        return {double(pixel.alpha), double(pixel.red), double(pixel.green), double(pixel.blue)};
    }

    unsigned upload(World& world, HostCall& call) {
        pixelSize = 0;
        glType = gl::GL_NONE;
        multiplier = 0.0F;
        return AEOpenGLUtilities::UploadTexture(Host::format, world.layer(), nullptr, call.inData(), pixelSize, glType,
                                                multiplier, false);
    }

    void download(World& input, World& output, HostCall& call) {
        AEOpenGLUtilities::DownloadTexture(kWidth, kHeight, input.layer(), output.layer(), call.inData(), Host::format,
                                           sizeof(Pixel), Host::type);
    }

    /// A finished picture of the world's pixels, bound for reading, in a target of 8 bits.
    void draw(unsigned texture) {
        frameBuffer.prepare(kWidth, kHeight, true);
        frameBuffer.beginDrawing();
        BackgroundRender().draw(texture, multiplier);
        gl::glDeleteTextures(1, &texture);
        frameBuffer.endDrawing(multiplier);
    }

    unsigned long pixelSize = 0;
    gl::GLenum glType = gl::GL_NONE;
    float multiplier = 0.0F;
};

using Depths = testing::Types<PF_Pixel8, PF_Pixel16, PF_PixelFloat>;
TYPED_TEST_SUITE(TextureTransferTest, Depths);

TYPED_TEST(TextureTransferTest, UploadKeepsRowsAndChannelsAndSkipsPadding) {
    for (const int padding : {0, 1, 3}) {
        World world = this->makeWorld(this->kWidth, this->kHeight, padding);
        HostCall call({.input = &world});
        const unsigned texture = this->upload(world, call);
        EXPECT_EQ(this->pixelSize, sizeof(TypeParam));
        EXPECT_EQ(this->glType, TestFixture::Host::type);
        EXPECT_EQ(this->multiplier, TestFixture::Host::multiplier);
        EXPECT_EQ(this->integer(gl::GL_UNPACK_ROW_LENGTH), 0);
        EXPECT_EQ(this->integer(gl::GL_TEXTURE_BINDING_2D), 0);
        const std::vector<Texel> texels = this->readTexture(texture);
        gl::glDeleteTextures(1, &texture);
        for (std::size_t i = 0; i < texels.size(); ++i) {
            const auto source = this->channels(TestFixture::Host::pixel(static_cast<unsigned>(i)));
            for (std::size_t channel = 0; channel < 4; ++channel)
                EXPECT_NEAR(texels[i][channel], source[channel] / TestFixture::Host::sampled, 1e-6) << "texel " << i;
        }
        EXPECT_TRUE(call.findings().empty()) << call.findings().front();
    }
}

/// Upload, one pass, the screen pass and download bring back what was there, into worlds of any size and padding.
TYPED_TEST(TextureTransferTest, DownloadBringsThePictureBackAndClearsTheRest) {
    World input = this->makeWorld(this->kWidth, this->kHeight, 2);
    // Half a step of 8 bits in either target, the second of which holds values divided by the multiplier.
    const double tolerance = 0.505 / 255 * TestFixture::Host::white * (1.0 + TestFixture::Host::multiplier);
    for (const auto& [width, height] : {std::pair{7, 5}, {9, 5}, {7, 8}, {11, 6}, {3, 2}, {4, 9}, {5, 0}}) {
        SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
        World output(width, height, kDepthOf<TypeParam>, {.paddingBytes = 4 * int{sizeof(TypeParam)}});
        output.fill(TestFixture::Host::pixel(11));
        HostCall call({.input = &input, .output = &output});
        this->draw(this->upload(input, call));
        this->download(input, output, call);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const bool covered = x < this->kWidth && y < this->kHeight;
                const TypeParam expected = covered ? input.pixel<TypeParam>(x, y) : TypeParam{};
                for (std::size_t channel = 0; channel < 4; ++channel) {
                    EXPECT_NEAR(this->channels(output.pixel<TypeParam>(x, y))[channel],
                                this->channels(expected)[channel], tolerance)
                        << "channel " << channel << " at (" << x << ", " << y << ")";
                }
            }
        }
        EXPECT_TRUE(output.damage().empty()) << output.damage().front();
        EXPECT_TRUE(call.findings().empty()) << call.findings().front();
    }
}

/// What the host refuses is thrown, and nothing stays behind: no texture, no handle, no suite, no state.
TYPED_TEST(TextureTransferTest, EachFaultIsThrownAndLeavesNothing) {
    World world = this->makeWorld(this->kWidth, this->kHeight, 1);
    World output(this->kWidth, this->kHeight, kDepthOf<TypeParam>);
    FaultPlan log;
    {
        HostCall call({.input = &world, .output = &output, .faults = &log});
        this->draw(this->upload(world, call));
        this->download(world, output, call);
    }
    for (int n = 1; n <= static_cast<int>(log.calls().size()); ++n) {
        const std::string& name = log.calls()[static_cast<std::size_t>(n) - 1];
        SCOPED_TRACE(name);
        FaultPlan plan{{.nth = n}};
        HostCall call({.input = &world, .output = &output, .faults = &plan});
        PF_Err thrown = PF_Err_NONE;
        try {
            this->draw(this->upload(world, call));
            this->download(world, output, call);
        } catch (std::int32_t error) {
            thrown = error;
        }
        const PF_Err expected = name.starts_with("AcquireSuite")                ? A_Err_MISSING_SUITE
                                : name.starts_with("iterate")                   ? kInjectedError
                                : name.starts_with("get_pixel_data")            ? PF_Err_BAD_CALLBACK_PARAM
                                : plan.fired() > 0 && name.starts_with("host_") ? PF_Err_OUT_OF_MEMORY
                                                                                : PF_Err_NONE;
        EXPECT_EQ(thrown, plan.fired() > 0 && !name.starts_with("ReleaseSuite") ? expected : PF_Err_NONE);
        EXPECT_EQ(this->integer(gl::GL_UNPACK_ROW_LENGTH), 0);
        EXPECT_EQ(gl::glIsTexture(1), gl::GL_FALSE);
        EXPECT_TRUE(call.findings().empty()) << call.findings().front();
    }
}

using FormatTest = PipelineTest;

TEST_F(FormatTest, AnUnknownOneIsRefusedBothWays) {
    World world(3, 2);
    HostCall call({.input = &world, .output = &world});
    unsigned long pixelSize = 4;
    gl::GLenum glType = gl::GL_UNSIGNED_BYTE;
    float multiplier = 1.0F;
    const auto refused = [](auto transfer) {
        try {
            transfer();
        } catch (std::int32_t error) {
            return error;
        }
        return 0;
    };
    PF_LayerDef* layer = world.layer();
    EXPECT_EQ(refused([&] {
                  AEOpenGLUtilities::UploadTexture(0x61726762, layer, layer, call.inData(), pixelSize, glType,
                                                   multiplier, false);
              }),
              PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(
        refused([&] { AEOpenGLUtilities::DownloadTexture(3, 2, layer, layer, call.inData(), 7, pixelSize, glType); }),
        PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(gl::glIsTexture(1), gl::GL_FALSE);
    EXPECT_TRUE(call.findings().empty());
}

TEST_F(FormatTest, FrameBufferStatesInWords) {
    frameBuffer.prepare(4, 4, false);
    frameBuffer.beginDrawing();
    EXPECT_EQ(AEOpenGLUtilities::CheckFramebufferStatus(), "OK");
    gl::glFramebufferRenderbuffer(gl::GL_FRAMEBUFFER, gl::GL_COLOR_ATTACHMENT0, gl::GL_RENDERBUFFER, 0);
    EXPECT_EQ(AEOpenGLUtilities::CheckFramebufferStatus(), "Framebuffer incomplete, missing attachment!");
}

} // namespace

} // namespace Ombrique::Tests
