// Conversion matrix of the automation runtime: one row per case, with the
// boundaries at plus and minus one half and the overflow and mismatch lists.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "automation/AutomationError.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"
#include "TestSupport.hpp"

using namespace TessarkAO;

namespace {

using Testing::ErrorOf;

struct LocaleGuard {
  NumberLocale saved = GetNumberLocale();
  explicit LocaleGuard(NumberLocale l) { SetNumberLocale(l); }
  ~LocaleGuard() { SetNumberLocale(saved); }
};

struct LongRow {
  Variant in;
  std::int32_t out;
  int error;
};

}  // namespace

TEST(Convert, ToLongRoundsHalfToEvenAndChecksRange) {
  const LongRow rows[] = {
      {2.5, 2, 0},
      {3.5, 4, 0},
      {-2.5, -2, 0},
      {-3.5, -4, 0},
      {0.5, 0, 0},
      {1.5000001, 2, 0},
      {2147483647.4, 2147483647, 0},
      {2147483647.5, 0, 6},
      {-2147483648.5, -2147483648, 0},
      {-2147483648.6, 0, 6},
      {std::numeric_limits<double>::quiet_NaN(), 0, 6},
      {Variant("  12  "), 12, 0},
      {Variant("1e3"), 1000, 0},
      {Variant("2.5"), 2, 0},
      {Variant("&HFF"), 255, 0},
      {Variant("&HFFFF"), -1, 0},  // 16-bit hexadecimal literals are Integers
      {Variant("&H10000"), 65536, 0},
      {Variant("(7)"), -7, 0},
      {Variant("abc"), 0, 13},
      {Variant(""), 0, 13},
      {Variant("1e"), 0, 13},
      {Variant("1e400"), 0, 6},
      {Variant(true), -1, 0},
      {Variant(), 0, 0},
      {Variant::Null(), 0, 94},
      {Variant::Missing(), 0, 13},
      {Variant(Currency{25000}), 2, 0},  // 2.5 to even
      {Variant(Currency{35000}), 4, 0},
      {Variant(SafeArray::Vector(VarType::Double, 0, 1)), 0, 13},
      {Variant::Nothing(), 0, 91},
  };
  for (const LongRow& r : rows) {
    std::int32_t got = 0;
    const int err = ErrorOf([&] { got = ToLong(r.in); });
    EXPECT_EQ(err, r.error) << r.in.TypeName();
    if (r.error == 0) {
      EXPECT_EQ(got, r.out) << r.in.TypeName();
    }
  }
}

TEST(Convert, SmallIntegersHaveTheirOwnBounds) {
  EXPECT_EQ(ToInteger(32766.5), 32766);
  EXPECT_EQ(ErrorOf([] { ToInteger(32767.5); }), 6);
  EXPECT_EQ(ToInteger(-32768.5), -32768);
  EXPECT_EQ(ErrorOf([] { ToInteger(-32768.6); }), 6);
  EXPECT_EQ(ToByte(254.5), 254);
  EXPECT_EQ(ErrorOf([] { ToByte(255.5); }), 6);
  EXPECT_EQ(ToByte(-0.5), 0);
  EXPECT_EQ(ErrorOf([] { ToByte(-0.6); }), 6);
  EXPECT_EQ(ErrorOf([] { ToSingle(1e39); }), 6);
  EXPECT_EQ(ToDouble(Variant(0.1f)), static_cast<double>(0.1f));
}

TEST(Convert, TextToNumberFollowsTheLocale) {
  EXPECT_EQ(ToDouble(Variant(" -1.5E+2 ")), -150.0);
  EXPECT_EQ(ToDouble(Variant("1D2")), 100.0);
  EXPECT_EQ(ToDouble(Variant(".5")), 0.5);
  EXPECT_EQ(ToDouble(Variant("5.")), 5.0);
  EXPECT_EQ(ToDouble(Variant("1,234.5")), 1234.5);
  EXPECT_EQ(ErrorOf([] { ToDouble(Variant("1.2.3")); }), 13);
  EXPECT_EQ(ErrorOf([] { ToDouble(Variant("12 34")); }), 13);
  {
    LocaleGuard german(NumberLocaleForLcid(1031));
    EXPECT_EQ(ToDouble(Variant("1,5")), 1.5);
    EXPECT_EQ(ToDouble(Variant("1.5")), 15.0);  // the dot groups digits there
    EXPECT_EQ(ToString(Variant(2.25)), "2,25");
  }
  EXPECT_EQ(ToString(Variant(2.25)), "2.25");
}

// Beyond the Double range the spelling does not matter: a value below the
// smallest Double reads as 0, one above the largest is 6.
TEST(Convert, NumberTextAtTheEdgesOfTheDoubleRange) {
  const std::string zeros400(400, '0');
  struct Row {
    std::string text;
    double out;
    int error;
  };
  const Row rows[] = {
      {"1E-400", 0.0, 0},
      {"0." + zeros400 + "1", 0.0, 0},
      {"-0." + zeros400 + "1", 0.0, 0},
      {"0." + zeros400 + "1E+400", 0.1, 0},
      {"1E-320", 1e-320, 0},  // subnormals are kept
      {"1E400", 0, 6},
      {"1" + zeros400, 0, 6},
      {"1" + zeros400 + "E-10", 0, 6},
      {"1" + zeros400 + "E-400", 1.0, 0},
      {"-1" + zeros400 + "E-90", 0, 6},
      {"1E99999999999999999999", 0, 6},
      {"1E-99999999999999999999", 0.0, 0},
      {"0E99999999999999999999", 0.0, 0},
  };
  for (const Row& r : rows) {
    double got = -1.0;
    EXPECT_EQ(ErrorOf([&] { got = ToDouble(Variant(r.text)); }), r.error) << r.text.substr(0, 24);
    if (r.error == 0) {
      EXPECT_EQ(got, r.out) << r.text.substr(0, 24);
    }
  }
  // Decimal text takes the same rule, and far powers give 0 or 6 at once.
  EXPECT_EQ(ToString(Variant(ToDecimal(Variant("0E2000000000")))), "0");
  EXPECT_EQ(ToString(Variant(ToDecimal(Variant("1E-2000000000")))), "0");
  EXPECT_EQ(ErrorOf([] { ToDecimal(Variant("1E29")); }), 6);
  EXPECT_EQ(ErrorOf([] { ToDecimal(Variant("1" + std::string(400, '0') + "E-10")); }), 6);
}

TEST(Convert, DoubleToTextHasFifteenSignificantDigits) {
  const std::pair<double, const char*> rows[] = {
      {0.1 + 0.2, "0.3"},
      {1e-5, "1E-05"},
      {0.0001, "0.0001"},
      {1.23456789012346e17, "1.23456789012346E+17"},
      {25.4, "25.4"},
      {1e15, "1E+15"},
      {123456789012345.0, "123456789012345"},
      {-0.0, "0"},
      {1.0 / 3.0, "0.333333333333333"},
      {2.0 / 3.0, "0.666666666666667"},
      {-1e100, "-1E+100"},
      {100.0, "100"},
  };
  for (const auto& [d, text] : rows) EXPECT_EQ(ToString(Variant(d)), text) << d;
  EXPECT_EQ(ToString(Variant(0.1f)), "0.1");
  EXPECT_EQ(ToString(Variant(true)), "True");
  EXPECT_EQ(ToString(Variant(std::int16_t{-3})), "-3");
  EXPECT_EQ(ToString(Variant(Currency{15000})), "1.5");
  EXPECT_EQ(ToString(Variant()), "");
  EXPECT_EQ(ErrorOf([] { ToString(Variant::Null()); }), 94);
}

TEST(Convert, BooleansAndIsNumeric) {
  EXPECT_TRUE(ToBoolean(Variant("true")));
  EXPECT_FALSE(ToBoolean(Variant("FALSE")));
  EXPECT_FALSE(ToBoolean(Variant("0")));
  EXPECT_TRUE(ToBoolean(Variant("-2")));
  EXPECT_EQ(ErrorOf([] { ToBoolean(Variant("yes")); }), 13);
  EXPECT_EQ(ToDouble(Variant(true)), -1.0);

  EXPECT_TRUE(IsNumeric(Variant("12")));
  EXPECT_TRUE(IsNumeric(Variant(" 1e5 ")));
  EXPECT_TRUE(IsNumeric(Variant()));
  EXPECT_TRUE(IsNumeric(Variant(true)));
  EXPECT_FALSE(IsNumeric(Variant("")));
  EXPECT_FALSE(IsNumeric(Variant("abc")));
  EXPECT_FALSE(IsNumeric(Variant::Null()));
  EXPECT_FALSE(IsNumeric(Variant(Date{1.0})));
}

TEST(Convert, ValReadsTheNumericPrefixWhateverTheLocale) {
  LocaleGuard german(NumberLocaleForLcid(1031));
  const std::pair<const char*, double> rows[] = {
      {"  12abc", 12.0}, {"1 2 3", 123.0},   {"&HFF", 255.0}, {"&HFFFF", -1.0},
      {"1.5e2x", 150.0}, {"-.5", -0.5},      {"abc", 0.0},    {"1,5", 1.0},
      {"1e", 1.0},       {"\t-3.25\n", -3.25}, {"", 0.0},     {"1.2.3", 1.2},
  };
  for (const auto& [text, v] : rows) EXPECT_EQ(Val(text), v) << text;
}

TEST(Convert, DecimalsKeepTheirDigits) {
  EXPECT_EQ(ToString(Variant(ToDecimal(Variant("123.4500")))), "123.45");
  EXPECT_EQ(ToString(Variant(DecimalFromDouble(0.1))), "0.1");
  EXPECT_EQ(ToString(Variant(DecimalFromDouble(-2.5e-3))), "-0.0025");
  EXPECT_EQ(ToDouble(Variant(ToDecimal(Variant("79228162514264337593543950335")))),
            79228162514264337593543950335.0);
  EXPECT_EQ(ErrorOf([] { ToDecimal(Variant("79228162514264337593543950336")); }), 6);
  EXPECT_EQ(ToLong(Variant(ToDecimal(Variant("2.5")))), 2);
}

TEST(Convert, ChangeTypeWritesOnlyOnSuccess) {
  SafeArray a = SafeArray::Vector(VarType::Double, 1, 3);
  a.Put(2, Variant("2.5"));
  EXPECT_EQ(a.Get(2).Type(), VarType::Double);
  EXPECT_EQ(a.Get(2).AsDouble(), 2.5);
  EXPECT_EQ(ErrorOf([&] { a.Put(2, Variant("abc")); }), 13);
  EXPECT_EQ(a.Get(2).AsDouble(), 2.5);
  EXPECT_EQ(ChangeType(Variant(7), VarType::String).AsString(), "7");
  EXPECT_EQ(ErrorOf([] { ChangeType(Variant(1.0), VarType::Object); }), 424);
}

TEST(Checked, ArithmeticRaisesInsteadOfInfinities) {
  EXPECT_EQ(ErrorOf([] { Checked::Div(1.0, 0.0); }), 11);
  EXPECT_EQ(ErrorOf([] { Checked::Div(0.0, 0.0); }), 6);
  EXPECT_EQ(ErrorOf([] { Checked::Mul(1e308, 10.0); }), 6);
  EXPECT_EQ(ErrorOf([] { Checked::Sqrt(-1.0); }), 5);
  EXPECT_EQ(ErrorOf([] { Checked::Pow(-8.0, 1.0 / 3.0); }), 5);
  EXPECT_EQ(ErrorOf([] { Checked::Log(0.0); }), 5);
  EXPECT_EQ(Checked::Pow(-2.0, 2.0), 4.0);
  EXPECT_EQ(Checked::Div(1.0, 4.0), 0.25);
}

TEST(Text, CodeUnitOrderAndCaseMapping) {
  // U+1F600 is a surrogate pair (0xD83D ...) and so orders before U+FFFD.
  EXPECT_LT(CompareCodeUnits("\xF0\x9F\x98\x80", "\xEF\xBF\xBD"), 0);
  EXPECT_GT(CompareCodeUnits("\xEF\xBF\xBD", "\xF0\x9F\x98\x80"), 0);
  EXPECT_LT(CompareCodeUnits("ab", "abc"), 0);
  EXPECT_LT(CompareCodeUnits("B", "a"), 0);
  EXPECT_EQ(CompareCodeUnits("x", "x"), 0);
  EXPECT_EQ(LowerCase("AbC \xC3\x84\xC3\x96\xC3\x9C"), "abc \xC3\xA4\xC3\xB6\xC3\xBC");
  EXPECT_EQ(UpperCase("\xD0\xB0z"), "\xD0\x90Z");
  EXPECT_EQ(Utf16Length("a\xF0\x9F\x98\x80"), 3u);
  EXPECT_EQ(ToUtf8(ToUtf16("h\xC3\xA9llo \xF0\x9F\x98\x80")), "h\xC3\xA9llo \xF0\x9F\x98\x80");
  // Lone surrogates keep their generalized three-byte form both ways.
  const std::u16string lone = {0xD800, u'x', 0xDFFF};
  EXPECT_EQ(ToUtf8(lone), "\xED\xA0\x80x\xED\xBF\xBF");
  EXPECT_EQ(ToUtf16(ToUtf8(lone)), lone);
  EXPECT_EQ(Utf16Length(ToUtf8(lone)), 3u);
  EXPECT_EQ(TrimBlanks("  x  "), "x");
  EXPECT_EQ(TrimBlanks("\tx "), "\tx");
}
