#pragma once

#include "Hosts/Engine/World.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>

namespace Ombrique::Hosts {

/// The memory of this machine in bytes, or what the process's control group may take of it where that is less.
std::uint64_t memoryOfMachine();

/// A bound on the memory that the frames of a shot hold at a time. Any thread.
class FrameMemory {
public:
    /// `bytes` for all frames together.
    explicit FrameMemory(std::uint64_t bytes) : mMost(bytes) {}

    /// Waits until there is room for a frame of so many bytes, or no other frame is held: one frame always fits.
    void take(std::uint64_t bytes);
    void giveBack(std::uint64_t bytes);

private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    const std::uint64_t mMost;
    std::uint64_t mHeld = 0;
};

/// The two worlds of a frame, kept from one frame to the next: pages that are new to the process cost more than what is
/// done with them.
class FrameWorlds {
public:
    /// `memory` must outlive this.
    explicit FrameWorlds(FrameMemory& memory) : mMemory(memory) {}
    ~FrameWorlds() { release(); }
    FrameWorlds(const FrameWorlds&) = delete;
    FrameWorlds& operator=(const FrameWorlds&) = delete;

    /// Makes both anew where they have another size. Waits for room.
    void fit(int width, int height);

    /// Both are there after fit().
    std::optional<World> input;
    std::optional<World> output;

private:
    void release();

    FrameMemory& mMemory;
    std::uint64_t mTaken = 0;
};

} // namespace Ombrique::Hosts
