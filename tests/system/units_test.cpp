// UnitUtils and the Units module: the conversion arithmetic, page units,
// the page's unit names; and the shared localizer's lifecycle, which
// UnitUtils takes part in and TKSystemUtils and AppUtils stay out of.
#include <cmath>
#include <fstream>
#include <random>

#include "SystemTestSupport.hpp"
#include "automation/Catalogue.hpp"
#include "frame/Globals.hpp"
#include "system/Units.hpp"
#include "frame/Conventions.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

// A page answering "UnitsScale"(2) with its length and (1) with its angle scale.
Ref<FakeObject> Page(double length, double angle) {
  auto page = MakeRef<FakeObject>();
  page->On("UnitsScale", [length, angle](CallKind, std::span<Variant> a) {
    return Variant(ToLong(a[0]) == 2 ? length : angle);
  });
  return page;
}

class UnitsTest : public SystemTest {
 protected:
  Ref<Object> units_ = CreateObject("TessarkAO.UnitUtils");
  double Convert(const Variant& page, double v, std::int32_t from, std::int32_t to) {
    return Method(units_, "ConvertUnits", {page, v, from, to}).result.AsDouble();
  }
};

TEST_F(UnitsTest, FixedUnitConversions) {
  // 1 x 0.0254 / 0.001 is exactly 25.4 in IEEE double arithmetic (the
  // division rounds to the double nearest 25.4), so that is the result, not
  // 25.400000000000002.
  EXPECT_EQ(Convert(Variant::Nothing(), 1, UNIT_INCHES, UNIT_MILLIMETERS), 25.4);
  // Degrees use the library's 15-digit pi (kPi / 180): the pi itself is
  // pinned here by its digits as an integer.
  EXPECT_EQ(kPi, 314159265358979.0 / 1e14);
  const double pi15 = Convert(Variant::Nothing(), 180, UNIT_DEGREES, UNIT_RADIANS);
  EXPECT_EQ(pi15, 180 * (kPi / 180));
  EXPECT_GT(std::fabs(pi15 - 3.141592653589793), 1e-15) << "not the full-precision pi";
  EXPECT_EQ(ToString(Variant(pi15)), ToString(Variant(kPi)));

  // Every fixed pair is value x factor(from) / factor(to), lengths and
  // angles apart; system units are metres and radians.
  const std::pair<std::int32_t, double> lengths[] = {{1, 0.001}, {2, 0.01}, {3, 1},    {4, 0.0254},
                                                     {5, 0.3048}, {6, 0.9144}, {11, 1}};
  const std::pair<std::int32_t, double> angles[] = {{9, 0.017453292519943278}, {10, 1}, {12, 1}};
  std::mt19937_64 rng(20240611);
  std::uniform_real_distribution<double> dist(-1e6, 1e6);
  for (int n = 0; n < 200; ++n) {
    const double v = dist(rng);
    for (auto [from, ff] : lengths)
      for (auto [to, ft] : lengths) ASSERT_EQ(Units::ConvertValue(nullptr, v, from, to), v * ff / ft) << from << to;
    for (auto [from, ff] : angles)
      for (auto [to, ft] : angles) ASSERT_EQ(Units::ConvertValue(nullptr, v, from, to), v * ff / ft) << from << to;
  }
}

TEST_F(UnitsTest, MixedKindsAndUnknownUnitsGiveZero) {
  EXPECT_EQ(Convert(Variant::Nothing(), 5, UNIT_METERS, UNIT_DEGREES), 0);
  EXPECT_EQ(Convert(Variant::Nothing(), 5, UNIT_RADIANS, UNIT_INCHES), 0);
  EXPECT_EQ(Convert(Variant::Nothing(), 5, 0, UNIT_METERS), 0);
  EXPECT_EQ(Convert(Variant::Nothing(), 5, UNIT_METERS, 13), 0);
  EXPECT_EQ(Convert(Variant::Nothing(), 5, -1, 99), 0);
  // Overflow raises as the classic runtime does.
  EXPECT_EQ(ErrorOf([&] { Convert(Variant::Nothing(), 1e308, UNIT_METERS, UNIT_MILLIMETERS); }), 6);
}

TEST_F(UnitsTest, PageUnitsAskThePageEachTime) {
  auto page = Page(0.0254, 0.017453292519943278);
  EXPECT_EQ(Convert(Variant(page), 2, UNIT_PAGEUNITS, UNIT_MILLIMETERS), 2 * 0.0254 / 0.001);
  EXPECT_EQ(Convert(Variant(page), 90, UNIT_PAGEANGLEUNITS, UNIT_RADIANS), 90 * 0.017453292519943278);
  EXPECT_EQ(page->calls.size(), 2u);
  // No page given: the Page property serves; neither: error 91.
  EXPECT_EQ(ErrorOf([&] { Convert(Variant::Nothing(), 1, UNIT_PAGEUNITS, UNIT_METERS); }), 91);
  Invoke(units_, "Page", CallKind::Set, {Variant(Page(0.01, 1))});
  EXPECT_EQ(Convert(Variant::Nothing(), 3, UNIT_METERS, UNIT_PAGEUNITS), 3 / 0.01);
  // The argument wins over the property.
  EXPECT_EQ(Convert(Variant(page), 3, UNIT_METERS, UNIT_PAGEUNITS), 3 / 0.0254);
  // Units without a page never call it.
  EXPECT_EQ(Convert(Variant(MakeRef<FakeObject>()), 3, UNIT_FEET, UNIT_YARDS), 3 * 0.3048 / 0.9144);
  // A page without UnitsScale, or with a zero scale, raises.
  EXPECT_EQ(ErrorOf([&] { Convert(Variant(MakeRef<FakeObject>()), 1, UNIT_PAGEUNITS, UNIT_METERS); }), 438);
  EXPECT_EQ(ErrorOf([&] { Convert(Variant(Page(0, 0)), 1, UNIT_METERS, UNIT_PAGEUNITS); }), 11);
  EXPECT_EQ(ErrorOf([&] { Convert(Variant(Page(0, 0)), 0, UNIT_METERS, UNIT_PAGEUNITS); }), 6);
  EXPECT_EQ(ErrorOf([&] { Convert(Variant(3.0), 1, UNIT_METERS, UNIT_METERS); }), 424);
}

TEST_F(UnitsTest, PageLengthAndAngleUnits) {
  struct Row {
    double scale;
    std::int32_t unit;
  } lengths[] = {{0.001, 1},        {0.01, 2},  {1, 3},         {0.0254, 4},   {0.3048, 5},
                 {0.9144, 6},       {0.5, 3},   {0.02540001, 4}, {0.0010099, 1}, {0.0010101, 3},
                 {0.0254 + 0.00002, 3}, {-1, 3}, {0.011, 3}};
  for (const Row& r : lengths)
    EXPECT_EQ(ToLong(Method(units_, "GetPageLengthUnits", {Variant(Page(r.scale, 1))}).result), r.unit) << r.scale;
  struct AngleRow {
    double scale;
    std::int32_t unit;
  } angles[] = {{0.017453292519943278, 9}, {0.017453292519943295, 9}, {0.0174, 10},
                {0.5, 10}, {1, 10}, {0.017453292519943278 + 0.00002, 10}};
  for (const AngleRow& r : angles)
    EXPECT_EQ(ToLong(Method(units_, "GetPageAngleUnits", {Variant(Page(1, r.scale))}).result), r.unit) << r.scale;
  // These take the page given, never the Page property.
  Invoke(units_, "Page", CallKind::Set, {Variant(Page(0.001, 1))});
  EXPECT_EQ(ErrorOf([&] { Method(units_, "GetPageLengthUnits", {Variant::Nothing()}); }), 91);
  EXPECT_EQ(ErrorOf([&] { Method(units_, "GetPageAngleUnits", {Variant::Nothing()}); }), 91);

  EXPECT_TRUE(Units::IsScaleMatch(0.00001));
  EXPECT_TRUE(Units::IsScaleMatch(-0.00001));
  EXPECT_FALSE(Units::IsScaleMatch(0.0000100001));
}

TEST_F(UnitsTest, UnitUtilsBuildsAndFreesTheSharedLocalizer) {
  units_.reset();
  ASSERT_EQ(Globals::InstanceCount(), 0);
  ASSERT_FALSE(Globals::SharedLocalizer());
  {
    // TKSystemUtils and AppUtils stay out of the count and never build it,
    // even while they work (AppUtils reads the registry, TKSystemUtils
    // creates a localizer of its own).
    Ref<Object> sys = CreateObject("TessarkAO.TKSystemUtils");
    Ref<Object> app = CreateObject("TessarkAO.AppUtils");
    Prop(app, "CommonBinariesPath");
    Method(sys, "SetLocaleDLL", {"tktools.dll", "TessarkAO"});
    EXPECT_EQ(Globals::InstanceCount(), 0);
    EXPECT_FALSE(Globals::SharedLocalizer());
  }
  {
    Ref<Object> first = CreateObject("TessarkAO.UnitUtils");
    EXPECT_EQ(Globals::InstanceCount(), 1);
    const Ref<Object> shared = Globals::SharedLocalizer();
    ASSERT_TRUE(shared);
    EXPECT_EQ(shared->TypeName(), "Localizer");
    EXPECT_EQ(Globals::LoadString(101), "millimeters");
    {
      Ref<Object> second = CreateObject("TessarkAO.UnitUtils");
      EXPECT_EQ(Globals::InstanceCount(), 2);
      EXPECT_EQ(Globals::SharedLocalizer(), shared) << "built once while the count stays above 0";
    }
    EXPECT_EQ(Globals::InstanceCount(), 1);
    EXPECT_EQ(Globals::SharedLocalizer(), shared) << "two created, one released: kept";
  }
  EXPECT_EQ(Globals::InstanceCount(), 0);
  EXPECT_FALSE(Globals::SharedLocalizer());
  // The next creation builds a fresh one.
  Ref<Object> again = CreateObject("TessarkAO.UnitUtils");
  EXPECT_TRUE(Globals::SharedLocalizer());
  again.reset();
  EXPECT_FALSE(Globals::SharedLocalizer());
}

TEST_F(UnitsTest, ASatelliteThatCannotBeCreatedLeavesTheSharedLocalizerEmpty) {
  units_.reset();
  // Japanese system with the satellite file in the common binaries folder.
  std::filesystem::create_directories(dir_ / "bin");
  std::ofstream(dir_ / "bin/tktooJP.dll") << "x";
  Import("[HKEY_CURRENT_USER\\SOFTWARE\\Tessark\\TESSARK 6.0\\Directories]\n\"CommonBinaries\"=\"" + (dir_ / "bin") +
         "\"\n");
  ScopedEnv ja("LC_ALL", "ja_JP.UTF-8");
  Ref<Object> u = CreateObject("TessarkAO.UnitUtils");
  EXPECT_EQ(Globals::InstanceCount(), 1);
  EXPECT_FALSE(Globals::SharedLocalizer());
  EXPECT_EQ(ErrorOf([] { Globals::LoadString(101); }), 91);
  // Conversions work all the same.
  EXPECT_EQ(Method(u, "ConvertUnits", {Variant::Nothing(), 1.0, UNIT_METERS, UNIT_CENTIMETERS}).result.AsDouble(), 100);
  // The next registration retries, and succeeds once the satellite is gone.
  std::filesystem::remove(dir_ / "bin/tktooJP.dll");
  Ref<Object> v = CreateObject("TessarkAO.UnitUtils");
  EXPECT_TRUE(Globals::SharedLocalizer());
}

}  // namespace
