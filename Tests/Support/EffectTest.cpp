#include "Tests/Support/EffectTest.h"

#include "Tests/Support/FailingAllocation.h"
#include "Tests/Support/OpenGLObjects.h"
#include "Tests/Support/Sweep.h"

#include <regex>
#include <utility>

namespace Ombrique::Tests {

using namespace Hosts;

namespace {

/// More names than a test uses.
constexpr unsigned kMostNames = 1000;

/// What a command returns of which this call failed.
PF_Err dueResult(const std::string& call, FaultKind kind) {
    const auto is = [&call](const char* names) { return std::regex_search(call, std::regex(names)); };
    if (is("^(ReleaseSuite|host_unlock_handle|host_dispose_handle|strcpy)"))
        return PF_Err_NONE;
    // No world is nothing to do, no slider counts as 0, and suites that are only held aren't missed. A layer that
    // wasn't checked out has no pixels, says the host.
    if (kind == FaultKind::GiveNothing)
        return is("^(get_pixel_data8|host_|AcquireSuite PF Handle Suite|checkout_layer 0)") ? PF_Err_BAD_CALLBACK_PARAM
                                                                                            : PF_Err_NONE;
    if (kind == FaultKind::Misreport && is("^get_pixel_data8"))
        return PF_Err_NONE; // what is given counts, not the code
    return is("^(checkout_|checkin_param|add_param)") ? kInjectedError : PF_Err_BAD_CALLBACK_PARAM;
}

} // namespace

EffectTest::EffectTest() {
    const CommandResult result = effect.setUp();
    EXPECT_TRUE(result.clean()) << result.describe();
    EXPECT_TRUE(host.isUntouched());
    letGoOfContext();
    EXPECT_EQ(plainFrame(), "");
    mObjects = countOpenGLObjects(kMostNames);
    EXPECT_GT(mObjects["Renderbuffer"], 0);
}

void EffectTest::check(const std::function<void()>& action) {
    host.makeCurrent();
    action();
    EXPECT_TRUE(host.isUntouched());
    EXPECT_TRUE(effect.isSetUp() || effect.setUp().clean());
    letGoOfContext(); // so that the effect's own stays current after a frame, and its objects can be counted
    EXPECT_EQ(plainFrame(), "");
    EXPECT_EQ(countOpenGLObjects(kMostNames), mObjects);
}

void EffectTest::sweep(const std::string& name, int every, const std::function<CommandResult(FaultPlan&)>& action) {
    FaultPlan log;
    check([&] { EXPECT_TRUE(action(log).clean()); });
    for (const auto& [kind, how] : {std::pair{FaultKind::Refuse, "refused"},
                                    {FaultKind::GiveNothing, "nothing given"},
                                    {FaultKind::Misreport, "misreported"}})
        Tests::sweep(name + ", host calls, " + how, every, [&, kind = kind](int n) {
            if (n > static_cast<int>(log.calls().size()))
                return false;
            const std::string& call = log.calls()[static_cast<std::size_t>(n) - 1];
            SCOPED_TRACE(call);
            FaultPlan plan{{.nth = n, .kind = kind}};
            // A slider that the host says it has taken, and doesn't know, is its own fault.
            if (kind != FaultKind::GiveNothing || call != "add_param")
                check([&] {
                    const CommandResult result = action(plan);
                    EXPECT_EQ(result.error, dueResult(call, kind));
                    EXPECT_TRUE(result.findings.empty()) << result.describe();
                });
            return true;
        });
    Tests::sweep(name + ", allocations", every, [&](int n) {
        bool fired = false;
        check([&] {
            FaultPlan none;
            const FailingAllocation failing(n);
            const CommandResult result = action(none);
            fired = failing.fired();
            EXPECT_EQ(result.error, fired ? PF_Err_OUT_OF_MEMORY : PF_Err_NONE);
            EXPECT_TRUE(result.findings.empty()) << result.describe();
        });
        return fired;
    });
}

std::string EffectTest::plainFrame(const Correction& correction, unsigned seed, Size size) const {
    World input = makePicture(size.width, size.height, seed);
    World output(size.width, size.height);
    const FrameResult result = effect.render({.input = &input, .output = &output, .values = correction.sliders()});
    return result.clean() ? compareWithOracle(input, output, correction) : result.describe();
}

} // namespace Ombrique::Tests
