#include "Tests/Support/SoftwareDevice.h"

#include <array>
#include <string_view>

EGLDeviceEXT softwareDevice(decltype(eglGetProcAddress)* getProcAddress) {
    const auto queryDevices = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(getProcAddress("eglQueryDevicesEXT"));
    const auto queryString =
        reinterpret_cast<PFNEGLQUERYDEVICESTRINGEXTPROC>(getProcAddress("eglQueryDeviceStringEXT"));
    std::array<EGLDeviceEXT, 16> devices = {};
    EGLint count = 0;
    if (!queryDevices || !queryString || !queryDevices(static_cast<EGLint>(devices.size()), devices.data(), &count))
        return nullptr;
    for (const EGLDeviceEXT device : devices) {
        const char* const extensions = device ? queryString(device, EGL_EXTENSIONS) : nullptr;
        if (extensions && std::string_view(extensions).find("EGL_MESA_device_software") != std::string_view::npos)
            return device;
    }
    return nullptr;
}
