#include "Tests/Hosts/CommandLine/TestPicture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace Ombrique::Tests {

using Hosts::World;

void writeTestPicture(const std::string& path, const World& picture, const PictureForm& form,
                      OIIO::ImageSpec metadata) {
    OIIO::ImageSpec spec(picture.width(), picture.height(), form.channels, form.depth);
    spec.extra_attribs = metadata.extra_attribs;
    if (form.channels % 2 == 0)
        spec.alpha_channel = form.channels - 1;
    if (!form.associated)
        spec.attribute("oiio:UnassociatedAlpha", 1);
    std::vector<float> samples;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const auto pixel = picture.pixel<PF_Pixel8>(x, y);
            const double weight = form.associated ? pixel.alpha / 255.0 : 1.0;
            samples.push_back(static_cast<float>(pixel.red * weight / 255.0));
            if (form.channels > 2) {
                samples.push_back(static_cast<float>(pixel.green * weight / 255.0));
                samples.push_back(static_cast<float>(pixel.blue * weight / 255.0));
            }
            if (form.channels % 2 == 0)
                samples.push_back(static_cast<float>(pixel.alpha / 255.0));
        }
    const auto file = OIIO::ImageOutput::create(path);
    ASSERT_TRUE(file && file->open(path, spec) && file->write_image(OIIO::TypeDesc::FLOAT, samples.data()) &&
                file->close())
        << path << ": " << (file ? file->geterror() : OIIO::geterror());
}

World readTestPicture(const std::string& path, const PictureForm& form) {
    OIIO::ImageSpec hints;
    hints.attribute("oiio:UnassociatedAlpha", 1);
    const auto file = OIIO::ImageInput::open(path, &hints);
    if (!file) {
        ADD_FAILURE() << OIIO::geterror();
        return World(1, 1);
    }
    const OIIO::ImageSpec& spec = file->spec();
    EXPECT_EQ(spec.nchannels, form.channels) << path;
    std::vector<float> samples(static_cast<std::size_t>(spec.width * spec.height * spec.nchannels));
    EXPECT_TRUE(file->read_image(0, 0, 0, -1, OIIO::TypeDesc::FLOAT, samples.data())) << file->geterror();
    World picture(spec.width, spec.height);
    const float* next = samples.data();
    for (int y = 0; y < spec.height; ++y)
        for (int x = 0; x < spec.width; ++x, next += spec.nchannels) {
            const double alpha = spec.nchannels % 2 == 0 ? next[spec.nchannels - 1] : 1.0;
            const double weight = !form.associated ? 1.0 : alpha > 0.0 ? 1.0 / alpha : 0.0;
            const auto byte = [](double value) { return static_cast<std::uint8_t>(std::lround(value * 255.0)); };
            const auto colour = [&](int channel) { return byte(next[spec.nchannels > 2 ? channel : 0] * weight); };
            picture.setPixel(x, y, PF_Pixel8{byte(alpha), colour(0), colour(1), colour(2)});
        }
    return picture;
}

World asHeld(const World& picture, const PictureForm& form) {
    World held(picture.width(), picture.height());
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            auto pixel = picture.pixel<PF_Pixel8>(x, y);
            if (form.channels < 3)
                pixel.green = pixel.blue = pixel.red;
            if (form.channels % 2 == 1)
                pixel.alpha = 255;
            held.setPixel(x, y, pixel);
        }
    return held;
}

} // namespace Ombrique::Tests
