#pragma once

#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// The frames that a text such as "1-10,20-30" or "1-100x2" (each second one from 1 on) names: ascending, without
/// repeats, from 0 to 2147483647, a million at most.
/// @throw Failure which names the text, where it is none of that.
std::vector<int> parseFrameRanges(const std::string& text);

/// The shortest such text for ascending frames without repeats, for people: "1-10,20".
std::string describeFrames(const std::vector<int>& frames);

} // namespace Ombrique::Hosts
