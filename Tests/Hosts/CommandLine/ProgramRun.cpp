#include "Tests/Hosts/CommandLine/ProgramRun.h"

#include <cstdlib>
#include <sys/wait.h>

namespace Ombrique::Tests {

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

} // namespace Ombrique::Tests
