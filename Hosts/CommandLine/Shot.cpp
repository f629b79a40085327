#include "Hosts/CommandLine/Shot.h"

#include "Hosts/CommandLine/Failure.h"
#include "Hosts/CommandLine/FramePattern.h"

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

std::vector<int> framesOf(const Arguments& arguments, const std::optional<FramePattern>& input) {
    if (arguments.frames)
        return *arguments.frames;
    if (!input)
        return {0};
    std::vector<int> there = input->framesThere();
    if (there.empty())
        throw Failure(arguments.input + ": can't be read: there is no such file, nor a frame of a shot of this name");
    return there;
}

} // namespace

std::filesystem::path firstInput(const Arguments& arguments) {
    const auto input = patternOf(arguments.input);
    return input ? input->at(framesOf(arguments, input).front()) : std::filesystem::path(arguments.input);
}

Shot planShot(const Arguments& arguments) {
    const auto input = patternOf(arguments.input);
    const auto output = input || arguments.frames ? FramePattern::parse(arguments.output) : std::nullopt;
    // Before any are left out: a part is the same on all machines, however far they are.
    const std::vector<int> numbers = framesOfPart(framesOf(arguments, input), arguments.part);
    if (numbers.size() > 1 && !output)
        throw UsageError("OUTPUT " + arguments.output +
                         " has no place for the number of a frame, as ####, and there are several frames");
    requireFolder(arguments.output);

    Shot shot;
    shot.isSequence = output.has_value();
    for (const int number : numbers) {
        ShotFrame frame{number, input ? input->at(number) : std::filesystem::path(arguments.input),
                        output ? output->at(number) : std::filesystem::path(arguments.output)};
        if ((arguments.skipExisting || arguments.listMissing) && isDone(frame.output))
            ++shot.skipped;
        else
            shot.frames.push_back(std::move(frame));
    }
    return shot;
}

} // namespace Ombrique::Hosts
