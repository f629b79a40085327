#include "Hosts/Pictures/FormatRules.h"

#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/TextParts.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <string_view>
#include <unistd.h>

namespace Ombrique::Hosts {

namespace {

/// The methods that OpenImageIO's encoders know; they silently ignore any other.
const std::map<std::string, std::vector<std::string_view>> kMethods = {
    {"png", {"default", "filtered", "huffman", "rle", "fixed"}},
    {"openexr", {"none", "rle", "zip", "zips", "piz", "pxr24", "b44", "b44a", "dwaa", "dwab"}},
    {"tiff", {"none", "lzw", "zip", "packbits", "jpeg"}},
    {"jpeg", {"jpeg"}},
    {"webp", {"lossless", "lossy"}},
    {"targa", {"none", "rle"}},
};

/// The numbers of channels that files can hold, by extension or by format. Where the formats say nothing, it is what
/// OpenImageIO's encoders write without a fault, and its decoders find again: GIF's writes no alpha, and WebP's ruins
/// all dark colours of a picture that has one. Others hold all from 1 to 4.
const std::map<std::string, std::string_view> kChannels = {
    {".pgm", "1"},       {".bw", "1"}, {".ppm", "3"},    {".pbm", ""},  {"bmp", "134"}, {"dpx", "134"}, {"fits", ""},
    {"gif", "3"},        {"hdr", "3"}, {"heif", "34"},   {"iff", "4"},  {"jpeg", "13"}, {"pnm", "13"},  {"sgi", "134"},
    {"jpeg2000", "134"}, {"term", ""}, {"targa", "134"}, {"webp", "3"}, {"zfile", "1"},
};

} // namespace

const char* decoderDanger(int descriptor) {
    std::array<unsigned char, 22> header{};
    std::array<unsigned char, 16> icon{};
    if (pread(descriptor, header.data(), header.size(), 0) < std::ssize(header))
        return nullptr;
    if (std::memcmp(header.data(), "\1\xda", 2) == 0 && header[3] != 1 && header[3] != 2)
        return "is damaged: SGI files have one or two bytes a sample";
    if (std::memcmp(header.data(), "\0\0\1\0", 4) != 0)
        return nullptr;
    const auto offset = header[18] | header[19] << 8 | header[20] << 16 | off_t{header[21]} << 24;
    const bool isWhole = pread(descriptor, icon.data(), icon.size(), offset) == std::ssize(icon);
    const bool isFine = isWhole && (std::memcmp(icon.data(), "\x89PNG", 4) == 0 || icon[14] == 32);
    return isFine ? nullptr : "can't be read: of icons, those with 32 bits a pixel and PNG alone can be";
}

AlphaConvention alphaConvention(const std::string& format, bool declaredStraight) {
    // These hold straight colours by their own rules, whether or not OpenImageIO says so.
    static constexpr std::array<std::string_view, 8> kStraight = {"png", "targa", "jpeg2000", "ico",
                                                                  "bmp", "heif",  "gif",      "psd"};
    if (std::ranges::find(kStraight, format) != kStraight.end())
        return AlphaConvention::Straight;
    return declaredStraight ? AlphaConvention::Straight : AlphaConvention::Associated;
}

float colourWeight(AlphaConvention convention, float alpha) {
    return convention == AlphaConvention::Straight ? 1.0f : alpha;
}

bool isForDisplays(const std::string& format) {
    static constexpr std::array<std::string_view, 11> kDisplayed = {"png",   "jpeg", "jpeg2000", "gif", "webp", "bmp",
                                                                    "targa", "heif", "ico",      "pnm", "iff"};
    return std::ranges::find(kDisplayed, format) != kDisplayed.end();
}

OIIO::ColorProcessorHandle colourConversion(const std::string& from, const std::string& to) {
    if (OIIO::Strutil::iequals(from, to))
        return {};
    static const OIIO::ColorConfig config;
    return config.createColorProcessor(from, to);
}

int channelsToWrite(const std::string& format, const std::string& extension, int colours, bool hasAlpha) {
    auto held = kChannels.find(OIIO::Strutil::lower(extension));
    if (held == kChannels.end())
        held = kChannels.find(format);
    const std::string_view byLikeness = colours == 3 ? (hasAlpha ? "43" : "34") : (hasAlpha ? "2413" : "1324");
    for (const char channels : byLikeness)
        if (held == kChannels.end() || held->second.find(channels) != std::string_view::npos)
            return channels - '0';
    return 0;
}

void requireCompression(const std::string& wanted, const std::string& format) {
    if (wanted.empty())
        return;
    const auto known = kMethods.find(format);
    if (known == kMethods.end())
        throw Failure("--compression " + wanted + ": " + format + " files leave no choice");
    const auto parts = split(wanted, ':');
    const bool isLevel = parts.size() == 1 || (parts.size() == 2 && parseCount(parts[1]));
    if (isLevel && std::ranges::find(known->second, parts[0]) != known->second.end())
        return;
    std::string methods;
    for (const std::string_view method : known->second)
        methods += (methods.empty() ? "" : ", ") + std::string(method);
    throw Failure("--compression " + wanted + ": " + format + " files have " + methods +
                  ", and a level behind a colon");
}

void setCompression(OIIO::ImageSpec& spec, const std::string& wanted, const std::string& format) {
    if (!wanted.empty()) {
        const auto parts = split(wanted, ':');
        spec.erase_attribute("CompressionQuality");
        // The encoders of other formats read the level off the method's text.
        spec.attribute("compression", format == "png" ? std::string(parts[0]) : wanted);
        if (format == "png" && parts.size() == 2)
            spec.attribute("png:compressionLevel", std::min(*parseCount(parts[1]), 9));
        else if (wanted.starts_with("lossy:"))
            spec.attribute("compression", "webp:" + std::string(parts[1]));
    } else if (format == "jpeg") {
        spec.attribute("compression", "jpeg:90"); // its decoder doesn't tell the quality of the input
    }
}

} // namespace Ombrique::Hosts
