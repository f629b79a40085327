#include "Hosts/Engine/HostCall.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

using namespace Ombrique::Hosts;

namespace {

template <typename Suite> const Suite* acquire(HostCall& call, const char* name, int version) {
    const void* suite = nullptr;
    call.inData()->pica_basicP->AcquireSuite(name, version, &suite);
    return static_cast<const Suite*>(suite);
}

PF_Err mark(void* visits, int x, int y, PF_PixelFloat* in, PF_PixelFloat* out) {
    out->alpha = in->alpha + 1;
    ++*static_cast<int*>(visits);
    return x == 1 && y == 1 ? 42 : 0;
}

TEST(HostServices, IterateCoversWhatBothWorldsHave) {
    World source(3, 1, PixelDepth::Float);
    World destination(2, 4, PixelDepth::Float, {.bottomUp = true});
    source.fill(PF_PixelFloat{4, 0, 0, 0});
    HostCall call({.input = &source, .output = &destination});
    const auto* suite = acquire<PF_iterateFloatSuite1>(call, "PF iterateFloat Suite", 1);
    int visits = 0;
    const auto iterate = [&](World& from, const PF_LRect* area, World& to) {
        visits = 0;
        return suite->iterate(call.inData(), 0, 1, from.layer(), area, &visits, mark, to.layer());
    };
    EXPECT_EQ(iterate(source, nullptr, destination), 0);
    EXPECT_EQ(visits, 2);
    EXPECT_EQ(destination.pixel<PF_PixelFloat>(1, 0).alpha, 5);
    EXPECT_EQ(destination.pixel<PF_PixelFloat>(1, 1).alpha, 0);

    const PF_LRect area{1, -3, 9, 9};
    EXPECT_EQ(iterate(source, &area, destination), 0);
    EXPECT_EQ(visits, 1);
    EXPECT_EQ(iterate(destination, nullptr, destination), 42) << "the first error stops it";
    EXPECT_EQ(visits, 4);
    EXPECT_EQ(iterate(destination, nullptr, source), 0);
    EXPECT_EQ(visits, 2);
    EXPECT_TRUE(destination.damage().empty());
}

TEST(HostServices, PixelDataIsNullForAnotherDepth) {
    World world(2, 2, PixelDepth::Bits16);
    HostCall call({.input = &world});
    PF_Pixel8* bytes = nullptr;
    PF_Pixel16* words = nullptr;
    PF_InData* const in_data = call.inData();
    EXPECT_EQ(PF_GET_PIXEL_DATA8(world.layer(), nullptr, &bytes), 0);
    EXPECT_EQ(PF_GET_PIXEL_DATA16(world.layer(), nullptr, &words), 0);
    EXPECT_EQ(bytes, nullptr);
    EXPECT_EQ(static_cast<void*>(words), static_cast<void*>(world.row(0)));
}

TEST(HostServices, AScriptThatFailsGivesAnErrorsTextInAHandle) {
    const struct {
        ScriptEngine engine;
        const char* error;
    } scripts[] = {{[](const std::string&) -> ScriptResult { throw std::runtime_error("no"); }, "no"},
                   {{}, "this host has no script engine"}};
    for (const auto& script : scripts) {
        HostCall call({}, {.parameters = {}, .scriptEngine = script.engine});
        const auto* memory = acquire<AEGP_MemorySuite1>(call, "AEGP Memory Suite", 1);
        const auto* utility = acquire<AEGP_UtilitySuite5>(call, "AEGP Utility Suite", 11);
        AEGP_MemHandle error = nullptr;
        ASSERT_EQ(utility->AEGP_ExecuteScript(0, "1+1", 0, nullptr, &error), 0);
        void* text = nullptr;
        EXPECT_EQ(memory->AEGP_LockMemHandle(error, &text), 0);
        EXPECT_STREQ(static_cast<char*>(text), script.error);
        EXPECT_EQ(memory->AEGP_UnlockMemHandle(error), 0);
        EXPECT_EQ(memory->AEGP_FreeMemHandle(error), 0);
        EXPECT_EQ(call.findings().size(), 2u) << "the two suites";
        EXPECT_NE(memory->AEGP_FreeMemHandle(error), 0);
        EXPECT_EQ(call.findings().front(), "memory handle disposed of that isn't held");
    }
}

TEST(HostServices, OnlyTheOfferedSuitesAreThere) {
    HostCall call;
    EXPECT_EQ(acquire<void>(call, "AEGP Layer Suite", 5), nullptr);
    EXPECT_EQ(acquire<void>(call, "No Suite", 1), nullptr);
    EXPECT_NE(acquire<void>(call, "DRAWBOT Surface Suite", 2), nullptr);
}

TEST(HostServices, AreThoseOfTheThreadsInnermostCall) {
    HostCall outer;
    SPBasicSuite* const desk = outer.inData()->pica_basicP;
    const void* suite = nullptr;
    {
        HostCall inner;
        EXPECT_EQ(desk->AcquireSuite("PF Handle Suite", 2, &suite), 0);
        EXPECT_EQ(inner.findings().size(), 1u);
    }
    EXPECT_TRUE(outer.findings().empty());
    std::thread([&] { EXPECT_NE(desk->AcquireSuite("PF Handle Suite", 2, &suite), 0); }).join();
    EXPECT_EQ(suite, nullptr);
}

} // namespace
