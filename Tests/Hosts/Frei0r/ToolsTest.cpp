#include "Tests/Hosts/Frei0r/RawFrames.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sys/wait.h>

namespace Ombrique::Tests {

namespace {

Correction always(int) { return {1.4, 12.0}; }

/// What a tool makes of a clip, in.rgba: out.rgba, by a command of the shell. That finds ffmpeg's words for either in
/// $INPUT and $RAW, the filter with the parameters of always() in $FILTER, and the size in $W and $H.
struct Run {
    const char* name;
    int width, height, frames;
    const char* command;
    Correction (*correction)(int frame) = always;
};

void PrintTo(const Run& run, std::ostream* out) { *out << run.name; }

/// As the documentation has it for widths that ffmpeg itself gets wrong with any module.
constexpr const char* kPadded =
    "$FFMPEG $INPUT -vf \"pad=ceil(iw/16)*16:ih,copy,$FILTER,crop=$W:$H:0:0\" $RAW out.rgba";
constexpr const char* kPiped = "$FFMPEG $INPUT -vf $FILTER $RAW pipe:1 >out.rgba";
constexpr const char* kGStreamer = "gst-launch-1.0 -q filesrc location=in.rgba ! "
                                   "rawvideoparse format=rgba framerate=25/1 width=$W height=$H ! "
                                   "frei0r-filter-ombrique-contrast contrast-value=0.14 brightness-value=0.56 ! "
                                   "filesink location=out.rgba";

const Run kRuns[] = {
    {"FfmpegToStandardOutput", 336, 217, 4, kPiped},
    {"FfmpegWithOneRow", 16, 1, 4, kPiped},
    {"FfmpegAtAnOddSize", 331, 217, 3, kPadded},
    {"FfmpegWithOnePixel", 1, 1, 3, kPadded},
    {"FfmpegFromAndToALosslessFile", 320, 183, 5,
     "$FFMPEG $INPUT -c:v png -pix_fmt rgba in.mov && $FFMPEG -i in.mov -vf $FILTER -c:v ffv1 -pix_fmt bgra out.mkv && "
     "$FFMPEG -i out.mkv $RAW out.rgba"},
    {"FfmpegWithParametersThatChange", 32, 7, 6,
     "$FFMPEG $INPUT -vf \"sendcmd=c='0.1 frei0r filter_params 0.3|0.4',$FILTER\" $RAW out.rgba",
     [](int frame) {
         return frame / 25.0 < 0.1 ? always(frame) : Correction{3.0, -20.0};
     }},
    {"FfmpegWithTwoInstancesInOneGraph", 64, 33, 6,
     "$FFMPEG $INPUT -filter_complex \"[0]split[a][b];[a]$FILTER[c];[b]frei0r=ombrique_contrast:0.2|0.6[d]\" "
     "-map '[c]' $RAW out.rgba -map '[d]' $RAW d.rgba"},
    // On a busy machine melt, with a filter or without, now and then ends before its file is whole.
    {"MeltWithKeyframes", 332, 218, 8,
     "$FFMPEG $INPUT -c:v png -pix_fmt rgba in.mov && for attempt in 1 2 3 4 5 6 7 8; do "
     "melt -silent in.mov -filter frei0r.ombrique_contrast '0=0=0.05;7=0.4' 1=0.56 "
     "-consumer avformat:out.mov vcodec=png pix_fmt=rgba mlt_image_format=rgba an=1 && "
     "$FFMPEG -i out.mov $RAW out.rgba && [ $(stat -c %s out.rgba) = $((W * H * 4 * 8)) ] && break; done",
     [](int frame) {
         return Correction{0.5 + 3.5 * frame / 7, 12.0};
     }},
    {"GStreamerAtAnOddSize", 331, 217, 4, kGStreamer},
    {"GStreamerWithFewPixels", 7, 5, 4, kGStreamer},
};

std::string contentOf(const char* file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A folder of its own, in which the tools run with the module at hand.
class Frei0rTools : public testing::TestWithParam<Run> {
protected:
    Frei0rTools() {
        std::string name = (std::filesystem::temp_directory_path() / "frei0r-tools-XXXXXX").string();
        mFolder = mkdtemp(name.data());
        std::filesystem::current_path(mFolder);
        setenv("FREI0R_PATH", std::filesystem::path(OMBRIQUE_TEST_MODULE).parent_path().c_str(), 1);
        setenv("GST_REGISTRY", (mFolder / "registry").c_str(), 1);
        setenv("FFMPEG", "ffmpeg -y -v error", 1);
        setenv("FILTER", "frei0r=ombrique_contrast:0.14|0.56", 1);
        setenv("RAW", "-f rawvideo -pix_fmt rgba", 1);
    }
    ~Frei0rTools() override {
        std::filesystem::current_path("/");
        std::filesystem::remove_all(mFolder);
    }

    /// Writes in.rgba, and keeps its pictures.
    void makeClip(int width, int height, int frames) {
        const std::string w = std::to_string(width), h = std::to_string(height);
        setenv("W", w.c_str(), 1);
        setenv("H", h.c_str(), 1);
        setenv("INPUT", ("-f rawvideo -pix_fmt rgba -s " + w + "x" + h + " -i in.rgba").c_str(), 1);
        std::ofstream file("in.rgba", std::ios::binary);
        for (int i = 0; i < frames; ++i) {
            mClip.push_back(makePicture(width, height, static_cast<unsigned>(100 + i)));
            file << rawFrame(mClip.back());
        }
    }
    /// What the command ends with; what it writes to standard error is in mErrors.
    int run(const std::string& command) {
        const int status = std::system(("{ " + command + "; } 2>errors").c_str());
        mErrors = contentOf("errors");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::filesystem::path mFolder;
    std::vector<Hosts::World> mClip;
    std::string mErrors;
};

INSTANTIATE_TEST_SUITE_P(Runs, Frei0rTools, testing::ValuesIn(kRuns),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(Frei0rTools, RenderEachFrame) {
    const auto& [name, width, height, frames, command, correction] = GetParam();
    makeClip(width, height, frames);
    ASSERT_EQ(run(command), 0) << mErrors;
    const std::string output = contentOf("out.rgba");
    const std::size_t frameBytes = output.size() / mClip.size();
    ASSERT_EQ(output.size(), 4u * static_cast<unsigned>(width * height * frames));
    for (std::size_t i = 0; i < mClip.size(); ++i)
        EXPECT_EQ(compareWithOracle(mClip[i], pictureOf(output, i * frameBytes, width, height),
                                    correction(static_cast<int>(i))),
                  "")
            << "frame " << i;
}

/// The plug-in of the tests' own fails where its slider is at 77.
TEST_F(Frei0rTools, PassAFailingFrameOnAndTellOfItOnce) {
    makeClip(48, 20, 5);
    setenv("OMBRIQUE_PLUGIN_PATH", OMBRIQUE_TEST_BUNDLE_OF_TESTS, 1);
    EXPECT_EQ(run("$FFMPEG $INPUT -vf frei0r=ombrique_contrast:0.77 $RAW out.rgba"), 0);
    unsetenv("OMBRIQUE_PLUGIN_PATH");
    EXPECT_TRUE(contentOf("out.rgba") == contentOf("in.rgba"));
    EXPECT_EQ(mErrors, "ombrique_contrast: PF_Cmd_SMART_RENDER returned 77\n");
}

TEST_F(Frei0rTools, FailWithoutOpenGLOrWithoutABundle) {
    makeClip(48, 20, 1);
    EXPECT_NE(run(std::string("__EGL_VENDOR_LIBRARY_FILENAMES=/dev/null ") + kPiped), 0);
    EXPECT_TRUE(mErrors.starts_with("ombrique_contrast: OpenGL: no driver")) << mErrors;
    EXPECT_NE(run(std::string("OMBRIQUE_PLUGIN_PATH=/nowhere ") + kPiped), 0);
    EXPECT_TRUE(mErrors.starts_with("ombrique_contrast: /nowhere: no such plug-in bundle\n")) << mErrors;
    run("OMBRIQUE_PLUGIN_PATH=/nowhere melt -silent color:red out=1 -filter frei0r.ombrique_contrast "
        "-consumer avformat:out.mov an=1");
    EXPECT_NE(mErrors.find("ombrique_contrast: /nowhere"), std::string::npos) << mErrors;
}

TEST_F(Frei0rTools, TakeNoMoreMemoryForAThousandFramesThanForAHundred) {
    const auto greatestKilobytes = [this](const std::string& frames) {
        EXPECT_EQ(run("ffmpeg -y -nostats -benchmark -f lavfi -i testsrc2=size=160x120 -frames:v " + frames +
                      " -vf format=rgba,$FILTER -f null -"),
                  0);
        return std::stoi(mErrors.substr(mErrors.find("maxrss=") + 7));
    };
    const int hundred = greatestKilobytes("100");
    EXPECT_LT(greatestKilobytes("1000"), hundred + 16 * 1024) << "a frame has 75 KiB";
}

} // namespace

} // namespace Ombrique::Tests
