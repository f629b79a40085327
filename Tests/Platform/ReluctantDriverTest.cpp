#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Platform/OpenGL/NSOpenGLPixelFormat.h"
#include "Tests/Support/SoftwareDevice.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <dlfcn.h>
#include <ostream>
#include <string>
#include <string_view>

// The real driver, made to behave as others do: this program defines a few of EGL's functions itself, which hand on to
// EGL's own unless they are told to refuse.
#define EGLS_OWN(function) reinterpret_cast<decltype(&function)>(dlsym(RTLD_NEXT, #function))

namespace {

enum class Refuses { Nothing, Initialize, CreateContext, MakeCurrent };

struct Driver {
    const char* name;
    Refuses deviceRefuses;  ///< what the only EGL device doesn't do
    bool looksLikeHardware; ///< whether that hides that it is software
    bool knowsSurfaceless;  ///< whether contexts may be current without a surface
    bool deviceIsChosen;
};

Driver driver{"AsItIs", Refuses::Nothing, false, true, false};
EGLDisplay deviceDisplay = EGL_NO_DISPLAY;

bool refuses(EGLDisplay display, Refuses what) { return display == deviceDisplay && driver.deviceRefuses == what; }

/// The software device is the only one, whatever the machine has.
EGLBoolean oneDevice(EGLint room, EGLDeviceEXT* devices, EGLint* count) {
    *count = 1;
    if (devices && room > 0)
        *devices = softwareDevice(EGLS_OWN(eglGetProcAddress));
    return EGL_TRUE;
}

const char* hardwareDeviceString(EGLDeviceEXT, EGLint) { return "EGL_EXT_device_drm"; }

} // namespace

extern "C" {

EGLDisplay eglGetPlatformDisplay(EGLenum platform, void* native, const EGLAttrib* attributes) {
    EGLDisplay display = EGLS_OWN(eglGetPlatformDisplay)(platform, native, attributes);
    if (platform == EGL_PLATFORM_DEVICE_EXT)
        deviceDisplay = display;
    return display;
}

EGLBoolean eglInitialize(EGLDisplay display, EGLint* major, EGLint* minor) {
    return refuses(display, Refuses::Initialize) ? EGL_FALSE : EGLS_OWN(eglInitialize)(display, major, minor);
}

EGLContext eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share, const EGLint* attributes) {
    return refuses(display, Refuses::CreateContext) ? EGL_NO_CONTEXT
                                                    : EGLS_OWN(eglCreateContext)(display, config, share, attributes);
}

EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context) {
    const bool lacksSurface = !driver.knowsSurfaceless && context != EGL_NO_CONTEXT && draw == EGL_NO_SURFACE;
    return display == EGL_NO_DISPLAY || lacksSurface || refuses(display, Refuses::MakeCurrent)
               ? EGL_FALSE
               : EGLS_OWN(eglMakeCurrent)(display, draw, read, context);
}

const char* eglQueryString(EGLDisplay display, EGLint name) {
    static std::string extensions;
    const char* const value = EGLS_OWN(eglQueryString)(display, name);
    constexpr std::string_view hidden = "EGL_KHR_surfaceless_context ";
    if (!value || driver.knowsSurfaceless || name != EGL_EXTENSIONS || display == EGL_NO_DISPLAY)
        return value;
    extensions = value;
    return extensions.erase(extensions.find(hidden), hidden.size()).c_str();
}

__eglMustCastToProperFunctionPointerType eglGetProcAddress(const char* name) {
    using Address = __eglMustCastToProperFunctionPointerType;
    if (name == std::string_view("eglQueryDevicesEXT"))
        return reinterpret_cast<Address>(oneDevice);
    if (driver.looksLikeHardware && name == std::string_view("eglQueryDeviceStringEXT"))
        return reinterpret_cast<Address>(hardwareDeviceString);
    return EGLS_OWN(eglGetProcAddress)(name);
}

} // extern "C"

namespace {

void PrintTo(const Driver& row, std::ostream* out) { *out << row.name; }

class ReluctantDriver : public testing::TestWithParam<Driver> {};
INSTANTIATE_TEST_SUITE_P(Rows, ReluctantDriver,
                         testing::Values(Driver{"AGPU", Refuses::Nothing, true, true, true},
                                         Driver{"ASoftwareDevice", Refuses::Nothing, false, true, false},
                                         Driver{"ADeviceThatCannotBeOpened", Refuses::Initialize, true, true, false},
                                         Driver{"ADeviceWithoutContexts", Refuses::CreateContext, true, true, false},
                                         Driver{"ADeviceThatAnotherJobHas", Refuses::MakeCurrent, true, true, false},
                                         Driver{"ContextsThatNeedASurface", Refuses::Nothing, false, false, false}),
                         [](const auto& row) { return row.param.name; });

void useDriver() {
    const NSOpenGLPixelFormatAttribute attributes[] = {NSOpenGLPFAOpenGLProfile, NSOpenGLProfileVersion3_2Core, 0};
    NSOpenGLPixelFormat* const format = NSOpenGLPixelFormat::initWithAttributes(attributes);
    NSOpenGLContext* const context = NSOpenGLContext::initWithFormat(format, nullptr);
    ASSERT_TRUE(context && context->makeCurrentContext());
    EXPECT_EQ(eglGetCurrentDisplay() == deviceDisplay, driver.deviceIsChosen);
    EXPECT_TRUE(CGLSetCurrentContext(nullptr));
    EXPECT_EQ(CGLGetCurrentContext(), nullptr);
    context->release();
    format->release();
}

TEST_P(ReluctantDriver, IsUsedOrPassedOver) {
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // a process for each row, since the display is chosen once
    driver = GetParam();
    EXPECT_EXIT((useDriver(), std::exit(HasFailure())), testing::ExitedWithCode(0), "");
}

} // namespace
