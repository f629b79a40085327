#include "Hosts/Pictures/OutputFile.h"

#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/PictureWriter.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

/// While it lives, no file grows beyond so many bytes: of a write across the border a part is done, and the next fails,
/// as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(std::uintmax_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &mBefore);
        const rlimit limited{bytes, mBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &mBefore); }

private:
    rlimit mBefore{};
};

PictureOrigin originOf(const World& picture) {
    PictureOrigin origin;
    origin.spec = OIIO::ImageSpec(picture.width(), picture.height(), 3, OIIO::TypeDesc::UINT8);
    origin.colours = {0, 1, 2};
    origin.colourCount = 3;
    return origin;
}

/// Some encoders fill a file of ours, others make one by its name, and some of these notice nothing.
TEST(FullDiskTest, LeavesWhatWasThere) {
    for (const std::string extension :
         {"png", "jpg", "exr", "tif", "tga", "bmp", "ppm", "dpx", "hdr", "sgi", "jp2", "webp"}) {
        const ScratchFolder folder;
        const std::string output = folder / ("out." + extension);
        const World picture = makePicture(67, 41, 3, true);
        PictureWriter(output).write(picture, originOf(picture));
        const auto size = std::filesystem::file_size(output);
        writeFile(output, "precious");
        const auto names = folder.names();
        for (const auto bytes : {std::uintmax_t{0}, size / 4, size - 1}) {
            std::string text;
            try {
                const FullDisk full(bytes);
                PictureWriter(output).write(picture, originOf(picture));
            } catch (const Failure& failure) {
                text = failure.what();
            }
            EXPECT_TRUE(text.starts_with(output + ": can't be written: ")) << bytes << " of " << size << ": " << text;
            EXPECT_EQ(readFile(output), "precious");
            EXPECT_EQ(folder.names(), names);
        }
    }
}

class Output : public testing::Test {
protected:
    void write(const std::string& name, const std::string& content) const {
        OutputFile file(folder / name);
        EXPECT_EQ(::write(file.descriptor(), content.data(), content.size()), static_cast<ssize_t>(content.size()));
        file.commit();
    }

    const ScratchFolder folder;
};

TEST_F(Output, TakesOverWhatAKilledRunLeft) {
    writeFile(folder / ".out.png.partial.png", std::string(1 << 20, 'x'));
    write("out.png", "whole");
    EXPECT_EQ(readFile(folder / "out.png"), "whole");
    EXPECT_EQ(folder.names(), std::set<std::string>{"out.png"});
}

TEST_F(Output, KeepsLinksAndPermissions) {
    writeFile(folder / "out.png", "before");
    std::filesystem::permissions(folder / "out.png", std::filesystem::perms(0640));
    std::filesystem::create_symlink("out.png", folder / "link.png");
    write("link.png", "after");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.png"));
    EXPECT_EQ(readFile(folder / "out.png"), "after");
    EXPECT_EQ(std::filesystem::status(folder / "out.png").permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(folder.names(), (std::set<std::string>{"link.png", "out.png"}));
}

/// Links under the hidden name, as somebody else may plant them in a shared folder, and an output that leads nowhere.
TEST_F(Output, GoesThroughItsOwnLinksAlone) {
    writeFile(folder / "precious", "precious");
    std::filesystem::create_symlink("precious", folder / ".a.png.partial.png");
    std::filesystem::create_hard_link(folder / "precious", folder / ".b.png.partial.png");
    std::filesystem::create_symlink("target.png", folder / "dangling.png");
    std::filesystem::create_symlink("ring.png", folder / "ring.png");
    for (const char* name : {"a.png", "b.png", "dangling.png"})
        write(name, name);
    EXPECT_THROW(write("ring.png", "x"), Failure);
    EXPECT_EQ(readFile(folder / "precious"), "precious");
    EXPECT_EQ(readFile(folder / "target.png"), "dangling.png");
    EXPECT_EQ(folder.names(),
              (std::set<std::string>{"a.png", "b.png", "dangling.png", "precious", "ring.png", "target.png"}));
}

TEST_F(Output, IsLeftWhereItMayNotBeReplaced) {
    OutputFile file(folder / "out.png", {false, {}});
    EXPECT_EQ(::write(file.descriptor(), "new", 3), 3);
    writeFile(folder / "out.png", "precious"); // by another program, meanwhile
    EXPECT_THROW(file.commit(), Failure);
    EXPECT_THROW(OutputFile(folder / "out.png", {false, {}}), Failure);
    EXPECT_EQ(readFile(folder / "out.png"), "precious");
}

TEST_F(Output, WaitsNoLongerThanItMay) {
    const OutputFile first(folder / "out.png");
    EXPECT_THROW(OutputFile(folder / "out.png", {true, [] { return true; }}), Failure);
}

/// Locks belong to open files, so two threads meet as two programs do.
TEST_F(Output, OfTwoProgramsIsOneOfTheirs) {
    const std::string contents[] = {std::string(3, 'a'), std::string(200'000, 'b')};
    {
        std::vector<std::jthread> programs;
        for (const std::string& content : contents)
            programs.emplace_back([this, &content, &contents] {
                for (int i = 0; i < 30; ++i) {
                    EXPECT_NO_THROW(write("out.png", content));
                    EXPECT_EQ(std::ranges::count(contents, readFile(folder / "out.png")), 1);
                }
            });
    }
    EXPECT_EQ(folder.names(), std::set<std::string>{"out.png"});
}

TEST_F(Output, IsNeverEmpty) {
    writeFile(folder / "out.png", "precious");
    EXPECT_THROW(write("out.png", ""), Failure);
    EXPECT_EQ(readFile(folder / "out.png"), "precious");
}

} // namespace

} // namespace Ombrique::Tests
