// Numbers and lines as text.
#include "text/text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

namespace qarv::test {
namespace {

TEST(NumberText, ReadsBackAsTheSameBits) {
  for (const double v : {0.0, -0.0, 0.1, 1e300, 5e-324, 1.0 / 3, HUGE_VAL, -HUGE_VAL}) {
    double back = 7;
    ASSERT_TRUE(text::ParseNumber(text::NumberText(v), &back));
    EXPECT_EQ(back, v);
    EXPECT_EQ(std::signbit(back), std::signbit(v));
  }
  double kept = 7;
  for (const char* const text :
       {"", "x", "1x", "1 ", "--1", "nan(0x3ff0000000000000)", "nan(0xzz)", "0x10"}) {
    EXPECT_FALSE(text::ParseNumber(text, &kept)) << text;
  }
  EXPECT_EQ(kept, 7);
}

TEST(OneLine, EscapesControlBytes) { EXPECT_EQ(text::OneLine("a\nb\x1b"), "a\\x0ab\\x1b"); }

TEST(ShownText, EscapesWhatIsNoTextAndKeepsTheRest) {
  using text::ShownText;
  EXPECT_EQ(ShownText("half-sine 50 g"), "half-sine 50 g");
  EXPECT_EQ(ShownText("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"),
            "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(ShownText("a\x01\n\x7F"), "a\\x01\\x0a\\x7f");
  // A lone continuation, a cut character at the end and before another, overlong ones, a surrogate,
  // beyond the code space, no characters of XML.
  EXPECT_EQ(ShownText("\x80|\xE2\x82"), "\\x80|\\xe2\\x82");
  EXPECT_EQ(ShownText("\xC3z"), "\\xc3z");
  EXPECT_EQ(ShownText("\xC0\xAF\xE0\x80\xAF\xF0\x80\x80\xAF"),
            "\\xc0\\xaf\\xe0\\x80\\xaf\\xf0\\x80\\x80\\xaf");
  EXPECT_EQ(ShownText("\xED\xA0\x80"), "\\xed\\xa0\\x80");
  EXPECT_EQ(ShownText("\xF4\x90\x80\x80\xFF"), "\\xf4\\x90\\x80\\x80\\xff");
  EXPECT_EQ(ShownText("\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD"),
            "\\xef\\xbf\\xbe\\xef\\xbf\\xbf\xEF\xBF\xBD");
}

}  // namespace
}  // namespace qarv::test
