#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Platform/OpenGL/NSOpenGLPixelFormat.h"
#include "Tests/Support/SoftwareDevice.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <dlfcn.h>
#include <string>
#include <string_view>

// The real driver, made to behave as others do: this program defines a few of EGL's functions itself, which hand on to
// EGL's own unless they are told to refuse.

namespace {

enum class Refuses { Nothing, Initialize, CreateContext, MakeCurrent };

Refuses deviceRefuses = Refuses::Nothing; ///< what the EGL device doesn't do, whose display is...
EGLDisplay deviceDisplay = EGL_NO_DISPLAY;
bool knowsSurfaceless = true;   ///< whether contexts may be current without a surface
bool looksLikeHardware = false; ///< whether the EGL device hides that it is software

using Address = __eglMustCastToProperFunctionPointerType;

template <typename Function> Function* real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool refuses(EGLDisplay display, Refuses what) { return display == deviceDisplay && deviceRefuses == what; }

/// The software device is the only one, whatever the machine has.
EGLBoolean oneDevice(EGLint room, EGLDeviceEXT* devices, EGLint* count) {
    *count = 1;
    if (devices && room > 0)
        *devices = softwareDevice(real<decltype(eglGetProcAddress)>("eglGetProcAddress"));
    return EGL_TRUE;
}

const char* hardwareDeviceString(EGLDeviceEXT, EGLint) { return "EGL_EXT_device_drm"; }

} // namespace

extern "C" {

EGLDisplay eglGetPlatformDisplay(EGLenum platform, void* native, const EGLAttrib* attributes) {
    EGLDisplay display = real<decltype(eglGetPlatformDisplay)>("eglGetPlatformDisplay")(platform, native, attributes);
    if (platform == EGL_PLATFORM_DEVICE_EXT)
        deviceDisplay = display;
    return display;
}

EGLBoolean eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor) {
    return refuses(display, Refuses::Initialize)
               ? EGL_FALSE
               : real<decltype(eglInitialize)>("eglInitialize")(display, major, minor);
}

EGLContext eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share, const EGLint* attributes) {
    return refuses(display, Refuses::CreateContext)
               ? EGL_NO_CONTEXT
               : real<decltype(eglCreateContext)>("eglCreateContext")(display, config, share, attributes);
}

EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context) {
    const bool lacksSurface = !knowsSurfaceless && context != EGL_NO_CONTEXT && draw == EGL_NO_SURFACE;
    return display == EGL_NO_DISPLAY || lacksSurface || refuses(display, Refuses::MakeCurrent)
               ? EGL_FALSE
               : real<decltype(eglMakeCurrent)>("eglMakeCurrent")(display, draw, read, context);
}

const char* eglQueryString(EGLDisplay display, EGLint name) {
    static std::string extensions;
    const char* const value = real<decltype(eglQueryString)>("eglQueryString")(display, name);
    constexpr std::string_view hidden = "EGL_KHR_surfaceless_context ";
    if (!value || knowsSurfaceless || name != EGL_EXTENSIONS || display == EGL_NO_DISPLAY)
        return value;
    extensions = value;
    extensions.erase(extensions.find(hidden), hidden.size());
    return extensions.c_str();
}

Address eglGetProcAddress(const char* name) {
    if (name == std::string_view("eglQueryDevicesEXT"))
        return reinterpret_cast<Address>(oneDevice);
    if (looksLikeHardware && name == std::string_view("eglQueryDeviceStringEXT"))
        return reinterpret_cast<Address>(hardwareDeviceString);
    return real<decltype(eglGetProcAddress)>("eglGetProcAddress")(name);
}

} // extern "C"

namespace {

enum class Display { Device, Surfaceless };

struct Row {
    const char* name;
    Refuses deviceRefuses;
    bool looksLikeHardware;
    bool knowsSurfaceless;
    Display expected;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

/// Makes a context on the driver of the row, makes it current, and lets go. The exit status is the step that failed.
[[noreturn]] void useDriver(const Row& row) {
    deviceRefuses = row.deviceRefuses;
    looksLikeHardware = row.looksLikeHardware;
    knowsSurfaceless = row.knowsSurfaceless;
    const NSOpenGLPixelFormatAttribute attributes[] = {NSOpenGLPFAOpenGLProfile, NSOpenGLProfileVersion3_2Core, 0};
    NSOpenGLPixelFormat* const format = NSOpenGLPixelFormat::initWithAttributes(attributes);
    NSOpenGLContext* const context = NSOpenGLContext::initWithFormat(format, nullptr);
    if (!context || !context->makeCurrentContext())
        std::exit(1);
    const bool onDevice = deviceDisplay != EGL_NO_DISPLAY && eglGetCurrentDisplay() == deviceDisplay;
    if (onDevice != (row.expected == Display::Device))
        std::exit(2);
    if (!CGLSetCurrentContext(nullptr) || CGLGetCurrentContext() != nullptr)
        std::exit(3);
    context->release();
    format->release();
    std::exit(0);
}

class ReluctantDriverDeathTest : public testing::TestWithParam<Row> {};

TEST_P(ReluctantDriverDeathTest, IsUsedOrPassedOver) {
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // the display is chosen once in a process
    EXPECT_EXIT(useDriver(GetParam()), testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ReluctantDriverDeathTest,
    testing::Values(Row{"AGPU", Refuses::Nothing, true, true, Display::Device},
                    Row{"ASoftwareDevice", Refuses::Nothing, false, true, Display::Surfaceless},
                    Row{"ADeviceThatCannotBeOpened", Refuses::Initialize, true, true, Display::Surfaceless},
                    Row{"ADeviceWithoutContexts", Refuses::CreateContext, true, true, Display::Surfaceless},
                    Row{"ADeviceThatAnotherJobHas", Refuses::MakeCurrent, true, true, Display::Surfaceless},
                    Row{"ContextsThatNeedASurface", Refuses::Nothing, false, false, Display::Surfaceless}),
    [](const auto& row) { return row.param.name; });

} // namespace
