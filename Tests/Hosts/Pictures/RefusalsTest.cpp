#include "Hosts/Pictures/Failure.h"
#include "Hosts/Pictures/PictureReader.h"
#include "Hosts/Pictures/PictureWriter.h"
#include "Tests/Hosts/Pictures/PictureFile.h"
#include "Tests/Hosts/Pictures/ScratchFolder.h"
#include "Tests/Support/PixelOracle.h"

#include <OpenImageIO/deepdata.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

constexpr int kLongestSide = 16384;

/// A header and no pixels: cards of 80 characters in blocks of 36.
std::string fitsHeader(const std::string& bitsPerSample, const std::string& height) {
    std::string header;
    for (const auto& [name, value] : std::vector<std::pair<std::string, std::string>>{{"SIMPLE  =", "T"},
                                                                                      {"BITPIX  =", bitsPerSample},
                                                                                      {"NAXIS   =", "2"},
                                                                                      {"NAXIS1  =", "4"},
                                                                                      {"NAXIS2  =", height},
                                                                                      {"END", ""}}) {
        const std::string filled = value.empty() ? name : name + std::string(21 - value.size(), ' ') + value;
        header += filled + std::string(80 - filled.size(), ' ');
    }
    header.resize(2 * 36 * 80, ' ');
    return header;
}

void writeDeepPicture(const std::string& path) {
    OIIO::ImageSpec spec(2, 2, 3, OIIO::TypeDesc::HALF);
    spec.deep = true;
    OIIO::DeepData samples(spec);
    for (int pixel = 0; pixel < 4; ++pixel)
        samples.set_samples(pixel, 2);
    const auto file = OIIO::ImageOutput::create(path);
    ASSERT_TRUE(file->open(path, spec) && file->write_deep_image(samples) && file->close()) << file->geterror();
}

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
    writeDeepPicture(folder / "samples.exr");
    writePictureFile(folder / "inks.tif", picture, {"CMYKA"});
    std::string inks = readFile(folder / "inks.tif");
    const std::size_t photometric = inks.find(std::string("\6\1\3\0\1\0\0\0", 8)); // a tag, and its one short
    ASSERT_NE(photometric, std::string::npos);
    inks[photometric + 8] = 5; // "separated"
    writeFile(folder / "inks.tif", inks);
    writeFile(folder / "vast.ppm", "P6 100000 100000 255\n"); // 40 GB of pixels, if they were there
    writeFile(folder / "void.fits", fitsHeader("8", "-1"));
    writeFile(folder / "good.fits", fitsHeader("8", "3"));
    writeFile(folder / "odd.fits", fitsHeader("-3", "3"));
    writeFile(folder / "deep.sgi", std::string("\x01\xda\0\xfd\0\3\0\5\0\3\0\3", 12) + std::string(500, '\0'));
    writeFile(folder / "small.ico", std::string("\0\0\1\0\1\0\x8\x8\0\0\1\0\x18\0\xe8\0\0\0\x16\0\0\0", 22) +
                                        std::string("\x28\0\0\0\x8\0\0\0\x10\0\0\0\1\0\x18", 15) +
                                        std::string(217, '\0'));
    mkfifo((folder / "pipe.png").c_str(), 0600);
    std::filesystem::create_symlink("/dev/zero", folder / "zero.png");
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
        {"picture of negative height", "void.fits", "out.png", "void.fits: is 4 by -1 pixels"},
        {"samples of no type", "odd.fits", "out.png", "odd.fits: is damaged: its samples"},
        {"icon of 24 bits", "small.ico", "out.png", "small.ico: can't be read: of icons"},
        {"pipe", "pipe.png", "out.png", "pipe.png: can't be read: not a regular file"},
        {"device", "zero.png", "out.png", "zero.png: can't be read: not a regular file"},
        {"253 bytes a sample", "deep.sgi", "out.png", "deep.sgi: is damaged"},
        {"two colours", "two.exr", "out.png", "two.exr: its channels R, G make neither"},
        {"inks with alpha", "inks.tif", "out.png", "inks.tif: its channels ink0, ink1"},
        {"FITS", "good.fits", "out.png", "good.fits: can't be read: OpenImageIO takes the rows"},
        {"deep picture", "samples.exr", "out.png", "samples.exr: holds a deep"},
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
