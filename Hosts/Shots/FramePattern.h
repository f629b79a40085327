#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// The names of a shot's files: a file name with a place for the frame's number, which is one of "####" (as many digits
/// as signs, filled up with zeros), "@@@@" (the same), "%04d" or "%d". A number with more digits is written whole. The
/// folder's name is taken as it is. Where a name has several such places, "#" goes before "%" before "@", since the
/// last may well be part of a name, and the last place before others.
class FramePattern {
public:
    /// Nothing where the name has no place for a number.
    static std::optional<FramePattern> parse(const std::filesystem::path& path);

    /// The file of a frame; `frame` is 0 or more.
    std::filesystem::path at(int frame) const;
    /// The frames whose files are there, ascending. Nothing where the folder can't be read.
    std::vector<int> framesThere() const;

private:
    /// The number that a file name of this shot has.
    std::optional<int> numberIn(const std::string& name) const;

    std::filesystem::path mFolder;
    std::string mBefore;
    std::string mAfter;
    std::size_t mDigits = 0;
};

} // namespace Ombrique::Hosts
