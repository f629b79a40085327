#include "Tests/Hosts/CommandLine/ProgramRun.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <numeric>
#include <random>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

namespace Ombrique::Tests {

namespace {

using namespace std::chrono_literals;

/// A shot of small pictures, all of them different, from frame 8 on.
class Shot : public testing::Test {
protected:
    static constexpr int kFirst = 8;
    static constexpr int kWidth = 37;
    static constexpr int kHeight = 19;

    void makeShot(int frames) {
        for (int frame = kFirst; frame < kFirst + frames; ++frame)
            writePictureFile(input(frame), pictureOf(frame), {});
    }
    static Hosts::World pictureOf(int frame) { return makePicture(kWidth, kHeight, static_cast<unsigned>(frame)); }
    std::string input(int frame) const { return folder / ("in." + std::to_string(10000 + frame).substr(1) + ".png"); }
    std::string output(int frame) const { return folder / ("out-" + std::to_string(frame) + ".png"); }
    ProgramRun run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {folder / "in.####.png", folder / "out-%d.png"});
        return runProgram(arguments);
    }
    void expectFrame(int frame, double contrast, double brightness) const {
        EXPECT_EQ(compareWithOracle(pictureOf(frame), readPictureFile(output(frame), {}), {contrast, brightness}), "")
            << "frame " << frame;
    }

    const ScratchFolder folder;
};

TEST_F(Shot, EachFrameHasTheSlidersOfItsTime) {
    makeShot(12);
    const ProgramRun result = run({"--contrast", "10:1,14:2", "--brightness", "-10"});
    EXPECT_EQ(result.status, 0) << result.messages;
    EXPECT_NE(result.messages.find("12 of 12 frames"), std::string::npos) << result.messages;
    for (int frame = kFirst; frame < kFirst + 12; ++frame)
        expectFrame(frame, std::clamp(1.0 + (frame - 10) / 4.0, 1.0, 2.0), -10.0);
}

TEST_F(Shot, ABrokenFrameDoesNotKeepTheOthers) {
    makeShot(6);
    writeFile(input(10), readFile(input(10)).substr(0, 700));
    writeFile(output(10), "what was there before");
    const ProgramRun result = run({"--frames", "8-20x2", "--jobs", "2", "--quiet"}); // 14 and more aren't there
    EXPECT_EQ(result.status, 1);
    for (const char* text :
         {"in.0010.png: is damaged", "in.0014.png: can't be read: No such file", "failed: 10,14,16,18,20"})
        EXPECT_NE(result.messages.find(text), std::string::npos) << text << "\n" << result.messages;
    EXPECT_EQ(std::ranges::count(result.messages, '\n'), 6) << result.messages;
    expectFrame(8, 1.0, 0.0);
    expectFrame(12, 1.0, 0.0);
    EXPECT_EQ(readFile(output(10)), "what was there before");
    EXPECT_FALSE(std::filesystem::exists(output(9)));
}

TEST_F(Shot, SkipsWhatIsThereAndTakesOnePictureForAll) {
    makeShot(3);
    writeFile(output(9), "precious");
    writeFile(output(10), ""); // never a finished picture
    EXPECT_EQ(run({"--list-missing"}).output, "8,10\n");
    EXPECT_EQ(run({"--list-missing", "--part", "2/3"}).output, "");
    EXPECT_NE(run({"--skip-existing"}).messages.find("2 of 2 frames"), std::string::npos);
    EXPECT_EQ(readFile(output(9)), "precious");
    expectFrame(10, 1.0, 0.0);

    const ProgramRun held = runProgram({input(8), folder / "held.@@.png", "--frames", "1-3", "--contrast", "1:1,3:3"});
    EXPECT_EQ(held.status, 0) << held.messages;
    EXPECT_EQ(compareWithOracle(pictureOf(8), readPictureFile(folder / "held.02.png", {}), {2.0, 0.0}), "");
}

TEST_F(Shot, SaysOnceWhatIsLost) {
    for (int frame = 1; frame <= 5; ++frame)
        writePictureFile(folder / ("deep" + std::to_string(frame) + ".tif"), pictureOf(frame),
                         {"RGBA", OIIO::TypeDesc::UINT16});
    const ProgramRun result = runProgram({folder / "deep#.tif", folder / "flat#.tif"});
    EXPECT_EQ(result.status, 0);
    const std::size_t first = result.messages.find("rounded to 8 bits");
    EXPECT_NE(first, std::string::npos) << result.messages;
    EXPECT_EQ(result.messages.find("rounded to 8 bits", first + 1), std::string::npos) << result.messages;
}

struct BadShot {
    const char* name;
    std::vector<std::string> arguments;
    int status;
    const char* complaint;
};

TEST_F(Shot, RefusesInOneLineBeforeAnythingIsRendered) {
    makeShot(2);
    const std::string in = folder / "in.####.png";
    const std::string out = folder / "out-%d.png";
    const std::vector<BadShot> rows = {
        {"no frames", {folder / "no.####.png", out}, 1, "no.####.png: can't be read"},
        {"no place for the number", {in, folder / "out.png"}, 2, "has no place for the number"},
        {"no folder", {in, folder / "none/####.png"}, 1, "can't be written: No such file"},
        {"bad range", {in, out, "--frames", "9-8"}, 1, "--frames 9-8"},
        {"bad key", {in, out, "--contrast", "8:1,9"}, 1, "\"9\" is no key"},
        {"no job", {in, out, "--jobs", "0"}, 2, "--jobs"},
        {"quiet and verbose", {in, out, "-q", "-v"}, 2, "--quiet"},
        {"sheet and output", {in, out, "--sheet", folder / "s.png"}, 2, "--sheet"},
        {"unknown compression", {in, out, "--compression", "best", "--frames", "8"}, 1, "default, filtered"},
    };
    const auto before = folder.names();
    for (const BadShot& row : rows) {
        SCOPED_TRACE(row.name);
        const ProgramRun result = runProgram(row.arguments);
        EXPECT_EQ(result.status, row.status);
        EXPECT_NE(result.messages.find(row.complaint), std::string::npos) << result.messages;
        EXPECT_LE(std::ranges::count(result.messages, '\n'), 3) << result.messages;
        EXPECT_EQ(folder.names(), before);
    }
}

/// The program under way, with nobody reading what it says.
class RunningProgram {
public:
    explicit RunningProgram(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), OMBRIQUE_RENDER);
        std::vector<char*> words;
        for (std::string& argument : arguments)
            words.push_back(argument.data());
        words.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        EXPECT_EQ(posix_spawn(&mProcess, OMBRIQUE_RENDER, &actions, nullptr, words.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
    }
    /// The status as waitpid() gives it.
    int end(int signal) {
        int status = 0;
        kill(mProcess, signal);
        waitpid(mProcess, &status, 0);
        return status;
    }

private:
    pid_t mProcess = -1;
};

TEST_F(Shot, KilledAtAnyMomentLeavesWholeFilesAndGoesOn) {
    constexpr int kFrames = 300;
    makeShot(kFrames);
    std::mt19937 random(7);
    const std::vector<std::string> arguments = {folder / "in.####.png", folder / "out-%d.png", "--skip-existing"};
    const auto isThere = [&](int frame) { return std::filesystem::exists(output(frame)); };
    std::vector<int> frames(kFrames);
    std::iota(frames.begin(), frames.end(), kFirst);
    for (int round = 0; round < 6; ++round) {
        RunningProgram program(arguments);
        // However busy the machine is, something is done in each round, and not all.
        const auto before = std::ranges::count_if(frames, isThere);
        const auto deadline = std::chrono::steady_clock::now() + 30s;
        while (std::ranges::count_if(frames, isThere) <= before && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(1ms);
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 60));
        program.end(SIGKILL);
        for (const int frame : frames)
            if (isThere(frame))
                expectFrame(frame, 1.0, 0.0);
        EXPECT_GT(std::ranges::count_if(frames, isThere), before);
        EXPECT_LT(std::ranges::count_if(frames, isThere), kFrames);
    }
    EXPECT_EQ(run({"--skip-existing"}).status, 0);
    for (const int frame : frames)
        expectFrame(frame, 1.0, 0.0);
}

TEST_F(Shot, StopsAtASignalAfterWhatIsUnderWay) {
    makeShot(1);
    RunningProgram program({input(8), folder / "out.####.png", "--frames", "1-100000"});
    while (!std::filesystem::exists(folder / "out.0001.png"))
        std::this_thread::sleep_for(5ms);
    const int status = program.end(SIGTERM);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    for (const std::string& name : folder.names())
        EXPECT_FALSE(name.starts_with('.')) << name;
}

TEST_F(Shot, ComparesSideBySide) {
    makeShot(1);
    ASSERT_EQ(run({"--compare", "--contrast", "2"}).status, 0);
    const Hosts::World both = readPictureFile(output(8), {});
    ASSERT_EQ(both.width(), 2 * kWidth + 2);
    Hosts::World before(kWidth, kHeight);
    Hosts::World after(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            before.setPixel(x, y, both.pixel<PF_Pixel8>(x, y));
            after.setPixel(x, y, both.pixel<PF_Pixel8>(kWidth + 2 + x, y));
        }
    EXPECT_EQ(comparePixels(pictureOf(8), before), "");
    EXPECT_EQ(compareWithOracle(before, after, {2.0, 0.0}), "");
}

TEST_F(Shot, ContactSheetHasAPictureForEachPairOfValues) {
    Hosts::World flat(kWidth, kHeight);
    flat.fill(PF_Pixel8{255, 100, 100, 100});
    writePictureFile(input(8), flat, {});
    ASSERT_EQ(
        runProgram({input(8), "--sheet", folder / "sheet.png", "--contrast", "0,1", "--brightness", "0,10,20"}).status,
        0);
    const Hosts::World sheet = readPictureFile(folder / "sheet.png", {"RGB"});
    // Cells are as wide as their labels at least, with their pictures in the middle.
    const int columnWidth = sheet.width() / 2;
    const int rowHeight = sheet.height() / 3;
    constexpr int kValues[3][2] = {{128, 100}, {153, 126}, {179, 151}};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 2; ++column)
            EXPECT_NEAR(sheet.pixel<PF_Pixel8>(columnWidth * column + columnWidth / 2, rowHeight * row + 20).red,
                        kValues[row][column], 1)
                << row << ", " << column;
    // Without a label below it, a row's last lines would be empty.
    int lit = 0;
    for (int x = 0; x < columnWidth; ++x)
        for (int y = kHeight + 14; y < kHeight + 34; ++y)
            lit += sheet.pixel<PF_Pixel8>(x, y).red > 150;
    EXPECT_GT(lit, 50);
}

TEST_F(Shot, KeepsTheCompressionOfTheFormatOrTakesTheOneAskedFor) {
    OIIO::ImageSpec metadata;
    metadata.attribute("compression", "piz");
    writePictureFile(folder / "in.exr", pictureOf(1), {"RGBA", OIIO::TypeDesc::HALF, true}, metadata);
    const auto compressionOf = [&](const char* name) {
        const auto file = OIIO::ImageInput::open(folder / name);
        return file ? std::string(file->spec().get_string_attribute("compression")) : OIIO::geterror();
    };
    EXPECT_EQ(runProgram({folder / "in.exr", folder / "out.exr"}).status, 0);
    EXPECT_EQ(compressionOf("out.exr"), "piz");
    EXPECT_EQ(runProgram({folder / "in.exr", folder / "out.exr", "--compression", "zips"}).status, 0);
    EXPECT_EQ(compressionOf("out.exr"), "zips");
    // A level that nobody would choose for its speed shows in the size.
    Hosts::World noise = makePicture(400, 300, 5);
    writePictureFile(input(8), noise, {});
    ASSERT_EQ(run({"--compression", "fixed:0"}).status, 0);
    EXPECT_GT(std::filesystem::file_size(output(8)), 400u * 300u * 4u);
}

} // namespace

} // namespace Ombrique::Tests
