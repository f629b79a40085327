#include "Hosts/Pictures/DescriptorProxy.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace Ombrique::Hosts {

namespace {

/// Calls `transfer(bytes already done)` until `size` bytes are through, the file ends (0) or an error comes up, which
/// is kept in `errorNumber`. Returns the bytes that are through.
template <typename Transfer> std::size_t transferAll(std::size_t size, int& errorNumber, const Transfer& transfer) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = transfer(done);
        if (count == 0)
            break;
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            errorNumber = errorNumber == 0 ? errno : errorNumber;
            break;
        }
    }
    return done;
}

} // namespace

DescriptorProxy::DescriptorProxy(int descriptor) : IOProxy("", Write), mDescriptor(descriptor) {}

std::size_t DescriptorProxy::read(void* buffer, std::size_t size) {
    const std::size_t count = pread(buffer, size, m_pos);
    m_pos += static_cast<std::int64_t>(count);
    return count;
}

std::size_t DescriptorProxy::write(const void* buffer, std::size_t size) {
    const std::size_t count = pwrite(buffer, size, m_pos);
    m_pos += static_cast<std::int64_t>(count);
    return count;
}

std::size_t DescriptorProxy::pread(void* buffer, std::size_t size, std::int64_t offset) {
    return transferAll(size, mErrorNumber, [&](std::size_t done) {
        return ::pread(mDescriptor, static_cast<char*>(buffer) + done, size - done,
                       offset + static_cast<std::int64_t>(done));
    });
}

std::size_t DescriptorProxy::pwrite(const void* buffer, std::size_t size, std::int64_t offset) {
    return transferAll(size, mErrorNumber, [&](std::size_t done) {
        return ::pwrite(mDescriptor, static_cast<const char*>(buffer) + done, size - done,
                        offset + static_cast<std::int64_t>(done));
    });
}

std::size_t DescriptorProxy::size() const {
    struct stat status {};
    return fstat(mDescriptor, &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
}

} // namespace Ombrique::Hosts
