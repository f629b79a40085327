#include "Hosts/Engine/HostTables.h"
#include "Hosts/Engine/Serve.h"

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

// The C library's functions, as the host serves them.
namespace Ombrique::Hosts {

namespace {

/// The capacity of `buffer` in bytes. It is known for return_msg alone.
std::size_t roomOf(HostCall& call, const char* buffer) {
    return buffer == call.outData()->return_msg ? sizeof call.outData()->return_msg : INT_MAX;
}

void noteTooLong(int length) noexcept {
    withoutExceptions([length] {
        HostCall::current()->ledger().note("a text of " + std::to_string(length) +
                                           " characters doesn't fit into return_msg");
        return PF_Err{PF_Err_NONE};
    });
}

/// As sprintf, but what doesn't fit into return_msg is cut off and noted.
int hostSprintf(char* buffer, const char* pattern, ...) {
    const std::size_t room =
        serveValue("sprintf", std::size_t{0}, [buffer](HostCall& call) { return roomOf(call, buffer); });
    if (room == 0)
        return -1;
    va_list arguments;
    va_start(arguments, pattern);
    const int length = std::vsnprintf(buffer, room, pattern, arguments);
    va_end(arguments);
    if (length >= 0 && static_cast<std::size_t>(length) >= room)
        noteTooLong(length);
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
