#include "Hosts/Bundle/PluginBundle.h"

#include "Hosts/Engine/Effect.h"
#include "Tests/Hosts/Engine/TestBundle.h"

#include <gtest/gtest.h>

#include <fstream>

namespace fs = std::filesystem;
using namespace Ombrique::Hosts;

namespace {

const std::string kInfo = "Contents/Info.plist";
const std::string kRegistration = "Contents/Resources/Registration.plist";
const std::string kBinary = "Contents/Linux/Test";

struct SpoiltBundle {
    const char* name;
    void (*spoil)(const TestBundle& bundle);
    /// The file that the error begins with, and what it says of it.
    std::string file;
    const char* text;
};

void PrintTo(const SpoiltBundle& bundle, std::ostream* stream) { *stream << bundle.name; }

const SpoiltBundle kSpoiltBundles[] = {
    {"NoFolder", [](const TestBundle& b) { fs::remove_all(b.folder()); }, "", "no such plug-in bundle"},
    {"NoInfo", [](const TestBundle& b) { fs::remove(b.folder() / kInfo); }, kInfo, "no such file"},
    {"InfoIsAFolder",
     [](const TestBundle& b) {
         fs::remove(b.folder() / kInfo);
         fs::create_directory(b.folder() / kInfo);
     },
     kInfo, "can't be read"},
    {"InfoEmpty", [](const TestBundle& b) { fs::resize_file(b.folder() / kInfo, 0); }, kInfo, "no property list"},
    {"RegistrationCutOff", [](const TestBundle& b) { fs::resize_file(b.folder() / kRegistration, 200); }, kRegistration,
     "no property list"},
    {"RegistrationHuge", [](const TestBundle& b) { fs::resize_file(b.folder() / kRegistration, 2 << 20); },
     kRegistration, "larger than a mebibyte"},
    {"RootIsNoDictionary",
     [](const TestBundle& b) { std::ofstream(b.folder() / kRegistration) << "<plist><array/></plist>"; }, kRegistration,
     "a dictionary at its root"},
    {"KeyMissing", [](const TestBundle& b) { b.edit(kRegistration, "MatchName", "Match"); }, kRegistration,
     "the key MatchName is missing"},
    {"KeyEmpty", [](const TestBundle& b) { b.edit(kInfo, "ombrique.test", ""); }, kInfo,
     "the key CFBundleIdentifier is empty"},
    {"StringForInteger",
     [](const TestBundle& b) { b.edit(kRegistration, "<integer>5</integer>", "<string>5</string>"); }, kRegistration,
     "the key Version isn't an integer"},
    {"IntegerTooLarge", [](const TestBundle& b) { b.edit(kRegistration, "1024", "4294967296"); }, kRegistration,
     "the key OutFlags2 isn't an integer of 32 bits"},
    {"OtherKind", [](const TestBundle& b) { b.edit(kRegistration, ">Effect<", ">Importer<"); }, kRegistration,
     "Kind is \"Importer\""},
    {"ExecutableElsewhere",
     [](const TestBundle& b) {
         b.edit(kInfo, "<key>CFBundleExecutable</key> <string>", "<key>CFBundleExecutable</key> <string>../");
     },
     kInfo, "isn't a file name: ../Test"},
    {"NoBinary", [](const TestBundle& b) { fs::remove(b.folder() / kBinary); }, kBinary, "No such file"},
    {"OtherVersion", [](const TestBundle& b) { b.edit(kInfo, "1.0</", "1.1</"); }, kInfo,
     "CFBundleShortVersionString is 1.1, and this program works with 1.0"},
    {"BinaryIsText", [](const TestBundle& b) { std::ofstream(b.folder() / kBinary) << std::string(500, 'x'); }, kBinary,
     "invalid ELF header"},
    {"BinaryCutOffEarly", [](const TestBundle& b) { fs::resize_file(b.folder() / kBinary, 4096); }, kBinary,
     "damaged: part of the file is missing"},
    {"BinaryCutOffLate",
     [](const TestBundle& b) { fs::resize_file(b.folder() / kBinary, fs::file_size(b.folder() / kBinary) - 1); },
     kBinary, "damaged: part of the file is missing"},
    {"OtherProcessor",
     [](const TestBundle& b) {
         std::fstream(b.folder() / kBinary, std::ios::in | std::ios::out).seekp(18).put('\x08');
     },
     kBinary, "can't be loaded"},
    {"LibraryMissing", [](const TestBundle& b) { b.edit(kBinary, "libstdc++", "libstdc__"); }, kBinary,
     "can't be loaded: libstdc__.so.6: cannot open"},
    {"NoEntryPoint", [](const TestBundle& b) { b.edit(kRegistration, "TestEntry", "OtherEntry"); }, kBinary,
     "has no entry point OtherEntry"},
};

class SpoiltBundleTest : public testing::TestWithParam<SpoiltBundle> {};

TEST_P(SpoiltBundleTest, SaysWhichFileAndWhy) {
    const TestBundle bundle;
    GetParam().spoil(bundle);
    const std::string file = GetParam().file.empty() ? bundle.folder() : bundle.folder() / GetParam().file;
    try {
        const PluginBundle loaded(bundle.folder(), {"ombrique.test", "1.0"});
        FAIL() << "it was loaded";
    } catch (const BundleError& error) {
        const std::string text = error.what();
        EXPECT_TRUE(text.starts_with(file + ": ")) << text;
        EXPECT_NE(text.find(GetParam().text), std::string::npos) << text;
        EXPECT_EQ(text.find('\n'), std::string::npos) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(All, SpoiltBundleTest, testing::ValuesIn(kSpoiltBundles),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PluginBundle, IsRead) {
    const TestBundle bundle;
    const PluginBundle loaded(bundle.folder(), {"ombrique.other", "2.0"});
    EXPECT_EQ(loaded.info().identifier, "ombrique.test");
    EXPECT_EQ(loaded.registration().matchName, "ombrique.test.effect");
    EXPECT_EQ(loaded.registration().version, 5u);
    EXPECT_EQ(loaded.registration().outFlags2, 1024);
}

TEST(PluginBundle, AnotherDeclarationThanRegisteredIsRefused) {
    const TestBundle bundle;
    bundle.edit(kRegistration, "1024", "3072");
    const PluginBundle loaded(bundle.folder());
    Effect effect(loaded);
    try {
        effect.setUp();
        FAIL() << "it was set up";
    } catch (const BundleError& error) {
        EXPECT_EQ(std::string(error.what()),
                  (bundle.folder() / kRegistration).string() + ": OutFlags2 is 3072, but the plug-in declares 1024");
    }
    EXPECT_FALSE(effect.isSetUp());
}

} // namespace
