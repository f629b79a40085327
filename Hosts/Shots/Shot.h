#pragma once

#include "Hosts/Shots/FrameRanges.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// Which pictures to render.
struct ShotRequest {
    /// A file, or the pattern of a shot's files.
    std::string input;
    /// The same.
    std::string output;
    /// Instead of these two: pictures that are numbered from 1 on, and the folder where each goes under its own name.
    std::vector<std::string> pictures;
    std::string into;
    /// With `into`, the extension that the outputs get, with its dot or without; empty: their own.
    std::string format;
    /// The frames to render: all that are there where nothing is said.
    std::optional<std::vector<int>> frames;
    /// The part of these frames to render.
    FramePart part;
    /// Leave out the frames whose output is there.
    bool skipExisting = false;
};

/// One picture to read and one to write. `number` is the frame's; 0 for a picture that belongs to no shot.
struct ShotFrame {
    int number = 0;
    std::filesystem::path input;
    std::filesystem::path output;
};

/// The pictures to render.
struct Shot {
    /// By ascending number.
    std::vector<ShotFrame> frames;
    /// More than one picture, or a pattern that happens to have one: progress is worth showing.
    bool isSequence = false;
    /// How many frames of the part are left out, since their output is there.
    int skipped = 0;
    /// "missing: 4,7-8" where the numbers of the files that are there have holes; empty otherwise.
    std::string gaps;
};

/// The files of a request. An input that is there under its very name is one picture, though it may look like a
/// pattern. One picture can be rendered to the pattern of a shot, with frames given: then it is each frame's input, for
/// the sliders to change.
/// @throw UsageError where one of input and output is a shot and the other isn't, where a shot would replace itself, or
/// two pictures would have one output; Failure where a shot has no frames, or the output's folder isn't there.
Shot planShot(const ShotRequest& request);

/// The file of the first frame, for a contact sheet. Failures as above.
std::filesystem::path firstInput(const ShotRequest& request);

} // namespace Ombrique::Hosts
