#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Ombrique::Hosts {

/// Blocks of memory that a plug-in holds by handle, with their locks counted. A handle is the address of a pointer to
/// the block's memory. It is looked up here before it is followed, so that a stale or made-up one does no harm. A few
/// bytes behind the memory hold a pattern that shows an overrun. One thread at a time; the destructor frees what is
/// left.
class HandleTable {
public:
    using Findings = std::vector<std::string>;

    /// `kind` is what its blocks are called in findings. `disposedUnlocked` says that a block must be unlocked as often
    /// as locked before it is disposed of.
    HandleTable(const char* kind, bool disposedUnlocked);
    ~HandleTable();

    /// A new handle of `size` bytes, unlocked. All are zero: a frame whose picture the plug-in failed to fill in shows
    /// no memory of anything else. Null where there isn't so much memory.
    char** create(std::uint64_t size);
    /// Counts a lock, and returns the memory; null for a handle that isn't here.
    char* lock(const void* handle, Findings& findings);
    /// False for a handle that isn't here or isn't locked.
    bool unlock(const void* handle, Findings& findings);
    /// Frees the memory; false for a handle that isn't here.
    bool dispose(const void* handle, Findings& findings);
    /// Adds a line for each block that is still here.
    void reportHeld(Findings& findings) const;
    /// Frees all.
    void clear();

private:
    struct Block;
    using Blocks = std::vector<std::unique_ptr<Block>>;

    Blocks::iterator find(const void* handle, const char* action, Findings& findings);

    const char* mKind;
    bool mDisposedUnlocked;
    Blocks mBlocks;
};

} // namespace Ombrique::Hosts
