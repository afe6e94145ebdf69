// TKPosition on reference-host scenes in millimetres and degrees: variable
// numbers, unit conversions, walks up and down the scene, re-anchoring.
#include "SceneTestSupport.hpp"
#include "scene/TKPosition.hpp"

using namespace TessarkAO;
using namespace TessarkAO::SceneTest;

namespace {

struct Positions : ThreeLevels {
  Ref<TKPosition> pos = MakeRef<TKPosition>();
  Variant p{Ref<Object>(pos)};

  void Fill(double x, double y, double z, double rx, double ry, double rz, double angle) {
    const double v[] = {x, y, z, rx, ry, rz, angle};
    const char* names[] = {"PosX", "PosY", "PosZ", "RotX", "RotY", "RotZ", "RotAngle"};
    for (int i = 0; i < 7; ++i) p.Let(names[i], v[i]);
  }
  std::vector<double> Fields() const {
    return {pos->GetPosX(), pos->GetPosY(), pos->GetPosZ(),    pos->GetRotX(),
            pos->GetRotY(), pos->GetRotZ(), pos->GetRotAngle()};
  }
};

}  // namespace

TEST_F(Positions, ReadsAndWritesByVariableNumber) {
  for (int n = 1; n <= 7; ++n) SetVar(extrude, 4, n, n * 1.5);
  SetVar(extrude, 4, 8, 1);
  SetVar(extrude, 4, 9, 1);
  p.Set("Shape", extrude);
  Journal journal;
  p.Call("GetShapePosition");
  EXPECT_EQ(Fields(), (std::vector<double>{1.5, 3, 4.5, 6, 7.5, 9, 10.5}));
  EXPECT_EQ(pos->GetMirror(), 1);

  Fill(-1, -2, -3, -4, -5, -6, -7);
  pos->LetMirror(0);
  p.Call("SetShapePosition");
  for (const auto& e : journal.Calls("Variable")) EXPECT_NE(ToLong(e.args[0]), 8);  // never touched
  EXPECT_EQ(journal.Count("Update"), 0u);
  // The mirror flag goes to 9; 8 keeps its value.
  EXPECT_EQ((std::vector<double>{GetVar(extrude, 4, 7), GetVar(extrude, 4, 8), GetVar(extrude, 4, 9)}),
            (std::vector<double>{-7, 1, 0}));

  pos->LetAnchorRotAngle(33);
  p.Call("SetAnchorPosition");
  EXPECT_EQ(GetVar(extrude, 5, 7), 33.0);
  SetVar(extrude, 5, 2, 44.0);
  p.Call("GetAnchorPosition");
  EXPECT_EQ(pos->GetAnchorPosY(), 44.0);

  // The root has no position component: reading one adds it.  The stored shape stays.
  ASSERT_EQ(CountOf(Root(app), 4), 0);
  p.Call("GetPositionFromShape", Root(app));
  EXPECT_EQ(CountOf(Root(app), 4), 1);
  EXPECT_EQ(pos->GetPosX(), 0.0);
  EXPECT_TRUE(Same(p.Get("Shape"), extrude));
}

TEST_F(Positions, ConvertsFourFieldsOnceEachWay) {
  const double degree = ToDouble(Page(app).Get("UnitsScale", 1));
  Fill(10, 20, -30, 0.5, 0.25, 1, 90);
  pos->LetAnchorPosX(7);
  EXPECT_FALSE(ToBoolean(p.Call("ConvertUnitsFromSceneToMetric")));             // no page yet
  EXPECT_FALSE(ToBoolean(p.Call("ConvertUnitsFromMetricToScene", Page(app))));  // already scene units
  EXPECT_TRUE(ToBoolean(p.Call("ConvertUnitsFromSceneToMetric")));
  EXPECT_EQ(pos->GetPosX(), 10 * 0.001 / 0.01);
  EXPECT_EQ(pos->GetPosZ(), -30 * 0.001 / 0.01);
  EXPECT_EQ(pos->GetRotAngle(), 90 * degree / 1);
  EXPECT_EQ(pos->GetRotX(), 0.5);  // an axis is not converted
  EXPECT_EQ(pos->GetAnchorPosX(), 7.0);
  EXPECT_FALSE(ToBoolean(p.Call("ConvertUnitsFromSceneToMetric")));
  EXPECT_EQ(pos->GetPosX(), 10 * 0.001 / 0.01);
  EXPECT_TRUE(ToBoolean(p.Call("ConvertUnitsFromMetricToScene")));
  EXPECT_DOUBLE_EQ(pos->GetPosX(), 10.0);
  EXPECT_DOUBLE_EQ(pos->GetRotAngle(), 90.0);
  // Reading from the host does not reset the flag.
  p.Call("ConvertUnitsFromSceneToMetric");
  p.Call("GetPositionFromShape", extrude);
  EXPECT_FALSE(ToBoolean(p.Call("ConvertUnitsFromSceneToMetric")));
}

TEST_F(Positions, WorldAndBackAgainThroughThreeLevels) {
  // Under the nameless top there is no transform, only the parent search.
  Fill(1, 2, 3, 0, 0, 1, 4);
  p.Set("Shape", assembly);
  {
    Journal journal;
    p.Call("GetWorldPosition");
    EXPECT_EQ(journal.Count("GetPointTransformUp"), 0u);
    EXPECT_EQ(journal.Count("Parent"), 1u);
    EXPECT_EQ(Fields(), (std::vector<double>{1, 2, 3, 0, 0, 1, 4}));
  }

  const double placements[2][7] = {{100, 5, 0, 0, 0, 1, 30}, {-20, 0, 5, 1, 1, 0, 60}};
  const Variant shapes[] = {assembly, part};
  for (int s = 0; s < 2; ++s)
    for (int n = 1; n <= 7; ++n) SetVar(shapes[s], 4, n, placements[s][n - 1]);
  SetVar(part, 5, 1, 3.0);  // an anchor off the origin
  Fill(3, 4, 5, 0, 0, 1, 0.25);
  p.Set("Shape", extrude);
  const std::vector<double> start = Fields();

  // The same transforms asked of the host one by one: the part's, then the assembly's.
  std::vector<Variant> expected(start.begin(), start.end());
  for (const Variant& shape : {part, assembly}) {
    std::vector<Variant> refs;
    for (Variant& v : expected) refs.push_back(Variant::ByRef(v));
    shape.Invoke("GetPointTransformUp", CallKind::Method, refs);
  }
  p.Call("GetWorldPosition");
  for (int i = 0; i < 7; ++i)
    EXPECT_EQ(Fields()[static_cast<std::size_t>(i)], ToDouble(expected[static_cast<std::size_t>(i)])) << i;
  EXPECT_GT(std::abs(pos->GetPosX() - 3), 1.0);

  Journal journal;
  p.Call("GetPositionFromWoldToParent", part);
  for (int i = 0; i < 7; ++i)
    EXPECT_NEAR(Fields()[static_cast<std::size_t>(i)], start[static_cast<std::size_t>(i)], 1e-9) << i;
  // Going down the nameless top stays in the chain: it makes the first call.
  const auto downs = journal.Calls("GetPointTransformDown");
  ASSERT_EQ(downs.size(), 2u);
  EXPECT_EQ(downs[0].object, "Scene1//");
  EXPECT_TRUE(Same(downs[0].args[0], assembly));
  EXPECT_EQ(downs[1].object, "Scene1//Assembly");
  EXPECT_TRUE(Same(downs[1].args[0], part));
}

TEST_F(Positions, PointTransformsConvertAroundTheHostCall) {
  SetVar(part, 4, 1, 10.0);  // the part sits 10 mm along X
  p.Set("Shape", part);
  Variant args[] = {5.0, 0.0, 0.0};
  {
    Journal journal;
    p.Invoke("GetPtTransformUp", CallKind::Method, args);  // no Scene: nothing at all
    EXPECT_TRUE(journal.Entries().empty());
    EXPECT_EQ(args[0].AsDouble(), 5.0);
    p.Set("Scene", Page(app));
    p.Invoke("GetPtTransformUp", CallKind::Method, args);
    EXPECT_EQ(journal.Count("GetPointTransformUp", "Scene1//Assembly//Part"), 1u);
  }
  EXPECT_NEAR(args[0].AsDouble(), 15.0, 1e-12);
  Variant down[] = {extrude, 15.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0};
  SetVar(extrude, 4, 1, 4.0);
  p.Invoke("GetPtTransformDown", CallKind::Method, down);
  EXPECT_NEAR(down[1].AsDouble(), 11.0, 1e-12);

  Fill(5, 0, 0, 0, 0, 1, 0);
  p.Call("TransformPositionUp");
  EXPECT_NEAR(pos->GetPosX(), 15.0, 1e-12);
}

TEST_F(Positions, ResetAnchorWritesFormulasAndShiftsByTheDisplacement) {
  for (int n = 1; n <= 3; ++n) SetVar(extrude, 1, n, 10.0 / n);  // size box 10 x 5 x 3.33 mm
  for (int n = 1; n <= 3; ++n) SetVar(extrude, 5, n, 1.0);
  p.Set("Shape", extrude);
  Fill(9, 9, 9, 0, 0, 1, 0);
  Journal journal;
  p.Call("ResetAnchor", 0.5, 0.5, 0.25, false, Page(app));
  const Variant anchor = Comp(extrude, 5);
  const char* formulas[] = {"(Sizebox\\Length * 0.5)", "(Sizebox\\Width * 0.5)", "(Sizebox\\Height * 0.25)"};
  for (int n = 1; n <= 3; ++n)
    EXPECT_EQ(ToString(anchor.Call("Variable", n).Get("Expression")), formulas[n - 1]);
  EXPECT_EQ(journal.Count("ResetSizeBox"), 1u);
  EXPECT_EQ(journal.Count("RealignAnchor"), 0u);
  const auto shifts = journal.Calls("Shift", "Scene1//Assembly//Part//Extrude");
  ASSERT_TRUE(shifts.size() == 1 && shifts[0].args.size() == 3);
  const double after[] = {10.0 * 0.5, 5.0 * 0.5, 10.0 / 3 * 0.25};
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(ToDouble(shifts[0].args[static_cast<std::size_t>(i)]), (after[i] - 1.0) * 0.001 / 0.01) << i;
  EXPECT_EQ(pos->GetPosX(), 9.0);  // the fields stay

  // The ratio is written as the locale writes numbers.
  const NumberLocale saved = GetNumberLocale();
  SetNumberLocale({',', '.'});
  p.Call("ResetAnchor", 0.25, 1, 1, true);
  SetNumberLocale(saved);
  EXPECT_EQ(ToString(anchor.Call("Variable", 1).Get("Expression")), "(Sizebox\\Length * 0,25)");
  EXPECT_EQ(GetVar(extrude, 5, 1), 2.5);
  EXPECT_EQ(journal.Count("RealignAnchor"), 1u);
}

TEST_F(Positions, ZeroInheritAndHostOperations) {
  Fill(1, 2, 3, 4, 5, 6, 7);
  pos->LetMirror(1);
  pos->LetAnchorPosX(8);
  p.Call("Zero", 4);
  EXPECT_EQ(Fields(), (std::vector<double>{1, 2, 3, 4, 5, 6, 7}));
  p.Call("Zero", 2);
  EXPECT_EQ(Fields(), (std::vector<double>{1, 2, 3, 0, 0, 0, 0}));
  EXPECT_EQ(pos->GetMirror(), 1);
  p.Call("Zero", 3);
  EXPECT_EQ(Fields(), std::vector<double>(7, 0.0));
  EXPECT_EQ(pos->GetMirror(), 0);
  EXPECT_EQ(pos->GetAnchorPosX(), 8.0);

  auto other = MakeRef<TKPosition>();
  other->LetPosY(5);
  other->LetMirror(-1);
  other->LetAnchorRotZ(6);
  p.Call("InheritPosition", Variant(Ref<Object>(other)));
  EXPECT_EQ(pos->GetPosY(), 5.0);
  EXPECT_EQ(pos->GetMirror(), -1);
  EXPECT_EQ(pos->GetAnchorRotZ(), 0.0);
  p.Call("InheritAnchor", Variant(Ref<Object>(other)));
  EXPECT_EQ(pos->GetAnchorRotZ(), 6.0);

  p.Set("Shape", extrude);
  p.Call("Shift", 1.0, 2.0, 3.0, true);      // centimetres along the parent's axes
  EXPECT_NEAR(pos->GetPosX(), 10.0, 1e-12);  // read back in millimetres after the move
  EXPECT_NEAR(pos->GetPosZ(), 30.0, 1e-12);
  p.Call("Rotate", 3, 0.5);
  EXPECT_NEAR(GetVar(extrude, 4, 7), ToDouble(p.Get("RotAngle")), 1e-12);
  Variant normal[] = {Variant(), Variant(), Variant()};
  p.Invoke("GetNormal", CallKind::Method, normal);
  EXPECT_NEAR(normal[2].AsDouble(), 1.0, 1e-12);
  EXPECT_EQ(ErrorOf([&] { p.Call("InheritPosition", 3.0); }), 424);
}
