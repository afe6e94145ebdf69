// The scene object model as the library reaches it: tree links, component
// lookups, the typed components, errors, lifetimes and the call journal.
#include "RefHostTestSupport.hpp"

using namespace TessarkAO;
using namespace TessarkAO::RefHostTest;

TEST(Model, ANewSceneAndTheShapesAddedToIt) {
  Variant app(RefHost::NewApplication());
  EXPECT_EQ(ToLong(app.Get("Pages").Get("Count")), 1);
  Variant page = app.Get("ActivePage");
  EXPECT_TRUE(SameValue(page, app.Get("Pages").Call("Item", 1)));
  EXPECT_TRUE(SameValue(page, app.Get("Pages").Call("Item", "scene1")));
  EXPECT_EQ(ToString(page.Get("Name")), "Scene1");
  EXPECT_TRUE(SameValue(page.Get("Application"), app));
  Variant root = page.Get("Shape");
  EXPECT_EQ(ToString(root.Get("Name")), "");
  EXPECT_EQ(ToLong(root.Get("Type")), 1);
  EXPECT_EQ(ToLong(root.Get("Components", 18).Get("Count")), 1);
  EXPECT_TRUE(root.Get("Parent").IsNothing());
  EXPECT_TRUE(SameValue(root.Get("Page"), page));
  EXPECT_EQ(ToDouble(page.Get("UnitsScale", 1)), 0.017453292519943295);
  EXPECT_EQ(ToLong(page.Get("SelectedItems").Get("Count")), 0);

  // Shapes added by kind carry their components.
  struct Row {
    int kind;
    std::vector<int> has;
  } rows[] = {{1, {1, 4, 5, 2}}, {3, {1, 4, 5, 23}}, {5, {14, 15}}, {11, {63, 15}}, {14, {66}}, {2, {10}}};
  std::int32_t lastId = ToLong(root.Get("SystemID"));
  for (const Row& r : rows) {
    Variant s = AddShape(root, r.kind);
    EXPECT_EQ(ToLong(s.Get("Type")), r.kind);
    EXPECT_GT(ToLong(s.Get("SystemID")), lastId);
    lastId = ToLong(s.Get("SystemID"));
    for (int t : r.has) EXPECT_EQ(ToLong(s.Get("Components", t).Get("Count")), 1) << r.kind << " " << t;
    EXPECT_TRUE(SameValue(s.Get("Parent"), root));
    EXPECT_TRUE(SameValue(s.Get("Application"), app));
  }
  Variant shapes = root.Get("Components", 2).Call("Item", 1).Get("Shapes");
  EXPECT_EQ(ToLong(shapes.Get("Count")), 6);  // the new scene's were none
  EXPECT_EQ(ToString(shapes.Call("Item", 2).Get("Name")), "Part");
  EXPECT_EQ(ErrorOf([&] { shapes.Call("Add"); }), 5);  // no kind given
  EXPECT_EQ(ErrorOf([&] { root.Get("Components", 2).Call("Item", 1).Get("Shapes", 99).Call("Add"); }), 5);
  EXPECT_EQ(ErrorOf([&] { shapes.Call("Item", 7); }), 9);
  Variant deep = root;
  for (int i = 0; i < 1000; ++i) deep = AddShape(deep, 1);
  EXPECT_EQ(ErrorOf([&] { AddShape(deep, 1); }), 5);
  EXPECT_EQ(ErrorOf([&] { shapes.Call("Item", 0); }), 9);
}

TEST(Model, ComponentsAndVariablesByNumber) {
  Variant app(RefHost::NewApplication());
  Variant part = AddShape(Root(app), 3);
  Variant list = part.Get("Components", 43);
  EXPECT_EQ(ToLong(list.Get("Count")), 0);
  EXPECT_EQ(ErrorOf([&] { list.Call("Item", 1); }), 9);
  Variant addOn = list.Call("Add");
  EXPECT_TRUE(SameValue(addOn, part.Get("Components", 43).Call("Item", 1)));
  addOn.Call("Variable", 1).Let("Value", "TessarkAOCA.Assembly");
  EXPECT_EQ(ToString(part.Get("Components", 43).Call("Item", 1).Call("Variable", 1)), "TessarkAOCA.Assembly");

  // Values keep the variable's own type.
  Variant pos = Comp(part, 4);
  pos.Call("Variable", 9).Let("Value", 1.0);
  EXPECT_EQ(pos.Call("Variable", 9).Get("Value").Type(), VarType::Long);
  pos.Call("Variable", 1).Let("Value", std::int32_t{3});
  EXPECT_EQ(pos.Call("Variable", 1).Get("Value").Type(), VarType::Double);
  EXPECT_EQ(ErrorOf([&] { pos.Call("Variable", 1).Let("Value", "abc"); }), 13);
  EXPECT_EQ(ErrorOf([&] { pos.Call("Variable", 9).Let("Value", 1e12); }), 6);
  EXPECT_EQ(ErrorOf([&] { pos.Call("Variable", 10); }), 9);
  EXPECT_EQ(ErrorOf([&] { pos.Call("Variable", 0); }), 9);

  // The viewer's listing: position in number order, with names.
  Variant vars = pos.Get("Variables");
  EXPECT_EQ(ToLong(vars.Get("Count")), 9);
  EXPECT_EQ(ToString(vars.Call("Item", 7).Get("Name")), "Angle");
  EXPECT_EQ(ToString(pos.Get("Name")), "Position");

  EXPECT_EQ(ErrorOf([&] { part.Get("Components", 18).Call("Add"); }), 5);
  EXPECT_EQ(ErrorOf([&] { part.Get("Components", 21).Call("Add"); }), 5);
  EXPECT_EQ(ErrorOf([&] { app.Get("ActivePage").Get("UnitsScale", 3); }), 5);
  EXPECT_EQ(ErrorOf([&] { app.Get("ActivePage").Let("UnitsScale", 2, 0.0); }), 5);
}

TEST(Model, FinishBendAndFaceComponents) {
  Variant app(RefHost::NewApplication());
  Variant root = Root(app);
  Variant part = AddShape(root, 3);

  Variant finish = Comp(part, 7).Get("SurfaceFinish");
  EXPECT_EQ(ToLong(finish.Get("SurfaceColor")), 8421504);
  EXPECT_EQ(finish.Get("Metallic").Type(), VarType::Boolean);
  finish.Let("HighlightsColor", std::int32_t{255});
  finish.Let("Metallic", true);
  EXPECT_EQ(ToLong(Comp(part, 7).Call("Variable", 5)), 255);
  EXPECT_TRUE(ToBoolean(Comp(part, 7).Get("SurfaceFinish").Get("Metallic")));
  EXPECT_EQ(ErrorOf([&] { finish.Let("SurfaceColor", std::int32_t{0x1000000}); }), 5);
  // The host spells it Highlights.
  EXPECT_EQ(ErrorOf([&] { finish.Let("HighlightColor", std::int32_t{1}); }), 438);

  Variant bend = Comp(AddShape(part, 14), 66);
  EXPECT_DOUBLE_EQ(ToDouble(bend.Get("Angle")), 1.5707963267948966);
  bend.Call("SetStockSegmentLength", std::int16_t{0}, 0.375);
  bend.Call("SetStockSegmentLength", std::int16_t{1}, 0.5);
  EXPECT_EQ(ToDouble(bend.Call("GetStockSegmentLength", std::int16_t{1})), 0.5);
  EXPECT_EQ(ErrorOf([&] { bend.Call("SetStockSegmentLength", std::int16_t{2}, 1.0); }), 5);
  bend.Call("SetExtrudeDistance", 2, 3.0);
  EXPECT_EQ(ToDouble(bend.Call("GetExtrudeDistance", 2)), 3.0);
  EXPECT_EQ(ErrorOf([&] { bend.Call("SetExtrudeDistance", 0, 1.0); }), 5);
  EXPECT_EQ(ErrorOf([&] { bend.Let("ReliefType", 3); }), 5);
  EXPECT_EQ(ErrorOf([&] { bend.Let("Direction", 0); }), 5);
  bend.Let("ReliefType", 2);
  EXPECT_EQ(ToLong(bend.Call("Variable", 5)), 2);
  EXPECT_FALSE(ToBoolean(bend.Get("Initialized")));
  bend.Call("Initialize");
  EXPECT_TRUE(ToBoolean(bend.Get("Initialized")));

  Variant a = Comp(AddShape(root, 2), 10).Get("Faces");
  Variant b = Comp(AddShape(root, 2), 10).Get("Faces");
  Variant fa = a.Call("Add");
  Variant fb = b.Call("Add");
  EXPECT_TRUE(ToBoolean(a.Call("IsMember", fa)));
  EXPECT_FALSE(ToBoolean(a.Call("IsMember", fb)));
  EXPECT_FALSE(ToBoolean(a.Call("IsMember", Variant::Nothing())));
  EXPECT_EQ(ErrorOf([&] { a.Call("IsMember", part); }), 13);
  EXPECT_EQ(ToLong(fb.Get("Index")), 1);
}

TEST(Model, SizeBoxFitsTheGeometryAndTheBoundingBoxIsPlaced) {
  Variant app(RefHost::NewApplication());
  Variant ext = AddShape(Root(app), 5);
  Variant path = ProfileOf(ext).Get("Components", 3).Call("Add");
  path.Call("SetStartPoint", -5.0, 0.0);
  path.Call("AddLineTo", 5.0, 0.0);
  path.Call("AddLineTo", 5.0, 20.0);
  SetVar(ext, 14, 55, 4.0);
  SetVar(ext, 14, 56, 2.0);
  ext.Call("ResetSizeBox");
  EXPECT_EQ((std::vector{GetVar(ext, 1, 1), GetVar(ext, 1, 2), GetVar(ext, 1, 3), GetVar(ext, 1, 11),
                         GetVar(ext, 1, 13)}),
            (std::vector{10.0, 20.0, 6.0, -5.0, -2.0}));
  ext.Call("RealignAnchor");
  EXPECT_EQ((std::vector{GetVar(ext, 5, 1), GetVar(ext, 5, 3)}), (std::vector{-5.0, -2.0}));
  // The anchor corner sits at the position (100, 0, 0); a quarter turn about Z.
  SetVar(ext, 4, 1, 100.0);
  SetVar(ext, 4, 6, 1.0);
  SetVar(ext, 4, 7, 90.0);
  Variant box = ext.Get("BoundingBox");
  EXPECT_NEAR(ToDouble(box.Get("MinX")), 80.0, 1e-9);
  EXPECT_NEAR(ToDouble(box.Get("MaxX")), 100.0, 1e-9);
  EXPECT_NEAR(ToDouble(box.Get("MinY")), 0.0, 1e-9);
  EXPECT_NEAR(ToDouble(box.Get("MaxY")), 10.0, 1e-9);
  EXPECT_NEAR(ToDouble(box.Get("MaxZ")) - ToDouble(box.Get("MinZ")), 6.0, 1e-9);
  std::vector<double> n = CallDoubles(ext, "GetNormal", {Variant(), Variant(), Variant()});
  EXPECT_NEAR(n[2], 1.0, 1e-12);
  // A quarter turn about X instead: the normal follows the placement.
  SetVar(ext, 4, 4, 1.0);
  SetVar(ext, 4, 6, 0.0);
  n = CallDoubles(ext, "GetNormal", {Variant(), Variant(), Variant()});
  EXPECT_NEAR(n[1], -1.0, 1e-12);
}

TEST(Model, RemovedShapesAndDroppedScenesLeaveNoDanglingLinks) {
  Variant app(RefHost::NewApplication());
  Variant root = Root(app);
  Variant asm1 = AddShape(root, 1);
  Variant part = AddShape(asm1, 3);
  app.Get("ActivePage").Get("SelectedItems").Call("Add", part);
  Variant shapes = asm1.Get("Components", 2).Call("Item", 1).Get("Shapes");
  EXPECT_EQ(ErrorOf([&] { root.Get("Components", 2).Call("Item", 1).Get("Shapes").Call("Remove", part); }),
            5);
  shapes.Call("Remove", part);
  EXPECT_EQ(ToLong(shapes.Get("Count")), 0);
  EXPECT_TRUE(part.Get("Parent").IsNothing());
  EXPECT_TRUE(part.Get("Page").IsNothing());
  EXPECT_EQ(ToLong(app.Get("ActivePage").Get("SelectedItems").Get("Count")), 0);
  EXPECT_EQ(ErrorOf([&] { AddShape(part, 5); }), 440);

  // Components and variables kept past their scene still answer.
  Variant anchorX = Comp(asm1, 5).Call("Variable", 1);
  Variant page = app.Get("ActivePage");
  app = Variant();
  root = Variant();
  shapes = Variant();
  EXPECT_TRUE(page.Get("Application").IsNothing());
  asm1 = Variant();
  page = Variant();
  anchorX.Let("Value", 2.0);
  EXPECT_EQ(ToDouble(anchorX.Get("Value")), 2.0);
  EXPECT_EQ(RefHost::DescribeObject(anchorX.AsObject()), "(Anchor of a deleted shape).Variable(1)");
}

TEST(Model, TheJournalRecordsEveryCallInOrder) {
  Variant app(RefHost::NewApplication());
  Variant part = AddShape(Root(app), 3);
  part.Let("Name", "Part");
  RefHost::ClearJournal();
  RefHost::StartJournal();
  Variant pos = part.Get("Components", 4).Call("Item", 1);
  pos.Call("Variable", 2).Let("Value", 3.5);
  EXPECT_EQ(ErrorOf([&] { part.Call("Explode"); }), 438);
  part.Get("type");
  std::vector<Variant> none;
  part.AsObject()->InvokeId(part.AsObject()->GetDispId("SystemID"), CallKind::Get, none);
  RefHost::StopJournal();
  part.Get("Name");  // not recorded
  const std::vector<RefHost::JournalEntry> j = RefHost::Journal();
  ASSERT_EQ(j.size(), 7u) << RefHost::FormatJournal(j);
  EXPECT_EQ(j[3].object, "Scene1//Part.Components(4).Item(1).Variable(2)");
  EXPECT_EQ(j[3].kind, CallKind::Let);
  EXPECT_EQ(RefHost::FormatJournal(j),
            "get  Scene1//Part.Components(4&)\n"
            "call Scene1//Part.Components(4).Item(1&)\n"
            "call Scene1//Part.Components(4).Item(1).Variable(2&)\n"
            "let  Scene1//Part.Components(4).Item(1).Variable(2).Value = 3.5\n"
            "call Scene1//Part.Explode()\n"
            "get  Scene1//Part.Type\n"
            "get  Scene1//Part.SystemID\n");
  RefHost::ClearJournal();
  EXPECT_TRUE(RefHost::Journal().empty());
  // Loading and saving drive the model directly: nothing is journaled.
  RefHost::StartJournal();
  RefHost::LoadSceneFromString(RefHost::SaveSceneToString(app.AsObject()));
  RefHost::StopJournal();
  EXPECT_TRUE(RefHost::Journal().empty());
  EXPECT_EQ(RefHost::FormatJournalValue(Variant(std::int16_t{3})), "3%");
  EXPECT_EQ(RefHost::FormatJournalValue(Variant("a\"b")), "\"a\"\"b\"");
  EXPECT_EQ(RefHost::FormatJournalValue(Variant(SafeArray::Matrix(VarType::Double, 1, 3, 1, 2))),
            "Double(1 To 3, 1 To 2)");
}
