// The feature builders against the reference host and its call journal:
// defaults and refused values, the exact host calls of Create and Finish,
// placement by the builder's own position, and the new shapes as the scene
// sees them afterwards.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <sstream>

#include "TestSupport.hpp"
#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "frame/Conventions.hpp"
#include "frame/Globals.hpp"
#include "host/HostAccess.hpp"
#include "refhost/RefHost.hpp"

using namespace TessarkAO;

namespace {

constexpr const char* kExtrude = "TessarkAO.TKExtrudeShape";
constexpr const char* kSheet = "TessarkAO.TKSMExtrudeShape";
constexpr const char* kBend = "TessarkAO.TKSMBendShape";
constexpr const char* kForm = "TessarkAO.TKSMFormingShape";
constexpr const char* kCurved = "TessarkAO.TKSMCurvedStockShape";
constexpr const char* kConic = "TessarkAO.TKSMConicShape";
const double kQuarterTurn = kPi / 180 * 90;

// A fresh scene with the host's journal on.
struct Scene : ::testing::Test {
  Ref<Object> app = RefHost::NewApplication();
  Variant page = Variant(app).Get("ActivePage");
  Variant root = page.Get("Shape");

  void SetUp() override {
    RefHost::ClearJournal();
    RefHost::StartJournal();
  }
  void TearDown() override {
    RefHost::StopJournal();
    RefHost::ClearJournal();
  }
  Variant NewPart() {
    Variant part = root.Get("Components", 2).Call("Item", 1).Get("Shapes", 3).Call("Add");
    RefHost::ClearJournal();
    return part;
  }
  // The host calls of the builder's Finish.
  static std::vector<std::string> Finished(Variant& builder) {
    RefHost::ClearJournal();
    builder.Call("Finish");
    return Actions();
  }
  // The journal's lines, leaving out the reads and the position and anchor
  // writes of the placement (checked by value); with `on` only the lines that
  // contain it.
  static std::vector<std::string> Actions(std::string_view on = {}) {
    std::vector<std::string> out;
    std::istringstream lines(RefHost::FormatJournal(RefHost::Journal()));
    for (std::string l; std::getline(lines, l);) {
      if (l.rfind("get", 0) == 0 || l.find(on) == std::string::npos) continue;
      if (l.find(".Components(4)") != std::string::npos || l.find(".Components(5)") != std::string::npos)
        continue;
      out.push_back(l);
    }
    return out;
  }
};

// The shape's position: variables 1 to 3 of its position component.
std::array<double, 3> Xyz(const Variant& shape) {
  const Variant position = shape.Get("Components", 4).Call("Item", 1);
  auto at = [&](std::int32_t n) { return ToDouble(position.Call("Variable", n).Get("Value")); };
  return {at(1), at(2), at(3)};
}

std::string D(double v) { return RefHost::FormatJournalValue(Variant(v)); }

// The values of parameterless members, as text, separated by "|".
std::string Values(const Variant& builder, std::initializer_list<const char*> members) {
  std::string out;
  for (const char* m : members) out += (out.empty() ? "" : "|") + ToString(builder.Get(m));
  return out;
}

using Testing::ErrorOf;

// The calls that add a shape of `kind` to the scene's part, followed by
// `then`: with `newPart` the part is first made in the assembly; a sheet-metal
// feature first gets the part's sheet-metal component (62) added.
std::vector<std::string> Adding(bool newPart, bool sheetMetal, int kind,
                                const std::vector<std::string>& then) {
  std::vector<std::string> out;
  if (newPart)
    out = {"call Scene1//.Components(2).Item(1%)", "call Scene1//.Components(2).Item(1).Shapes(3).Add()"};
  if (sheetMetal) out.push_back("call Scene1//Part.Components(62).Add()");
  out.push_back("call Scene1//Part.Components(23).Item(1%)");
  out.push_back("call Scene1//Part.Components(23).Item(1).Shapes(" + std::to_string(kind) + ").Add()");
  out.insert(out.end(), then.begin(), then.end());
  return out;
}

// Finish of shape `s`: Update, ResetSizeBox and the size box, whose variable
// 6 receives 1 for sheet metal and 0 for an extrude.
std::vector<std::string> FinishCalls(const std::string& s, int variableSix) {
  std::vector<std::string> out = {"call " + s + ".Update()", "call " + s + ".ResetSizeBox()",
                                  "call " + s + ".Components(1).Item(1%)"};
  const int vars[9] = {15, 8, 9, 10, 14, 4, 5, 6, 7}, values[9] = {1, 1, 1, 1, 0, 0, 0, variableSix, 0};
  for (int i = 0; i < 9; ++i)
    out.push_back("let  " + s + ".Components(1).Item(1).Variable(" + std::to_string(vars[i]) +
                  ").Value = " + std::to_string(values[i]) + "%");
  return out;
}

}  // namespace

TEST(Builders, Defaults) {
  Variant extrude(CreateObject(kExtrude)), sheet(CreateObject(kSheet)), bend(CreateObject(kBend));
  EXPECT_EQ(Values(extrude, {"UserName", "RemovesMaterial"}), "Extrude|False");
  EXPECT_EQ(ToDouble(extrude.Get("Height", 1)), 5.0);
  EXPECT_EQ(ToDouble(extrude.Get("Height", 2)), 0.0);
  EXPECT_TRUE(extrude.Get("PathComponents").IsNothing());
  EXPECT_EQ(Values(sheet, {"Thickness", "SheetMetalType"}), "0.1|1");

  // (The bend's other defaults are the values it sends the host, checked below.)
  EXPECT_EQ(ToString(bend.Get("UserName")), "");
  EXPECT_EQ(ToDouble(bend.Get("ExtrudeDistance", 3)), 0.0);
  bend.Let("ExtrudeDistance", 1, 4.0);
  EXPECT_EQ(ToDouble(bend.Get("ReliefWidth")), 0.125);  // computed once, not following the distance
  bend.Let("CornerReliefType", 7, 3);                   // ignored
  EXPECT_EQ(ToLong(bend.Get("CornerReliefType", 7)), 0);

  Variant form(CreateObject(kForm)), curved(CreateObject(kCurved)), conic(CreateObject(kConic));
  for (const Variant* b : {&sheet, &form, &curved, &conic}) {
    EXPECT_EQ(ToString(b->Get("UserName")), "Sheet Metal");
    EXPECT_TRUE(b->Get("Part").IsNothing());
  }
  EXPECT_EQ(Values(form, {"Depth", "PunchRadius", "DieRadius", "Direction"}), "0.25|0.0625|0.0625|1");
  EXPECT_EQ(Values(curved, {"Radius", "Width", "Thickness"}), "1|1|0.1");
  EXPECT_EQ(Values(conic, {"TopRadius", "BottomRadius", "Height", "Thickness"}), "0.5|1|1|0.1");
}

// Bad indices raise 9, sizes the host cannot build 5; either way the old
// value stays.
TEST(Builders, RefusedValues) {
  Variant extrude(CreateObject(kExtrude)), form(CreateObject(kForm)), curved(CreateObject(kCurved)),
      conic(CreateObject(kConic));
  struct Bad {
    Variant* builder;
    const char* member;
    Variant value;
  } bad[] = {{&form, "Depth", 0.0},        {&form, "PunchRadius", -0.1},     {&form, "DieRadius", -1e-300},
             {&form, "Direction", 3},      {&form, "Direction", 0},          {&curved, "Radius", 0.0},
             {&curved, "SweepAngle", 0.0}, {&curved, "SweepAngle", 2 * kPi}, {&curved, "Width", -1.0},
             {&curved, "Thickness", 0.0},  {&conic, "TopRadius", -0.5},      {&conic, "Height", 0.0},
             {&conic, "Thickness", -0.1}};
  for (const Bad& c : bad) {
    const Variant before = c.builder->Get(c.member);
    EXPECT_EQ(ErrorOf([&] { c.builder->Let(c.member, c.value); }), 5) << c.member << " " << ToString(c.value);
    EXPECT_EQ(ToDouble(c.builder->Get(c.member)), ToDouble(before)) << c.member;
  }
  for (int direction : {0, 3}) {
    EXPECT_EQ(ErrorOf([&] { extrude.Get("Height", direction); }), 9);
    EXPECT_EQ(ErrorOf([&] { extrude.Let("Height", direction, 1.0); }), 9);
  }
  curved.Let("SweepAngle", 6.28);
  EXPECT_EQ(ToDouble(curved.Get("SweepAngle")), 6.28);
}

// Finish before Create makes no host call, even with a host shape at hand
// through the builder's position.
TEST_F(Scene, FinishBeforeCreateMakesNoHostCall) {
  const Variant part = NewPart();
  for (const char* progId : {kExtrude, kSheet, kBend, kForm, kCurved, kConic}) {
    Variant b(CreateObject(progId));
    if (progId != kBend) b.Get("Position").Set("Shape", part);
    RefHost::ClearJournal();
    b.Call("Finish");
    EXPECT_TRUE(RefHost::Journal().empty()) << progId;
  }
}

TEST_F(Scene, ExtrudeCreateInAnAssemblyAndFinish) {
  Variant b(CreateObject(kExtrude));
  b.Let("Height", 1, 2.5);
  b.Let("Height", 2, 0.5);
  b.Let("RemovesMaterial", true);
  b.Let("UserName", "Boss");
  const Variant shape = b.Call("Create", root);
  const std::string s = "Scene1//Part//Boss";
  const std::string v = "let  " + s + ".Components(14).Item(1).Variable(";
  const std::vector<std::string> create =
      Adding(true, false, 5,
             {"let  Scene1//Part//Extrude.Name = \"Boss\"", "call " + s + ".Components(14).Item(1%)",
              v + "55).Value = 2.5", v + "56).Value = 0.5", v + "1).Value = 1%",
              "call " + s + ".Components(15).Item(1%)"});
  EXPECT_EQ(Actions(), create);
  const Variant profile = shape.Get("Components", 15).Call("Item", 1).Get("Profile");
  b.Get("PathComponents").Call("Add");  // a path drawn there belongs to the shape's profile
  EXPECT_EQ(ToLong(profile.Get("Components", 3).Get("Count")), 1);
  EXPECT_EQ(Finished(b), FinishCalls(s, 0));
}

TEST_F(Scene, SheetMetalExtrudeCreateOnAPartAndFinish) {
  Variant b(CreateObject(kSheet));
  b.Let("Thickness", 0.25);
  b.Let("SheetMetalType", 2);  // a punch
  const Variant shape = b.Call("Create", NewPart());
  const std::string s = "Scene1//Part//Sheet Metal";
  const std::string v = "let  " + s + ".Components(63).Item(1).Variable(";
  const std::vector<std::string> create =
      Adding(false, true, 11,
             {"call Scene1//Part//Sheet Metal Extrude.Initialize()",
              "let  Scene1//Part//Sheet Metal Extrude.Name = \"Sheet Metal\"",
              "call " + s + ".Components(63).Item(1%)", v + "55).Value = 0.25", v + "56).Value = 0",
              v + "1).Value = 1%", "call " + s + ".Components(15).Item(1%)"});
  EXPECT_EQ(Actions(), create);
  EXPECT_TRUE(SameValue(b.Get("Part"), shape));
  EXPECT_EQ(Finished(b), FinishCalls(s, 1));
}

TEST_F(Scene, BendSendsItsParametersInTheHostsNumbering) {
  Variant bend(CreateObject(kBend));
  bend.Let("ReliefType", 2);  // circular: the host's 1
  bend.Let("UserName", "Flange");
  bend.Let("CornerReliefDepth", 2, 0.75);
  const Variant shape = bend.Call("Create", root);
  const std::string c = "call Scene1//Part//Bend.Components(66).Item(1).";
  const std::string l = "let  Scene1//Part//Bend.Components(66).Item(1).";
  const std::vector<std::string> expected = {
      "call Scene1//Part//Bend.Components(66).Item(1%)", l + "Angle = " + D(kQuarterTurn),
      l + "Radius = 0.001", l + "Direction = 1&", l + "DropFlags = 5&", l + "ReliefType = 1&",
      l + "ReliefWidth = 0.125", l + "ReliefDepth = 0.25", c + "SetExtrudeDistance(1%, 1)",
      c + "SetExtrudeDistance(2%, 1)",
      // Stock segments are numbered from 0, unlike every other segment call.
      c + "SetStockSegmentLength(0%, 0.375)", c + "SetStockSegmentLength(1%, 0.375)",
      c + "SetCornerReliefDepth(1&, 0)", c + "SetCornerReliefDepth(2&, 0.75)",
      c + "SetCornerReliefType(1&, 0&)", c + "SetCornerReliefType(2&, 0&)",
      c + "SetCornerReliefOrientation(1&, 0&)", c + "SetCornerReliefOrientation(2&, 0&)", c + "Initialize()",
      // SuppressedReliefs goes out after the shape's Update.
      "let  Scene1//Part//Bend.Name = \"Flange\"", "call Scene1//Part//Flange.Update()",
      "let  Scene1//Part//Flange.Components(66).Item(1).SuppressedReliefs = 15&"};
  EXPECT_EQ(Actions("//Part//"), expected);
  EXPECT_TRUE(SameValue(bend.Get("BendComponent"), shape.Get("Components", 66).Call("Item", 1)));
  EXPECT_EQ(ToLong(bend.Get("Part").Get("Type")), 3);
  EXPECT_EQ(Finished(bend), std::vector<std::string>{"call Scene1//Part//Flange.Update()"});

  Variant tree(CreateObject("TessarkAO.TKTreeView"));
  tree.Set("Scene", page);
  EXPECT_EQ(ToLong(tree.Get("NumberOfShapes", 14)), 1);
  EXPECT_TRUE(SameValue(tree.Get("Shape", 1, 14), shape));
}

TEST_F(Scene, FormCreateInAnAssemblyAndFinish) {
  Variant b(CreateObject(kForm));
  b.Let("Depth", 0.5);
  b.Let("Direction", 2);
  b.Let("UserName", "Louver");
  const Variant shape = b.Call("Create", root);
  const std::string s = "Scene1//Part//Louver";
  const std::string v = "let  " + s + ".Components(67).Item(1).Variable(";
  const std::vector<std::string> create =
      Adding(true, true, 13,
             {"call Scene1//Part//Sheet Metal Form Shape.Initialize()",
              "let  Scene1//Part//Sheet Metal Form Shape.Name = \"Louver\"",
              "call " + s + ".Components(67).Item(1%)", v + "1).Value = 2&", v + "2).Value = 0.5",
              v + "3).Value = 0.0625", v + "4).Value = 0.0625", "call " + s + ".Components(15).Item(1%)"});
  EXPECT_EQ(Actions(), create);
  EXPECT_TRUE(SameValue(b.Get("Part"), shape));
  const Variant profile = shape.Get("Components", 15).Call("Item", 1).Get("Profile");
  b.Get("PathComponents").Call("Add");  // a path drawn there belongs to the shape's profile
  EXPECT_EQ(ToLong(profile.Get("Components", 3).Get("Count")), 1);
  EXPECT_EQ(Finished(b), FinishCalls(s, 1));

  // A second form in the new part finds its sheet-metal component.
  const Variant part = root.Get("Components", 2).Call("Item", 1).Get("Shapes").Call("Item", 1);
  RefHost::ClearJournal();
  Variant(CreateObject(kForm)).Call("Create", part);
  EXPECT_EQ(Actions().front(), "call Scene1//Part.Components(62).Item(1%)");
}

TEST_F(Scene, CurvedStockDrawsItsArc) {
  Variant b(CreateObject(kCurved));
  b.Let("Radius", 2.0);
  b.Let("Width", 3.0);
  b.Let("Thickness", 0.25);
  const Variant shape = b.Call("Create", NewPart());
  const std::string s = "Scene1//Part//Sheet Metal";
  const std::string v = "let  " + s + ".Components(63).Item(1).Variable(";
  const std::string paths = s + ".Components(15).Item(1).Profile.Components(3)";
  const std::vector<std::string> expected =
      Adding(false, true, 11,
             {"call Scene1//Part//Sheet Metal Extrude.Initialize(2&)",
              "let  Scene1//Part//Sheet Metal Extrude.Name = \"Sheet Metal\"",
              "call " + s + ".Components(63).Item(1%)", v + "55).Value = 0.25", v + "56).Value = 0",
              v + "57).Value = 3", "call " + s + ".Components(15).Item(1%)", "call " + paths + ".Add()",
              "call " + paths + ".Item(1).SetStartPoint(2, 0)",
              "call " + paths + ".Item(1).AddArcTo(" + D(2.0 * std::cos(kQuarterTurn)) + ", " +
                  D(2.0 * std::sin(kQuarterTurn)) + ", " + D(std::tan(kQuarterTurn / 4)) + ")"});
  EXPECT_EQ(Actions(), expected);
  EXPECT_EQ(Finished(b), FinishCalls(s, 1));
}

// The arc as the host reads it back: end point on the circle at the sweep
// angle, and an H factor equal to the arc's height over its chord divided by
// half the chord, worked out from the drawn points alone.
TEST_F(Scene, CurvedStockArcGeometry) {
  std::mt19937 rng(20260522);
  std::uniform_real_distribution<double> radius(0.01, 50.0), angle(0.01, 6.27);
  for (int i = 0; i < 40; ++i) {
    Variant b(CreateObject(kCurved));
    const double r = radius(rng), a = angle(rng);
    b.Let("Radius", r);
    b.Let("SweepAngle", a);
    b.Call("Create", NewPart());
    const Variant path = b.Get("PathComponents").Call("Item", 1);
    auto v = [&](int curve, int n) { return ToDouble(path.Call("Variable", curve, n).Get("Value")); };
    const double sx = v(0, 1), sy = v(0, 2), ex = v(1, 1), ey = v(1, 2), h = v(1, 9);
    EXPECT_EQ(sx, r);
    EXPECT_EQ(sy, 0.0);
    EXPECT_NEAR(std::hypot(ex, ey), r, 1e-12 * r);
    EXPECT_NEAR(std::atan2(-ey, -ex) + kPi, a, 1e-9);
    const double halfChord = std::hypot(ex - sx, ey - sy) / 2;
    const double apart = std::sqrt(std::max(0.0, r * r - halfChord * halfChord));
    const double height = a <= kPi ? r - apart : r + apart;  // a major arc passes the centre
    EXPECT_NEAR(h, height / halfChord, 1e-7 * std::max(1.0, h)) << "r=" << r << " a=" << a;
    EXPECT_GT(h, 0.0);  // counter-clockwise
  }
}

TEST_F(Scene, ConicSendsItsNamedParameters) {
  Variant b(CreateObject(kConic));
  b.Let("TopRadius", 0.75);
  b.Let("BottomRadius", 2.5);
  b.Let("Height", 4.0);
  const Variant shape = b.Call("Create", root);
  const std::string v = "let  Scene1//Part//Sheet Metal.Components(63).Item(1).Variable(";
  const std::vector<std::string> lets = {"let  Scene1//Part//Sheet Metal Extrude.Name = \"Sheet Metal\"",
                                         v + "55).Value = 0.1",
                                         v + "56).Value = 0",
                                         v + "57).Value = 0.75",
                                         v + "58).Value = 2.5",
                                         v + "59).Value = 4"};
  EXPECT_EQ(Actions("let "), lets);
  EXPECT_EQ(Actions("Initialize"),
            std::vector<std::string>{"call Scene1//Part//Sheet Metal Extrude.Initialize(3&)"});
  // The parameters were reached through the variable list, by name.
  EXPECT_FALSE(Actions("Variables.Item(3&)").empty());
  const Variant stock = shape.Get("Components", 63).Call("Item", 1);
  EXPECT_EQ(ToDouble(Host::FindVariable(stock, "bottom RADIUS").Get("Value")), 2.5);
  EXPECT_TRUE(Host::FindVariable(stock, "Bottom").IsNothing());
  EXPECT_TRUE(Host::FindVariable(stock, "").IsNothing());
  EXPECT_EQ(Finished(b), FinishCalls("Scene1//Part//Sheet Metal", 1));

  // Both radii 0 is refused before any host call.
  Variant closed(CreateObject(kConic));
  closed.Let("TopRadius", 0.0);
  closed.Let("BottomRadius", 0.0);
  RefHost::ClearJournal();
  EXPECT_THROW(closed.Call("Create", root), AutomationError);
  EXPECT_TRUE(RefHost::Journal().empty());
  EXPECT_TRUE(closed.Get("Part").IsNothing());
}

// Each placed builder places its shape with its own position: in an assembly
// the new part takes the placement and the feature sits at the part's
// origin; on a part the feature itself takes it.  The scene lists the shape.
TEST(Builders, PlacementAndTheSceneAfterwards) {
  const std::pair<const char*, std::int32_t> cases[] = {
      {kExtrude, 5}, {kSheet, 11}, {kForm, 13}, {kCurved, 11}, {kConic, 11}};
  for (const auto& [progId, kind] : cases) {
    for (bool inAssembly : {true, false}) {
      SCOPED_TRACE(std::string(progId) + (inAssembly ? " in an assembly" : " on a part"));
      const Ref<Object> app = RefHost::NewApplication();
      const Variant scene = Variant(app).Get("ActivePage");
      const Variant top = scene.Get("Shape");
      const Variant part = top.Get("Components", 2).Call("Item", 1).Get("Shapes", 3).Call("Add");
      Variant b(CreateObject(progId));
      Variant pos(CreateObject("TessarkAO.TKPosition"));
      pos.Let("PosX", 10.0);
      pos.Let("PosY", 20.0);
      pos.Let("PosZ", 5.0);
      b.Set("Position", pos);
      pos.Let("PosX", 99.0);  // the builder keeps a copy, not the caller's object
      EXPECT_EQ(ToDouble(b.Get("Position").Get("PosX")), 10.0);

      const Variant shape = b.Call("Create", inAssembly ? top : part);
      b.Call("Finish");
      const Variant placed =
          inAssembly ? top.Get("Components", 2).Call("Item", 1).Get("Shapes").Call("Item", 2) : shape;
      EXPECT_EQ(Xyz(placed), (std::array<double, 3>{10, 20, 5}));
      if (inAssembly) {
        EXPECT_FALSE(SameValue(placed, part));
        EXPECT_EQ(Xyz(shape), (std::array<double, 3>{0, 0, 0}));
        EXPECT_EQ(ToDouble(b.Get("Position").Get("PosX")), 0.0);  // zeroed for the feature
      }
      Variant tv(CreateObject("TessarkAO.TKTreeView"));
      tv.Set("Scene", scene);
      EXPECT_EQ(ToLong(tv.Get("NumberOfShapes", kind)), 1);
      EXPECT_TRUE(SameValue(tv.Get("Shape", 1, kind), shape));
      EXPECT_EQ(ToLong(tv.Get("ShapeDepth", 1, kind)), 2);
      EXPECT_EQ(ToLong(tv.Get("NumberOfShapes", 3)), inAssembly ? 2 : 1);
    }
  }
}
