#pragma once

#include <OpenImageIO/filesystem.h>

namespace Ombrique::Hosts {

/// Lets an encoder of OpenImageIO write, and read again, through an open file descriptor, whose owner is someone else.
/// Unlike the encoders' own files, it remembers every failure, the full disk at the very end as well. The first error
/// number is kept.
class DescriptorProxy : public OIIO::Filesystem::IOProxy {
public:
    /// `descriptor` is open for reading and writing.
    explicit DescriptorProxy(int descriptor);

    /// The error number of the first failure, 0 where all went well.
    int errorNumber() const { return mErrorNumber; }

    const char* proxytype() const override { return "descriptor"; }
    std::size_t read(void* buffer, std::size_t size) override;
    std::size_t write(const void* buffer, std::size_t size) override;
    std::size_t pread(void* buffer, std::size_t size, std::int64_t offset) override;
    std::size_t pwrite(const void* buffer, std::size_t size, std::int64_t offset) override;
    std::size_t size() const override;

private:
    int mDescriptor;
    int mErrorNumber = 0;
};

} // namespace Ombrique::Hosts
