#include "Tests/Hosts/CommandLine/ProgramRun.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

namespace Ombrique::Tests {

namespace {

using namespace std::chrono_literals;

/// One picture held for many frames, and nobody reads what the program says of it.
class Signals : public testing::Test {
protected:
    static constexpr int kFrames = 100'000;

    Signals() { writePictureFile(folder / "in.png", picture, {}); }

    std::string output(int frame) const { return folder / ("out." + std::to_string(frame) + ".png"); }
    bool isThere(int frame) const { return std::filesystem::exists(output(frame)); }
    void expectWhole(int frame) const {
        EXPECT_EQ(compareWithOracle(picture, readPictureFile(output(frame), {}), {}), "") << frame;
    }

    /// Sends the signal once `frame` is there. Returns the status as waitpid() gives it.
    int runUntil(int frame, int signal) const {
        const std::string words[] = {
            OMBRIQUE_RENDER,  folder / "in.png", folder / "out.%d.png", "--frames", "1-" + std::to_string(kFrames),
            "--skip-existing"};
        std::vector<char*> pointers;
        for (const std::string& word : words)
            pointers.push_back(const_cast<char*>(word.c_str()));
        pointers.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        pid_t process = -1;
        EXPECT_EQ(posix_spawn(&process, OMBRIQUE_RENDER, &actions, nullptr, pointers.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        int status = 0;
        while (!isThere(frame) && waitpid(process, &status, WNOHANG) == 0)
            std::this_thread::sleep_for(1ms);
        kill(process, signal);
        waitpid(process, &status, 0);
        return status;
    }

    const Hosts::World picture = makePicture(37, 19, 3);
    const ScratchFolder folder;
};

TEST_F(Signals, KillAtAnyMomentAndWholeFilesAreLeft) {
    for (const int frame : {1, 20, 60}) {
        const int status = runUntil(frame, SIGKILL);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
        int there = 0;
        for (int i = 1; i < 1000; ++i)
            if (isThere(i)) {
                expectWhole(i);
                ++there;
            }
        EXPECT_GE(there, frame / 2);
    }
}

TEST_F(Signals, StopAfterTheFramesThatAreUnderWay) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const int status = runUntil(signal == SIGINT ? 5 : 50, signal);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
        EXPECT_FALSE(isThere(kFrames));
        for (const std::string& name : folder.names())
            EXPECT_FALSE(name.starts_with('.')) << name;
    }
}

} // namespace

} // namespace Ombrique::Tests
