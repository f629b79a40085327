#pragma once

#include <cstddef>
#include <vector>

namespace Ombrique::Benchmarks {

/// The OpenGL calls of one frame, in the effect's order and with nothing around them: no host, no locks, no classes,
/// straight into the driver. What the effect takes longer than this is its own doing.
///
/// Pixels are packed rows of alpha, red, green, blue, 8 bits each. Needs the context in which it was made to be
/// current. A whole frame is render(), or each stage once in the order of their declaration.
class BareFrame {
public:
    BareFrame(int width, int height);
    ~BareFrame();
    BareFrame(const BareFrame&) = delete;
    BareFrame& operator=(const BareFrame&) = delete;

    /// Corrects `input` into `output`, whose rows are `outputRowBytes` apart.
    void render(const void* input, std::byte* output, std::ptrdiff_t outputRowBytes, float contrast, float brightness);

    void makeTarget();
    void upload(const void* input);
    void contrastPass(float contrast, float brightness);
    /// With the texture that the picture is resolved into.
    void resolve();
    void screenPass();
    void readBack();
    void copyRows(std::byte* output, std::ptrdiff_t outputRowBytes) const;

private:
    struct Pass {
        unsigned program = 0;
        unsigned vertexArray = 0;
        unsigned vertexBuffer = 0;
        int positionComponents = 0;
    };

    static Pass makePass(int positionComponents, const char* fragmentSource);
    static void deletePass(const Pass& pass);
    static void beginPass(const Pass& pass, unsigned texture);
    static void endPass();
    static unsigned makeTexture();

    int mWidth;
    int mHeight;
    int mSamples = 0;
    Pass mContrast;
    Pass mScreen;
    unsigned mMultisampleFrameBuffer = 0;
    unsigned mResolveFrameBuffer = 0;
    unsigned mFrameBuffer = 0;
    unsigned mOutput = 0;
    unsigned mTarget = 0;
    unsigned mTexture = 0;
    std::vector<std::byte> mZeros;
    std::vector<std::byte> mPicture;
};

} // namespace Ombrique::Benchmarks
