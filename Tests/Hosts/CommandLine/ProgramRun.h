#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

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

/// What a run of the real program came to.
struct ProgramRun {
    int status = -1;
    std::string output;
    std::string messages;
};

/// Runs ombrique-render, as built with the tests, to its end. `before` stands before the command in the shell's
/// language, as an environment for it; `after` behind it.
ProgramRun runProgram(const std::vector<std::string>& arguments, const std::string& before = "",
                      const std::string& after = "");

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

} // namespace Ombrique::Tests
