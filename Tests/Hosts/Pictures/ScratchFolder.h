#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace Ombrique::Tests {

/// An empty folder for one test, removed at its end.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// A file in the folder, as the program takes it.
    std::string operator/(const std::string& name) const { return (mPath / name).string(); }
    /// The names of all that is in it, hidden files too.
    std::set<std::string> names() const;

private:
    std::filesystem::path mPath;
};

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

} // namespace Ombrique::Tests
