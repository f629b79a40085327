#include "Hosts/Engine/HostCall.h"
#include "Plugins/Contrast/Sources/ContrastRender.h"
#include "Plugins/Shared/GL/AEOpenGLUtilities.h"
#include "Plugins/Shared/GL/BackgroundRender.h"
#include "Tests/Shared/GL/PipelineTest.h"

using namespace gl;

namespace Ombrique::Tests {

namespace {

using namespace GaussianBlur;
using namespace Hosts;

/// A depth that no frame of the effect has: the host's white, and the factor from there to OpenGL's.
struct Depth {
    int format;
    float white;
    float multiplier;
};
template <typename Pixel> constexpr Depth kDepth{PF_PixelFormat_ARGB128, 1.0f, 1.0f};
template <> constexpr Depth kDepth<PF_Pixel16>{PF_PixelFormat_ARGB64, 32768.0f, 65535.0f / 32768.0f};

template <typename Pixel> class TransferTest : public PipelineTest {
protected:
    static World makeWorld(int width, int height) {
        World world(width, height, kDepthOf<Pixel>, {.paddingBytes = 3 * sizeof(Pixel)});
        const auto value = [](double part) { return static_cast<decltype(Pixel::red)>(part * kDepth<Pixel>.white); };
        for (int n = 0; n < width * height; ++n)
            world.setPixel(n % width, n / width,
                           Pixel{value(1.0 - n / 100.0), value(n / 120.0), value(1.0 - n / 200.0), value(n * n / 1e4)});
        return world;
    }

    /// The pixels, divided by `white`; alpha comes first.
    static std::vector<Texel> texels(const World& world, float white) {
        std::vector<Texel> all;
        for (int n = 0; n < world.width() * world.height(); ++n) {
            const Pixel pixel = world.pixel<Pixel>(n % world.width(), n / world.width());
            all.push_back({pixel.alpha / white, pixel.red / white, pixel.green / white, pixel.blue / white});
        }
        return all;
    }

    unsigned upload(HostCall& call, bool mipmap) {
        return AEOpenGLUtilities::UploadTexture(kDepth<Pixel>.format, input.layer(), nullptr, call.inData(), pixelSize,
                                                glType, multiplier, mipmap);
    }

    /// Upload, `Pass`, the screen pass and download; returns what was thrown. Nothing stays behind.
    template <typename Pass> PF_Err transfer(World& output, Pass& pass, FaultPlan& plan) {
        HostCall call({.input = &input, .output = &output, .faults = &plan});
        PF_Err error = PF_Err_NONE;
        try {
            expectTexture(upload(call, true), GL_FLOAT, GL_LINEAR_MIPMAP_LINEAR, GL_LINEAR);
            const unsigned texture = upload(call, false);
            const std::vector<Texel> expected = texels(input, kDepth<Pixel>.white * kDepth<Pixel>.multiplier);
            expectTexels(readTexture(texture), 1e-6, [&](std::size_t i) { return expected[i]; });
            frameBuffer.prepare(kWidth, kHeight, true);
            frameBuffer.beginDrawing();
            pass.draw(texture, multiplier);
            expectTexture(texture, GL_FLOAT, GL_LINEAR, GL_LINEAR);
            frameBuffer.endDrawing(multiplier);
            AEOpenGLUtilities::DownloadTexture(kWidth, kHeight, input.layer(), output.layer(), call.inData(),
                                               kDepth<Pixel>.format, pixelSize, glType);
        } catch (std::int32_t thrown) {
            error = thrown;
        }
        EXPECT_EQ(integer(GL_UNPACK_ROW_LENGTH), 0);
        EXPECT_EQ(living("Texture"), 0);
        EXPECT_TRUE(output.damage().empty()) << output.damage().front();
        EXPECT_TRUE(call.findings().empty()) << call.findings().front();
        return error;
    }

    World input = makeWorld(kWidth, kHeight);
    unsigned long pixelSize = 0;
    GLenum glType = GL_NONE;
    float multiplier = 0.0f;
};

using Depths = testing::Types<PF_Pixel16, PF_PixelFloat>;
TYPED_TEST_SUITE(TransferTest, Depths);

TYPED_TEST(TransferTest, BringsThePictureBackAndClearsTheRest) {
    BackgroundRender background;
    ContrastRender contrast;
    contrast.setContrast(0.5f);
    contrast.setBrightness(-20.0f);
    const std::vector<Texel> source = this->texels(this->input, kDepth<TypeParam>.white);
    // Half a step of 8 bits for a colour and for its alpha, which is 0.66 or more, and one in the screen pass's target,
    // whose values are divided by the multiplier.
    const double tolerance = (1.0 / 0.66 + 0.5 * kDepth<TypeParam>.multiplier) / 255 + 1e-4;
    for (const auto& [width, height] : {std::pair{7, 5}, {9, 5}, {4, 9}, {5, 0}}) {
        for (const bool corrected : {false, true}) {
            SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height) + (corrected ? ", corrected" : ""));
            World output = this->makeWorld(width, height);
            FaultPlan none;
            EXPECT_EQ(corrected ? this->transfer(output, contrast, none) : this->transfer(output, background, none), 0);
            const auto expectedAt = [&, columns = width](std::size_t i) -> Texel {
                const int x = static_cast<int>(i) % columns;
                const int y = static_cast<int>(i) / columns;
                if (x >= this->kWidth || y >= this->kHeight)
                    return {};
                const auto& [alpha, red, green, blue] = source[static_cast<std::size_t>(x + y * this->kWidth)];
                const float slope = corrected ? 0.5f : 1.0f;
                const float offset = corrected ? 0.05f * this->multiplier : 0.0f;
                return {alpha, slope * red + offset, slope * green + offset, slope * blue + offset};
            };
            this->expectTexels(this->texels(output, kDepth<TypeParam>.white), tolerance, expectedAt);
        }
    }
}

TYPED_TEST(TransferTest, EachFaultIsThrownAndLeavesNothing) {
    BackgroundRender background;
    World output = this->makeWorld(9, 5);
    FaultPlan log;
    EXPECT_EQ(this->transfer(output, background, log), PF_Err_NONE);
    for (int n = 1; n <= static_cast<int>(log.calls().size()); ++n) {
        FaultPlan plan{{.nth = n}};
        const PF_Err thrown = this->transfer(output, background, plan);
        const std::string& name = log.calls()[static_cast<std::size_t>(n) - 1];
        EXPECT_EQ(thrown != PF_Err_NONE, plan.fired() > 0 && !name.starts_with("ReleaseSuite")) << name;
        EXPECT_EQ(thrown == kInjectedError, name.starts_with("iterate")) << name;
    }
}

} // namespace

} // namespace Ombrique::Tests
