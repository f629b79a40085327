#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"
#include "Tests/Support/FailingAllocation.h"
#include "Tests/Support/PixelOracle.h"
#include "Tests/Support/Sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <sys/wait.h>

/// The main function of ombrique-render.
int ombriqueRender(int count, char** words);

namespace Ombrique::Tests {

namespace {

/// Runs of ombrique-render beside three pictures of a shot. The second is damaged, and the third can't be kept whole.
class Program : public testing::Test {
protected:
    Program() {
        writePictureFile(folder / "a.1.png", picture, {});
        writePictureFile(folder / "a.3.png", picture, {"RGBA", OIIO::TypeDesc::UINT16});
        writeFile(folder / "a.2.png", readFile(folder / "a.1.png").substr(0, 700));
        writeFile(folder / "b.3.png", kPrecious);
    }

    /// Words that begin with a slash are files of the folder.
    std::vector<std::string> inFolder(std::vector<std::string> words) const {
        for (std::string& word : words)
            if (word.starts_with('/'))
                word = folder / word.substr(1);
        return words;
    }

    /// Runs the program to its end. `before` and `after` stand around the command in the shell's language.
    void run(const std::vector<std::string>& words, const std::string& before = "", const std::string& after = "") {
        const ScratchFolder streams;
        std::string command = "cd '" + folder / "" + "'; " + before + " '" OMBRIQUE_RENDER "'";
        for (const std::string& word : inFolder(words))
            command += " '" + word + "'";
        // Redirections are read from left to right, so that those of `after` win.
        command += " >'" + streams / "output" + "' 2>'" + streams / "messages" + "' " + after;
        const int ended = std::system(command.c_str());
        status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
        output = readFile(streams / "output");
        messages = readFile(streams / "messages");
    }

    /// Runs it in this process, where an allocation of its own fails. Returns whether that came up.
    bool runHere(const std::vector<std::string>& words, int failing) {
        std::vector<std::string> all = inFolder(words);
        all.insert(all.begin(), "ombrique-render");
        std::vector<char*> pointers(all.size());
        std::ranges::transform(all, pointers.begin(), [](std::string& word) { return word.data(); });
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        bool fired = false;
        {
            const FailingAllocation fault(failing, "");
            status = ombriqueRender(static_cast<int>(pointers.size()), pointers.data());
            fired = fault.fired();
        }
        messages = testing::internal::GetCapturedStderr();
        testing::internal::GetCapturedStdout();
        return fired;
    }

    bool tells(const std::string& text) const { return messages.find(text) != std::string::npos; }
    auto lines() const { return std::ranges::count(messages, '\n'); }
    std::string compare(const std::string& name, const Correction& correction) const {
        return compareWithOracle(picture, readPictureFile(folder / name, {}), correction);
    }

    static constexpr const char* kPrecious = "precious";
    const Hosts::World picture = makePicture(31, 17, 5);
    const ScratchFolder folder;
    int status = -1;
    std::string output;
    std::string messages;
};

struct Row {
    const char* name;
    std::vector<std::string> words;
    int status;
    /// A part of what is on standard output, and of the only line on standard error; empty where nothing is.
    const char* output;
    const char* complaint = "";
    const char* environment = "";
    const char* after = "";
};

/// None of these renders, so none needs a driver.
TEST_F(Program, AnswersWithoutADriver) {
    const auto bundle = std::filesystem::canonical(OMBRIQUE_TEST_BUNDLE);
    for (const char* link : {"one/Any.plugin", "two/A.plugin", "two/B.plugin"}) {
        std::filesystem::create_directory(std::filesystem::path(folder / link).parent_path());
        std::filesystem::create_directory_symlink(bundle, folder / link);
    }
    const Row rows[] = {
        {"help", {"--help"}, 0, "--brightness X"},
        {"version", {"--version"}, 0, "ombrique-render "},
        {"about", {"--about"}, 0, "  --contrast    Contrast Value      0 to 10, default 1\n"},
        {"about the driver", {"--about"}, 0, "driver   none of version 3.3"},
        {"wrong option", {"--contrats", "2"}, 2, "", "--contrats"},
        {"what is missing", {"/a.#.png", "/b.#.png", "--list-missing"}, 0, "1-2\n"},
        {"nothing is missing", {"/a.#.png", "/b.#.png", "--list-missing", "--frames", "3"}, 0, ""},
        {"rendering", {"/a.1.png", "/b.1.png"}, 1, "", "OpenGL: no driver"},
        {"sheet", {"/a.1.png", "--sheet", "/sheet.png"}, 1, "", "OpenGL: no driver"},
        {"no such shot", {"/none.#.png", "/b.#.png"}, 1, "", "none.#.png: can't be read: there is no such file"},
        {"full standard output", {"--about"}, 1, "", "standard output: can't be written", "", ">/dev/full"},
        {"no such bundle", {"--about"}, 1, "", "No.plugin: no such", "OMBRIQUE_PLUGIN_PATH=No.plugin"},
        {"folder with a bundle", {"--about"}, 0, "Ombrique Contrast v", "", "OMBRIQUE_PLUGIN_PATH=one"},
        {"folder with two", {"--about"}, 1, "", "two: holds several", "OMBRIQUE_PLUGIN_PATH=two"},
        {"another's bundle", {"--about"}, 0, "Parameters:", "", "OMBRIQUE_PLUGIN_PATH='" TEST_BUNDLE "'"},
    };
    const auto names = folder.names();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        run(row.words, "__EGL_VENDOR_LIBRARY_DIRS=/nonexistent " + std::string(row.environment), row.after);
        EXPECT_EQ(status, row.status);
        EXPECT_NE(output.find(row.output), std::string::npos) << output;
        EXPECT_EQ(output.empty(), *row.output == '\0') << output;
        const bool isOneLine = messages.starts_with("ombrique-render: ") && tells(row.complaint) && lines() == 1;
        EXPECT_TRUE(status == 0 || isOneLine) << messages;
        EXPECT_EQ(folder.names(), names);
    }
}

TEST_F(Program, KeepsResultsApartFromWhatThePluginPrints) {
    run({"/a.1.png", "/b.1.png", "--contrast", "1.3", "--verbose"});
    EXPECT_EQ(status, 0);
    EXPECT_EQ(output, "");
    EXPECT_TRUE(tells("OpenGL Version") && tells("b.1.png: done in ")) << messages;
    EXPECT_EQ(compare("b.1.png", {1.3, 0.0}), "");

    run({"/a.1.png", "/a.1.png", "--contrast", "0"}); // over itself
    EXPECT_EQ(status, 0);
    EXPECT_EQ(output + messages, "");
    EXPECT_EQ(compare("a.1.png", {0.0, 0.0}), "");
}

TEST_F(Program, DrawsOnTheDeviceThatIsChosen) {
    run({"--about"});
    EXPECT_NE(output.find("driver   "), std::string::npos) << output;
    for (const char* device : {"soft", "0"}) {
        run({"/a.1.png", "/b.1.png", "--contrast", "1.3"}, std::string("OMBRIQUE_DEVICE=") + device);
        EXPECT_EQ(status, 0) << messages;
        EXPECT_EQ(compare("b.1.png", {1.3, 0.0}), "");
    }
    run({"/a.1.png", "/b.1.png"}, "OMBRIQUE_DEVICE=elephant");
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(tells("OMBRIQUE_DEVICE elephant: gives no context") && tells("known: 0 ") && lines() == 1) << messages;
}

TEST_F(Program, TellsTheFirstFailuresAndCountsTheOthers) {
    run({"/none.#.png", "/b.#.png", "--frames", "1-30"});
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(tells("10 more failed\n") && tells("failed: 1-30\n")) << messages;
    EXPECT_EQ(lines(), 23);
}

/// The decoder prints lines of its own.
TEST_F(Program, RefusesADamagedPictureInOneLine) {
    writePictureFile(folder / "cut.jpg", picture, {"RGB"});
    writeFile(folder / "cut.jpg", readFile(folder / "cut.jpg").substr(0, 700));
    run({"/cut.jpg", "/b.1.png"});
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(tells("cut.jpg: is damaged or incomplete") && lines() == 1) << messages;
    EXPECT_FALSE(std::filesystem::exists(folder / "b.1.png"));
}

TEST_F(Program, SaysWhatCameOfAShot) {
    for (const char* name : {"a.4.png", "a.5.png"})
        writePictureFile(folder / name, picture, {"RGBA", OIIO::TypeDesc::UINT16});
    run({"/a.#.png", "/b.#.png", "--frames", "1-7", "--jobs", "2", "--skip-existing"});
    EXPECT_EQ(status, 1);
    EXPECT_EQ(output, "");
    for (const char* text : {"a.2.png: is damaged", "a.7.png: can't be read: No such file", ": 3 of 6 frames in 0:0",
                             "; 1 more were there\n", "failed: 2,6-7\n", "note: "})
        EXPECT_TRUE(tells(text)) << text << "\n" << messages;
    EXPECT_EQ(lines(), 6) << messages; // the note is told once
    EXPECT_EQ(compare("b.1.png", {}), "");
    EXPECT_EQ(readFile(folder / "b.3.png"), kPrecious);

    run({"/a.#.png", "/b.#.png", "--frames", "4-6", "--quiet"});
    EXPECT_EQ(status, 1);
    EXPECT_EQ(lines(), 2) << messages;
}

TEST_F(Program, LeavesWhatWasThereOnAFullDisk) {
    const auto names = folder.names();
    run({"/a.1.png", "/b.3.png"}, "trap '' XFSZ; ulimit -f 1;");
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(tells("b.3.png: can't be written: File too large\n")) << messages;
    EXPECT_EQ(readFile(folder / "b.3.png"), kPrecious);
    EXPECT_EQ(folder.names(), names);
}

#ifndef __SANITIZE_ADDRESS__ // which takes any address space that there is
/// A driver without memory draws black, and says nothing.
TEST_F(Program, GivesTheRightPictureOrNoneWhereMemoryEnds) {
    Hosts::World large(3840, 2160);
    large.fill(PF_Pixel8{255, 200, 100, 50});
    writePictureFile(folder / "large.png", large, {});
    run({"/large.png", "/right.png", "--contrast", "1.4"});
    for (const std::string kilobytes : {"800000", "1000000", "1100000", "1200000", "1400000"}) {
        run({"/large.png", "/out.png", "--contrast", "1.4"}, "ulimit -v " + kilobytes + "; LP_NUM_THREADS=1");
        EXPECT_TRUE(status == 0 || status == 1) << kilobytes << " ended with " << status;
        EXPECT_TRUE(readFile(folder / "out.png") == (status == 0 ? readFile(folder / "right.png") : "")) << kilobytes;
        std::filesystem::remove(folder / "out.png");
    }
}
#endif

/// Killed at any moment it leaves whole files; told to stop, nothing but these.
TEST_F(Program, LeavesWholeFilesAfterASignal) {
    const std::pair<int, const char*> rows[] = {{1, "KILL"}, {30, "KILL"}, {60, "TERM"}};
    for (const auto& [frame, signal] : rows) {
        const std::string there = "[ -e c." + std::to_string(frame) + ".png ]";
        run({"/a.1.png", "/c.%d.png", "--frames", "1-100000", "--skip-existing"}, "",
            "& until " + there + " || ! kill -0 $!; do sleep 0.01; done; kill -" + signal + " $!; wait $!");
        EXPECT_EQ(status, 128 + (signal == std::string("KILL") ? SIGKILL : SIGTERM));
        int whole = 0;
        for (const std::string& name : folder.names())
            if (name.starts_with("c.")) {
                EXPECT_EQ(compare(name, {}), "") << name;
                ++whole;
            }
        EXPECT_GE(whole, frame / 2);
        EXPECT_LT(whole, 100'000);
    }
    for (const std::string& name : folder.names())
        EXPECT_FALSE(name.starts_with('.')) << name;
}

/// What somebody does with the program.
struct Use {
    const char* name;
    std::vector<std::string> words;
    int status;
    /// The files that it makes.
    std::vector<std::string> outputs;
};

void PrintTo(const Use& use, std::ostream* stream) { *stream << use.name; }

const Use kUses[] = {
    {"About", {"--about"}, 0, {}},
    {"MissingPicture", {"/none.png", "/out.png"}, 1, {"out.png"}},
    {"Picture", {"/a.1.png", "/out.png", "--contrast", "1.2"}, 0, {"out.png"}},
    {"Shot", {"/a.#.png", "/b.#.png", "--contrast", "1.2", "--jobs", "2"}, 1, {"b.1.png", "b.2.png", "b.3.png"}},
    {"Sheet", {"/a.1.png", "--sheet", "/sheet.png"}, 0, {"sheet.png"}},
};

class ProgramWithoutMemory : public Program, public testing::WithParamInterface<Use> {
protected:
    /// Whether the file is whole and right, or, where that is allowed, as it was.
    bool isSound(const std::string& name, bool mayBeAsItWas) const {
        if (readFile(folder / name) == kPrecious)
            return mayBeAsItWas;
        return name == "sheet.png" ? describePictureFile(folder / name).width > 0 : compare(name, {1.2, 0.0}).empty();
    }
};

TEST_P(ProgramWithoutMemory, EndsWithALineAndNothingLost) {
    const Use& use = GetParam();
    const auto attempt = [&](int failing) {
        for (const std::string& name : use.outputs)
            writeFile(folder / name, kPrecious);
        return runHere(use.words, failing);
    };
    attempt(0);
    EXPECT_EQ(status, use.status) << messages;
    const auto names = folder.names();
    sweep(use.name, 23, [&](int n) {
        const bool fired = attempt(n);
        // With the plug-in's refusal comes what it printed, and with a shot a line for each frame.
        const bool isOneLine = lines() == 1 || tells("PF_Cmd_") || use.outputs.size() > 1;
        EXPECT_TRUE(status == use.status || (status == 1 && tells("ombrique-render: ") && isOneLine))
            << status << ": " << messages;
        EXPECT_EQ(folder.names(), names) << messages;
        for (const std::string& name : use.outputs)
            EXPECT_TRUE(isSound(name, status != 0)) << name << ": " << messages;
        return fired;
    });
}

INSTANTIATE_TEST_SUITE_P(Uses, ProgramWithoutMemory, testing::ValuesIn(kUses),
                         [](const auto& use) { return std::string(use.param.name); });

} // namespace

} // namespace Ombrique::Tests
