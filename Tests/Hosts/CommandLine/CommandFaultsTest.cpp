#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/Support/PixelOracle.h"
#include "Tests/Support/Sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

/// The main function of ombrique-render.
int ombriqueRender(int count, char** words);

namespace Ombrique::Tests {

namespace {

/// What somebody does with the program in a folder of pictures, one of which is damaged.
struct Use {
    const char* name;
    /// Words that begin with a slash are files of the folder.
    std::vector<const char*> words;
    int status;
    /// The files that it makes.
    std::vector<std::string> outputs;
    /// One allocation of so many fails in a quick run.
    int every;
};

void PrintTo(const Use& use, std::ostream* stream) { *stream << use.name; }

const Use kUses[] = {
    {"About", {"--about"}, 0, {}, 40},
    {"MissingPicture", {"/none.png", "/out.png"}, 1, {"out.png"}, 40},
    {"Picture", {"/a.1.png", "/out.png", "--contrast", "1.2"}, 0, {"out.png"}, 15},
    {"Shot", {"/a.#.png", "/b.#.png", "--contrast", "1.2", "--jobs", "2"}, 1, {"b.1.png", "b.2.png", "b.3.png"}, 15},
    {"Sheet", {"/a.1.png", "--sheet", "/sheet.png"}, 0, {"sheet.png"}, 40},
};

constexpr const char* kWhatWasThere = "what was there before";

class CommandFaults : public testing::TestWithParam<Use> {
protected:
    CommandFaults() {
        for (const char* name : {"a.1.png", "a.3.png"})
            writePictureFile(folder / name, picture, {});
        writeFile(folder / "a.2.png", "no picture");
    }

    /// Runs the program in this process, with its streams in files. Returns whether the fault came up.
    bool run(int failing) {
        for (const std::string& output : use.outputs)
            writeFile(folder / output, kWhatWasThere);
        std::vector<std::string> words{"ombrique-render"};
        for (const std::string word : use.words)
            words.push_back(word.starts_with('/') ? folder / word.substr(1) : word);
        std::vector<char*> pointers;
        for (std::string& word : words)
            pointers.push_back(word.data());
        const int before[] = {dup(STDOUT_FILENO), dup(STDERR_FILENO)};
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            const std::string name = streams / std::to_string(stream);
            const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
            dup2(file, stream);
            close(file);
        }
        bool fired = false;
        {
            const FailingAllocation fault(failing, "");
            status = ombriqueRender(static_cast<int>(pointers.size()), pointers.data());
            fired = fault.fired();
        }
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            dup2(before[stream - 1], stream);
            close(before[stream - 1]);
        }
        messages = readFile(streams / "2");
        return fired;
    }

    /// Whether the file is whole and right, or, where that is allowed, as it was.
    bool isSound(const std::string& output, bool mayBeAsItWas) const {
        if (readFile(folder / output) == kWhatWasThere)
            return mayBeAsItWas;
        const auto file = OIIO::ImageInput::open(folder / output);
        if (!file || output == "sheet.png")
            return file != nullptr;
        return compareWithOracle(picture, readPictureFile(folder / output, {}), {1.2, 0.0}).empty();
    }

    const Use& use = GetParam();
    const ScratchFolder folder;
    const ScratchFolder streams;
    const Hosts::World picture = makePicture(5, 3, 5);
    int status = 0;
    std::string messages;
};

TEST_P(CommandFaults, EndWithALineAndNothingLost) {
    run(0);
    EXPECT_EQ(status, use.status) << messages;
    const auto names = folder.names();
    sweep(use.name, use.every, [&](int n) {
        const bool fired = run(n);
        // With the plug-in's refusal comes what it printed, and with a shot a line for each frame.
        const bool isOneLine = std::ranges::count(messages, '\n') == 1 ||
                               messages.find("PF_Cmd_") != std::string::npos || use.outputs.size() > 1;
        const bool isTold = status == 1 && messages.find("ombrique-render: ") != std::string::npos && isOneLine;
        EXPECT_TRUE(isTold || status == use.status) << status << ": " << messages;
        EXPECT_EQ(folder.names(), names) << messages;
        for (const std::string& output : use.outputs)
            EXPECT_TRUE(isSound(output, status != 0)) << output << ": " << messages;
        return fired;
    });
}

INSTANTIATE_TEST_SUITE_P(Uses, CommandFaults, testing::ValuesIn(kUses),
                         [](const auto& use) { return std::string(use.param.name); });

} // namespace

} // namespace Ombrique::Tests
