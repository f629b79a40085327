#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/PictureReader.h"
#include "Hosts/Pictures/PictureWriter.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"
#include "Tests/Support/PixelOracle.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

constexpr int kLongestSide = 16384;

struct Refusal {
    const char* name;
    const char* input;
    const char* output;
    /// What the only line has to tell, which begins with the folder or the option.
    const char* complaint;
    const char* compression = "";
};

TEST(Refusals, AreOneLineAndLeaveWhatWasThere) {
    const ScratchFolder folder;
    const World picture = makePicture(31, 17, 5);
    writePictureFile(folder / "good.png", picture, {});
    writePictureFile(folder / "good.jpg", picture, {"RGB"});
    writePictureFile(folder / "long.png", World(kLongestSide + 1, 1), {"Y"});
    writePictureFile(folder / "tall.png", World(1, kLongestSide + 1), {"Y"});
    writePictureFile(folder / "two.exr", picture, {"RG", OIIO::TypeDesc::HALF});
    writeFile(folder / "vast.ppm", "P6 100000 100000 255\n"); // 40 GB of pixels, if they were there
    std::filesystem::copy(TEST_FILES, folder / "");
    mkfifo((folder / "pipe.png").c_str(), 0600);
    std::filesystem::create_symlink("/dev/zero", folder / "zero.png");
    writeFile(folder / "none.sgi", std::string("\x01\xda\0\0\0\3\x77\0\x0a\xda\0\1", 12) + std::string(500, '\0'));
    for (const char* name : {"good.png", "good.jpg"}) {
        const std::string whole = readFile(folder / name);
        writeFile(folder / ("cut-" + std::string(name)), whole.substr(0, whole.size() * 2 / 3));
    }
    writeFile(folder / "words.png", "these are words");
    writeFile(folder / "empty.png", "");
    std::filesystem::create_directory(folder / "folder.png");
    const std::vector<std::string> outputs = {"out.png", "out.nothing", "out.zfile", "out.bmp"};
    for (const std::string& name : outputs)
        writeFile(folder / name, "precious");
    const Refusal rows[] = {
        {"missing input", "none.png", "out.png", "none.png: can't be read: No such file"},
        {"folder as input", "folder.png", "out.png", "Is a directory"},
        {"empty input", "empty.png", "out.png", "empty.png: can't be read"},
        {"no picture", "words.png", "out.png", "words.png: can't be read"},
        {"truncated PNG", "cut-good.png", "out.png", "cut-good.png: is damaged or incomplete"},
        {"truncated JPEG", "cut-good.jpg", "out.png", "cut-good.jpg: is damaged or incomplete"},
        {"wider than the driver takes", "long.png", "out.png", "long.png: is 16385 by 1 pixels"},
        {"higher than the driver takes", "tall.png", "out.png", "takes 16384 at most"},
        {"vast picture", "vast.ppm", "out.png", "vast.ppm: is 100000 by 100000 pixels, and the OpenGL"},
        {"picture of negative height", "negative-height.fits", "out.png", "height.fits: is 4 by -1 pixels"},
        {"samples of no type", "samples-of-no-type.fits", "out.png", "type.fits: is damaged: its"},
        {"no byte a sample", "none.sgi", "out.png", "none.sgi: is damaged: SGI"},
        {"253 bytes a sample", "253-bytes-a-sample.sgi", "out.png", "sample.sgi: is damaged"},
        {"two colours", "two.exr", "out.png", "two.exr: its channels R, G make neither"},
        {"deep picture", "deep.exr", "out.png", "deep.exr: holds a deep"},
        {"icon of 24 bits", "24-bits.ico", "out.png", "24-bits.ico: can't be read: of icons"},
        {"inks with alpha", "inks.tif", "out.png", "inks.tif: its channels ink0, ink1"},
        {"FITS", "good.fits", "out.png", "good.fits: can't be read: OpenImageIO takes the rows"},
        {"pipe", "pipe.png", "out.png", "pipe.png: can't be read: not a regular file"},
        {"device", "zero.png", "out.png", "zero.png: can't be read: not a regular file"},
        {"unknown format", "good.png", "out.nothing", "out.nothing: can't be written: no picture format"},
        {"format that takes no such picture", "good.png", "out.zfile", "out.zfile: can't be written"},
        {"output in no folder", "good.png", "none/out.png", "none/out.png: can't be written: No such file"},
        {"folder as output", "good.png", "folder.png", "folder.png: can't be written: Is a directory"},
        {"unknown compression", "good.png", "out.png", "--compression best: png files have default, filtered", "best"},
        {"level that is no number", "good.png", "out.png", "--compression fixed:x", "fixed:x"},
        {"compression without a choice", "good.png", "out.bmp", "bmp files leave no choice", "zip"},
    };
    const auto names = folder.names();
    for (const Refusal& row : rows) {
        SCOPED_TRACE(row.name);
        std::string text;
        try {
            PictureReader reader(folder / row.input, kLongestSide);
            PictureWriter writer(folder / row.output, row.compression);
            World pixels(reader.width(), reader.height());
            reader.read(pixels);
            writer.write(pixels, reader.origin());
        } catch (const Failure& failure) {
            text = failure.what();
        }
        EXPECT_NE(text.find(row.complaint), std::string::npos) << text;
        EXPECT_TRUE(text.starts_with(folder / "") || text.starts_with("--compression")) << text;
        EXPECT_EQ(text.find('\n'), std::string::npos) << text;
        EXPECT_EQ(folder.names(), names);
        for (const std::string& name : outputs)
            EXPECT_EQ(readFile(folder / name), "precious") << name;
    }
}

} // namespace

} // namespace Ombrique::Tests
