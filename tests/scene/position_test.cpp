// TKPosition against a host scene in millimetres and degrees: variable
// numbers, unit conversions, walks up and down the scene, re-anchoring.
#include <gtest/gtest.h>

#include <cmath>

#include "FakeHost.hpp"
#include "scene/TKPosition.hpp"

using namespace TessarkAO;
using FakeHost::Scene;

namespace {

constexpr double kDegree = 0.017453292519943278;  // one degree in radians, as the library converts

struct Positions : ::testing::Test {
  Scene scene{0.001, kDegree};  // millimetres and degrees
  FakeHost::Shape* assembly = scene.AddShape(scene.Root(), 1, "Assembly", 1);
  FakeHost::Shape* part = scene.AddShape(assembly, 3, "Part", 2);
  FakeHost::Shape* extrude = scene.AddShape(part, 5, "Extrude", 3);
  Ref<TKPosition> pos = MakeRef<TKPosition>();
  Variant p{Ref<Object>(pos)};

  void Fill(double x, double y, double z, double rx, double ry, double rz, double angle) {
    pos->LetPosX(x);
    pos->LetPosY(y);
    pos->LetPosZ(z);
    pos->LetRotX(rx);
    pos->LetRotY(ry);
    pos->LetRotZ(rz);
    pos->LetRotAngle(angle);
  }
};

}  // namespace

TEST_F(Positions, ReadsAndWritesByVariableNumber) {
  FakeHost::Component* c = scene.AddComponent(extrude, 4);
  for (int n = 1; n <= 9; ++n) c->values[n] = Variant(n * 1.5);
  c->values[9] = true;  // the mirror flag arrives as a Boolean
  p.Set("Shape", Scene::Obj(extrude));
  p.Call("GetShapePosition");
  EXPECT_EQ(pos->GetPosX(), 1.5);
  EXPECT_EQ(pos->GetRotAngle(), 10.5);
  EXPECT_EQ(pos->GetMirror(), -1);

  Fill(-1, -2, -3, -4, -5, -6, -7);
  pos->LetMirror(1);
  p.Call("SetShapePosition");
  EXPECT_EQ(c->values[3].Type(), VarType::Double);
  EXPECT_EQ(c->values[7].AsDouble(), -7.0);
  EXPECT_EQ(c->values[8].AsDouble(), 12.0);  // variable 8 is never touched
  EXPECT_EQ(c->values[9].Type(), VarType::Long);
  EXPECT_EQ(scene.CallsTo("Update"), 0u);

  // Anchors use variables 1 to 7 of component 5, which is added when missing.
  EXPECT_EQ(scene.CountOf(extrude, 5), 0u);
  p.Call("GetAnchorPosition");
  EXPECT_EQ(scene.CountOf(extrude, 5), 1u);
  pos->LetAnchorRotAngle(33);
  p.Call("SetAnchorPosition");
  EXPECT_EQ(scene.First(extrude, 5)->values[7].AsDouble(), 33.0);

  // From another shape: the stored shape stays.
  FakeHost::Component* other = scene.AddComponent(part, 4);
  other->values[1] = 99.0;
  p.Call("GetPositionFromShape", Scene::Obj(part));
  EXPECT_EQ(pos->GetPosX(), 99.0);
  EXPECT_EQ(p.Get("Shape").AsObject().get(), extrude->obj);
}

TEST_F(Positions, ConvertsFourFieldsOnceEachWay) {
  Fill(10, 20, -30, 0.5, 0.25, 1, 90);
  pos->LetAnchorPosX(7);
  EXPECT_FALSE(ToBoolean(p.Call("ConvertUnitsFromSceneToMetric")));  // no page yet
  EXPECT_FALSE(ToBoolean(p.Call("ConvertUnitsFromMetricToScene", scene.PageObject())));  // already scene units
  EXPECT_TRUE(ToBoolean(p.Call("ConvertUnitsFromSceneToMetric")));
  EXPECT_DOUBLE_EQ(pos->GetPosX(), 1.0);
  EXPECT_DOUBLE_EQ(pos->GetPosZ(), -3.0);
  EXPECT_EQ(pos->GetRotAngle(), 90 * kDegree / 1.0);
  EXPECT_EQ(pos->GetRotX(), 0.5);  // an axis is not converted
  EXPECT_EQ(pos->GetAnchorPosX(), 7.0);
  EXPECT_FALSE(ToBoolean(p.Call("ConvertUnitsFromSceneToMetric")));
  EXPECT_DOUBLE_EQ(pos->GetPosX(), 1.0);
  EXPECT_TRUE(ToBoolean(p.Call("ConvertUnitsFromMetricToScene")));
  EXPECT_DOUBLE_EQ(pos->GetPosX(), 10.0);
  EXPECT_DOUBLE_EQ(pos->GetRotAngle(), 90.0);
}

TEST_F(Positions, WorldAndBackAgainThroughThreeLevels) {
  assembly->offset[0] = 100;
  assembly->turn = 0.3;
  part->offset[1] = -20;
  part->offset[2] = 5;
  part->turn = -1.1;
  Fill(3, 4, 5, 0, 0, 1, 0.25);
  p.Set("Shape", Scene::Obj(extrude));
  p.Call("GetWorldPosition");
  // Independently: the part's placement, then the assembly's.
  double x = 3, y = 4;
  double px = std::cos(-1.1) * x - std::sin(-1.1) * y, py = std::sin(-1.1) * x + std::cos(-1.1) * y - 20;
  double wx = std::cos(0.3) * px - std::sin(0.3) * py + 100, wy = std::sin(0.3) * px + std::cos(0.3) * py;
  EXPECT_NEAR(pos->GetPosX(), wx, 1e-12);
  EXPECT_NEAR(pos->GetPosY(), wy, 1e-12);
  EXPECT_NEAR(pos->GetPosZ(), 10, 1e-12);
  EXPECT_NEAR(pos->GetRotAngle(), 0.25 - 1.1 + 0.3, 1e-12);

  scene.Clear();
  p.Call("GetPositionFromWoldToParent", Scene::Obj(part));
  EXPECT_NEAR(pos->GetPosX(), 3, 1e-12);
  EXPECT_NEAR(pos->GetPosY(), 4, 1e-12);
  EXPECT_NEAR(pos->GetPosZ(), 5, 1e-12);
  EXPECT_NEAR(pos->GetRotAngle(), 0.25, 1e-12);
  // The nameless top stays in the chain going down: it makes the first call.
  EXPECT_EQ(scene.Calls("Root.GetPointTransformDown"), 1u);
  EXPECT_EQ(scene.Calls("Assembly.GetPointTransformDown"), 1u);
  EXPECT_EQ(scene.Calls("Part.GetPointTransformDown"), 0u);
}

TEST_F(Positions, NoTransformUnderTheNamelessTop) {
  Fill(1, 2, 3, 0, 0, 1, 4);
  p.Set("Shape", Scene::Obj(assembly));
  scene.Clear();
  p.Call("GetWorldPosition");
  EXPECT_EQ(scene.CallsTo("GetPointTransformUp"), 0u);
  EXPECT_EQ(pos->GetPosY(), 2.0);
}

TEST_F(Positions, PointTransformsConvertAroundTheHostCall) {
  part->offset[0] = 1;  // one centimetre
  p.Set("Shape", Scene::Obj(part));
  Variant args[] = {5.0, 0.0, 0.0};
  scene.Clear();
  p.Invoke("GetPtTransformUp", CallKind::Method, args);  // no Scene: nothing at all
  EXPECT_EQ(args[0].AsDouble(), 5.0);
  EXPECT_TRUE(scene.journal.empty());

  p.Set("Scene", scene.PageObject());
  p.Invoke("GetPtTransformUp", CallKind::Method, args);
  EXPECT_DOUBLE_EQ(args[0].AsDouble(), 15.0);  // 5 mm + 1 cm
  Variant down[] = {Scene::Obj(extrude), 15.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0};
  extrude->offset[0] = 0.5;
  p.Invoke("GetPtTransformDown", CallKind::Method, down);
  EXPECT_DOUBLE_EQ(down[1].AsDouble(), 10.0);

  Fill(5, 0, 0, 0, 0, 1, 0);
  p.Call("TransformPositionUp");
  EXPECT_DOUBLE_EQ(pos->GetPosX(), 15.0);
}

TEST_F(Positions, ResetAnchorWritesFormulasAndShiftsByTheDisplacement) {
  extrude->box[3] = 10;  // length 10, width 4, height 2 (millimetres)
  extrude->box[4] = 4;
  extrude->box[5] = 2;
  FakeHost::Component* anchor = scene.AddComponent(extrude, 5);
  anchor->values = {{1, 1.0}, {2, 1.0}, {3, 1.0}};
  p.Set("Shape", Scene::Obj(extrude));
  Fill(9, 9, 9, 0, 0, 1, 0);
  scene.Clear();
  p.Call("ResetAnchor", 0.5, 0.5, 0.5, false, scene.PageObject());
  EXPECT_EQ(anchor->expressions[1], "(Sizebox\\Length * 0.5)");
  EXPECT_EQ(anchor->expressions[3], "(Sizebox\\Height * 0.5)");
  EXPECT_EQ(scene.Calls("Extrude.ResetSizeBox"), 1u);
  EXPECT_EQ(scene.Calls("Extrude.RealignAnchor"), 0u);
  EXPECT_EQ(scene.CountOf(extrude, 4), 1u);  // looked up, so added
  EXPECT_EQ(scene.lastShifted, extrude);
  EXPECT_DOUBLE_EQ(scene.lastShift[0], 0.4);  // (5 - 1) mm in centimetres
  EXPECT_DOUBLE_EQ(scene.lastShift[1], 0.1);
  EXPECT_DOUBLE_EQ(scene.lastShift[2], 0.0);
  EXPECT_EQ(pos->GetPosX(), 9.0);  // the fields stay
  EXPECT_EQ(scene.CallsTo("GetPointTransformUp"), 0u);

  // The ratio is written as the locale writes numbers.
  const NumberLocale saved = GetNumberLocale();
  SetNumberLocale({',', '.'});
  p.Call("ResetAnchor", 0.25, 1, 1, true);
  SetNumberLocale(saved);
  EXPECT_EQ(anchor->expressions[1], "(Sizebox\\Length * 0,25)");
  EXPECT_EQ(scene.Calls("Extrude.RealignAnchor"), 1u);
}

TEST_F(Positions, ZeroInheritRotateShift) {
  Fill(1, 2, 3, 4, 5, 6, 7);
  pos->LetMirror(1);
  pos->LetAnchorPosX(8);
  p.Call("Zero", 4);
  EXPECT_EQ(pos->GetRotZ(), 6.0);
  p.Call("Zero", 2);
  EXPECT_EQ(pos->GetRotX(), 0.0);
  EXPECT_EQ(pos->GetRotAngle(), 0.0);
  EXPECT_EQ(pos->GetPosX(), 1.0);
  EXPECT_EQ(pos->GetMirror(), 1);
  p.Call("Zero", 3);
  EXPECT_EQ(pos->GetPosZ(), 0.0);
  EXPECT_EQ(pos->GetMirror(), 0);
  EXPECT_EQ(pos->GetAnchorPosX(), 8.0);

  auto other = MakeRef<TKPosition>();
  other->LetPosY(5);
  other->LetMirror(-1);
  other->LetAnchorRotZ(6);
  p.Call("InheritPosition", Variant(Ref<Object>(other)));
  EXPECT_EQ(pos->GetPosY(), 5.0);
  EXPECT_EQ(pos->GetAnchorRotZ(), 0.0);
  p.Call("InheritAnchor", Variant(Ref<Object>(other)));
  EXPECT_EQ(pos->GetAnchorRotZ(), 6.0);

  FakeHost::Component* c = scene.AddComponent(extrude, 4);
  c->values[1] = 42.0;
  p.Set("Shape", Scene::Obj(extrude));
  scene.Clear();
  p.Call("Shift", 1.0, 2.0, 3.0);
  EXPECT_EQ(scene.journal.front(), "Extrude.Shift");
  EXPECT_EQ(pos->GetPosX(), 42.0);  // read back after the move
  p.Call("Rotate", 3, 45.0);
  Variant normal[] = {Variant(), Variant(), Variant()};
  p.Invoke("GetNormal", CallKind::Method, normal);
  EXPECT_EQ(normal[2].AsDouble(), 1.0);
}
