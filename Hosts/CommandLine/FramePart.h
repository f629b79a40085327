#pragma once

#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// One of the equal parts of a shot that several machines share, counted from 1.
struct FramePart {
    int place = 1;
    int of = 1;
};

/// Reads "3/20", the third of twenty parts.
/// @throw Failure which names the text, where it is no such part.
FramePart parseFramePart(const std::string& text);

/// The part's frames, in their order. All parts together are all frames, each once, and no part has more than one frame
/// more than another. The frames of a part follow each other, as files that were written one after the other are read
/// fastest so.
std::vector<int> framesOfPart(const std::vector<int>& frames, FramePart part);

} // namespace Ombrique::Hosts
