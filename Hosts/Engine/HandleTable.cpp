#include "Hosts/Engine/HandleTable.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace Ombrique::Hosts {

namespace {

constexpr std::array<char, 16> kTrap = {'\x5a', '\x17', '\x3c', '\x69', '\x0f', '\x71', '\x2d', '\x48',
                                        '\x66', '\x1b', '\x53', '\x7e', '\x04', '\x39', '\x2a', '\x75'};

/// More than any machine has, and far from where adding the trap overflows.
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 40;

} // namespace

struct HandleTable::Block {
    /// Leaves `memory` null where there isn't so much.
    explicit Block(std::size_t sizeOfBlock)
        : memory(static_cast<char*>(std::calloc(1, sizeOfBlock + kTrap.size()))), size(sizeOfBlock) {
        if (memory)
            std::memcpy(memory + size, kTrap.data(), kTrap.size());
    }
    ~Block() { std::free(memory); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    bool isOverrun() const { return std::memcmp(memory + size, kTrap.data(), kTrap.size()) != 0; }

    char* const memory;
    /// What the handle points to: the only field that a plug-in can overwrite through it.
    char* shown = memory;
    std::size_t size;
    int locks = 0;
};

HandleTable::HandleTable(const char* kind, bool disposedUnlocked) : mKind(kind), mDisposedUnlocked(disposedUnlocked) {}

HandleTable::~HandleTable() = default;

char** HandleTable::create(std::uint64_t size) {
    if (size > kMostBytes)
        return nullptr;
    auto block = std::make_unique<Block>(size);
    if (!block->memory)
        return nullptr;
    return &mBlocks.emplace_back(std::move(block))->shown;
}

HandleTable::Blocks::iterator HandleTable::find(const void* handle, const char* action, Findings& findings) {
    const auto found =
        std::find_if(mBlocks.begin(), mBlocks.end(), [handle](const auto& block) { return &block->shown == handle; });
    if (found == mBlocks.end())
        findings.push_back(std::string(mKind) + " " + action + " that isn't held");
    return found;
}

char* HandleTable::lock(const void* handle, Findings& findings) {
    const auto found = find(handle, "locked", findings);
    if (found == mBlocks.end())
        return nullptr;
    ++(*found)->locks;
    return (*found)->memory;
}

bool HandleTable::unlock(const void* handle, Findings& findings) {
    const auto found = find(handle, "unlocked", findings);
    if (found == mBlocks.end())
        return false;
    if ((*found)->locks == 0) {
        findings.push_back(std::string(mKind) + " unlocked more often than locked");
        return false;
    }
    --(*found)->locks;
    return true;
}

bool HandleTable::dispose(const void* handle, Findings& findings) {
    const auto found = find(handle, "disposed of", findings);
    if (found == mBlocks.end())
        return false;
    const std::unique_ptr<Block> block = std::move(*found);
    mBlocks.erase(found);
    const auto describe = [&] { return mKind + (" of " + std::to_string(block->size)) + " bytes"; };
    if (mDisposedUnlocked && block->locks > 0)
        findings.push_back(describe() + " disposed of while locked");
    if (block->isOverrun())
        findings.push_back(describe() + ": written behind its memory");
    return true;
}

void HandleTable::reportHeld(Findings& findings) const {
    for (const auto& block : mBlocks)
        findings.push_back(mKind + (" of " + std::to_string(block->size)) + " bytes still held" +
                           (block->isOverrun() ? ", and written behind its memory" : ""));
}

void HandleTable::clear() { mBlocks.clear(); }

} // namespace Ombrique::Hosts
