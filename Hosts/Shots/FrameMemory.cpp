#include "Hosts/Shots/FrameMemory.h"

#include "Hosts/Pictures/TextParts.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace Ombrique::Hosts {

namespace {

/// The least limit in the files of this name in `group`, a folder below `root`, and in the folders above it.
std::uint64_t leastLimit(const std::filesystem::path& root, std::string_view group, const char* file) {
    std::uint64_t least = UINT64_MAX;
    for (std::filesystem::path folder = root / group;; folder = folder.parent_path()) {
        // Where there is no limit, the file says "max".
        if (std::uint64_t limit = 0; std::ifstream(folder / file) >> limit)
            least = std::min(least, limit);
        if (folder == root || !folder.has_relative_path())
            return least;
    }
}

} // namespace

std::uint64_t memoryOfMachine() {
    std::uint64_t least =
        static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    std::ifstream groups("/proc/self/cgroup");
    for (std::string line; std::getline(groups, line);) {
        // NUMBER:CONTROLLERS:/PATH; the one hierarchy of version 2 names no controllers.
        const auto parts = split(line, ':');
        if (parts.size() != 3 || parts[2].empty())
            continue;
        if (parts[1].empty())
            least = std::min(least, leastLimit("/sys/fs/cgroup", parts[2].substr(1), "memory.max"));
        else if (std::ranges::count(split(parts[1], ','), "memory") > 0)
            least = std::min(least, leastLimit("/sys/fs/cgroup/memory", parts[2].substr(1), "memory.limit_in_bytes"));
    }
    return least;
}

void FrameMemory::take(std::uint64_t bytes) {
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [&] { return mHeld == 0 || mHeld + bytes <= mMost; });
    mHeld += bytes;
}

void FrameMemory::giveBack(std::uint64_t bytes) {
    const std::lock_guard lock(mMutex);
    mHeld -= bytes;
    mChanged.notify_all();
}

void FrameWorlds::fit(int width, int height) {
    if (input && input->width() == width && input->height() == height)
        return;
    release();
    constexpr std::uint64_t kBytesPerPixel = 2 * sizeof(PF_Pixel8);
    const std::uint64_t bytes = kBytesPerPixel * static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    mMemory.take(bytes);
    mTaken = bytes;
    input.emplace(width, height);
    output.emplace(width, height);
}

void FrameWorlds::release() {
    input.reset();
    output.reset();
    if (mTaken > 0)
        mMemory.giveBack(mTaken);
    mTaken = 0;
}

} // namespace Ombrique::Hosts
