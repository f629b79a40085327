#include "Tests/Hosts/Frei0r/RawFrames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sys/wait.h>

namespace Ombrique::Tests {

namespace {

/// The settings of a frame, by its number.
struct Setting {
    double contrast;
    double brightness;
};

/// A folder of its own, in which the tools run with the module at hand.
class Frei0rTools : public testing::Test {
protected:
    Frei0rTools() {
        std::string name = (std::filesystem::temp_directory_path() / "frei0r-tools-XXXXXX").string();
        mFolder = mkdtemp(name.data());
        std::filesystem::current_path(mFolder);
        setenv("FREI0R_PATH", std::filesystem::path(OMBRIQUE_TEST_MODULE).parent_path().c_str(), 1);
        setenv("GST_REGISTRY", (mFolder / "registry").c_str(), 1);
    }
    ~Frei0rTools() override {
        std::filesystem::current_path("/");
        std::filesystem::remove_all(mFolder);
    }

    /// Runs a command of the shell; `errors` is what it wrote to standard error.
    int run(const std::string& command) {
        const int status = std::system(("{ " + command + "; } 2>errors").c_str());
        errors = readFile("errors");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void succeed(const std::string& command) { EXPECT_EQ(run(command), 0) << command << "\n" << errors; }

    static void write(const Clip& clip) { std::ofstream("in.rgba", std::ios::binary) << clip.raw(); }
    /// ffmpeg's words for in.rgba.
    static std::string rawInput(const Clip& clip) {
        return "ffmpeg -y -v error -f rawvideo -pix_fmt rgba -s " + std::to_string(clip.width) + "x" +
               std::to_string(clip.height) + " -i in.rgba ";
    }
    /// ffmpeg's words that bring in.rgba into the lossless file that melt reads.
    static std::string toLossless(const Clip& clip, const char* file) {
        return rawInput(clip) + "-c:v png -pix_fmt rgba " + file;
    }
    static std::string toRaw(const char* file) {
        return std::string("ffmpeg -y -v error -i ") + file + " -f rawvideo -pix_fmt rgba out.rgba";
    }

    /// Compares each frame of out.rgba with what `setting` makes of the clip's.
    template <typename SettingOf> static void expectRight(const Clip& clip, SettingOf setting) {
        const std::string output = readFile("out.rgba");
        ASSERT_EQ(output.size(), clip.frameBytes() * clip.frames.size());
        for (std::size_t i = 0; i < clip.frames.size(); ++i) {
            const Setting at = setting(static_cast<int>(i));
            EXPECT_EQ(compareWithOracle(clip.frames[i],
                                        pictureOf(output, i * clip.frameBytes(), clip.width, clip.height),
                                        {at.contrast, at.brightness}),
                      "")
                << "frame " << i << ", " << clip.width << " by " << clip.height;
        }
    }

    std::filesystem::path mFolder;
    std::string errors;
};

constexpr Setting kSetting{1.4, 12.0};
const auto always = [](int) { return kSetting; };
const std::string kFilter = "frei0r=ombrique_contrast:0.14\\|0.56";

/// Byte for byte: what the plug-in prints must not be among the frames.
TEST_F(Frei0rTools, FfmpegWritesFramesToStandardOutput) {
    for (const auto& [width, height] : {std::pair{16, 1}, {48, 37}, {336, 217}}) {
        const Clip clip(width, height, 4, 100);
        write(clip);
        succeed(rawInput(clip) + "-vf " + kFilter + " -f rawvideo -pix_fmt rgba pipe:1 >out.rgba");
        expectRight(clip, always);
    }
}

/// As the documentation has it for widths that ffmpeg itself gets wrong with any module.
TEST_F(Frei0rTools, FfmpegAtOddSizes) {
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 5}, {331, 217}}) {
        const Clip clip(width, height, 3, 200);
        write(clip);
        succeed(rawInput(clip) + "-vf 'pad=ceil(iw/16)*16:ih,copy'," + kFilter + ",crop=" + std::to_string(width) +
                ':' + std::to_string(height) + ":0:0 -f rawvideo -pix_fmt rgba out.rgba");
        expectRight(clip, always);
    }
}

TEST_F(Frei0rTools, FfmpegFromAndToALosslessFile) {
    const Clip clip(320, 183, 5, 300);
    write(clip);
    succeed(toLossless(clip, "in.mov"));
    succeed("ffmpeg -y -v error -i in.mov -vf " + kFilter + " -c:v ffv1 -pix_fmt bgra out.mkv");
    succeed(toRaw("out.mkv"));
    expectRight(clip, always);
}

TEST_F(Frei0rTools, FfmpegWithParametersThatChange) {
    const Clip clip(32, 7, 6, 350);
    write(clip);
    succeed(rawInput(clip) + "-vf \"sendcmd=c='0.1 frei0r filter_params 0.3|0.4'\"," + kFilter +
            " -f rawvideo -pix_fmt rgba out.rgba");
    expectRight(clip, [](int frame) { return frame / 25.0 < 0.1 ? kSetting : Setting{3.0, -20.0}; });
}

TEST_F(Frei0rTools, FfmpegWithTwoInstancesInOneGraph) {
    Clip clip(64, 33, 6, 400);
    write(clip);
    succeed(rawInput(clip) + "-filter_complex '[0]split[a][b];[a]frei0r=ombrique_contrast:0.07|0.4[c];"
                             "[b]frei0r=ombrique_contrast:0.2|0.6[d]' -map '[c]' -f rawvideo -pix_fmt rgba c.rgba "
                             "-map '[d]' -f rawvideo -pix_fmt rgba d.rgba");
    std::filesystem::rename("c.rgba", "out.rgba");
    expectRight(clip, [](int) { return Setting{0.7, -20.0}; });
    std::filesystem::rename("d.rgba", "out.rgba");
    expectRight(clip, [](int) { return Setting{2.0, 20.0}; });

    // One after the other: the second one's input is what the first one made.
    succeed(rawInput(clip) + "-vf frei0r=ombrique_contrast:0.07\\|0.4 -f rawvideo -pix_fmt rgba out.rgba");
    const std::string once = readFile("out.rgba");
    succeed(rawInput(clip) + "-vf frei0r=ombrique_contrast:0.07\\|0.4,frei0r=ombrique_contrast:0.2\\|0.6 "
                             "-f rawvideo -pix_fmt rgba out.rgba");
    for (std::size_t i = 0; i < clip.frames.size(); ++i)
        clip.frames[i] = pictureOf(once, i * clip.frameBytes(), clip.width, clip.height);
    expectRight(clip, [](int) { return Setting{2.0, 20.0}; });
}

TEST_F(Frei0rTools, MeltWithKeyframes) {
    for (const auto& [width, height] : {std::pair{64, 48}, {332, 218}}) {
        const Clip clip(width, height, 8, 500);
        write(clip);
        succeed(toLossless(clip, "in.mov"));
        succeed("melt -silent in.mov -filter frei0r.ombrique_contrast '0=0=0.05;7=0.4' 1=0.56 "
                "-consumer avformat:out.mov vcodec=png pix_fmt=rgba mlt_image_format=rgba an=1");
        succeed(toRaw("out.mov"));
        expectRight(clip, [](int frame) { return Setting{0.5 + 3.5 * frame / 7, 12.0}; });
    }
}

TEST_F(Frei0rTools, GStreamerAtAnySize) {
    for (const auto& [width, height] : {std::pair{7, 5}, {331, 217}}) {
        const Clip clip(width, height, 4, 600);
        write(clip);
        succeed("gst-launch-1.0 -q filesrc location=in.rgba ! rawvideoparse format=rgba framerate=25/1 width=" +
                std::to_string(width) + " height=" + std::to_string(height) +
                " ! frei0r-filter-ombrique-contrast contrast-value=0.14 brightness-value=0.56 ! filesink "
                "location=out.rgba");
        expectRight(clip, always);
    }
}

/// The bundle of the tests' own returns an error where its first slider tells it to.
TEST_F(Frei0rTools, AFailingFrameIsPassedOnAndToldOfOnce) {
    const Clip clip(48, 20, 5, 700);
    write(clip);
    setenv("OMBRIQUE_PLUGIN_PATH", OMBRIQUE_TEST_MISBEHAVING_BUNDLE, 1);
    succeed(rawInput(clip) + "-vf frei0r=ombrique_contrast:0.215\\|0.5 -f rawvideo -pix_fmt rgba out.rgba");
    unsetenv("OMBRIQUE_PLUGIN_PATH");
    EXPECT_EQ(readFile("out.rgba"), clip.raw());
    EXPECT_EQ(errors, "ombrique_contrast: PF_Cmd_SMART_RENDER returned 77\n");
}

TEST_F(Frei0rTools, WithoutOpenGLOrWithoutABundleTheToolFails) {
    const Clip clip(48, 20, 1, 800);
    write(clip);
    const std::string command = rawInput(clip) + "-vf " + kFilter + " -f rawvideo -pix_fmt rgba out.rgba";
    setenv("__EGL_VENDOR_LIBRARY_FILENAMES", "/dev/null", 1);
    EXPECT_NE(run(command), 0);
    EXPECT_EQ(errors.rfind("ombrique_contrast: OpenGL: no driver", 0), 0U) << errors;
    unsetenv("__EGL_VENDOR_LIBRARY_FILENAMES");

    setenv("OMBRIQUE_PLUGIN_PATH", "/nowhere", 1);
    EXPECT_NE(run(command), 0);
    EXPECT_EQ(errors.rfind("ombrique_contrast: /nowhere: no such plug-in bundle\n", 0), 0U) << errors;
    run("melt -silent color:red out=1 -filter frei0r.ombrique_contrast -consumer avformat:out.mov an=1");
    unsetenv("OMBRIQUE_PLUGIN_PATH");
    EXPECT_NE(errors.find("ombrique_contrast: /nowhere"), std::string::npos) << errors;
}

TEST_F(Frei0rTools, AThousandFramesTakeNoMoreMemoryThanAHundred) {
    const auto greatestKilobytes = [this](int frames) {
        succeed("ffmpeg -y -nostats -benchmark -f lavfi -i testsrc2=size=160x120 -frames:v " + std::to_string(frames) +
                " -vf format=rgba," + kFilter + " -f null -");
        std::smatch found;
        EXPECT_TRUE(std::regex_search(errors, found, std::regex("maxrss=(\\d+)kB"))) << errors;
        return std::stoi(found[1]);
    };
    const int hundred = greatestKilobytes(100);
    EXPECT_LT(greatestKilobytes(1000), hundred + 16 * 1024) << "a frame has 75 KiB";
}

TEST_F(Frei0rTools, TheInstalledModuleFindsTheInstalledBundle) {
    const Clip clip(32, 9, 2, 900);
    write(clip);
    succeed("cmake --install " OMBRIQUE_TEST_BUILD " --prefix " + (mFolder / "installed").string() + " >/dev/null");
    setenv("FREI0R_PATH", (mFolder / "installed/lib/frei0r-1").c_str(), 1);
    succeed(rawInput(clip) + "-vf " + kFilter + " -f rawvideo -pix_fmt rgba out.rgba");
    expectRight(clip, always);
}

} // namespace

} // namespace Ombrique::Tests
