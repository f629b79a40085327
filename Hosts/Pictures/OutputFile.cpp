#include "Hosts/Pictures/OutputFile.h"

#include "Hosts/Pictures/Failure.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

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

OutputFile::OutputFile(const std::filesystem::path& path, OutputRules rules)
    : mRules(std::move(rules)), mAskedFor(path), mTarget(path) {
    // The links of a path that leads nowhere yet, too.
    std::error_code error;
    for (int links = 0; std::filesystem::is_symlink(mTarget, error); ++links) {
        if (links == 40) // as many as the system follows
            fail(ELOOP);
        mTarget = mTarget.parent_path() / std::filesystem::read_symlink(mTarget);
    }
    struct stat existing {};
    if (stat(mTarget.c_str(), &existing) == 0) {
        if (!mRules.mayReplace)
            failAsItExists();
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
        mDescriptor = open(mPartial.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
        struct stat status {};
        const bool isPlanted =
            mDescriptor < 0 ? errno == ELOOP
                            : fstat(mDescriptor, &status) == 0 && (!S_ISREG(status.st_mode) || status.st_nlink > 1);
        if (mDescriptor < 0 && !isPlanted)
            fail(errno);
        if (!isPlanted) {
            awaitLock();
            if (isStillPartial())
                break;
        }
        if (mDescriptor >= 0)
            close(mDescriptor);
        if (isPlanted && unlink(mPartial.c_str()) != 0 && errno != ENOENT)
            fail(errno);
    }
    if (ftruncate(mDescriptor, 0) != 0) {
        const int errorNumber = errno;
        close(mDescriptor);
        fail(errorNumber);
    }
}

/// A signal may reach any thread, so the wait looks up now and then.
void OutputFile::awaitLock() {
    using namespace std::chrono_literals;
    // Where a file system has no locks, there is no waiting for each other.
    while (flock(mDescriptor, LOCK_EX | LOCK_NB) != 0 && (errno == EWOULDBLOCK || errno == EINTR)) {
        if (mRules.stopRequested && mRules.stopRequested()) {
            close(mDescriptor);
            throw Failure(mAskedFor.string() + ": not written: stopped while another program writes it");
        }
        std::this_thread::sleep_for(10ms);
    }
}

bool OutputFile::isStillPartial() const {
    struct stat opened {};
    struct stat named {};
    return fstat(mDescriptor, &opened) == 0 && lstat(mPartial.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
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
    if (stat(mTarget.c_str(), &replaced) == 0) {
        // Before the permissions, of which a change of group takes some away.
        static_cast<void>(chown(mPartial.c_str(), static_cast<uid_t>(-1), replaced.st_gid) == 0);
        if (chmod(mPartial.c_str(), replaced.st_mode & 07777) != 0)
            fail(errno);
    }
    int moved = mRules.mayReplace ? rename(mPartial.c_str(), mTarget.c_str())
                                  : renameat2(AT_FDCWD, mPartial.c_str(), AT_FDCWD, mTarget.c_str(), RENAME_NOREPLACE);
    if (moved != 0 && errno == EINVAL) // from file systems that know no such flag
        moved = rename(mPartial.c_str(), mTarget.c_str());
    if (moved != 0 && errno == EEXIST && !mRules.mayReplace)
        failAsItExists();
    if (moved != 0)
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

void OutputFile::failAsItExists() const { throw Failure(mAskedFor.string() + ": not written: it exists"); }

void OutputFile::fail(int errorNumber) const {
    throw Failure(mAskedFor.string() + ": can't be written: " + std::generic_category().message(errorNumber));
}

} // namespace Ombrique::Hosts
