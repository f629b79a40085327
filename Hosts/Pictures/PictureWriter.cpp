#include "Hosts/Pictures/PictureWriter.h"

#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/FormatRules.h"
#include "Hosts/Pictures/QuietStandardError.h"
#include "Hosts/Png/PngWriter.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Ombrique::Hosts {

namespace {

/// A rectangle of pixels, in the coordinates of the display.
struct Window {
    int x, y, width, height;
    bool operator==(const Window&) const = default;
};

/// The part of the picture that the file shall hold.
Window windowToWrite(const OIIO::ImageSpec& spec, const OIIO::ImageOutput& encoder, bool isSameFormat) {
    const Window data{spec.x, spec.y, spec.width, spec.height};
    const Window display{spec.full_x, spec.full_y, spec.full_width, spec.full_height};
    const bool needsNegative = data.x < 0 || data.y < 0;
    const bool holdsBoth = encoder.supports("displaywindow") && (!needsNegative || encoder.supports("negativeorigin"));
    return holdsBoth || isSameFormat || display.width <= 0 || display.height <= 0 ? data : display;
}

/// The description of the output: that of the input, less what was true of its file alone.
OIIO::ImageSpec describe(const PictureOrigin& origin, const OIIO::ImageOutput& encoder, const Window& window,
                         int channels) {
    const bool isSameFormat = origin.format == encoder.format_name();
    OIIO::ImageSpec spec = origin.spec;
    spec.nchannels = channels;
    spec.default_channel_names();
    const auto keepName = [&](int channel, int inOrigin) {
        spec.channelnames[static_cast<std::size_t>(channel)] =
            origin.spec.channelnames[static_cast<std::size_t>(inOrigin)];
    };
    for (int colour = 0; colour < origin.colourCount && (channels > 2) == (origin.colourCount > 1); ++colour)
        keepName(colour, origin.colours[static_cast<std::size_t>(colour)]);
    spec.alpha_channel = channels % 2 == 0 ? channels - 1 : -1;
    if (spec.alpha_channel >= 0 && origin.alpha >= 0)
        keepName(spec.alpha_channel, origin.alpha);
    else if (spec.alpha_channel >= 0)
        spec.channelnames.back() = "A";
    spec.z_channel = -1;
    spec.set_format(OIIO::TypeDesc::UINT8);
    spec.x = window.x;
    spec.y = window.y;
    spec.width = window.width;
    spec.height = window.height;
    if (!isSameFormat) {
        spec.tile_width = spec.tile_height = spec.tile_depth = 0;
        spec.erase_attribute("compression");
        spec.erase_attribute("CompressionQuality");
    }
    spec.erase_attribute("oiio:BitsPerSample");
    spec.erase_attribute("thumbnail_.*");
    return spec;
}

/// So many rows are made ready at a time as stay in the processor's cache until they are encoded; all of a tiled
/// picture.
constexpr int kRowsAtATime = 64;

/// Rows of samples in the order of the file's channels, ready for the encoder.
class SamplePacker {
public:
    /// With a conversion, the samples are floats.
    SamplePacker(int channels, AlphaConvention convention, OIIO::ColorProcessor* conversion)
        : mChannels(channels), mIsStraightRgba(channels == 4 && convention == AlphaConvention::Straight && !conversion),
          mIsConverted(conversion != nullptr) {
        for (std::size_t level = 0; conversion && level < mLevels.size(); ++level) {
            float grey[] = {static_cast<float>(level) / 255.0f, static_cast<float>(level) / 255.0f,
                            static_cast<float>(level) / 255.0f};
            conversion->apply(grey);
            mLevels[level] = grey[0];
        }
        for (std::size_t alpha = 0; alpha < mWeights.size(); ++alpha)
            mWeights[alpha] = colourWeight(convention, static_cast<float>(alpha) / 255.0f);
    }

    /// The bytes of a pixel of the file.
    std::size_t pixelBytes() const { return static_cast<std::size_t>(mChannels) * (mIsConverted ? sizeof(float) : 1); }

    /// The rows of `part`, which is as wide as the file's picture, one after the other; black and transparent outside
    /// of `data`, which is the place of `pixels`.
    void pack(const World& pixels, const Window& data, const Window& part, std::uint8_t* samples) const {
        const auto rowBytes = static_cast<std::size_t>(part.width) * pixelBytes();
        const int left = std::max(data.x, part.x);
        const int right = std::min(data.x + data.width, part.x + part.width);
        for (int y = part.y; y < part.y + part.height; ++y, samples += rowBytes) {
            const bool isInside = y >= data.y && y < data.y + data.height && left < right;
            if (!isInside || right - left < part.width)
                std::fill_n(samples, rowBytes, std::uint8_t{0});
            if (!isInside)
                continue;
            const auto* from = reinterpret_cast<const PF_Pixel8*>(pixels.row(y - data.y)) + (left - data.x);
            std::uint8_t* to = samples + static_cast<std::size_t>(left - part.x) * pixelBytes();
            if (mIsStraightRgba)
                packStraightRgba(from, right - left, to);
            else
                for (int x = left; x < right; ++x)
                    to = mIsConverted ? putConverted(*from++, to) : put(*from++, to);
        }
    }

private:
    /// The usual case, in a loop that the compiler makes a few instructions of.
    static void packStraightRgba(const PF_Pixel8* from, int count, std::uint8_t* to) {
        for (int x = 0; x < count; ++x, to += 4) {
            to[0] = from[x].red;
            to[1] = from[x].green;
            to[2] = from[x].blue;
            to[3] = from[x].alpha;
        }
    }
    std::uint8_t* put(const PF_Pixel8& pixel, std::uint8_t* to) const {
        *to++ = weighted(pixel.red, pixel.alpha);
        if (mChannels > 2) {
            *to++ = weighted(pixel.green, pixel.alpha);
            *to++ = weighted(pixel.blue, pixel.alpha);
        }
        if (mChannels % 2 == 0)
            *to++ = pixel.alpha;
        return to;
    }
    std::uint8_t* putConverted(const PF_Pixel8& pixel, std::uint8_t* to) const {
        const float weight = mWeights[pixel.alpha];
        float samples[] = {mLevels[pixel.red] * weight, mLevels[pixel.green] * weight, mLevels[pixel.blue] * weight,
                           static_cast<float>(pixel.alpha) / 255.0f};
        if (mChannels == 2)
            samples[1] = samples[3];
        std::memcpy(to, samples, pixelBytes());
        return to + pixelBytes();
    }
    std::uint8_t weighted(std::uint8_t colour, std::uint8_t alpha) const {
        constexpr float kHalf = 0.5f; // rounds what isn't negative, once it is cut off
        return static_cast<std::uint8_t>(static_cast<float>(colour) * mWeights[alpha] + kHalf);
    }

    std::array<float, 256> mWeights{};
    /// The converted colours.
    std::array<float, 256> mLevels{};
    int mChannels;
    bool mIsStraightRgba;
    bool mIsConverted;
};

bool isTranslucent(const World& pixels) {
    for (int y = 0; y < pixels.height(); ++y) {
        const auto* row = reinterpret_cast<const PF_Pixel8*>(pixels.row(y));
        if (std::any_of(row, row + pixels.width(), [](const PF_Pixel8& pixel) { return pixel.alpha != 255; }))
            return true;
    }
    return false;
}

/// Whether a file holds all of the picture that its header promises.
bool isReadable(const std::filesystem::path& path) {
    const auto file = OIIO::ImageInput::open(path.string());
    if (!file)
        return static_cast<void>(OIIO::geterror()), false;
    std::vector<std::uint8_t> samples(file->spec().image_bytes());
    return file->read_image(0, 0, 0, -1, OIIO::TypeDesc::UINT8, samples.data()) && !file->has_error();
}

std::unique_ptr<OIIO::ImageOutput> encoderFor(const std::filesystem::path& path) {
    auto encoder = OIIO::ImageOutput::create(path.string());
    if (!encoder) {
        static_cast<void>(OIIO::geterror());
        throw Failure(path.string() + ": can't be written: no picture format has the extension \"" +
                      path.extension().string() + "\"");
    }
    return encoder;
}

} // namespace

PictureWriter::PictureWriter(const std::filesystem::path& path, const std::string& compression,
                             const OutputRules& rules)
    : mPath(path), mCompression(compression), mFile(path, rules), mProxy(mFile.descriptor()),
      mEncoder(encoderFor(path)) {
    requireCompression(compression, mEncoder->format_name());
}

PictureWriter::~PictureWriter() {
    const QuietStandardError quiet; // an encoder that is cut off complains
    mEncoder.reset();
}

void PictureWriter::encode(const OIIO::ImageSpec& spec, const PackRows& packRows) {
    if (mCompression.empty() && mEncoder->format_name() == std::string_view("png")) {
        writePng(mPath, spec, packRows, mProxy);
        if (mProxy.errorNumber() != 0)
            mFile.fail(mProxy.errorNumber());
        return;
    }
    // Most encoders take a file of ours, which misses no failure. Those that write by name may not notice a full disk,
    // so their file is read again. The TIFF encoder is one of them, as it damages files of ours that hold Exif data;
    // and it leaves an error text where there is none.
    const bool takesProxy = mEncoder->supports("ioproxy") && mEncoder->format_name() != std::string_view("tiff");
    if (takesProxy)
        mEncoder->set_ioproxy(&mProxy);
    const bool isEncoded =
        mEncoder->open(mFile.partialPath().string(), spec) && encodeRows(spec, packRows) && mEncoder->close();
    const std::string complaint = mEncoder->geterror();
    if (mProxy.errorNumber() != 0)
        mFile.fail(mProxy.errorNumber());
    if (!isEncoded || (!takesProxy && !isReadable(mFile.partialPath())))
        throw Failure(mPath.string() + ": can't be written: " + firstErrorLine(complaint, "the file ends too early"));
}

bool PictureWriter::encodeRows(const OIIO::ImageSpec& spec, const PackRows& packRows) {
    const bool isTiled = mEncoder->spec().tile_width > 0; // which some formats are by themselves
    // Where nothing is to be converted, OpenImageIO needs no copy of the samples. GIF's encoder always converts.
    const bool isNative = mEncoder->spec().format == mSampleType && mEncoder->format_name() != std::string_view("gif");
    const OIIO::TypeDesc type(isNative ? OIIO::TypeDesc(OIIO::TypeDesc::UNKNOWN) : mSampleType);
    const int rowsAtATime = isTiled ? spec.height : std::min(spec.height, kRowsAtATime);
    const auto samples =
        std::make_unique_for_overwrite<std::uint8_t[]>(static_cast<std::size_t>(spec.width * spec.nchannels) *
                                                       mSampleType.size() * static_cast<std::size_t>(rowsAtATime));
    for (int top = 0; top < spec.height; top += rowsAtATime) {
        const int rows = std::min(rowsAtATime, spec.height - top);
        const int y = spec.y + top;
        packRows(y, rows, samples.get());
        if (!(isTiled ? mEncoder->write_image(mSampleType, samples.get())
                      : mEncoder->write_scanlines(y, y + rows, 0, type, samples.get())))
            return false;
    }
    return true;
}

std::vector<std::string> PictureWriter::write(const World& pixels, const PictureOrigin& origin, bool convertsColours) {
    const std::string format = mEncoder->format_name();
    const int channels = channelsToWrite(format, mPath.extension().string(), origin.colourCount, origin.alpha >= 0);
    if (channels == 0)
        throw Failure(mPath.string() + ": can't be written: such a file can't hold a picture " +
                      (origin.colourCount == 1 ? "of greys" : "in colour"));
    const bool withAlpha = channels % 2 == 0;

    const bool isDeclaredStraight = format == "tiff" && origin.spec.get_int_attribute("oiio:UnassociatedAlpha") != 0;
    const AlphaConvention convention =
        withAlpha ? alphaConvention(format, isDeclaredStraight) : AlphaConvention::Associated;
    const Window data{origin.spec.x, origin.spec.y, origin.spec.width, origin.spec.height};
    const Window window = windowToWrite(origin.spec, *mEncoder, origin.format == format);
    OIIO::ImageSpec spec = describe(origin, *mEncoder, window, channels);
    spec.erase_attribute("oiio:UnassociatedAlpha");
    if (withAlpha && convention == AlphaConvention::Straight)
        spec.attribute("oiio:UnassociatedAlpha", 1);
    spec.attribute("ico:PNG", 1); // as it comes, the encoder of icons writes beyond its memory

    setCompression(spec, mCompression, format);
    const bool isLinear = format == "openexr" || format == "hdr";
    const auto conversion =
        convertsColours && isLinear
            ? colourConversion(origin.spec.get_string_attribute("oiio:ColorSpace", "sRGB"), "Linear")
            : OIIO::ColorProcessorHandle();
    if (conversion) {
        spec.attribute("oiio:ColorSpace", "Linear");
        spec.set_format(OIIO::TypeDesc::HALF);
        mSampleType = OIIO::TypeDesc::FLOAT;
    }
    const SamplePacker packer(channels, convention, conversion.get());
    encode(spec, [&](int top, int rows, std::uint8_t* samples) {
        packer.pack(pixels, data, {window.x, top, window.width, rows}, samples);
    });
    mFile.commit();
    std::vector<std::string> losses;
    if (!withAlpha && isTranslucent(pixels))
        losses.emplace_back("no alpha is written in this format: the picture is laid over black");
    if (format == "gif")
        losses.emplace_back("the format has 255 colours at most");
    if (isForDisplays(format) && OIIO::Strutil::iequals(origin.spec.get_string_attribute("oiio:ColorSpace"), "linear"))
        losses.emplace_back(
            "its linear values are kept as they are, and look dark in a format for displays; --autocc converts them");
    return losses;
}

} // namespace Ombrique::Hosts
