#include "Hosts/Bundle/PluginBundle.h"

#include "Hosts/Bundle/BundleLocation.h"
#include "Hosts/Engine/Effect.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>

namespace fs = std::filesystem;
using namespace Ombrique::Hosts;

namespace {

const std::string kInfo = "Contents/Info.plist";
const std::string kRegistration = "Contents/Resources/Registration.plist";
const std::string kBinary = "Contents/Linux/Test";

/// A bundle of the tests' own plug-in in a folder that is gone when the object ends.
struct TestBundle {
    TestBundle() {
        std::string pattern = (fs::temp_directory_path() / "ombrique-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        fs::copy(TEST_BUNDLE, folder, fs::copy_options::recursive);
    }
    ~TestBundle() { fs::remove_all(folder); }
    TestBundle(const TestBundle&) = delete;
    TestBundle& operator=(const TestBundle&) = delete;

    fs::path folder;
};

// What spoils a bundle: a file of it that goes, is replaced, cut to a length, or has a piece of it replaced.
using Spoil = std::function<void(const fs::path& file)>;

Spoil gone() {
    return [](const fs::path& file) { fs::remove_all(file); };
}
Spoil says(const std::string& text) {
    return [=](const fs::path& file) { std::ofstream(file) << text; };
}
Spoil isCutTo(std::uintmax_t size) {
    return [=](const fs::path& file) { fs::resize_file(file, size); };
}
Spoil lacksItsLastByte() {
    return [](const fs::path& file) { fs::resize_file(file, fs::file_size(file) - 1); };
}
Spoil has(const std::string& to, const std::string& from) {
    return [=](const fs::path& file) {
        std::stringstream content;
        content << std::ifstream(file).rdbuf();
        std::string text = content.str();
        text.replace(text.find(from), from.size(), to); // throws where it isn't there
        std::ofstream(file) << text;
    };
}
Spoil isAFolder() {
    return [](const fs::path& file) {
        fs::remove(file);
        fs::create_directory(file);
    };
}
Spoil isForAnotherProcessor() {
    return [](const fs::path& file) { std::fstream(file, std::ios::in | std::ios::out).seekp(18).put('\x08'); };
}

TEST(PluginBundle, SaysWhichFileIsSpoiltAndHow) {
    const struct {
        std::string file;
        Spoil spoil;
        const char* text;
    } rows[] = {
        {"", gone(), "no such plug-in bundle"},
        {kInfo, gone(), "no such file"},
        {kInfo, isAFolder(), "can't be read"},
        {kInfo, isCutTo(0), "no property list"},
        {kRegistration, isCutTo(200), "no property list"},
        {kRegistration, isCutTo(2 << 20), "larger than a mebibyte"},
        {kRegistration, says("<plist><array/></plist>"), "a dictionary at its root"},
        {kRegistration, has("Match", "MatchName"), "the key MatchName is missing"},
        {kInfo, has("", "ombrique.test"), "the key CFBundleIdentifier is empty"},
        {kRegistration, has("<string>5</string>", "<integer>5</integer>"), "the key Version isn't an integer"},
        {kRegistration, has("4294967296", "1024"), "the key OutFlags2 isn't an integer of 32 bits"},
        {kRegistration, has(">Importer<", ">Effect<"), "Kind is \"Importer\""},
        {kInfo, has("Executable</key> <string>../", "Executable</key> <string>"), "isn't a file name: ../Test"},
        {kInfo, has("1.1</", "1.0</"), "CFBundleShortVersionString is 1.1, and this program works with 1.0"},
        {kBinary, gone(), "No such file"},
        {kBinary, says(std::string(500, 'x')), "invalid ELF header"},
        {kBinary, isCutTo(4096), "damaged: part of the file is missing"},
        {kBinary, lacksItsLastByte(), "damaged: part of the file is missing"},
        {kBinary, isForAnotherProcessor(), "can't be loaded"},
        {kBinary, has("libx.so", "libm.so"), "can't be loaded: libx.so.6: cannot open"},
        {kBinary, has("TestEntrx", "TestEntry"), "has no entry point TestEntry"},
    };
    for (const auto& row : rows) {
        const TestBundle bundle;
        const fs::path file = row.file.empty() ? bundle.folder : bundle.folder / row.file;
        row.spoil(file);
        try {
            const PluginBundle loaded(bundle.folder, {"ombrique.test", "1.0"});
            ADD_FAILURE() << "it was loaded, though: " << row.text;
        } catch (const BundleError& error) {
            const std::string text = error.what();
            EXPECT_TRUE(text.starts_with(file.string() + ": ")) << text;
            EXPECT_NE(text.find(row.text), std::string::npos) << text;
            EXPECT_EQ(text.find('\n'), std::string::npos) << text;
        }
    }
}

TEST(PluginBundle, OfAnotherPluginMayHaveAnyVersion) {
    const PluginBundle loaded(TEST_BUNDLE, {"ombrique.other", "2.0"});
    EXPECT_EQ(loaded.registration().matchName, "ombrique.test.effect");
    EXPECT_EQ(loaded.registration().outFlags2, 1024);
}

TEST(PluginBundle, AnotherDeclarationThanRegisteredIsRefused) {
    const TestBundle bundle;
    has("3072", "1024")(bundle.folder / kRegistration);
    const PluginBundle loaded(bundle.folder);
    Effect effect(loaded);
    try {
        effect.setUp();
        ADD_FAILURE() << "it was set up";
    } catch (const BundleError& error) {
        EXPECT_EQ(error.what(),
                  (bundle.folder / kRegistration).string() + ": OutFlags2 is 3072, but the plug-in declares 1024");
    }
    EXPECT_FALSE(effect.isSetUp());
}

TEST(BundleLocation, IsWhatTheEnvironmentNamesOrBesideTheHost) {
    const TestBundle folder;
    fs::create_directories(folder.folder / "one/Other.plugin");
    fs::create_directories(folder.folder / "ours/Other.plugin");
    fs::create_directories(folder.folder / "ours/OmbriqueContrast.plugin");
    fs::create_directories(folder.folder / "many/A.plugin");
    fs::create_directories(folder.folder / "many/B.plugin");
    const auto located = [&](const std::string& named) {
        setenv("OMBRIQUE_PLUGIN_PATH", named.empty() ? "" : (folder.folder / named).c_str(), 1);
        return bundleLocation(folder.folder / "one/host", {"../none", "../ours", "../many"})
            .lexically_relative(folder.folder)
            .string();
    };
    EXPECT_EQ(located(""), "ours/OmbriqueContrast.plugin");
    EXPECT_EQ(located("one"), "one/Other.plugin");
    EXPECT_EQ(located("ours"), "ours/OmbriqueContrast.plugin");
    EXPECT_EQ(located("many/A.plugin"), "many/A.plugin");
    EXPECT_EQ(located("none"), "none");
    EXPECT_THROW(located("many"), BundleError);
    fs::create_directory(folder.folder / "one/OmbriqueContrast.plugin");
    EXPECT_EQ(located(""), "one/OmbriqueContrast.plugin");
    unsetenv("OMBRIQUE_PLUGIN_PATH");
}

} // namespace
