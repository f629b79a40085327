#pragma once

#include "Hosts/CommandLine/FramePart.h"
#include "Hosts/CommandLine/SliderOption.h"
#include "Hosts/Engine/FrameRequest.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// How much the program says beside its results. Errors are always told.
enum class Talk { Quiet, Normal, Verbose };

/// What the user asked for.
struct Arguments {
    /// What to print instead of doing anything else: the text of --help or --version. Empty otherwise.
    std::string answer;
    bool about = false;
    /// A file, or the pattern of a shot's files.
    std::string input;
    /// The same; empty for a contact sheet.
    std::string output;
    /// The frames to render: all that are there where nothing is said.
    std::optional<std::vector<int>> frames;
    /// The part of these frames to render.
    FramePart part;
    bool skipExisting = false;
    /// Render nothing, and tell which frames' output isn't there.
    bool listMissing = false;
    /// Write before and after side by side.
    bool compare = false;
    /// The compression of the output as OpenImageIO names it, with a level after a colon where it has one. Empty: the
    /// input's where it has the same format, or what serves the format best.
    std::string compression;
    /// The most frames that are under way at a time; 0 for as many as suit the machine.
    int jobs = 0;
    Talk talk = Talk::Normal;
    /// The sliders that the command line sets, within their ranges.
    ParameterValues values;
    /// The file of a contact sheet; empty where none is asked for.
    std::string sheet;
    /// For a contact sheet, the lists of values that the command line sets, by parameter index.
    std::map<int, std::vector<double>> lists;
};

/// Reads the command line, with an option for each slider.
/// @throw UsageError where it isn't one of the program's, Failure where a value is no good.
Arguments parseArguments(int count, const char* const* words, const std::vector<SliderOption>& sliders);

} // namespace Ombrique::Hosts
