#include "Benchmarks/FirstFrame.h"

#include "Benchmarks/Cost.h"
#include "Hosts/Engine/Effect.h"
#include "Tests/Support/PixelOracle.h"

#include <array>
#include <fcntl.h>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>

namespace Ombrique::Benchmarks {

namespace {

constexpr std::array kSteps = {"load", "set_up", "first", "second"};
using Costs = std::array<Cost, kSteps.size()>;

Costs run(int width, int height) {
    Hosts::World input = Tests::makePicture(width, height, 1);
    Hosts::World output(width, height);
    std::optional<Hosts::PluginBundle> bundle;
    std::optional<Hosts::Effect> effect;
    const auto load = [&] { bundle.emplace(OMBRIQUE_TEST_BUNDLE); };
    const auto setUp = [&] { effect.emplace(*bundle).setUp(); };
    const auto render = [&] { effect->render({.input = &input, .output = &output, .verifyInput = false}); };
    return {measure(load), measure(setUp), measure(render), measure(render)};
}

/// Runs it in a child. Nothing where that failed.
std::optional<Costs> runApart(int width, int height) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        return {};
    Costs costs;
    const pid_t child = fork();
    if (child == 0) {
        // The contexts' identities are no result.
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        costs = run(width, height);
        _exit(write(ends[1], &costs, sizeof costs) == sizeof costs ? 0 : 1);
    }
    close(ends[1]);
    const bool good = child > 0 && read(ends[0], &costs, sizeof costs) == sizeof costs;
    close(ends[0]);
    if (child > 0)
        waitpid(child, nullptr, 0);
    return good ? std::optional(costs) : std::nullopt;
}

} // namespace

void firstFrame(benchmark::State& state) {
    const auto width = static_cast<int>(state.range(0));
    const auto height = static_cast<int>(state.range(1));
    runApart(width, height); // fills the driver's cache
    std::array<std::vector<Cost>, kSteps.size()> all;
    for ([[maybe_unused]] auto iteration : state) {
        const std::optional<Costs> costs = runApart(width, height);
        if (!costs)
            return state.SkipWithError("the process for the first frame failed");
        for (std::size_t i = 0; i < kSteps.size(); ++i)
            all[i].push_back((*costs)[i]);
        state.SetIterationTime(((*costs)[0].wall + (*costs)[1].wall + (*costs)[2].wall) / 1e3);
    }
    for (std::size_t i = 0; i < kSteps.size(); ++i) {
        state.counters[kSteps[i]] = medianOf(all[i], &Cost::wall);
        state.counters[std::string(kSteps[i]) + "_cpu"] = medianOf(all[i], &Cost::cpu);
    }
}

} // namespace Ombrique::Benchmarks
