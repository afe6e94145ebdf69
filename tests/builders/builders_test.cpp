// The feature builders against the reference host, with its call journal:
// defaults, the exact host calls of Create and Finish, placement by the
// builder's own position, and the new shapes found in the scene.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "refhost/RefHost.hpp"

using namespace TessarkAO;

namespace {

int ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const AutomationError& e) {
    return e.Number();
  }
  return 0;
}

// One journal line per call, "member(args)" for calls on objects whose
// description contains `on` (all when empty).
std::vector<std::string> Calls(const std::vector<RefHost::JournalEntry>& journal, std::string_view on = {}) {
  std::vector<std::string> out;
  for (const auto& e : journal) {
    if (!on.empty() && e.object.find(on) == std::string::npos) continue;
    std::string line = std::string(CallKindName(e.kind)) + " " + e.member + "(";
    for (std::size_t i = 0; i < e.args.size(); ++i) {
      if (i) line += ", ";
      line += RefHost::FormatJournalValue(e.args[i]);
    }
    out.push_back(line + ")");
  }
  return out;
}

// The variable numbers and values written with "let Value" after a
// "get Variable(n)" in journal order.
std::vector<std::pair<std::string, std::string>> VariableWrites(const std::vector<RefHost::JournalEntry>& j) {
  std::vector<std::pair<std::string, std::string>> out;
  std::string pending;
  for (const auto& e : j) {
    if (e.member == "Variable" && !e.args.empty()) pending = RefHost::FormatJournalValue(e.args[0]);
    if (e.member == "Value" && e.kind == CallKind::Let && !pending.empty()) {
      out.emplace_back(pending, RefHost::FormatJournalValue(e.args.back()));
      pending.clear();
    }
  }
  return out;
}

class Builders : public ::testing::Test {
 protected:
  void SetUp() override {
    app_ = Variant(RefHost::NewApplication());
    root_ = app_.Get("ActivePage").Get("Shape");
    RefHost::StopJournal();
    RefHost::ClearJournal();
  }
  void TearDown() override {
    RefHost::StopJournal();
    RefHost::ClearJournal();
  }
  std::vector<RefHost::JournalEntry> Record(const std::function<void()>& f) {
    RefHost::ClearJournal();
    RefHost::StartJournal();
    f();
    RefHost::StopJournal();
    return RefHost::Journal();
  }
  Variant app_, root_;
};

}  // namespace

TEST_F(Builders, NewBuildersReportTheirDefaults) {
  Variant extrude(CreateObject("TessarkAO.TKExtrudeShape"));
  EXPECT_EQ(ToDouble(extrude.Get("Height", 1)), 5.0);
  EXPECT_EQ(ToDouble(extrude.Get("Height", 2)), 0.0);
  EXPECT_FALSE(ToBoolean(extrude.Get("RemovesMaterial")));
  EXPECT_EQ(ToString(extrude.Get("UserName")), "Extrude");
  EXPECT_TRUE(extrude.Get("PathComponents").IsNothing());
  EXPECT_EQ(ErrorOf([&] { extrude.Get("Height", 3); }), 9);
  EXPECT_EQ(ErrorOf([&] { extrude.Let("Height", 0, 1.0); }), 9);

  Variant sheet(CreateObject("TessarkAO.TKSMExtrudeShape"));
  EXPECT_EQ(ToString(sheet.Get("UserName")), "Sheet Metal");
  EXPECT_EQ(ToDouble(sheet.Get("Thickness")), 0.1);
  EXPECT_EQ(ToLong(sheet.Get("SheetMetalType")), 1);

  Variant bend(CreateObject("TessarkAO.TKSMBendShape"));
  EXPECT_EQ(ToDouble(bend.Get("Angle")), 3.14159265358979 / 180 * 90);
  EXPECT_EQ(ToLong(bend.Get("DropFlags")), 5);
  EXPECT_EQ(ToLong(bend.Get("SuppressedReliefs")), 15);
  EXPECT_EQ(ToDouble(bend.Get("ReliefWidth")), 0.125);
  EXPECT_EQ(ToDouble(bend.Get("ReliefDepth")), 0.25);
  EXPECT_EQ(ToDouble(bend.Get("InsideRadius")), 0.001);
  EXPECT_EQ(ToDouble(bend.Get("ExtrudeDistance", 1)), 1.0);
  EXPECT_EQ(ToDouble(bend.Get("ExtrudeDistance", 3)), 0.0);
  EXPECT_EQ(ToDouble(bend.Get("StockSegmentLength", 2)), 0.375);
  bend.Let("ExtrudeDistance", 1, 4.0);
  EXPECT_EQ(ToDouble(bend.Get("ReliefWidth")), 0.125);  // computed once, not following the distance
  bend.Let("CornerReliefType", 7, 3);                   // ignored
  EXPECT_EQ(ToLong(bend.Get("CornerReliefType", 7)), 0);
  EXPECT_EQ(ToString(bend.Get("UserName")), "");
}

TEST_F(Builders, FinishBeforeCreateMakesNoHostCall) {
  Variant extrude(CreateObject("TessarkAO.TKExtrudeShape"));
  Variant sheet(CreateObject("TessarkAO.TKSMExtrudeShape"));
  Variant bend(CreateObject("TessarkAO.TKSMBendShape"));
  auto journal = Record([&] {
    extrude.Call("Finish");
    sheet.Call("Finish");
    bend.Call("Finish");
  });
  EXPECT_TRUE(journal.empty()) << RefHost::FormatJournal(journal);
}

TEST_F(Builders, ExtrudeCreateAndFinishSendTheHostParameters) {
  Variant extrude(CreateObject("TessarkAO.TKExtrudeShape"));
  extrude.Let("Height", 1, 2.5);
  extrude.Let("Height", 2, 0.5);
  extrude.Let("RemovesMaterial", true);
  extrude.Let("UserName", "Boss");
  Variant position(CreateObject("TessarkAO.TKPosition"));
  position.Let("PosX", 3.0);
  position.Let("PosY", 4.0);
  extrude.Set("Position", position);
  position.Let("PosX", 99.0);  // the builder keeps its own copy
  EXPECT_EQ(ToDouble(extrude.Get("Position").Get("PosX")), 3.0);

  Variant shape;
  auto create = Record([&] { shape = extrude.Call("Create", root_); });
  ASSERT_TRUE(shape.IsObject());
  const auto calls = Calls(create);
  // A part is made in the assembly first, then the extrude inside it.
  auto part = std::find(calls.begin(), calls.end(), "get Shapes(3%)");
  auto feature = std::find(calls.begin(), calls.end(), "get Shapes(5%)");
  ASSERT_NE(part, calls.end()) << RefHost::FormatJournal(create);
  ASSERT_NE(feature, calls.end()) << RefHost::FormatJournal(create);
  EXPECT_LT(part, feature);
  const auto writes = VariableWrites(create);
  std::vector<std::pair<std::string, std::string>> extrudeVars;
  for (const auto& w : writes)
    if (w.first == "55&" || w.first == "56&" || w.first == "1&") extrudeVars.push_back(w);
  ASSERT_GE(extrudeVars.size(), 3u);
  const std::vector<std::pair<std::string, std::string>> expectedTail = {
      {"55&", "2.5"}, {"56&", "0.5"}, {"1&", "1%"}};
  EXPECT_TRUE(std::equal(expectedTail.begin(), expectedTail.end(), extrudeVars.end() - 3));
  EXPECT_EQ(ToString(shape.Get("Name")), "Boss");
  // The part took the builder's placement; the builder's position was then
  // zeroed, so the extrude sits at the part's origin.
  Variant partShape = root_.Get("Components", 2).Call("Item", 1).Get("Shapes").Call("Item", 1);
  Variant placed(CreateObject("TessarkAO.TKPosition"));
  placed.Call("GetPositionFromShape", partShape);
  EXPECT_EQ(ToDouble(placed.Get("PosX")), 3.0);
  EXPECT_EQ(ToDouble(placed.Get("PosY")), 4.0);
  placed.Call("GetPositionFromShape", shape);
  EXPECT_EQ(ToDouble(placed.Get("PosX")), 0.0);
  EXPECT_FALSE(extrude.Get("PathComponents").IsNothing());

  auto finish = Record([&] { extrude.Call("Finish"); });
  const auto finishCalls = Calls(finish);
  ASSERT_GE(finishCalls.size(), 2u);
  EXPECT_EQ(finishCalls[0], "method Update()");
  EXPECT_EQ(finishCalls[1], "method ResetSizeBox()");
  const std::vector<std::pair<std::string, std::string>> sizebox = {
      {"15&", "1%"}, {"8&", "1%"}, {"9&", "1%"}, {"10&", "1%"}, {"14&", "0%"},
      {"4&", "0%"},  {"5&", "0%"}, {"6&", "0%"}, {"7&", "0%"}};
  EXPECT_EQ(VariableWrites(finish), sizebox) << RefHost::FormatJournal(finish);
}

TEST_F(Builders, SheetMetalExtrudeFinishesWithVariableSixSet) {
  Variant sheet(CreateObject("TessarkAO.TKSMExtrudeShape"));
  sheet.Let("Thickness", 0.25);
  Variant shape = sheet.Call("Create", root_);
  EXPECT_TRUE(SameValue(sheet.Get("Part"), shape));
  auto create = Record([] {});
  auto finish = Record([&] { sheet.Call("Finish"); });
  const std::vector<std::pair<std::string, std::string>> sizebox = {
      {"15&", "1%"}, {"8&", "1%"}, {"9&", "1%"}, {"10&", "1%"}, {"14&", "0%"},
      {"4&", "0%"},  {"5&", "0%"}, {"6&", "1%"}, {"7&", "0%"}};
  EXPECT_EQ(VariableWrites(finish), sizebox) << RefHost::FormatJournal(finish);
  // The thickness and the second depth went to component 63.
  Variant c63 = shape.Get("Components", 63).Call("Item", 1);
  EXPECT_EQ(ToDouble(c63.Get("Variable", 55).Get("Value")), 0.25);
  EXPECT_EQ(ToDouble(c63.Get("Variable", 56).Get("Value")), 0.0);
}

TEST_F(Builders, BendSendsItsParametersInTheHostsNumbering) {
  Variant bend(CreateObject("TessarkAO.TKSMBendShape"));
  bend.Let("ReliefType", 2);  // circular: the host's 1
  bend.Let("UserName", "Flange");
  bend.Let("CornerReliefDepth", 2, 0.75);
  Variant shape;
  auto create = Record([&] { shape = bend.Call("Create", root_); });
  const auto onBend = Calls(create, "Components(66)");
  const std::vector<std::string> expected = {
      "method Item(1%)",  // the bend component is Components(66).Item(1)
      "let Angle(" + RefHost::FormatJournalValue(Variant(3.14159265358979 / 180 * 90)) + ")",
      "let Radius(0.001)",
      "let Direction(1&)",
      "let DropFlags(5&)",
      "let ReliefType(1&)",
      "let ReliefWidth(0.125)",
      "let ReliefDepth(0.25)",
      "method SetExtrudeDistance(1%, 1)",
      "method SetExtrudeDistance(2%, 1)",
      "method SetStockSegmentLength(0%, 0.375)",
      "method SetStockSegmentLength(1%, 0.375)",
      "method SetCornerReliefDepth(1&, 0)",
      "method SetCornerReliefDepth(2&, 0.75)",
      "method SetCornerReliefType(1&, 0&)",
      "method SetCornerReliefType(2&, 0&)",
      "method SetCornerReliefOrientation(1&, 0&)",
      "method SetCornerReliefOrientation(2&, 0&)",
      "method Initialize()",
      "let SuppressedReliefs(15&)",
  };
  EXPECT_EQ(onBend, expected) << RefHost::FormatJournal(create);
  // SuppressedReliefs goes out after the shape's Update.
  const auto all = Calls(create);
  auto update = std::find(all.begin(), all.end(), "method Update()");
  auto suppressed = std::find(all.begin(), all.end(), "let SuppressedReliefs(15&)");
  EXPECT_LT(update, suppressed);
  EXPECT_EQ(ToString(shape.Get("Name")), "Flange");
  EXPECT_TRUE(SameValue(bend.Get("BendComponent"), shape.Get("Components", 66).Call("Item", 1)));
  EXPECT_EQ(ToLong(bend.Get("Part").Get("Type")), 3);
}

TEST_F(Builders, CreatedShapesAreFoundInTheScene) {
  Variant extrude(CreateObject("TessarkAO.TKExtrudeShape"));
  extrude.Call("Create", root_);
  Variant bend(CreateObject("TessarkAO.TKSMBendShape"));
  bend.Call("Create", root_);
  Variant tree(CreateObject("TessarkAO.TKTreeView"));
  tree.Set("Scene", app_.Get("ActivePage"));
  EXPECT_EQ(ToLong(tree.Get("NumberOfShapes", 5)), 1);
  EXPECT_EQ(ToLong(tree.Get("NumberOfShapes", 14)), 1);
  EXPECT_EQ(ToLong(tree.Get("NumberOfShapes", 3)), 2);
  EXPECT_EQ(ToString(tree.Get("Shape", 1, 5).Get("Name")), "Extrude");
}
