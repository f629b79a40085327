#include "Hosts/Shots/Shot.h"

#include "Hosts/Pictures/Failure.h"
#include "Hosts/Shots/FramePattern.h"

#include <map>
#include <numeric>
#include <system_error>

namespace Ombrique::Hosts {

namespace {

/// Files appear whole, so one that is there and holds anything is done.
bool isDone(const std::filesystem::path& output) {
    std::error_code error;
    return std::filesystem::is_regular_file(output, error) && std::filesystem::file_size(output, error) > 0;
}

/// Once for all frames, and before any is read.
void requireFolder(const std::filesystem::path& output) {
    std::error_code error;
    const std::filesystem::path folder = output.parent_path();
    if (!folder.empty() && !std::filesystem::exists(folder, error))
        throw Failure(output.string() +
                      ": can't be written: " + std::make_error_code(std::errc::no_such_file_or_directory).message());
}

/// Nothing where there is a file of that very name.
std::optional<FramePattern> patternOf(const std::string& input) {
    std::error_code error;
    return std::filesystem::exists(input, error) ? std::nullopt : FramePattern::parse(input);
}

/// Whether a name is a pattern and nothing else: a single "@" is often meant as it is.
bool isPatternForSure(const std::filesystem::path& path) {
    const std::string name = path.filename().string();
    return FramePattern::parse(path) &&
           (name.find_first_of("#%") != std::string::npos || name.find("@@") != std::string::npos);
}

/// A second run would correct the shot twice.
void requireApart(const ShotFrame& frame) {
    std::error_code error;
    if (std::filesystem::equivalent(frame.input, frame.output, error) ||
        frame.input.lexically_normal() == frame.output.lexically_normal())
        throw UsageError(frame.output.string() + " would replace its own input");
}

std::vector<int> framesOf(const ShotRequest& request, const std::optional<FramePattern>& input) {
    if (request.frames)
        return *request.frames;
    if (!input)
        return {0};
    std::vector<int> there = input->framesThere();
    if (there.empty())
        throw Failure(request.input + ": can't be read: there is no such file, nor a frame of a shot of this name");
    return there;
}

} // namespace

std::filesystem::path firstInput(const ShotRequest& request) {
    const auto input = patternOf(request.input);
    return input ? input->at(framesOf(request, input).front()) : std::filesystem::path(request.input);
}

namespace {

/// The frames of a shot, or one picture.
std::vector<ShotFrame> shotFrames(const ShotRequest& request, Shot& shot) {
    const auto input = patternOf(request.input);
    const auto output = input || request.frames ? FramePattern::parse(request.output) : std::nullopt;
    const std::vector<int> all = framesOf(request, input);
    const std::vector<int> numbers = framesOfPart(all, request.part);
    if (numbers.size() > 1 && !output)
        throw UsageError("OUTPUT " + request.output +
                         " has no place for the number of a frame, as ####, and there are several frames");
    if (!input && !request.frames && isPatternForSure(request.output) && !std::filesystem::exists(request.output))
        throw UsageError("OUTPUT " + request.output + " is the pattern of a shot, and INPUT is a single picture");
    requireFolder(request.output);
    shot.isSequence = output.has_value();
    if (!request.frames)
        shot.gaps = describeGaps(all);
    std::vector<ShotFrame> frames;
    frames.reserve(numbers.size());
    for (const int number : numbers)
        frames.push_back({number, input ? input->at(number) : std::filesystem::path(request.input),
                          output ? output->at(number) : std::filesystem::path(request.output)});
    return frames;
}

/// Many pictures, each under its own name.
std::vector<ShotFrame> pictureFrames(const ShotRequest& request, Shot& shot) {
    const std::filesystem::path folder = request.into;
    requireFolder(folder / "");
    std::map<std::filesystem::path, std::string> inputs;
    std::vector<ShotFrame> all;
    for (const std::string& picture : request.pictures) {
        std::filesystem::path output = folder / std::filesystem::path(picture).filename();
        if (!request.format.empty())
            output.replace_extension(request.format);
        if (const auto [other, isNew] = inputs.emplace(output, picture); !isNew)
            throw UsageError(other->second + " and " + picture + " would both become " + output.string());
        all.push_back({static_cast<int>(all.size()) + 1, picture, output});
    }
    shot.isSequence = true;
    std::vector<int> places(all.size());
    std::iota(places.begin(), places.end(), 0);
    std::vector<ShotFrame> frames;
    for (const int place : framesOfPart(places, request.part))
        frames.push_back(all[static_cast<std::size_t>(place)]);
    return frames;
}

} // namespace

Shot planShot(const ShotRequest& request) {
    Shot shot;
    // Before any are left out, a part is taken: it is the same on all machines, however far they are.
    for (ShotFrame& frame : request.pictures.empty() ? shotFrames(request, shot) : pictureFrames(request, shot)) {
        if (shot.isSequence)
            requireApart(frame);
        if (request.skipExisting && isDone(frame.output))
            ++shot.skipped;
        else
            shot.frames.push_back(std::move(frame));
    }
    return shot;
}

} // namespace Ombrique::Hosts
