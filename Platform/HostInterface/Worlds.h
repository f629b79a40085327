#pragma once

#include <cstdint>

/// The host's pixels and the worlds that hold them. In every depth a pixel's channels stand in the order alpha, red,
/// green, blue, and colour is straight: not multiplied by alpha.

/// 8 bits a channel, 0 to 255.
struct PF_Pixel8 {
    std::uint8_t alpha;
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

/// 16 bits a channel, 0 to 32768, which is white.
struct PF_Pixel16 {
    std::uint16_t alpha;
    std::uint16_t red;
    std::uint16_t green;
    std::uint16_t blue;
};

/// 32-bit floats, 0 to 1 and beyond.
struct PF_PixelFloat {
    float alpha;
    float red;
    float green;
    float blue;
};

/// A pixel format as a four-character code, first letter in the lowest byte: "argb", "ae16", "ae32".
enum : int {
    PF_PixelFormat_ARGB32 = 0x62677261,
    PF_PixelFormat_ARGB64 = 0x36316561,
    PF_PixelFormat_ARGB128 = 0x32336561,
};

/// A world: a picture of `width` by `height` pixels in the host's memory. The host owns it, and it lives as long as the
/// command that it was handed to. It doesn't tell its depth: the code that uses it has to know.
struct PF_LayerDef {
    /// The first pixel of the first row. A plug-in reaches it through PF_GET_PIXEL_DATA8 and PF_GET_PIXEL_DATA16.
    void* data;
    /// From the start of one row to the start of the next, in bytes; at least a row of pixels, and negative where the
    /// rows run upwards in memory.
    std::int32_t rowbytes;
    std::int32_t width;
    std::int32_t height;
};
using PF_EffectWorld = PF_LayerDef;
