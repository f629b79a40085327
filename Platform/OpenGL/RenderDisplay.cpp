#include "Platform/OpenGL/RenderDisplay.h"

#include "Platform/OpenGL/EGLBinding.h"

#include <EGL/eglext.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace PlatformEGL {

namespace {

/// Whether a list of names with blanks between them holds `name`. A null list holds nothing.
bool lists(const char* names, std::string_view name) {
    std::string_view rest = names ? names : "";
    while (!rest.empty()) {
        const std::string_view first = rest.substr(0, rest.find(' '));
        if (first == name)
            return true;
        rest.remove_prefix(std::min(first.size() + 1, rest.size()));
    }
    return false;
}

bool clientHas(std::string_view extension) { return lists(eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS), extension); }

bool displayHas(EGLDisplay display, std::string_view extension) {
    return lists(eglQueryString(display, EGL_EXTENSIONS), extension);
}

template <typename Function> Function extensionFunction(const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

bool needsSurface(EGLDisplay display) { return !displayHas(display, "EGL_KHR_surfaceless_context"); }

/// What the device says of itself under a name; empty where it has no such string.
std::string deviceString(EGLDeviceEXT device, EGLint name) {
    const auto queryString = extensionFunction<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
    const bool describes = clientHas("EGL_EXT_device_base") || clientHas("EGL_EXT_device_query");
    const char* const text = describes && queryString ? queryString(device, name) : nullptr;
    return text ? text : "";
}

bool isSoftware(EGLDeviceEXT device) {
    return lists(deviceString(device, EGL_EXTENSIONS).c_str(), "EGL_MESA_device_software");
}

std::vector<EGLDeviceEXT> allDevices() {
    const auto queryDevices = extensionFunction<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
    const bool enumerates = clientHas("EGL_EXT_device_base") || clientHas("EGL_EXT_device_enumeration");
    EGLint count = 0;
    if (!clientHas("EGL_EXT_platform_device") || !enumerates || !queryDevices || !queryDevices(0, nullptr, &count) ||
        count <= 0)
        return {};
    std::vector<EGLDeviceEXT> devices(static_cast<std::size_t>(count));
    if (!queryDevices(count, devices.data(), &count))
        return {};
    devices.resize(static_cast<std::size_t>(count));
    return devices;
}

std::string describeDevice(EGLDeviceEXT device) {
    constexpr EGLint kRenderer = 0x335F; // EGL_RENDERER_EXT
    std::string text;
    const std::string extensions = deviceString(device, EGL_EXTENSIONS);
    if (lists(extensions.c_str(), "EGL_EXT_device_query_name"))
        text = deviceString(device, kRenderer);
    if (lists(extensions.c_str(), "EGL_EXT_device_drm"))
        text += (text.empty() ? "" : " ") + deviceString(device, EGL_DRM_DEVICE_FILE_EXT);
    if (isSoftware(device))
        text += text.empty() ? "software" : " (software)";
    return text.empty() ? "no name" : text;
}

/// The devices to try, in their order: the GPUs, or those that the user has chosen.
std::vector<EGLDeviceEXT> wantedDevices(std::string_view chosen) {
    std::vector<EGLDeviceEXT> wanted;
    const std::vector<EGLDeviceEXT> devices = allDevices();
    for (std::size_t number = 0; number < devices.size(); ++number)
        if (chosen.empty()
                ? !isSoftware(devices[number])
                : chosen == std::to_string(number) || describeDevice(devices[number]).find(chosen) != std::string::npos)
            wanted.push_back(devices[number]);
    return wanted;
}

/// Initialises a display and proves it: a core context is made, and made current for a moment.
bool serves(EGLDisplay display) {
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr))
        return false;
    const EGLConfig config = chooseConfig(display, {.colorBits = 24, .closestColor = true});
    const CGLContextObj context = config ? createContext(display, config, EGL_NO_CONTEXT) : nullptr;
    if (context == nullptr)
        return false;
    const CGLContextObj host = currentBinding();
    const bool becomesCurrent = setBinding(context);
    setBinding(host);
    destroyContext(context);
    return becomesCurrent;
}

EGLDisplay chooseDisplay() {
    const char* const chosen = std::getenv("OMBRIQUE_DEVICE");
    for (const EGLDeviceEXT device : wantedDevices(chosen ? chosen : "")) {
        const EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
        if (serves(display))
            return display;
    }
    if ((!chosen || !*chosen) && clientHas("EGL_MESA_platform_surfaceless")) {
        const EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        if (serves(display))
            return display;
    }
    return EGL_NO_DISPLAY;
}

} // namespace

std::vector<std::string> renderDevices() {
    std::vector<std::string> names;
    for (const EGLDeviceEXT device : allDevices())
        names.push_back(describeDevice(device));
    return names;
}

EGLDisplay renderDisplay() {
    static const EGLDisplay display = chooseDisplay();
    return display;
}

EGLConfig chooseConfig(EGLDisplay display, const ConfigRequest& request) {
    const EGLint attributes[] = {
        EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,      EGL_SURFACE_TYPE, needsSurface(display) ? EGL_PBUFFER_BIT : 0,
        EGL_ALPHA_SIZE,      request.alphaBits,   EGL_DEPTH_SIZE,   request.depthBits,
        EGL_STENCIL_SIZE,    request.stencilBits, EGL_NONE};
    EGLint count = 0;
    if (!eglChooseConfig(display, attributes, nullptr, 0, &count) || count <= 0)
        return nullptr;
    std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
    if (!eglChooseConfig(display, attributes, configs.data(), count, &count))
        return nullptr;
    configs.resize(static_cast<std::size_t>(count));

    EGLConfig best = nullptr;
    EGLint leastOff = 0;
    for (const EGLConfig config : configs) {
        EGLint bits = 0;
        for (const EGLint channel : {EGL_RED_SIZE, EGL_GREEN_SIZE, EGL_BLUE_SIZE}) {
            EGLint channelBits = 0;
            eglGetConfigAttrib(display, config, channel, &channelBits);
            bits += channelBits;
        }
        const EGLint off = std::abs(bits - request.colorBits);
        if ((request.closestColor || bits >= request.colorBits) && (!best || off < leastOff)) {
            best = config;
            leastOff = off;
        }
    }
    return best;
}

CGLContextObj createContext(EGLDisplay display, EGLConfig config, EGLContext shareContext) {
    // "#version 330" belongs to version 3.3, and a driver may take the version at its word.
    const EGLint attributes[] = {
        EGL_CONTEXT_MAJOR_VERSION,           3,       EGL_CONTEXT_MINOR_VERSION, 3, EGL_CONTEXT_OPENGL_PROFILE_MASK,
        EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, EGL_NONE};
    CGLContextObj object;
    object.display = display;
    // The client API that is bound makes a context one of OpenGL; what the host has bound is bound again afterwards.
    const EGLenum hostAPI = eglQueryAPI();
    if (!eglBindAPI(EGL_OPENGL_API))
        return nullptr;
    object.context = eglCreateContext(display, config, shareContext, attributes);
    eglBindAPI(hostAPI);
    if (object.context == EGL_NO_CONTEXT)
        return nullptr;
    if (needsSurface(display)) {
        const EGLint onePixel[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
        object.drawSurface = object.readSurface = eglCreatePbufferSurface(display, config, onePixel);
        if (object.drawSurface == EGL_NO_SURFACE) {
            destroyContext(object);
            return nullptr;
        }
    }
    return object;
}

void destroyContext(const CGLContextObj& object) {
    eglDestroyContext(object.display, object.context);
    if (object.drawSurface != EGL_NO_SURFACE)
        eglDestroySurface(object.display, object.drawSurface);
}

} // namespace PlatformEGL
