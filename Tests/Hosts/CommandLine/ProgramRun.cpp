#include "Tests/Hosts/CommandLine/ProgramRun.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

namespace Ombrique::Tests {

ScratchFolder::ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ombrique-test-XXXXXX").string();
    mPath = mkdtemp(pattern.data());
}

ScratchFolder::~ScratchFolder() { std::filesystem::remove_all(mPath); }

std::set<std::string> ScratchFolder::names() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(mPath))
        names.insert(entry.path().filename().string());
    return names;
}

ProgramRun runProgram(const std::vector<std::string>& arguments, const std::string& before, const std::string& after) {
    const ScratchFolder streams;
    std::string command = before + " '" OMBRIQUE_RENDER "'";
    for (const std::string& argument : arguments)
        command += " '" + argument + "'";
    // Redirections are read from left to right, so that those of `after` win.
    command += " >'" + streams / "output" + "' 2>'" + streams / "messages" + "' " + after;
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(streams / "output"), readFile(streams / "messages")};
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

} // namespace Ombrique::Tests
