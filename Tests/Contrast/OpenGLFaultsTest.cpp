#include "Hosts/Engine/CheckedRenderer.h"
#include "Tests/Support/PixelOracle.h"
#include "Tests/Support/Sweep.h"

#include <EGL/egl.h>
#include <GL/glcorearb.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;
using Address = void (*)();

/// The calls of OpenGL that make or fill something, counted, and which of them do nothing.
struct OpenGLFaults {
    int count = 0;
    /// The first call that fails, 0 for none, and whether all after it do so, too.
    int first = 0;
    bool goesOn = false;
    /// What was made and not deleted, of the kinds that contexts share.
    std::set<std::pair<std::string_view, unsigned>> living;

    bool strikes() { return ++count == first || (goesOn && first > 0 && count > first); }
    bool fired() const { return first > 0 && count >= first; }
} faults;

template <std::size_t size> struct Name {
    consteval Name(const char (&letters)[size]) { std::copy_n(letters, size, text); }
    char text[size];
};

/// A function of the driver with the faults before it.
template <Name name, typename Function> struct Wrapped;

template <Name name, typename Result, typename... Arguments> struct Wrapped<name, Result (*)(Arguments...)> {
    static inline Result (*real)(Arguments...) = nullptr;

    static Result call(Arguments... arguments) {
        constexpr std::string_view full = name.text;
        if constexpr (full.starts_with("glDelete")) {
            const std::string_view kind = full.substr(8);
            if constexpr (sizeof...(Arguments) == 2)
                forget(kind, arguments...);
            else
                (faults.living.erase({kind, arguments}), ...);
            return real(arguments...);
        } else if (faults.strikes())
            return Result();
        else if constexpr (full.starts_with("glGen")) {
            real(arguments...);
            remember(full.substr(5), arguments...);
        } else if constexpr (full.starts_with("glCreate")) {
            const Result object = real(arguments...);
            faults.living.insert({full.substr(8), object});
            return object;
        } else
            return real(arguments...);
    }

    static void remember(std::string_view kind, int count, const unsigned* names) {
        // Frame buffers and vertex arrays end with their contexts.
        if (kind != "Framebuffers" && kind != "VertexArrays")
            for (const unsigned* object = names; object != names + count; ++object)
                faults.living.insert({kind, *object});
    }

    static void forget(std::string_view kind, int count, const unsigned* names) {
        for (const unsigned* object = names; object != names + count; ++object)
            faults.living.erase({kind, *object});
    }
};

/// In the place of the driver's function `asked` the one with faults; null where it is another's.
template <Name name, typename Function> Address wrap(std::string_view asked, Address found) {
    if (asked != name.text)
        return nullptr;
    Wrapped<name, Function>::real = reinterpret_cast<Function>(found);
    return reinterpret_cast<Address>(Wrapped<name, Function>::call);
}

constexpr Address (*kWraps[])(std::string_view, Address) = {
    wrap<"glGenTextures", PFNGLGENTEXTURESPROC>,
    wrap<"glGenRenderbuffers", PFNGLGENRENDERBUFFERSPROC>,
    wrap<"glGenFramebuffers", PFNGLGENFRAMEBUFFERSPROC>,
    wrap<"glGenBuffers", PFNGLGENBUFFERSPROC>,
    wrap<"glGenVertexArrays", PFNGLGENVERTEXARRAYSPROC>,
    wrap<"glDeleteTextures", PFNGLDELETETEXTURESPROC>,
    wrap<"glDeleteRenderbuffers", PFNGLDELETERENDERBUFFERSPROC>,
    wrap<"glDeleteBuffers", PFNGLDELETEBUFFERSPROC>,
    wrap<"glDeleteShader", PFNGLDELETESHADERPROC>,
    wrap<"glDeleteProgram", PFNGLDELETEPROGRAMPROC>,
    wrap<"glCreateShader", PFNGLCREATESHADERPROC>,
    wrap<"glCreateProgram", PFNGLCREATEPROGRAMPROC>,
    wrap<"glShaderSource", PFNGLSHADERSOURCEPROC>,
    wrap<"glCompileShader", PFNGLCOMPILESHADERPROC>,
    wrap<"glAttachShader", PFNGLATTACHSHADERPROC>,
    wrap<"glLinkProgram", PFNGLLINKPROGRAMPROC>,
    wrap<"glBufferData", PFNGLBUFFERDATAPROC>,
    wrap<"glTexImage2D", PFNGLTEXIMAGE2DPROC>,
    wrap<"glTexSubImage2D", PFNGLTEXSUBIMAGE2DPROC>,
    wrap<"glRenderbufferStorage", PFNGLRENDERBUFFERSTORAGEPROC>,
    wrap<"glRenderbufferStorageMultisample", PFNGLRENDERBUFFERSTORAGEMULTISAMPLEPROC>,
    wrap<"glFramebufferRenderbuffer", PFNGLFRAMEBUFFERRENDERBUFFERPROC>,
    wrap<"glFramebufferTexture2D", PFNGLFRAMEBUFFERTEXTURE2DPROC>,
    wrap<"glClear", PFNGLCLEARPROC>,
    wrap<"glDrawArrays", PFNGLDRAWARRAYSPROC>,
    wrap<"glBlitFramebuffer", PFNGLBLITFRAMEBUFFERPROC>,
    wrap<"glReadPixels", PFNGLREADPIXELSPROC>,
};

/// Whether a fault strikes once or goes on, in a first frame or in a later one.
struct OpenGLFaultCase {
    const char* name;
    bool goesOn;
    bool first;
};

class OpenGLFaultsTest : public testing::TestWithParam<OpenGLFaultCase> {
protected:
    /// How a frame comes out: "" for the right picture, "none" where it is said that there is none.
    std::string frame(unsigned seed) {
        World input = makePicture(31, 19, seed);
        World output(31, 19);
        const Correction correction{1.3, 4.0};
        try {
            const FrameResult result =
                renderer.render({.input = &input, .output = &output, .values = correction.sliders()});
            return result.clean() ? compareWithOracle(input, output, correction) : result.describe();
        } catch (const NoPicture&) {
            return "none";
        }
    }

    PluginBundle bundle{OMBRIQUE_TEST_BUNDLE};
    Effect effect{bundle};
    CheckedRenderer renderer{effect};
};

/// The driver fails, and no wrong picture is called done. A fault that passes costs no picture at all.
TEST_P(OpenGLFaultsTest, NoWrongPictureIsCalledDone) {
    const auto& [name, goesOn, first] = GetParam();
    sweep(name, 4, [&, goesOn = goesOn, first = first](int n) {
        EXPECT_TRUE(effect.setUp().clean());
        EXPECT_EQ(first ? "" : frame(1), "");
        faults.count = 0;
        faults.goesOn = goesOn;
        faults.first = n;
        const std::string picture = frame(2);
        const bool fired = faults.fired();
        faults.first = 0;
        EXPECT_TRUE(picture.empty() || (goesOn && picture == "none")) << picture;
        EXPECT_EQ(frame(3), "") << "the next frame";
        EXPECT_TRUE(effect.setDown().clean());
        for (const auto& [kind, object] : faults.living)
            ADD_FAILURE() << object << " of " << kind << " is left";
        faults.living.clear();
        return fired;
    });
}

INSTANTIATE_TEST_SUITE_P(Driver, OpenGLFaultsTest,
                         testing::Values(OpenGLFaultCase{"OnceInAFirstFrame", false, true},
                                         OpenGLFaultCase{"OnceInALaterFrame", false, false},
                                         OpenGLFaultCase{"FromThereOnInAFirstFrame", true, true},
                                         OpenGLFaultCase{"FromThereOnInALaterFrame", true, false}),
                         [](const auto& testCase) { return testCase.param.name; });

} // namespace

} // namespace Ombrique::Tests

/// Where the binding of OpenGL looks up each function: exported, it comes before the system's.
extern "C" __attribute__((visibility("default"))) void (*glXGetProcAddress(const unsigned char* name))() {
    const auto* const asked = reinterpret_cast<const char*>(name);
    const auto found = reinterpret_cast<Ombrique::Tests::Address>(eglGetProcAddress(asked));
    for (const auto wrap : Ombrique::Tests::kWraps)
        if (const Ombrique::Tests::Address wrapped = wrap(asked, found))
            return wrapped;
    return found;
}
