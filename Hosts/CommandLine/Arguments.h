#pragma once

#include "Hosts/Bundle/PluginBundle.h"
#include "Hosts/Engine/FrameRequest.h"
#include "Hosts/Engine/Slider.h"
#include "Hosts/Shots/Shot.h"

#include <map>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// How much the program says beside its results. Errors are always told.
enum class Verbosity { Quiet, Normal, Verbose };

/// What the user asked for.
struct Arguments {
    /// What to print instead of doing anything else: the text of --help or --version. Empty otherwise.
    std::string answer;
    bool about = false;
    /// The output is empty for a contact sheet.
    ShotRequest shot;
    /// Render nothing, and tell which frames' output isn't there: those that `shot` then comes to.
    bool listMissing = false;
    /// Convert colour spaces on the way in and out.
    bool convertsColours = false;
    /// Leave outputs that are there, as a failure.
    bool noOverwrite = false;
    /// Write before and after side by side.
    bool compare = false;
    /// The compression of the output as OpenImageIO names it, with a level after a colon where it has one. Empty: the
    /// input's where it has the same format, or what serves the format best.
    std::string compression;
    /// The most frames that are under way at a time; 0 for as many as suit the machine.
    int jobs = 0;
    Verbosity verbosity = Verbosity::Normal;
    /// The sliders that the command line sets, within their ranges.
    ParameterValues values;
    /// The file of a contact sheet; empty where none is asked for.
    std::string sheet;
    /// For a contact sheet, the lists of values that the command line sets, by parameter index.
    std::map<int, std::vector<double>> lists;
};

/// Reads the command line, with an option for each slider of the plug-in that `plugin` registers.
/// @throw UsageError where it isn't one of the program's; it names option and value where a value is no good.
Arguments parseArguments(int count, const char* const* words, const Registration& plugin,
                         const std::vector<Slider>& sliders);

} // namespace Ombrique::Hosts
