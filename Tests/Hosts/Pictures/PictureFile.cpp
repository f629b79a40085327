#include "Tests/Hosts/Pictures/PictureFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string_view>

namespace Ombrique::Tests {

using Hosts::World;

namespace {

double sampleOf(const PF_Pixel8& pixel, char channel, bool associated) {
    const double colour = channel == 'G' ? pixel.green : channel == 'B' ? pixel.blue : pixel.red;
    return std::string_view("YRGB").find(channel) != std::string_view::npos
               ? colour / 255.0 * (associated ? pixel.alpha / 255.0 : 1.0)
               : (channel == 'A' ? pixel.alpha / 255.0 : 0.5);
}

} // namespace

void writePictureFile(const std::string& path, const World& picture, const PictureForm& form,
                      OIIO::ImageSpec metadata) {
    OIIO::ImageSpec spec(picture.width(), picture.height(), static_cast<int>(form.channels.size()), form.depth);
    for (std::size_t i = 0; i < form.channels.size(); ++i)
        spec.channelnames[i] = form.channels[i];
    spec.alpha_channel = static_cast<int>(form.channels.find('A')); // npos is -1
    spec.extra_attribs = metadata.extra_attribs;
    spec.x = metadata.x;
    spec.y = metadata.y;
    if (metadata.full_width > 0)
        spec.set_roi_full(metadata.roi_full());
    if (!form.associated)
        spec.attribute("oiio:UnassociatedAlpha", 1);
    std::vector<float> samples;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            for (const char channel : form.channels)
                samples.push_back(
                    static_cast<float>(sampleOf(picture.pixel<PF_Pixel8>(x, y), channel, form.associated)));
    const auto file = OIIO::ImageOutput::create(path);
    ASSERT_TRUE(file && file->open(path, spec) && file->write_image(OIIO::TypeDesc::FLOAT, samples.data()) &&
                file->close())
        << path << ": " << (file ? file->geterror() : OIIO::geterror());
}

World readPictureFile(const std::string& path, const PictureForm& form) {
    OIIO::ImageSpec hints;
    hints.attribute("oiio:UnassociatedAlpha", 1);
    const auto file = OIIO::ImageInput::open(path, &hints);
    if (!file || file->spec().nchannels != static_cast<int>(form.channels.size())) {
        ADD_FAILURE() << path << ": " << (file ? "has other channels" : OIIO::geterror());
        return World(1, 1);
    }
    const OIIO::ImageSpec& spec = file->spec();
    std::vector<float> samples(spec.image_pixels() * form.channels.size());
    EXPECT_TRUE(file->read_image(0, 0, 0, -1, OIIO::TypeDesc::FLOAT, samples.data())) << file->geterror();
    World picture(spec.width, spec.height);
    const float* next = samples.data();
    for (int y = 0; y < spec.height; ++y)
        for (int x = 0; x < spec.width; ++x, next += spec.nchannels) {
            const std::size_t place = form.channels.find('A');
            const double alpha = place == std::string::npos ? 1.0 : next[place];
            const double weight = !form.associated ? 1.0 : alpha > 0.0 ? 1.0 / alpha : 0.0;
            const auto byte = [](double value) { return static_cast<std::uint8_t>(std::lround(value * 255.0)); };
            const auto colour = [&](char channel) {
                const std::size_t own = form.channels.find(channel);
                return byte(next[own == std::string::npos ? 0 : own] * weight);
            };
            picture.setPixel(x, y, PF_Pixel8{byte(alpha), colour('R'), colour('G'), colour('B')});
        }
    return picture;
}

OIIO::ImageSpec describePictureFile(const std::string& path) {
    const auto file = OIIO::ImageInput::open(path);
    EXPECT_TRUE(file) << OIIO::geterror();
    return file ? file->spec() : OIIO::ImageSpec();
}

World asHeld(const World& picture, const PictureForm& form) {
    World held(picture.width(), picture.height());
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            auto pixel = picture.pixel<PF_Pixel8>(x, y);
            if (form.channels[0] == 'Y')
                pixel.green = pixel.blue = pixel.red;
            if (form.channels.find('A') == std::string::npos)
                pixel.alpha = 255;
            held.setPixel(x, y, pixel);
        }
    return held;
}

} // namespace Ombrique::Tests
