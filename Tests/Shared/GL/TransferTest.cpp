#include "Hosts/Engine/HostCall.h"
#include "Plugins/Contrast/Sources/ContrastRender.h"
#include "Plugins/Shared/GL/AEOpenGLUtilities.h"
#include "Plugins/Shared/GL/BackgroundRender.h"
#include "Plugins/Shared/GL/ScreenRender.h"
#include "Tests/Shared/GL/PipelineTest.h"

#include <functional>

using namespace gl;

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;
using namespace Hosts;

/// One of the host's depths.
template <typename Pixel> struct Depth;

template <> struct Depth<PF_Pixel8> {
    static constexpr int format = PF_PixelFormat_ARGB32;
    static constexpr GLenum type = GL_UNSIGNED_BYTE;
    static constexpr float multiplier = 1.0f;
    static constexpr double white = 255.0;   // as the host counts
    static constexpr double sampled = 255.0; // as OpenGL counts
    static PF_Pixel8 pixel(int n) { return {255, std::uint8_t(n * 7), std::uint8_t(255 - n), std::uint8_t(n * n)}; }
};

template <> struct Depth<PF_Pixel16> {
    static constexpr int format = PF_PixelFormat_ARGB64;
    static constexpr GLenum type = GL_UNSIGNED_SHORT;
    static constexpr float multiplier = 1.999969482421875f;
    static constexpr double white = 32768.0;
    static constexpr double sampled = 65535.0;
    static PF_Pixel16 pixel(int n) {
        return {32768, std::uint16_t(n * 900), std::uint16_t(32768 - n), std::uint16_t(n * n * 11)};
    }
};

template <> struct Depth<PF_PixelFloat> {
    static constexpr int format = PF_PixelFormat_ARGB128;
    static constexpr GLenum type = GL_FLOAT;
    static constexpr float multiplier = 1.0f;
    static constexpr double white = 1.0;
    static constexpr double sampled = 1.0;
    static PF_PixelFloat pixel(int n) {
        const auto t = static_cast<float>(n);
        return {1.0f, t / 40.0f, 1.0f - t / 90.0f, t * t / 2000.0f};
    }
};

template <typename Pixel> std::array<double, 4> channels(const Pixel& pixel) {
    return {double(pixel.alpha), double(pixel.red), double(pixel.green), double(pixel.blue)};
}

template <typename Pixel> class TransferTest : public PipelineTest {
protected:
    using Host = Depth<Pixel>;

    static World makeWorld(int width, int height, int paddingPixels) {
        World world(width, height, kDepthOf<Pixel>, {.paddingBytes = paddingPixels * static_cast<int>(sizeof(Pixel))});
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                world.setPixel(x, y, Host::pixel(y * width + x));
        return world;
    }

    unsigned upload(World& world, HostCall& call, bool mipmap = false) {
        pixelSize = 0;
        glType = GL_NONE;
        multiplier = 0.0f;
        return AEOpenGLUtilities::UploadTexture(Host::format, world.layer(), nullptr, call.inData(), pixelSize, glType,
                                                multiplier, mipmap);
    }

    /// Upload, one pass, the screen pass and download.
    void transfer(World& input, World& output, HostCall& call) {
        const unsigned texture = upload(input, call);
        frameBuffer.prepare(kWidth, kHeight, true);
        frameBuffer.beginDrawing();
        BackgroundRender().draw(texture, multiplier);
        glDeleteTextures(1, &texture);
        frameBuffer.endDrawing(multiplier);
        AEOpenGLUtilities::DownloadTexture(kWidth, kHeight, input.layer(), output.layer(), call.inData(), Host::format,
                                           sizeof(Pixel), Host::type);
    }

    unsigned long pixelSize = 0;
    GLenum glType = GL_NONE;
    float multiplier = 0.0f;
};

using Depths = testing::Types<PF_Pixel8, PF_Pixel16, PF_PixelFloat>;
TYPED_TEST_SUITE(TransferTest, Depths);

TYPED_TEST(TransferTest, UploadKeepsRowsAndChannelsAndSkipsPadding) {
    using Layout = Depth<TypeParam>;
    for (const int padding : {0, 3}) {
        World world = this->makeWorld(this->kWidth, this->kHeight, padding);
        HostCall call({.input = &world});
        const bool mipmap = padding > 0;
        const unsigned texture = this->upload(world, call, mipmap);
        EXPECT_EQ(this->pixelSize, sizeof(TypeParam));
        EXPECT_EQ(this->glType, Layout::type);
        EXPECT_EQ(this->multiplier, Layout::multiplier);
        EXPECT_EQ(this->integer(GL_UNPACK_ROW_LENGTH), 0);
        EXPECT_EQ(this->integer(GL_TEXTURE_BINDING_2D), 0);
        const std::vector<Texel> texels = this->readTexture(texture);
        for (std::size_t i = 0; i < texels.size(); ++i) {
            const auto source = channels(Layout::pixel(static_cast<int>(i)));
            for (std::size_t channel = 0; channel < 4; ++channel)
                EXPECT_NEAR(texels[i][channel], source[channel] / Layout::sampled, 1e-6) << "texel " << i;
        }
        glBindTexture(GL_TEXTURE_2D, texture);
        for (const auto& [name, value] : {std::pair{GL_TEXTURE_MAG_FILTER, GL_LINEAR},
                                          {GL_TEXTURE_MIN_FILTER, mipmap ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR},
                                          {GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE},
                                          {GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE}}) {
            int actual = 0;
            glGetTexParameteriv(GL_TEXTURE_2D, name, &actual);
            EXPECT_EQ(static_cast<GLenum>(actual), value) << static_cast<unsigned>(name);
        }
        int type = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &type);
        EXPECT_EQ(static_cast<GLenum>(type), GL_RGBA32F);
        EXPECT_TRUE(call.findings().empty()) << call.findings().front();
    }
}

TYPED_TEST(TransferTest, DownloadBringsThePictureBackAndClearsTheRest) {
    using Layout = Depth<TypeParam>;
    World input = this->makeWorld(this->kWidth, this->kHeight, 2);
    // Half a step of 8 bits in either target, the second of which holds values divided by the multiplier.
    const double tolerance = 0.505 / 255 * Layout::white * (1.0 + Layout::multiplier);
    for (const auto& [width, height] : {std::pair{7, 5}, {9, 5}, {7, 8}, {3, 2}, {4, 9}, {5, 0}}) {
        SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
        World output(width, height, kDepthOf<TypeParam>, {.paddingBytes = 4 * int{sizeof(TypeParam)}});
        output.fill(Layout::pixel(11));
        HostCall call({.input = &input, .output = &output});
        this->transfer(input, output, call);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const bool covered = x < this->kWidth && y < this->kHeight;
                const auto expected = channels(covered ? input.pixel<TypeParam>(x, y) : TypeParam{});
                const auto actual = channels(output.pixel<TypeParam>(x, y));
                for (std::size_t channel = 0; channel < 4; ++channel)
                    EXPECT_NEAR(actual[channel], expected[channel], tolerance)
                        << "channel " << channel << " at (" << x << ", " << y << ")";
            }
        }
        EXPECT_TRUE(output.damage().empty()) << output.damage().front();
        EXPECT_TRUE(call.findings().empty()) << call.findings().front();
    }
}

/// What the host refuses is thrown, and nothing stays behind: no texture, no handle, no suite, no state.
TYPED_TEST(TransferTest, EachFaultIsThrownAndLeavesNothing) {
    World world = this->makeWorld(this->kWidth, this->kHeight, 1);
    World output(this->kWidth, this->kHeight, kDepthOf<TypeParam>);
    const auto thrown = [&](FaultPlan& plan) {
        HostCall call({.input = &world, .output = &output, .faults = &plan});
        PF_Err error = PF_Err_NONE;
        try {
            this->transfer(world, output, call);
        } catch (std::int32_t thrownError) {
            error = thrownError;
        }
        EXPECT_TRUE(call.findings().empty()) << call.findings().front();
        return error;
    };
    FaultPlan log;
    EXPECT_EQ(thrown(log), PF_Err_NONE);
    for (int n = 1; n <= static_cast<int>(log.calls().size()); ++n) {
        const std::string& name = log.calls()[static_cast<std::size_t>(n) - 1];
        SCOPED_TRACE(name);
        FaultPlan plan{{.nth = n}};
        const PF_Err error = thrown(plan);
        const PF_Err expected = name.starts_with("AcquireSuite")     ? A_Err_MISSING_SUITE
                                : name.starts_with("iterate")        ? kInjectedError
                                : name.starts_with("get_pixel_data") ? PF_Err_BAD_CALLBACK_PARAM
                                : name.starts_with("host_")          ? PF_Err_OUT_OF_MEMORY
                                                                     : PF_Err_NONE;
        EXPECT_EQ(error, plan.fired() > 0 ? expected : PF_Err_NONE);
        EXPECT_EQ(this->integer(GL_UNPACK_ROW_LENGTH), 0);
        EXPECT_EQ(this->living([](unsigned texture) { return glIsTexture(texture); }), 0);
    }
}

using PassTest = PipelineTest;

TEST_F(PassTest, AnUnknownFormatIsRefusedBothWays) {
    World world(3, 2);
    HostCall call({.input = &world, .output = &world});
    unsigned long pixelSize = 4;
    GLenum glType = GL_UNSIGNED_BYTE;
    float multiplier = 1.0f;
    const auto refused = [](auto transfer) {
        try {
            transfer();
        } catch (std::int32_t error) {
            return error;
        }
        return 0;
    };
    PF_LayerDef* layer = world.layer();
    const auto upload = [&] {
        AEOpenGLUtilities::UploadTexture(0x61726762, layer, layer, call.inData(), pixelSize, glType, multiplier, false);
    };
    const auto download = [&] {
        AEOpenGLUtilities::DownloadTexture(3, 2, layer, layer, call.inData(), 7, pixelSize, glType);
    };
    EXPECT_EQ(refused(upload), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(refused(download), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(living([](unsigned texture) { return glIsTexture(texture); }), 0);
    EXPECT_TRUE(call.findings().empty());
}

TEST_F(PassTest, FrameBufferStatesInWords) {
    frameBuffer.prepare(4, 4, false);
    frameBuffer.beginDrawing();
    EXPECT_EQ(AEOpenGLUtilities::CheckFramebufferStatus(), "OK");
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, 0);
    EXPECT_EQ(AEOpenGLUtilities::CheckFramebufferStatus(), "Framebuffer incomplete, missing attachment!");
}

using Colour = std::array<double, 4>;

/// Each pass alone, into a target of floats, where nothing is clamped or rounded to 8 bits: texels without symmetry,
/// some of them beyond 0 to 1 and some without alpha (in either layout), against the definition in double.
TEST_F(PassTest, DrawsWhatItsDefinitionSays) {
    ContrastRender contrast;
    ScreenRender screen;
    BackgroundRender background;
    const auto premultiplied = [](double m, double a, double r, double g, double b) {
        return Colour{r * m * a * m, g * m * a * m, b * m * a * m, a * m};
    };
    struct Row {
        const char* name;
        float multiplier;
        std::function<void(unsigned, float)> draw;
        std::function<Colour(const Texel&)> expected;
    };
    std::vector<Row> rows;
    for (const float m : {1.0f, 1.9f}) {
        rows.push_back({"screen", m, [&](unsigned texture, float by) { screen.draw(texture, by); },
                        [m](const Texel& t) {
                            const double a = t[3];
                            return a == 0.0 ? Colour{} : Colour{a / m, t[0] / a / m, t[1] / a / m, t[2] / a / m};
                        }});
        rows.push_back({"background", m, [&](unsigned texture, float by) { background.draw(texture, by); },
                        [=](const Texel& t) { return premultiplied(m, t[0], t[1], t[2], t[3]); }});
        for (const auto& [c, b] : {std::pair{1.0f, 0.0f}, {0.0f, 0.0f}, {1.4f, 5.0f}, {3.0f, -70.0f}})
            rows.push_back({"contrast", m,
                            [&contrast, c = c, b = b](unsigned texture, float by) {
                                contrast.setContrast(c);
                                contrast.setBrightness(b);
                                contrast.draw(texture, by);
                            },
                            [=, c = c, b = b](const Texel& t) {
                                const auto correct = [c, b](double v) { return (v - 0.5) * c + 0.5 + b / 100.0; };
                                return premultiplied(m, t[0], correct(t[1]), correct(t[2]), correct(t[3]));
                            }});
    }
    std::vector<Texel> source;
    for (std::size_t i = 0; i < kTexels; ++i) {
        const auto t = static_cast<float>(i) / kTexels;
        source.push_back(i % 5 == 4 ? Texel{0.0f, 0.7f, t, 0.0f}
                                    : Texel{1.0f - 0.5f * t, 1.2f * t, 0.25f + t * t, 0.1f + 0.9f * t});
    }
    frameBuffer.prepare(kWidth, kHeight, false);
    // Its texels are never mixed: between floats, the least bit of a neighbour's alpha would show where there is none.
    const unsigned texture = frameBuffer.createFloatRenderTexture(false, false);
    const unsigned target = frameBuffer.createFloatRenderTexture(false, false);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, kWidth, kHeight, GL_RGBA, GL_FLOAT, source.data());
    glViewport(0, 0, kWidth, kHeight);
    for (const Row& row : rows) {
        frameBuffer.pushNormalRenderContext(target);
        row.draw(texture, row.multiplier);
        frameBuffer.popNormalRenderContext();
        const std::vector<Texel> drawn = readTexture(target);
        for (std::size_t i = 0; i < kTexels; ++i)
            for (std::size_t channel = 0; channel < 4; ++channel)
                // Single precision on values up to 10, in a handful of operations.
                EXPECT_NEAR(drawn[i][channel], row.expected(source[i])[channel], 2e-5)
                    << row.name << " times " << row.multiplier << ", channel " << channel << " of texel " << i;
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        EXPECT_EQ(integer(GL_VERTEX_ARRAY_BINDING), 0);
        EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
    }
}

} // namespace

} // namespace Ombrique::Tests
