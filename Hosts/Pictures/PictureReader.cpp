#include "Hosts/Pictures/PictureReader.h"

#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/FormatRules.h"
#include "Hosts/Pictures/QuietStandardError.h"
#include "Hosts/Png/PngReader.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <span>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Ombrique::Hosts {

namespace {

/// OpenImageIO's own words for a file that isn't there differ from format to format, and what is no file, such as a
/// pipe, it waits for.
void requireReadable(const std::filesystem::path& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status {};
    const int error = descriptor < 0 || fstat(descriptor, &status) != 0 ? errno : S_ISDIR(status.st_mode) ? EISDIR : 0;
    const char* const danger = error == 0 ? decoderDanger(descriptor) : nullptr;
    if (descriptor >= 0)
        close(descriptor);
    if (error != 0)
        throw Failure(path.string() + ": can't be read: " + std::generic_category().message(error));
    if (!S_ISREG(status.st_mode))
        throw Failure(path.string() + ": can't be read: not a regular file");
    if (danger)
        throw Failure(path.string() + ": " + danger);
}

/// Calls a decoder. Some let an exception out where a damaged file leads them astray.
template <typename Decode> auto decoded(const std::filesystem::path& path, Decode decode) {
    try {
        return decode();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw Failure(path.string() + ": is damaged: its decoder gave up (" + error.what() + ")");
    }
}

/// Where in a pixel of samples the plug-in's channels stand; alpha is -1 for an opaque picture.
struct SampleOffsets {
    int red, green, blue, alpha;
};

/// How many samples there were, and how many of them lie so far out that clamping changes more than rounding does.
struct Clipping {
    std::uint64_t samples = 0;
    std::uint64_t clipped = 0;

    std::uint8_t quantise(float value) {
        constexpr float kHalfStep = 0.5f / 255.0f;
        ++samples;
        clipped += !(value >= -kHalfStep && value <= 1.0f + kHalfStep);
        return quantised(value);
    }
};

PF_Pixel8 toPixel(const std::uint8_t* samples, const SampleOffsets& at, AlphaConvention, OIIO::ColorProcessor*,
                  Clipping&) {
    const std::uint8_t alpha = at.alpha < 0 ? std::uint8_t{255} : samples[at.alpha];
    return {alpha, samples[at.red], samples[at.green], samples[at.blue]};
}

PF_Pixel8 toPixel(const float* samples, const SampleOffsets& at, AlphaConvention convention,
                  OIIO::ColorProcessor* conversion, Clipping& clipping) {
    const float alpha = at.alpha < 0 ? 1.0f : samples[at.alpha];
    const float weight = colourWeight(convention, alpha);
    const float scale = weight > 0.0f ? 1.0f / weight : 0.0f;
    float colours[] = {samples[at.red] * scale, samples[at.green] * scale, samples[at.blue] * scale};
    if (conversion)
        conversion->apply(colours);
    return {quantised(alpha), clipping.quantise(colours[0]), clipping.quantise(colours[1]),
            clipping.quantise(colours[2])};
}

/// Rows of the world, from `top` on, out of as many rows of samples.
template <typename Sample>
void fillRows(World& world, int top, int rows, const Sample* samples, int channels, const SampleOffsets& at,
              AlphaConvention convention, OIIO::ColorProcessor* conversion, Clipping& clipping) {
    for (int y = top; y < top + rows; ++y) {
        auto* row = reinterpret_cast<PF_Pixel8*>(world.row(y));
        for (int x = 0; x < world.width(); ++x, samples += channels)
            row[x] = toPixel(samples, at, convention, conversion, clipping);
    }
}

/// So many rows are decoded at a time as stay in the processor's cache until they are pixels; all of a tiled picture.
constexpr int kRowsAtATime = 64;

AlphaConvention conventionOf(const PictureOrigin& origin) {
    return alphaConvention(origin.format, origin.spec.get_int_attribute("oiio:UnassociatedAlpha") != 0);
}

int indexOfChannel(const OIIO::ImageSpec& spec, const char* lowerCaseName) {
    const auto matches = [&](const std::string& name) { return OIIO::Strutil::iequals(name, lowerCaseName); };
    const auto found = std::ranges::find_if(spec.channelnames, matches);
    return found == spec.channelnames.end() ? -1 : static_cast<int>(found - spec.channelnames.begin());
}

} // namespace

PictureReader::PictureReader(const std::filesystem::path& path, int longestSide, bool convertsColours) : mPath(path) {
    requireReadable(path);
    const QuietStandardError quiet;
    OIIO::ImageSpec hints;
    hints.attribute("oiio:UnassociatedAlpha", 1);
    mFile = decoded(path, [&] { return OIIO::ImageInput::open(path.string(), &hints); });
    if (!mFile)
        throw Failure(path.string() + ": can't be read: " + firstErrorLine(OIIO::geterror(), "not a picture"));
    mOrigin.format = mFile->format_name();
    mOrigin.spec = mFile->spec();
    if (mOrigin.spec.deep || mOrigin.spec.depth > 1)
        throw Failure(path.string() + ": holds a deep or volume picture, which has no layer of pixels to correct");
    requireFitting(longestSide);
    requireNumbers();
    if (mOrigin.format == "fits")
        throw Failure(path.string() + ": can't be read: OpenImageIO takes the rows of FITS for their neighbours");
    chooseChannels();
    noteLosses();
    mTurn = turnUpright(mOrigin.spec);
    if (convertsColours)
        prepareConversion();
}

void PictureReader::requireFitting(int longestSide) const {
    const std::string size =
        mPath.string() + ": is " + std::to_string(width()) + " by " + std::to_string(height()) + " pixels, and ";
    if (width() < 1 || height() < 1)
        throw Failure(size + "a picture has one at least");
    if (std::max(width(), height()) > longestSide)
        throw Failure(size + "the OpenGL driver takes " + std::to_string(longestSide) + " at most");
}

void PictureReader::requireNumbers() const {
    const auto isNumber = [](const OIIO::TypeDesc& type) {
        return type.basetype >= OIIO::TypeDesc::UINT8 && type.basetype <= OIIO::TypeDesc::DOUBLE;
    };
    const OIIO::ImageSpec& spec = mOrigin.spec;
    if (spec.nchannels < 1 || !isNumber(spec.format) || !std::ranges::all_of(spec.channelformats, isNumber))
        throw Failure(mPath.string() + ": is damaged: its samples are of no known type");
}

void PictureReader::chooseChannels() {
    OIIO::ImageSpec& spec = mOrigin.spec;
    // Some decoders name fewer channels than there are, or an alpha behind the last.
    if (std::ssize(spec.channelnames) != spec.nchannels)
        spec.default_channel_names();
    if (spec.alpha_channel >= spec.nchannels)
        spec.alpha_channel = indexOfChannel(spec, "a");
    mOrigin.alpha = spec.alpha_channel;
    mOrigin.colours = {indexOfChannel(spec, "r"), indexOfChannel(spec, "g"), indexOfChannel(spec, "b")};
    mOrigin.colourCount = 3;
    if (std::ranges::find(mOrigin.colours, -1) == mOrigin.colours.end())
        return;

    std::vector<int> colours;
    for (int channel = 0; channel < spec.nchannels; ++channel)
        if (channel != spec.alpha_channel)
            colours.push_back(channel);
    if (colours.empty()) {
        // A matte by itself is a grey picture.
        colours.push_back(spec.alpha_channel);
        mOrigin.alpha = -1;
    }
    if (colours.size() == 2 || spec.channelnames.front().starts_with("ink"))
        throw Failure(mPath.string() + ": its channels " + OIIO::Strutil::join(spec.channelnames, ", ") +
                      " make neither a grey nor an RGB picture");
    mOrigin.colourCount = colours.size() == 1 ? 1 : 3;
    std::copy_n(colours.begin(), mOrigin.colourCount, mOrigin.colours.begin());
}

void PictureReader::noteLosses() {
    const OIIO::ImageSpec& spec = mOrigin.spec;
    if (spec.format != OIIO::TypeDesc::UINT8)
        mOrigin.losses.push_back(std::string("its samples (") + spec.format.c_str() +
                                 ") are rounded to 8 bits a channel");
    std::vector<std::string> others;
    for (int channel = 0; channel < spec.nchannels; ++channel)
        if (channel != mOrigin.alpha &&
            std::find(mOrigin.colours.begin(), mOrigin.colours.begin() + mOrigin.colourCount, channel) ==
                mOrigin.colours.begin() + mOrigin.colourCount)
            others.push_back(spec.channelnames[static_cast<std::size_t>(channel)]);
    if (!others.empty())
        mOrigin.losses.push_back("its other channels (" + OIIO::Strutil::join(others, ", ") + ") are left out");
}

void PictureReader::prepareConversion() {
    const std::string space = mOrigin.spec.get_string_attribute("oiio:ColorSpace", "sRGB");
    mConversion = colourConversion(space, "sRGB");
    if (mConversion || OIIO::Strutil::iequals(space, "sRGB"))
        mOrigin.spec.attribute("oiio:ColorSpace", "sRGB");
    else
        mOrigin.losses.push_back("its colour space isn't known, and not converted (" + space + ")");
}

template <typename Sample>
bool PictureReader::readRows(int top, int rows, int firstChannel, int endChannel, Sample* samples) {
    const OIIO::TypeDesc type = OIIO::BaseTypeFromC<Sample>::value;
    const OIIO::ImageSpec& spec = mFile->spec();
    if (spec.tile_width > 0)
        return mFile->read_image(0, 0, firstChannel, endChannel, type, samples);
    const int y = spec.y + top;
    if (!spec.channelformats.empty())
        return mFile->read_scanlines(0, 0, y, y + rows, 0, firstChannel, endChannel, type, samples);
    // Asked to convert, OpenImageIO takes 64 MiB of memory for each call.
    if (spec.format == type)
        return mFile->read_native_scanlines(0, 0, y, y + rows, 0, firstChannel, endChannel, samples);
    const int count = spec.width * rows * (endChannel - firstChannel);
    mNative.resize(static_cast<std::size_t>(count) * spec.format.size());
    return mFile->read_native_scanlines(0, 0, y, y + rows, 0, firstChannel, endChannel, mNative.data()) &&
           OIIO::convert_types(spec.format, mNative.data(), type, samples, count);
}

template <typename Sample> void PictureReader::readAs(World& into, int firstChannel, int endChannel) {
    const QuietStandardError quiet;
    const std::size_t last = mOrigin.colourCount == 1 ? 0 : 2;
    const SampleOffsets at{mOrigin.colours[0] - firstChannel, mOrigin.colours[last / 2] - firstChannel,
                           mOrigin.colours[last] - firstChannel, mOrigin.alpha < 0 ? -1 : mOrigin.alpha - firstChannel};
    const AlphaConvention convention = conventionOf(mOrigin);
    const int channels = endChannel - firstChannel;
    Clipping clipping;
    const auto take = [&](int y, const std::uint8_t* row) {
        fillRows(into, y, 1, row, channels, at, convention, nullptr, clipping);
    };
    if (std::is_same_v<Sample, std::uint8_t> && channels == mOrigin.spec.nchannels && mOrigin.format == "png" &&
        readPlainPng(mPath, mFile->spec(), take))
        return;
    const int height = into.height();
    const int rowsAtATime = mOrigin.spec.tile_width > 0 ? height : std::min(height, kRowsAtATime);
    const auto samples = std::make_unique_for_overwrite<Sample[]>(static_cast<std::size_t>(into.width()) *
                                                                  static_cast<std::size_t>(rowsAtATime) *
                                                                  static_cast<std::size_t>(channels));
    bool isRead = true;
    for (int top = 0; isRead && top < height; top += rowsAtATime) {
        const int rows = std::min(rowsAtATime, height - top);
        isRead = decoded(mPath, [&] { return readRows(top, rows, firstChannel, endChannel, samples.get()); });
        if (isRead)
            fillRows(into, top, rows, samples.get(), channels, at, convention, mConversion.get(), clipping);
    }
    // Some decoders fill up what is missing, and tell of it in no other way than by their error text.
    const std::string error = mFile->geterror();
    if (!isRead || !error.empty())
        throw Failure(mPath.string() + ": is damaged or incomplete: " + firstErrorLine(error, "pixels are missing"));
    if (clipping.clipped > 0)
        mOrigin.losses.push_back(OIIO::Strutil::sprintf(
            "colours below 0 or above 1 are clipped (%.2g %% of its samples)",
            100.0 * static_cast<double>(clipping.clipped) / static_cast<double>(clipping.samples)));
}

void PictureReader::read(World& into) {
    if (mTurn.turns()) {
        World lying(mFile->spec().width, mFile->spec().height);
        readAsFiled(lying);
        mTurn.apply(lying, into);
    } else {
        readAsFiled(into);
    }
    // Not before the pixels are read: some decoders don't find their way back.
    const QuietStandardError quiet;
    if (decoded(mPath, [this] { return mFile->seek_subimage(1, 0); }))
        mOrigin.losses.push_back("it holds several pictures, of which only the first is taken");
}

void PictureReader::readAsFiled(World& into) {
    const auto colours = std::span(mOrigin.colours).first(static_cast<std::size_t>(mOrigin.colourCount));
    const int first =
        mOrigin.alpha < 0 ? std::ranges::min(colours) : std::min(std::ranges::min(colours), mOrigin.alpha);
    const int end = std::max(std::ranges::max(colours), mOrigin.alpha) + 1;
    const bool isTakenAsItIs = !mConversion && mOrigin.spec.format == OIIO::TypeDesc::UINT8 &&
                               (mOrigin.alpha < 0 || conventionOf(mOrigin) == AlphaConvention::Straight);
    if (isTakenAsItIs)
        readAs<std::uint8_t>(into, first, end);
    else
        readAs<float>(into, first, end);
}

} // namespace Ombrique::Hosts
