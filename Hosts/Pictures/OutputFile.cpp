#include "Hosts/Pictures/OutputFile.h"

#include "Hosts/Pictures/Failure.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
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

OutputFile::OutputFile(const std::filesystem::path& path) : mAskedFor(path), mTarget(path) {
    std::error_code error;
    if (std::filesystem::is_symlink(path, error)) {
        mTarget = std::filesystem::weakly_canonical(path, error);
        if (error)
            fail(error.value());
    }
    struct stat existing {};
    if (stat(mTarget.c_str(), &existing) == 0) {
        if (!S_ISREG(existing.st_mode))
            fail(S_ISDIR(existing.st_mode) ? EISDIR : ENOTSUP);
        if (access(mTarget.c_str(), W_OK) != 0)
            fail(errno);
    }
    const std::string name = "." + mTarget.filename().string() + ".partial" + mTarget.extension().string();
    mPartial = mTarget.parent_path() / name;
    openPartial();
}

OutputFile::~OutputFile() {
    // Before the lock ends, so that it is never another program's file.
    if (!mCommitted)
        unlink(mPartial.c_str());
    close(mDescriptor);
}

void OutputFile::openPartial() {
    // Whoever held the lock before may have given the file its final name meanwhile: then the name is free again, or
    // stands for another file.
    for (;;) {
        mDescriptor = open(mPartial.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (mDescriptor < 0)
            fail(errno);
        // Where a file system has no locks, there is no waiting for each other.
        while (flock(mDescriptor, LOCK_EX) != 0 && errno == EINTR) {
        }
        if (isStillPartial())
            break;
        close(mDescriptor);
    }
    if (ftruncate(mDescriptor, 0) != 0) {
        const int errorNumber = errno;
        close(mDescriptor);
        fail(errorNumber);
    }
}

bool OutputFile::isStillPartial() const {
    struct stat opened {};
    struct stat named {};
    return fstat(mDescriptor, &opened) == 0 && stat(mPartial.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
           opened.st_dev == named.st_dev;
}

void OutputFile::commit() {
    struct stat written {};
    // Encoders that write by name may have replaced the file instead of filling it.
    if (stat(mPartial.c_str(), &written) != 0)
        fail(errno);
    if (written.st_size == 0)
        throw Failure(mAskedFor.string() + ": nothing was written");
    makeLasting();
    struct stat replaced {};
    if (stat(mTarget.c_str(), &replaced) == 0 && chmod(mPartial.c_str(), replaced.st_mode & 07777) != 0)
        fail(errno);
    if (rename(mPartial.c_str(), mTarget.c_str()) != 0)
        fail(errno);
    mCommitted = true;
}

void OutputFile::makeLasting() const {
    // Not through mDescriptor, which may be the file that was replaced.
    const int descriptor = open(mPartial.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        fail(errno);
    // Some file systems can't do it, and say so with EINVAL.
    const int errorNumber = fdatasync(descriptor) != 0 && errno != EINVAL ? errno : 0;
    close(descriptor);
    if (errorNumber != 0)
        fail(errorNumber);
}

void OutputFile::fail(int errorNumber) const {
    throw Failure(mAskedFor.string() + ": can't be written: " + std::generic_category().message(errorNumber));
}

} // namespace Ombrique::Hosts
