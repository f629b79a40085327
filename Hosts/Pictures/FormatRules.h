#pragma once

#include <OpenImageIO/color.h>
#include <OpenImageIO/imageio.h>

#include <string>

// What OpenImageIO's formats can hold, and the habits of its readers and writers. Formats go by OpenImageIO's own
// names.
namespace Ombrique::Hosts {

/// Why not to show a file to OpenImageIO, two of whose decoders write or read beyond their memory: a sentence for
/// people, or null where there is no reason. `descriptor` is open for reading.
const char* decoderDanger(int descriptor);

/// How the colours of a picture file relate to its alpha, as its pixels pass through OpenImageIO.
enum class AlphaConvention {
    /// Colours are independent of alpha.
    Straight,
    /// Colours are multiplied by alpha.
    Associated,
};

/// The convention for the pixels that come out of a file of `format`, where OpenImageIO was asked to leave straight
/// colours alone. `declaredStraight`: the file says that it is straight.
AlphaConvention alphaConvention(const std::string& format, bool declaredStraight);

/// What a straight colour is multiplied by to follow the convention; alpha from 0 to 1.
float colourWeight(AlphaConvention convention, float alpha);

/// Whether the numbers in files of `format` are meant for displays, and not for light.
bool isForDisplays(const std::string& format);

/// The conversion from one colour space to another, by OpenImageIO's names; null where there is none to do, or one of
/// them isn't known.
OIIO::ColorProcessorHandle colourConversion(const std::string& from, const std::string& to);

/// How many channels a file of `format` with this extension (".pgm") gets for a picture of one or three colours, with
/// alpha or without: grey may become RGB, what is opaque may get an alpha, and alpha may be left out. 0 where the file
/// can't hold the picture.
int channelsToWrite(const std::string& format, const std::string& extension, int colours, bool hasAlpha);

/// Throws where `wanted`, "METHOD" or "METHOD:LEVEL", is none of the compression methods of OpenImageIO's format
/// `format`. Empty is always fine.
void requireCompression(const std::string& wanted, const std::string& format);

/// Describes to the encoder of `format` how to compress: as `wanted`, or where that is empty, as `spec` has it already,
/// and JPEG with quality 90.
void setCompression(OIIO::ImageSpec& spec, const std::string& wanted, const std::string& format);

} // namespace Ombrique::Hosts
