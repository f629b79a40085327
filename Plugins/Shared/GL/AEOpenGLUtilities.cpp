#include "Plugins/Shared/GL/AEOpenGLUtilities.h"

#include "Plugins/Shared/Helper/ScopeExit.h"
#include "Plugins/Shared/Helper/SuiteScoper.h"

#include <glbinding/gl/gl.h>

#include <algorithm>
#include <cstddef>
#include <vector>

using namespace gl;

namespace Ombrique::GaussianBlur {

namespace {

// How each of the integer depths is known to OpenGL, and how the host hands out its pixels. `in_data` is the name that
// the host's macros look for.

struct Depth8 {
    using Pixel = PF_Pixel8;
    static constexpr GLenum kType = GL_UNSIGNED_BYTE;
    static constexpr float kMultiplier = 1.0f;
    static void start(PF_InData* in_data, PF_LayerDef* world, Pixel** pixels) {
        PF_GET_PIXEL_DATA8(world, nullptr, pixels);
    }
};

struct Depth16 {
    using Pixel = PF_Pixel16;
    static constexpr GLenum kType = GL_UNSIGNED_SHORT;
    /// The host's white is 32768, and OpenGL takes 65535 for white.
    static constexpr float kMultiplier = 65535.0f / 32768.0f;
    static void start(PF_InData* in_data, PF_LayerDef* world, Pixel** pixels) {
        PF_GET_PIXEL_DATA16(world, nullptr, pixels);
    }
};

/// The first pixel of a world that has some; only the pointer tells whether the host hands it out.
template <typename Depth> typename Depth::Pixel* pixelStart(PF_InData* in_data, PF_LayerDef* world) {
    typename Depth::Pixel* pixels = nullptr;
    Depth::start(in_data, world, &pixels);
    if (pixels == nullptr)
        throw std::int32_t{PF_Err_BAD_CALLBACK_PARAM};
    return pixels;
}

void setFilters(bool mipmap) {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, mipmap ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

bool hasPixels(const PF_LayerDef& world) { return world.width > 0 && world.height > 0; }

/// Fills the bound texture from pixels whose rows are `rowLength` pixels apart.
void fillTexture(const PF_LayerDef& world, int rowLength, GLenum type, const void* pixels) {
    glPixelStorei(GL_UNPACK_ROW_LENGTH, rowLength);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, world.width, world.height, GL_RGBA, type, pixels);
}

/// The same for rows that run upwards in memory, for which OpenGL has no row length.
template <typename Depth>
void fillTextureUpwards(const PF_LayerDef& world, int rowLength, const typename Depth::Pixel* pixels) {
    for (std::int32_t y = 0; y < world.height; ++y)
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, y, world.width, 1, GL_RGBA, Depth::kType,
                        pixels + std::ptrdiff_t{y} * rowLength);
}

/// The host's memory goes to OpenGL as it is.
template <typename Depth>
void uploadPixels(PF_InData* in_data, PF_LayerDef* input, unsigned long& pixelSize, GLenum& glType, float& multiplier) {
    glType = Depth::kType;
    pixelSize = sizeof(typename Depth::Pixel);
    multiplier = Depth::kMultiplier;
    if (!hasPixels(*input))
        return;
    const typename Depth::Pixel* const pixels = pixelStart<Depth>(in_data, input);
    const int rowLength = input->rowbytes / static_cast<int>(sizeof *pixels);
    if (rowLength < 0)
        fillTextureUpwards<Depth>(*input, rowLength, pixels);
    else
        fillTexture(*input, rowLength, glType, pixels);
}

/// Runs `callback` over `source` and `destination`, and throws the host's error.
void iterateFloat(PF_InData* in_data, PF_LayerDef* source, PF_LayerDef* destination, CopyPixelFloatRefcon& refcon,
                  PF_IteratePixelFloatFunc callback) {
    const SuiteScoper<PF_iterateFloatSuite1> suite(in_data, "PF iterateFloat Suite", 1, nullptr, nullptr);
    const PF_Err error = suite->iterate(in_data, 0, source->height, source, nullptr, &refcon, callback, destination);
    if (error != PF_Err_NONE)
        throw std::int32_t{error};
}

void uploadFloats(PF_InData* in_data, PF_LayerDef* input, unsigned long& pixelSize, GLenum& glType) {
    glType = GL_FLOAT;
    pixelSize = sizeof(PF_PixelFloat);
    std::vector<PF_PixelFloat> packed(static_cast<std::size_t>(input->height) * static_cast<std::size_t>(input->width));
    CopyPixelFloatRefcon refcon{packed.data(), input};
    iterateFloat(in_data, input, input, refcon, AEOpenGLUtilities::CopyPixelFloatIn);
    fillTexture(*input, input->width, glType, packed.data());
}

/// Copies a picture's rows, packed in `picture`, to the world, and clears what they don't cover.
template <typename Depth>
void downloadPixels(PF_InData* in_data, PF_LayerDef* output, const void* picture, unsigned width, unsigned height) {
    using Pixel = typename Depth::Pixel;
    if (!hasPixels(*output))
        return;
    const auto* source = static_cast<const Pixel*>(picture);
    for (std::int32_t y = 0; y < output->height; ++y) {
        const std::ptrdiff_t rowBytes = std::ptrdiff_t{y} * output->rowbytes;
        Pixel* row = pixelStart<Depth>(in_data, output) + rowBytes / std::ptrdiff_t{sizeof(Pixel)};
        const bool covered = static_cast<unsigned>(y) < height;
        std::int64_t columns = 0;
        if (covered) {
            columns = std::min<std::int64_t>(width, output->width);
            std::copy_n(source + std::size_t{width} * static_cast<unsigned>(y), columns, row);
        }
        std::fill(row + columns, row + output->width, Pixel{});
    }
}

PF_Err clearPixelFloat(void*, int, int, PF_PixelFloat*, PF_PixelFloat* out) {
    *out = PF_PixelFloat{};
    return PF_Err_NONE;
}

/// The same for floats, which the host copies.
void downloadFloats(PF_InData* in_data, PF_LayerDef* input, PF_LayerDef* output, void* picture) {
    CopyPixelFloatRefcon refcon{static_cast<PF_PixelFloat*>(picture), input};
    if (picture == nullptr || output->width > input->width || output->height > input->height)
        iterateFloat(in_data, output, output, refcon, clearPixelFloat);
    if (picture != nullptr)
        iterateFloat(in_data, input, output, refcon, AEOpenGLUtilities::CopyPixelFloatOut);
}

/// Writes a picture of `width` by `height` packed pixels to the world. Without any, it makes the world transparent
/// black.
void writeWorld(PF_InData* in_data, PF_LayerDef* input, PF_LayerDef* output, int format, void* picture, unsigned width,
                unsigned height) {
    switch (format) {
    case PF_PixelFormat_ARGB32:
        return downloadPixels<Depth8>(in_data, output, picture, width, height);
    case PF_PixelFormat_ARGB64:
        return downloadPixels<Depth16>(in_data, output, picture, width, height);
    case PF_PixelFormat_ARGB128:
        return downloadFloats(in_data, input, output, picture);
    default:
        throw std::int32_t{PF_Err_BAD_CALLBACK_PARAM};
    }
}

/// The element of the array that belongs to the pixel at (x, y).
PF_PixelFloat& element(void* refcon, int x, int y) {
    const auto* context = static_cast<const CopyPixelFloatRefcon*>(refcon);
    return context->buffer[std::ptrdiff_t{y} * context->world->width + x];
}

} // namespace

unsigned int AEOpenGLUtilities::UploadTexture(int format, PF_LayerDef* input, PF_LayerDef*, PF_InData* in_data,
                                              unsigned long& pixelSize, GLenum& glType, float& multiplier16bit,
                                              bool mipmap) {
    unsigned texture = 0;
    glGenTextures(1, &texture);
    ScopeExit deleteTexture([&] { glDeleteTextures(1, &texture); });
    glBindTexture(GL_TEXTURE_2D, texture);
    const ScopeExit resetState([] {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
        glBindTexture(GL_TEXTURE_2D, 0);
    });
    setFilters(mipmap);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, input->width, input->height, 0, GL_RGBA, GL_FLOAT, nullptr);
    multiplier16bit = 1.0f;
    switch (format) {
    case PF_PixelFormat_ARGB32:
        uploadPixels<Depth8>(in_data, input, pixelSize, glType, multiplier16bit);
        break;
    case PF_PixelFormat_ARGB64:
        uploadPixels<Depth16>(in_data, input, pixelSize, glType, multiplier16bit);
        break;
    case PF_PixelFormat_ARGB128:
        uploadFloats(in_data, input, pixelSize, glType);
        break;
    default:
        throw std::int32_t{PF_Err_BAD_CALLBACK_PARAM};
    }
    deleteTexture.dismiss();
    return texture;
}

void AEOpenGLUtilities::DownloadTexture(unsigned int width, unsigned int height, PF_LayerDef* input,
                                        PF_LayerDef* output, PF_InData* in_data, int format, unsigned long pixelSize,
                                        GLenum glType) {
    const SuiteScoper<PF_HandleSuite1> handles(in_data, "PF Handle Suite", 2, nullptr, nullptr);
    const PF_Handle handle = handles->host_new_handle(std::uint64_t{width * height} * pixelSize);
    if (handle == nullptr)
        throw std::int32_t{PF_Err_OUT_OF_MEMORY};
    const ScopeExit dispose([&] { handles->host_dispose_handle(handle); });
    void* picture = handles->host_lock_handle(handle);
    if (picture == nullptr)
        throw std::int32_t{PF_Err_OUT_OF_MEMORY};
    const ScopeExit unlock([&] { handles->host_unlock_handle(handle); });
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    glReadPixels(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_RGBA, glType, picture);
    writeWorld(in_data, input, output, format, picture, width, height);
}

void AEOpenGLUtilities::ClearWorld(PF_LayerDef* output, PF_InData* in_data, int format) {
    writeWorld(in_data, output, output, format, nullptr, 0, 0);
}

std::string AEOpenGLUtilities::CheckFramebufferStatus() {
    switch (glCheckFramebufferStatus(GL_FRAMEBUFFER)) {
    case GL_FRAMEBUFFER_COMPLETE:
        return "OK";
    case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT:
        return "Framebuffer incomplete, incomplete attachment!";
    case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT:
        return "Framebuffer incomplete, missing attachment!";
    case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER:
        return "Framebuffer incomplete, missing draw buffer!";
    case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER:
        return "Framebuffer incomplete, missing read buffer!";
    case GL_FRAMEBUFFER_UNSUPPORTED:
        return "Unsupported framebuffer format!";
    default:
        return "Unknown error!";
    }
}

PF_Err AEOpenGLUtilities::CopyPixelFloatIn(void* refcon, int x, int y, PF_PixelFloat* in, PF_PixelFloat*) {
    element(refcon, x, y) = *in;
    return PF_Err_NONE;
}

PF_Err AEOpenGLUtilities::CopyPixelFloatOut(void* refcon, int x, int y, PF_PixelFloat*, PF_PixelFloat* out) {
    *out = element(refcon, x, y);
    return PF_Err_NONE;
}

} // namespace Ombrique::GaussianBlur
