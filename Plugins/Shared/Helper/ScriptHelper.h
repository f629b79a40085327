#pragma once

#include "Platform/HostInterface/HostInterface.h"

#include <string>

/// The host's scripting engine. The functions keep no state; the host decides on which threads scripts may run.
namespace Ombrique::GaussianBlur {

/// Runs `script` in the host's engine and returns what it gave back, up to the first zero. A script that fails shows
/// only in that text, which is empty where the host gives none. Throws the 32-bit A_Err_MISSING_SUITE when the host has
/// no utility or memory suite. The host's memory is given back on every way out.
std::string RunSriptAndGetStringResult(SPBasicSuite* basicSuite, const char* script);

/// `text` without the white space at its ends. White space is what the C library's current locale says of ASCII
/// characters; bytes above them, which are pieces of characters, always stay.
std::string TrimStringWhiteSpaces(const std::string& text);

} // namespace Ombrique::GaussianBlur
