#include "Hosts/CommandLine/Arguments.h"

#include "Hosts/Pictures/Failure.h"

#include <gtest/gtest.h>

namespace Ombrique::Tests {

namespace {

using namespace Hosts;

using Words = std::vector<const char*>;

Arguments parse(Words words) {
    const std::vector<Slider> sliders = {{1, "Contrast Value", 0.0, 10.0, 1.0},
                                         {2, "Brightness Value", -100.0, 100.0, 0.0}};
    words.insert(words.begin(), "ombrique-render");
    return parseArguments(static_cast<int>(words.size()), words.data(), {}, sliders);
}

struct BadLine {
    const char* name;
    Words words;
    /// What the only line has to tell.
    const char* complaint;
};

TEST(ArgumentsTest, SayWhatIsWrongInOneLine) {
    const BadLine rows[] = {
        {"contrast above its range", {"a", "b", "--contrast", "10.01"}, "--contrast 10.01: out of range"},
        {"contrast below its range", {"a", "b", "--contrast", "-0.01"}, "0 to 10"},
        {"brightness out of range", {"a", "b", "--brightness", "-101"}, "-100 to 100"},
        {"infinite brightness", {"a", "b", "--brightness", "inf"}, "--brightness inf"},
        {"brightness beyond numbers", {"a", "b", "--brightness", "1e999"}, "out of range"},
        {"not a number", {"a", "b", "--contrast", "nan"}, "--contrast nan: not a number"},
        {"number with a tail", {"a", "b", "--contrast", "1,5"}, "--contrast 1,5: not a number"},
        {"bad key", {"a", "b", "--contrast", "8:1,9"}, "\"9\" is no key"},
        {"list without a sheet", {"a", "b", "--contrast", "1,2"}, "--contrast 1,2"},
        {"keys for a sheet", {"a", "--sheet", "s", "--contrast", "1:2"}, "--contrast 1:2"},
        {"bad range", {"a", "b", "--frames", "9-8"}, "--frames 9-8"},
        {"bad part", {"a", "b", "--part", "3/2"}, "--part 3/2"},
        {"empty number", {"a", "b", "--contrast="}, "--contrast"},
        {"no job", {"a", "b", "--jobs", "0"}, "--jobs"},
        {"quiet and verbose", {"a", "b", "-q", "-v"}, "--quiet"},
        {"sheet and output", {"a", "b", "--sheet", "s"}, "--sheet"},
        {"sheet and comparison", {"a", "--sheet", "s", "--compare"}, "--sheet"},
        {"format without a folder", {"a", "b", "--format", "png"}, "--format: goes with --into"},
        {"no arguments", {}, "INPUT"},
        {"no output", {"a"}, "OUTPUT"},
        {"an empty name", {"", "b"}, "FILE: a file's name is empty"},
        {"one file too many", {"a", "b", "more.png"}, "more.png"},
        {"unknown option", {"a", "b", "--contrats", "2"}, "--contrats"},
        {"option without value", {"a", "b", "--contrast"}, "--contrast"},
    };
    for (const BadLine& row : rows) {
        SCOPED_TRACE(row.name);
        std::string text;
        try {
            parse(row.words);
        } catch (const UsageError& error) {
            text = error.what();
        }
        EXPECT_NE(text.find(row.complaint), std::string::npos) << text;
        EXPECT_EQ(text.find('\n'), std::string::npos) << text;
    }
}

TEST(ArgumentsTest, ReachWhatTheyAreFor) {
    const Arguments shot = parse({"in.#.png", "--jobs", "3", "out.#.png", "--frames=1-3", "--part", "2/3", "--compare",
                                  "--compression", "zip:3", "-v", "--brightness", "-20", "--contrast=1:1,3:2"});
    EXPECT_EQ(shot.shot.input, "in.#.png");
    EXPECT_EQ(shot.shot.output, "out.#.png");
    EXPECT_EQ(shot.shot.frames, (std::vector{1, 2, 3}));
    EXPECT_EQ(shot.shot.part.place, 2);
    EXPECT_EQ(shot.shot.part.of, 3);
    EXPECT_EQ(shot.jobs, 3);
    EXPECT_TRUE(shot.compare);
    EXPECT_FALSE(shot.shot.skipExisting);
    EXPECT_EQ(shot.compression, "zip:3");
    EXPECT_EQ(shot.verbosity, Verbosity::Verbose);
    EXPECT_EQ(shot.values.at(1).at({.time = 2}), 1.5);
    EXPECT_EQ(shot.values.at(2).at({}), -20.0);

    const Arguments sheet = parse({"a.png", "--sheet", "s.png", "--brightness", "0,-5", "--quiet"});
    EXPECT_EQ(sheet.sheet, "s.png");
    EXPECT_EQ(sheet.lists, (std::map<int, std::vector<double>>{{2, {0.0, -5.0}}}));
    EXPECT_TRUE(sheet.values.empty());
    EXPECT_EQ(sheet.verbosity, Verbosity::Quiet);

    EXPECT_TRUE(parse({"a", "b", "--list-missing"}).shot.skipExisting);
    EXPECT_TRUE(parse({"a", "b", "--skip-existing"}).shot.skipExisting);
}

} // namespace

} // namespace Ombrique::Tests
