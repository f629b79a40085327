#include "Hosts/Engine/CheckedRenderer.h"
#include "Tests/Support/EffectTest.h"
#include "Tests/Support/Sweep.h"

#include <EGL/egl.h>
#include <GL/glcorearb.h>

#include <algorithm>
#include <string_view>

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

    bool strikes() { return ++count == first || (goesOn && first > 0 && count > first); }
} faults;

template <std::size_t size> struct Name {
    consteval Name(const char (&letters)[size]) { std::copy_n(letters, size, text); }
    char text[size];
};

/// A function of the driver with the faults before it.
template <Name name, typename Function> struct Wrapped;

template <Name name, typename Result, typename... Arguments> struct Wrapped<name, Result (*)(Arguments...)> {
    static inline Result (*real)(Arguments...) = nullptr;

    static Result call(Arguments... arguments) { return faults.strikes() ? Result() : real(arguments...); }
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

/// The driver fails in a first or a later frame, once or from there on, and no wrong picture is called done. A fault
/// that passes costs no picture at all.
TEST_F(EffectTest, NoWrongPictureOfAFailingDriverIsCalledDone) {
    CheckedRenderer renderer(effect);
    World input = makePicture(31, 19, 2);
    const Correction correction{1.3, 4.0};
    const struct {
        const char* name;
        bool goesOn;
        bool first;
    } rows[] = {{"once in a first frame", false, true},
                {"once in a later frame", false, false},
                {"from there on in a first frame", true, true},
                {"from there on in a later frame", true, false}};
    for (const auto& [name, goesOn, first] : rows)
        Tests::sweep(name, 4, [&, goesOn = goesOn, first = first](int n) {
            bool fired = false;
            check([&] {
                EXPECT_TRUE(effect.setDown().clean() && effect.setUp().clean());
                EXPECT_EQ(first ? "" : plainFrame(correction, 1, {31, 19}), "");
                faults = {.first = n, .goesOn = goesOn};
                World output(31, 19);
                try {
                    const FrameRequest request{.input = &input, .output = &output, .values = correction.sliders()};
                    EXPECT_TRUE(renderer.render(request).clean());
                    EXPECT_EQ(compareWithOracle(input, output, correction), "");
                } catch (const NoPicture&) {
                    EXPECT_TRUE(goesOn);
                }
                fired = faults.count >= n;
                faults = {};
            });
            return fired;
        });
}

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
