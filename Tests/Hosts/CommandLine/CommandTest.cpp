#include "Tests/Hosts/CommandLine/ProgramRun.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Ombrique::Tests {

namespace {

/// A header and no pixels: cards of 80 characters in blocks of 36.
std::string fitsHeader(const std::string& bitsPerSample, const std::string& height) {
    std::string header;
    const auto add = [&header](std::string card) {
        card.resize(80, ' ');
        header += card;
    };
    for (const auto& [name, value] : std::vector<std::pair<std::string, std::string>>{{"SIMPLE  ", "T"},
                                                                                      {"BITPIX  ", bitsPerSample},
                                                                                      {"NAXIS   ", "2"},
                                                                                      {"NAXIS1  ", "4"},
                                                                                      {"NAXIS2  ", height}})
        add(std::string(name).append("= ").append(20 - value.size(), ' ').append(value));
    add("END");
    header.resize(2 * 36 * 80, ' ');
    return header;
}

/// What a test starts from: good and bad pictures in a folder of its own.
class Command : public testing::Test {
protected:
    Command() {
        writePictureFile(folder / "good.png", makePicture(31, 17, 5), {});
        writePictureFile(folder / "good.jpg", makePicture(31, 17, 5, true), {"RGB"});
        writePictureFile(folder / "wide.png", Hosts::World(40000, 1), {"Y"});
        writeFile(folder / "vast.ppm", "P6 100000 100000 255\n"); // 40 GB of pixels, if they were there
        writeFile(folder / "void.fits", fitsHeader("8", "-1"));
        writeFile(folder / "odd.fits", fitsHeader("-3", "3"));
        writeFile(folder / "deep.sgi", std::string("\x01\xda\0\xfd\0\3\0\5\0\3\0\3", 12) + std::string(500, '\0'));
        for (const char* name : {"good.png", "good.jpg"}) {
            const std::string whole = readFile(folder / name);
            writeFile(folder / ("cut-" + std::string(name)), whole.substr(0, whole.size() * 2 / 3));
        }
        writeFile(folder / "words.png", "these are words");
        writeFile(folder / "empty.png", "");
        std::filesystem::create_directory(folder / "folder.png");
    }

    /// Runs the program in the folder's own terms: arguments that begin with a slash are files of it.
    ProgramRun run(std::vector<std::string> arguments) const {
        for (std::string& argument : arguments)
            if (argument.starts_with('/'))
                argument = folder / argument.substr(1);
        return runProgram(arguments);
    }

    ScratchFolder folder;
};

struct BadRun {
    const char* name;
    std::vector<std::string> arguments;
    int status;
    /// What the only line on standard error has to tell.
    const char* complaint;
};

TEST_F(Command, RefusesInOneLineAndLeavesNothingBehind) {
    const std::vector<BadRun> rows = {
        {"missing input", {"/none.png", "/out.png"}, 1, "none.png: can't be read: No such file"},
        {"folder as input", {"/", "/out.png"}, 1, "Is a directory"},
        {"empty input", {"/empty.png", "/out.png"}, 1, "empty.png"},
        {"no picture", {"/words.png", "/out.png"}, 1, "words.png"},
        {"truncated PNG", {"/cut-good.png", "/out.png"}, 1, "cut-good.png: is damaged or incomplete"},
        {"truncated JPEG", {"/cut-good.jpg", "/out.png"}, 1, "cut-good.jpg: is damaged or incomplete"},
        {"picture beyond the driver", {"/wide.png", "/out.png"}, 1, "wide.png: is 40000 by 1 pixels"},
        {"vast picture", {"/vast.ppm", "/out.png"}, 1, "vast.ppm: is 100000 by 100000 pixels, and the OpenGL"},
        {"sheet of it", {"/vast.ppm", "--sheet", "/out.png"}, 1, "vast.ppm: is 100000 by 100000 pixels"},
        {"picture of negative height", {"/void.fits", "/out.png"}, 1, "void.fits: is 4 by -1 pixels"},
        {"samples of no type", {"/odd.fits", "/out.png"}, 1, "odd.fits: is damaged: its samples"},
        {"253 bytes a sample", {"/deep.sgi", "/out.png"}, 1, "deep.sgi: is damaged"},
        {"contrast above its range", {"/good.png", "/out.png", "--contrast", "10.01"}, 1, "--contrast 10.01"},
        {"contrast below its range", {"/good.png", "/out.png", "--contrast", "-0.01"}, 1, "0 to 10"},
        {"brightness out of range", {"/good.png", "/out.png", "--brightness", "-101"}, 1, "-100 to 100"},
        {"infinite brightness", {"/good.png", "/out.png", "--brightness", "inf"}, 1, "--brightness inf"},
        {"brightness beyond numbers", {"/good.png", "/out.png", "--brightness", "1e999"}, 1, "out of range"},
        {"not a number", {"/good.png", "/out.png", "--contrast", "nan"}, 1, "--contrast nan: not a number"},
        {"number with a tail", {"/good.png", "/out.png", "--contrast", "1,5"}, 1, "--contrast 1,5: not a number"},
        {"empty number", {"/good.png", "/out.png", "--contrast="}, 2, "--contrast"},
        {"unknown format", {"/good.png", "/out.nothing"}, 1, "out.nothing: can't be written"},
        {"output in no folder", {"/good.png", "/none/out.png"}, 1, "none/out.png: can't be written: No such file"},
        {"folder as output", {"/good.png", "/folder.png"}, 1, "folder.png: can't be written: Is a directory"},
        {"format that takes no such picture", {"/good.png", "/out.zfile"}, 1, "out.zfile: can't be written"},
        {"no arguments", {}, 2, "INPUT"},
        {"no output", {"/good.png"}, 2, "OUTPUT"},
        {"one file too many", {"/good.png", "/out.png", "/more.png"}, 2, "more.png"},
        {"unknown option", {"/good.png", "/out.png", "--contrats", "2"}, 2, "--contrats"},
        {"option without value", {"/good.png", "/out.png", "--contrast"}, 2, "--contrast"},
    };
    const auto before = folder.names();
    for (const BadRun& row : rows) {
        SCOPED_TRACE(row.name);
        const ProgramRun result = run(row.arguments);
        EXPECT_EQ(result.status, row.status);
        EXPECT_EQ(result.output, "");
        EXPECT_NE(result.messages.find(row.complaint), std::string::npos) << result.messages;
        EXPECT_EQ(std::ranges::count(result.messages, '\n'), 1) << result.messages;
        EXPECT_EQ(folder.names(), before);
    }
}

TEST_F(Command, KeepsAnExistingOutputUnlessItIsDone) {
    writeFile(folder / "out.png", "precious");
    EXPECT_EQ(run({"/cut-good.png", "/out.png"}).status, 1);
    EXPECT_EQ(run({"/good.png", "/out.png", "--contrast", "11"}).status, 1);
    EXPECT_EQ(readFile(folder / "out.png"), "precious");

    std::filesystem::permissions(folder / "out.png", std::filesystem::perms(0640));
    EXPECT_EQ(run({"/good.png", "/out.png"}).status, 0);
    EXPECT_EQ(readPictureFile(folder / "out.png", {}).width(), 31);
    EXPECT_EQ(std::filesystem::status(folder / "out.png").permissions(), std::filesystem::perms(0640));
}

TEST_F(Command, WritesThroughALinkOverItsOwnInputAndAfterAKilledRun) {
    // What a killed run of the same picture leaves behind.
    writeFile(folder / ".good.png.partial.png", "half a picture");
    std::filesystem::create_symlink(folder / "good.png", folder / "link.png");
    auto names = folder.names();
    names.erase(".good.png.partial.png");
    EXPECT_EQ(run({"/good.png", "/link.png", "--contrast", "0"}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.png"));
    EXPECT_EQ(compareWithOracle(makePicture(31, 17, 5), readPictureFile(folder / "good.png", {}), {0.0, 0.0}), "");
    EXPECT_EQ(folder.names(), names);
}

TEST_F(Command, KeepsResultsApartFromWhatThePluginPrints) {
    const ProgramRun about = run({"--about"});
    EXPECT_EQ(about.status, 0);
    EXPECT_TRUE(about.output.starts_with("Ombrique Contrast v1.0\nOmbrique Contrast\n\nParameters:\n"
                                         "  --contrast    Contrast Value      0 to 10, default 1\n"
                                         "  --brightness  Brightness Value    -100 to 100, default 0\n"))
        << about.output;

    const ProgramRun render = run({"/good.png", "/out.png", "--brightness", "-20", "--verbose"});
    EXPECT_EQ(render.status, 0);
    EXPECT_EQ(render.output, "");
    EXPECT_NE(render.messages.find("OpenGL Version"), std::string::npos);
    EXPECT_EQ(runProgram({"--about"}, "", ">/dev/full").status, 1);
}

TEST_F(Command, LoadsTheBundleThatTheEnvironmentNames) {
    const ProgramRun result = runProgram({"--about"}, "OMBRIQUE_PLUGIN_PATH='" + folder / "No.plugin" + "'");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.messages.find(folder / "No.plugin"), std::string::npos) << result.messages;
}

} // namespace

} // namespace Ombrique::Tests
