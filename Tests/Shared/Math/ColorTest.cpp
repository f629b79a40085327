#include "Plugins/Shared/Math/Color.h"

#include "Tests/Shared/Math/MathTesting.h"

namespace Ombrique::GaussianBlur {

namespace {

TEST(Color, ReadsHexadecimalText) {
    const double kHalf = 0.501960813999176; // 128 / 255 in single precision
    const std::pair<const char*, std::vector<double>> rows[] = {
        {"#F00", {1, 0, 0, 1}},
        {"#8F00", {1, 0, 0, 0.5333333611488342}},
        {"#ff8000", {1, kHalf, 0, 1}},
        {"#80FF0000", {1, 0, 0, kHalf}},
        {"#12G", {0, 1.0F / 15.0F, 2.0F / 15.0F, 1}},
        {"#0xF", {0, 0, 1, 1}},
        {"FF0000", {1, 1, 1, 1}},
        {" #FF0000", {1, 1, 1, 1}},
        {"#12345", {1, 1, 1, 1}},
        {"#123456789", {1, 1, 1, 1}},
        {"", {1, 1, 1, 1}},
    };
    for (const auto& [text, expected] : rows) {
        SCOPED_TRACE(text);
        expectValues(Color(text), expected);
    }
    for (const char* text : {"#", "#XYZ", "#nonsense"})
        EXPECT_THROW(Color{text}, std::invalid_argument) << text;
    EXPECT_THROW(Color("#12345678123456781"), std::out_of_range);
    expectValues(Color(0x80FF0001U), {1, 0, 1.0F / 255.0F, kHalf});
    expectValues(Color(0U), {0, 0, 0, 0});
}

TEST(Color, WritesHexadecimalText) {
    for (auto [color, expected] :
         std::initializer_list<std::pair<Color, const char*>>{{Color(), "#FFFFFF"},
                                                              {Color(0, 0, 0, 1), "#000"},
                                                              {Color(1, 0, 0, 0.5), "#7FFF00"},
                                                              {Color(0, 0.5, 1, 1), "#07FFF"},
                                                              {Color(0.999, 16.0 / 255.0, 15.9 / 255.0, 1), "#FE10F"},
                                                              {Color(4, -1, kNaN, 1e300), "#FFFFFFFF3FC00"}})
        EXPECT_EQ(color.toHexString(), expected);
    EXPECT_TRUE(Color(Color(0x7F336699U).toHexString()) == Color(0x7F336699U));
}

TEST(Color, NilColoursAreEqualToOneAnother) {
    Color nil;
    nil.setNil();
    EXPECT_TRUE(nil.isNil() && Color(0.5, -0.0001, 0, 1).isNil());
    EXPECT_FALSE(Color().isNil() || Color(kNaN, 0, 0, 0).isNil());
    EXPECT_TRUE(nil == Color(-2, 0, 0, 0));
    EXPECT_TRUE(nil != Color());
    EXPECT_TRUE(Color(-1e-13, 0, 0, 0) == Color(0, 0, 0, 0));
    EXPECT_TRUE(Color(0, 0, 0, 1e-12) == Color(0, 0, 0, 0));
    EXPECT_TRUE(Color(0, 0, 0, 1.1e-12) != Color(0, 0, 0, 0));
    EXPECT_TRUE(Color(kNaN, 0, 0, 0) != Color(kNaN, 0, 0, 0));
}

TEST(Color, LerpRoundsTheComplementOnly) {
    const Color from(0, 1, 2, 0.5), to(1, 3, -2, 1);
    expectValues(Color::lerp(from, to, 2.0), values(to));
    expectValues(Color::lerp(from, to, -1.0), values(from));
    expectValues(Color::lerp(from, to, 0.25), {0.25, 1.5, 1, 0.625});
    EXPECT_EQ(Color::lerp(Color(), Color(), 0.1).red, 0.9999999761581421);
}

} // namespace

} // namespace Ombrique::GaussianBlur
