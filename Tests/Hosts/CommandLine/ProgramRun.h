#pragma once

#include "Tests/Hosts/Pictures/ScratchFolder.h"

#include <string>
#include <vector>

namespace Ombrique::Tests {

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

} // namespace Ombrique::Tests
