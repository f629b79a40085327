#include "Tests/Hosts/CommandLine/ProgramRun.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Ombrique::Tests {

namespace {

/// Pictures of a shot, one of them damaged, in a folder of their own.
class Program : public testing::Test {
protected:
    Program() {
        for (const int frame : {1, 2, 3})
            writePictureFile(folder / ("a." + std::to_string(frame) + ".png"), picture, {});
        writePictureFile(folder / "cut.jpg", picture, {"RGB"});
        for (const char* name : {"a.2.png", "cut.jpg"})
            writeFile(folder / name, readFile(folder / name).substr(0, 700));
        writeFile(folder / "b.3.png", "precious");
        std::filesystem::create_directories(folder / "one");
        std::filesystem::create_directories(folder / "two");
        const auto bundle = std::filesystem::canonical(OMBRIQUE_TEST_BUNDLE);
        for (const char* link : {"one/Any.plugin", "two/A.plugin", "two/B.plugin"})
            std::filesystem::create_directory_symlink(bundle, folder / link);
    }

    /// In the words of `before`, `$F` is the folder; arguments that begin with a slash are files of it.
    ProgramRun run(std::vector<std::string> arguments, const std::string& before = "",
                   const std::string& after = "") const {
        for (std::string& argument : arguments)
            if (argument.starts_with('/'))
                argument = folder / argument.substr(1);
        return runProgram(arguments, "F='" + folder / "" + "'; " + before, after);
    }

    const Hosts::World picture = makePicture(31, 17, 5);
    const ScratchFolder folder;
};

/// The environment of a machine without any OpenGL driver.
const std::string kNoDriver = "__EGL_VENDOR_LIBRARY_DIRS=/nonexistent ";

struct Row {
    const char* name;
    std::vector<std::string> arguments;
    int status;
    /// A part of what is on standard output, and of the only line on standard error; empty where nothing is.
    const char* output;
    const char* complaint = "";
    const char* environment = "";
    const char* after = "";
};

/// All of these render nothing, so none needs a driver, and each failure is one line.
TEST_F(Program, AnswersWithoutADriver) {
    const Row rows[] = {
        {"help", {"--help"}, 0, "--brightness X"},
        {"version", {"--version"}, 0, "ombrique-render "},
        {"about", {"--about"}, 0, "  --contrast    Contrast Value      0 to 10, default 1\n"},
        {"wrong option", {"--contrats", "2"}, 2, "", "--contrats"},
        {"what is missing", {"/a.#.png", "/b.#.png", "--list-missing"}, 0, "1-2\n"},
        {"nothing is missing", {"/a.#.png", "/b.#.png", "--list-missing", "--frames", "3"}, 0, ""},
        {"rendering", {"/a.1.png", "/b.1.png"}, 1, "", "OpenGL: no driver"},
        {"sheet", {"/a.1.png", "--sheet", "/sheet.png"}, 1, "", "OpenGL: no driver"},
        {"no such shot", {"/none.#.png", "/b.#.png"}, 1, "", "none.#.png: can't be read: there is no such file"},
        {"no place to write to", {"--about"}, 1, "", "standard output: can't be written", "", ">/dev/full"},
        {"no such bundle",
         {"--about"},
         1,
         "",
         "None.plugin: no such plug-in bundle",
         "OMBRIQUE_PLUGIN_PATH=$F/None.plugin"},
        {"folder with a bundle", {"--about"}, 0, "Ombrique Contrast v", "", "OMBRIQUE_PLUGIN_PATH=$F/one"},
        {"folder with two", {"--about"}, 1, "", "two/: holds several", "OMBRIQUE_PLUGIN_PATH=$F/two/"},
        {"another's bundle", {"--about"}, 0, "--conduct", "", "OMBRIQUE_PLUGIN_PATH='" TEST_BUNDLE "'"},
    };
    const auto names = folder.names();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const ProgramRun result = run(row.arguments, kNoDriver + row.environment, row.after);
        EXPECT_EQ(result.status, row.status);
        EXPECT_NE(result.output.find(row.output), std::string::npos) << result.output;
        EXPECT_EQ(result.output.empty(), *row.output == '\0') << result.output;
        EXPECT_NE(result.messages.find(row.complaint), std::string::npos) << result.messages;
        const int lines = row.status == 0 ? 0 : 1;
        EXPECT_TRUE(row.status == 0 || result.messages.starts_with("ombrique-render: ")) << result.messages;
        EXPECT_TRUE(row.status == 0 || std::ranges::count(result.messages, '\n') == lines) << result.messages;
        EXPECT_EQ(folder.names(), names);
    }
}

TEST_F(Program, RendersAPictureAndKeepsResultsApartFromWhatThePluginPrints) {
    const ProgramRun result = run({"/a.1.png", "/b.1.png", "--contrast", "1.3", "--verbose"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_NE(result.messages.find("OpenGL Version"), std::string::npos) << result.messages;
    EXPECT_NE(result.messages.find("b.1.png: done in "), std::string::npos) << result.messages;
    EXPECT_EQ(compareWithOracle(picture, readPictureFile(folder / "b.1.png", {}), {1.3, 0.0}), "");

    const ProgramRun quiet = run({"/a.3.png", "/a.3.png", "--contrast", "0"}); // over itself
    EXPECT_EQ(quiet.status, 0);
    EXPECT_EQ(quiet.output + quiet.messages, "");
    EXPECT_EQ(compareWithOracle(picture, readPictureFile(folder / "a.3.png", {}), {0.0, 0.0}), "");
}

/// The decoder prints lines of its own.
TEST_F(Program, RefusesADamagedPictureInOneLine) {
    const ProgramRun result = run({"/cut.jpg", "/b.1.png"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.messages.find("cut.jpg: is damaged or incomplete"), std::string::npos);
    EXPECT_EQ(std::ranges::count(result.messages, '\n'), 1) << result.messages;
    EXPECT_FALSE(std::filesystem::exists(folder / "b.1.png"));
}

TEST_F(Program, SaysWhatCameOfAShot) {
    writePictureFile(folder / "a.4.png", picture, {"RGBA", OIIO::TypeDesc::UINT16});
    writePictureFile(folder / "a.5.png", picture, {"RGBA", OIIO::TypeDesc::UINT16});
    ProgramRun result = run({"/a.#.png", "/b.#.png", "--frames", "1-7", "--jobs", "2", "--skip-existing"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    for (const char* text : {"a.2.png: is damaged", "a.7.png: can't be read: No such file", ": 3 of 6 frames in 0:0",
                             "; 1 more were there\n", "failed: 2,6-7\n", "note: "})
        EXPECT_NE(result.messages.find(text), std::string::npos) << text << "\n" << result.messages;
    EXPECT_EQ(std::ranges::count(result.messages, '\n'), 6) << result.messages; // the note is told once
    EXPECT_EQ(compareWithOracle(picture, readPictureFile(folder / "b.1.png", {}), {}), "");
    EXPECT_EQ(readFile(folder / "b.3.png"), "precious");

    result = run({"/a.#.png", "/b.#.png", "--frames", "4-6", "--quiet"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(std::ranges::count(result.messages, '\n'), 2) << result.messages;
}

TEST_F(Program, LeavesWhatWasThereOnAFullDisk) {
    const auto names = folder.names();
    const ProgramRun result = run({"/a.1.png", "/b.3.png"}, "trap '' XFSZ; ulimit -f 1;");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.messages.find("b.3.png: can't be written: File too large\n"), std::string::npos)
        << result.messages;
    EXPECT_EQ(readFile(folder / "b.3.png"), "precious");
    EXPECT_EQ(folder.names(), names);
}

} // namespace

} // namespace Ombrique::Tests
