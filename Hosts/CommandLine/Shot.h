#pragma once

#include "Hosts/CommandLine/Arguments.h"

#include <filesystem>
#include <vector>

namespace Ombrique::Hosts {

/// One picture to read and one to write. `number` is the frame's; 0 for a picture that belongs to no shot.
struct ShotFrame {
    int number = 0;
    std::filesystem::path input;
    std::filesystem::path output;
};

/// What a command line comes to.
struct Shot {
    /// By ascending number.
    std::vector<ShotFrame> frames;
    /// More than one picture, or a pattern that happens to have one: progress is worth showing.
    bool isSequence = false;
    /// How many frames of the part are left out, since their output is there.
    int skipped = 0;
};

/// The files of a command line. An INPUT that is there under its very name is one picture, though it may look like a
/// pattern. One picture can be rendered to the pattern of a shot, with --frames: then it is each frame's input, for the
/// sliders to change.
/// @throw UsageError where INPUT is a shot and OUTPUT has no place for the number, Failure where a shot has no frames,
/// or the output's folder isn't there.
Shot planShot(const Arguments& arguments);

/// The file of the first frame, for a contact sheet. Failures as above.
std::filesystem::path firstInput(const Arguments& arguments);

} // namespace Ombrique::Hosts
