#pragma once

#include <OpenImageIO/filesystem.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>

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

/// What holds for all outputs of a run.
struct OutputRules {
    /// Whether an output that is there is replaced; it is refused otherwise.
    bool mayReplace = true;
    /// Where it is set: whether to give up waiting for another program. Any thread.
    std::function<bool()> stopRequested;
};

/// A file that appears whole or not at all: it is written under another name in the same folder, and takes its own name
/// only when it is complete. Whatever stood under that name stays as it was until then, also when the program is killed
/// on the way. What a killed run leaves behind is a hidden file, `.NAME.partial.EXTENSION`, which the next run that
/// writes the same file takes over. Two programs that write the same file wait for each other. A link under the hidden
/// name, which somebody else planted, is replaced and never followed.
///
/// All failures are thrown as Failure and name the file.
class OutputFile {
public:
    /// Makes the partial file. An output that is a symbolic link stays one: what it points to is written. An output
    /// that is a folder, or that the user may not write to, is refused.
    explicit OutputFile(const std::filesystem::path& path, OutputRules rules = {});
    /// Removes the partial file, unless it was committed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// The name of the partial file until commit(), with the extension of the output.
    const std::filesystem::path& partialPath() const { return mPartial; }
    /// The partial file, open for reading and writing, at its beginning.
    int descriptor() const { return mDescriptor; }
    /// Writes the partial file through to the disk, and gives it the output's name and the permissions of the file that
    /// it replaces, and its group where the system lets us. An empty file is refused.
    void commit();

    /// Throws for an error number.
    [[noreturn]] void fail(int errorNumber) const;

private:
    void openPartial();
    void awaitLock();
    bool isStillPartial() const;
    [[noreturn]] void failAsItExists() const;
    void makeLasting() const;

    OutputRules mRules;
    std::filesystem::path mAskedFor;
    std::filesystem::path mTarget;
    std::filesystem::path mPartial;
    int mDescriptor = -1;
    bool mCommitted = false;
};

} // namespace Ombrique::Hosts
