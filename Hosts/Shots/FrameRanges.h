#pragma once

#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// The frames that a text such as "1-10,20-30" or "1-100x2" (each second one from 1 on) names: ascending, without
/// repeats, from 0 to 2147483647, a million at most.
/// @throw Failure where it is none of that.
std::vector<int> parseFrameRanges(const std::string& text);

/// The shortest such text for ascending frames without repeats, for people: "1-10,20".
std::string describeFrames(const std::vector<int>& frames);

/// "missing: 4,7-8" for the holes between ascending frames; of many, the first hundred frames. Empty where there are
/// none.
std::string describeGaps(const std::vector<int>& frames);

/// One of the equal parts of a shot that several machines share, counted from 1.
struct FramePart {
    int place = 1;
    int of = 1;
};

/// Reads "3/20", the third of twenty parts.
/// @throw Failure where the text is no such part.
FramePart parseFramePart(const std::string& text);

/// The part's frames, in their order. All parts together are all frames, each once, and no part has more than one frame
/// more than another. The frames of a part follow each other, as files that were written one after the other are read
/// fastest so.
std::vector<int> framesOfPart(const std::vector<int>& frames, FramePart part);

} // namespace Ombrique::Hosts
