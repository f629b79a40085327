#include "Tests/Hosts/CommandLine/FailingNew.h"
#include "Tests/Hosts/CommandLine/ProgramRun.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <iostream>
#include <new>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

/// The main function of ombrique-render.
int ombriqueRender(int count, char** words);

namespace Ombrique::Tests {

namespace {

/// Runs of the program, each in a process of its own, in one of whose allocations there is no memory left.
class FaultyProgram {
public:
    /// Ends when the program does; 128 and the signal where one ended it.
    int run(const std::vector<std::string>& arguments, CallPath failing) {
        new (mSeen) CallPaths;
        const pid_t child = fork();
        if (child == 0)
            runHere(arguments, failing);
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    std::string messages() const { return readFile(mStreams / "messages"); }
    /// The allocations of the last run.
    const CallPaths& seen() const { return *mSeen; }

private:
    [[noreturn]] void runHere(const std::vector<std::string>& arguments, CallPath failing) {
        constexpr unsigned kSecondsToHang = 60;
        const std::string streams[] = {mStreams / "output", mStreams / "messages"};
        for (int i = 0; i < 2; ++i)
            dup2(open(streams[i].c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600), i + 1);
        std::vector<std::string> words{"ombrique-render"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers(words.size());
        std::ranges::transform(words, pointers.begin(), [](std::string& word) { return word.data(); });
        alarm(kSecondsToHang);
        const FailingPath fault(failing, *mSeen);
        _exit(ombriqueRender(static_cast<int>(pointers.size()), pointers.data()));
    }

    ScratchFolder mStreams;
    CallPaths* const mSeen = static_cast<CallPaths*>(
        mmap(nullptr, sizeof(CallPaths), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
};

/// What somebody does with the program in a folder of pictures, one of which is damaged.
struct Use {
    const char* name;
    /// Words that begin with a slash are files of the folder.
    std::vector<const char*> words;
    int status;
    /// The files that it makes.
    std::vector<std::string> outputs;
};

const Use kUses[] = {
    {"About", {"--about"}, 0, {}},
    {"MissingPicture", {"/none.png", "/out.png"}, 1, {"out.png"}},
    {"Picture", {"/a.1.png", "/out.png", "--contrast", "1.2"}, 0, {"out.png"}},
    {"Shot", {"/a.#.png", "/b.#.png", "--contrast", "1.2", "--jobs", "2"}, 1, {"b.1.png", "b.2.png", "b.3.png"}},
    {"Sheet", {"/a.1.png", "--sheet", "/sheet.png"}, 0, {"sheet.png"}},
};

constexpr const char* kWhatWasThere = "what was there before";

class CommandFaults : public testing::TestWithParam<std::size_t> {
protected:
    CommandFaults() {
        for (const char* name : {"a.1.png", "a.3.png"})
            writePictureFile(folder / name, picture, {});
        writeFile(folder / "a.2.png", "no picture");
    }

    int run(const Use& use, CallPath failing) {
        for (const std::string& output : use.outputs)
            writeFile(folder / output, kWhatWasThere);
        std::vector<std::string> words;
        for (const std::string word : use.words)
            words.push_back(word.starts_with('/') ? folder / word.substr(1) : word);
        return program.run(words, failing);
    }

    std::set<CallPath> pathsOf(const Use& use) {
        EXPECT_EQ(run(use, 0), use.status) << program.messages();
        const CallPaths& seen = program.seen();
        EXPECT_LE(seen.count, seen.paths.size());
        names = folder.names();
        return {seen.paths.begin(), seen.paths.begin() + static_cast<std::ptrdiff_t>(seen.count.load())};
    }

    /// Whether the file is whole and right, or, where that is allowed, as it was.
    bool isSound(const std::string& output, bool mayBeAsItWas) {
        if (readFile(folder / output) == kWhatWasThere)
            return mayBeAsItWas;
        const auto file = OIIO::ImageInput::open(folder / output);
        if (!file || output == "sheet.png")
            return file != nullptr;
        file->close();
        return compareWithOracle(picture, readPictureFile(folder / output, {}), {1.2, 0.0}).empty();
    }

    /// What is wrong with the last run's end; nothing where it is sound.
    std::string complaint(const Use& use, int status) {
        const std::string messages = program.messages();
        // With the plug-in's refusal comes what it printed.
        const bool isOneLine = std::ranges::count(messages, '\n') == 1 || messages.find("PF_Cmd_") != std::string::npos;
        const bool isTold = status == 1 && messages.find("ombrique-render: ") != std::string::npos &&
                            (isOneLine || use.outputs.size() > 1);
        if (status != use.status && !isTold)
            return "ends with " + std::to_string(status) + ": " + messages;
        if (folder.names() != names)
            return "leaves other files: " + messages;
        const auto unsound =
            std::ranges::find_if_not(use.outputs, [&](const auto& output) { return isSound(output, status != 0); });
        return unsound == use.outputs.end() ? "" : "leaves " + *unsound + " damaged: " + messages;
    }

    ScratchFolder folder;
    FaultyProgram program;
    Hosts::World picture = makePicture(5, 3, 5);
    std::set<std::string> names;
};

/// Paths that an earlier use takes, too, are left to that one's test.
TEST_P(CommandFaults, EndWithALineAndNothingLost) {
    const Use& use = kUses[GetParam()];
    std::set<CallPath> paths = pathsOf(use);
    for (std::size_t earlier = 0; earlier < GetParam(); ++earlier)
        for (const CallPath path : pathsOf(kUses[earlier]))
            paths.erase(path);
    pathsOf(use); // so that the folder has all files from here on
    int fired = 0;
    for (const CallPath path : paths) {
        const int status = run(use, path);
        fired += program.seen().fired;
        EXPECT_EQ(complaint(use, status), "");
    }
    EXPECT_GT(fired, 0);
    std::cout << fired << " allocations of " << use.name << " failed, one on each path of calls\n";
}

INSTANTIATE_TEST_SUITE_P(Uses, CommandFaults, testing::Range<std::size_t>(0, std::size(kUses)),
                         [](const auto& use) { return kUses[use.param].name; });

} // namespace

} // namespace Ombrique::Tests
