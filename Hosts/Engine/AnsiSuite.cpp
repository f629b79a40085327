#include "Hosts/Engine/HostFunctions.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

// The C library's functions, as the host serves them.
namespace Ombrique::Hosts {

namespace {

/// As sprintf, but what doesn't fit into return_msg is cut off and noted.
int format(HostCall& call, char* buffer, const char* format, va_list arguments) {
    char* const message = call.outData()->return_msg;
    if (buffer != message)
        return std::vsprintf(buffer, format, arguments);
    const int length = std::vsnprintf(buffer, sizeof call.outData()->return_msg, format, arguments);
    if (length >= static_cast<int>(sizeof call.outData()->return_msg))
        call.ledger().note("a text of " + std::to_string(length) + " characters doesn't fit into return_msg");
    return length;
}

int hostSprintf(char* buffer, const char* pattern, ...) {
    va_list arguments;
    va_start(arguments, pattern);
    const int length =
        serveValue("sprintf", -1, [&](HostCall& call) { return format(call, buffer, pattern, arguments); });
    va_end(arguments);
    return length;
}

char* hostStrcpy(char* destination, const char* source) {
    return serveValue("strcpy", static_cast<char*>(nullptr), [&](HostCall&) {
        return static_cast<char*>(std::memcpy(destination, source, std::strlen(source) + 1));
    });
}

} // namespace

const PF_ANSICallbacksSuite1 kAnsiSuite = {hostSprintf, hostStrcpy};

} // namespace Ombrique::Hosts
