// TKShape: cached parent and history, bounding-box indices, component access,
// the position and finish it hands out, and its placement matrices.
#include <gtest/gtest.h>

#include <cmath>

#include "FakeHost.hpp"
#include "scene/TKShape.hpp"

using namespace TessarkAO;
using FakeHost::Scene;

namespace {

struct Shapes : ::testing::Test {
  Scene scene{0.001, 0.017453292519943278};  // millimetres and degrees
  FakeHost::Shape* assembly = scene.AddShape(scene.Root(), 1, "Assembly", 1);
  FakeHost::Shape* part = scene.AddShape(assembly, 3, "Part", 2);
  Variant shape{CreateObject("TessarkAO.TKShape")};
};

}  // namespace

TEST_F(Shapes, ParentAndHistoryAreSearchedOncePerAssignment) {
  shape.Set("Shape", Scene::Obj(part));
  scene.Clear();
  EXPECT_EQ(shape.Get("Parent").AsObject().get(), assembly->obj);
  EXPECT_EQ(shape.Get("Parent").AsObject().get(), assembly->obj);
  EXPECT_EQ(scene.Calls("Part.Parent"), 1u);
  const Variant history = shape.Get("History");  // an empty part gets its history component
  ASSERT_NE(scene.First(part, 23), nullptr);
  EXPECT_EQ(history.AsObject().get(), scene.First(part, 23)->obj);
  shape.Get("History");
  EXPECT_EQ(scene.Calls("Part.Type"), 1u);
  // Assigning the same shape again makes the next reads search anew.
  shape.Set("Shape", Scene::Obj(part));
  shape.Get("Parent");
  shape.Get("History");
  EXPECT_EQ(scene.Calls("Part.Parent"), 2u);
  EXPECT_EQ(scene.Calls("Part.Type"), 2u);
}

TEST_F(Shapes, BoundingBoxIndices) {
  const double box[] = {-1, -2, -3, 4, 6, 9};
  std::copy(box, box + 6, part->box);
  shape.Set("Shape", Scene::Obj(part));
  const double expected[] = {0, -1, -2, -3, 4, 6, 9, 5, 8, 12, 0};
  for (int i = 0; i <= 10; ++i) EXPECT_EQ(ToDouble(shape.Get("BoundingBox", i)), expected[i]) << i;
  part->box[3] = 40;  // the same box object, read anew
  EXPECT_EQ(ToDouble(shape.Get("BoundingBox", 7)), 41.0);
}

TEST_F(Shapes, ComponentsAreCreatedOnlyWhenAskedTo) {
  EXPECT_TRUE(shape.Get("Component", 4, true).IsNothing());  // no shape: Nothing
  shape.Set("Shape", Scene::Obj(part));
  EXPECT_TRUE(shape.Get("Component", 4).IsNothing());
  EXPECT_TRUE(shape.Get("Component", 4, false).IsNothing());
  EXPECT_EQ(scene.CountOf(part, 4), 0u);
  const Variant made = shape.Get("Component", 4, true);
  EXPECT_EQ(scene.CountOf(part, 4), 1u);
  EXPECT_EQ(shape.Get("Component", 4).AsObject(), made.AsObject());
}

TEST_F(Shapes, PositionAndFinishAreKeptAndRefreshed) {
  FakeHost::Component* c = scene.AddComponent(part, 4);
  c->values[1] = 12.0;
  shape.Set("Shape", Scene::Obj(part));
  scene.Clear();
  const Variant pos = shape.Get("Position");
  EXPECT_EQ(ToDouble(pos.Get("PosX")), 12.0);
  // The anchor is read before the position.
  EXPECT_LT(std::find(scene.journal.begin(), scene.journal.end(), "Part.Components(5).Variable(1).Value") -
                scene.journal.begin(),
            std::find(scene.journal.begin(), scene.journal.end(), "Part.Components(4).Variable(1).Value") -
                scene.journal.begin());
  c->values[1] = 13.0;
  const Variant again = shape.Get("Position");
  EXPECT_EQ(again.AsObject(), pos.AsObject());
  EXPECT_EQ(ToDouble(pos.Get("PosX")), 13.0);

  const Variant finish = shape.Get("SurfaceFinish");
  EXPECT_EQ(ToLong(finish.Get("SurfaceColor")), 0x102030);
  EXPECT_EQ(shape.Get("SurfaceFinish").AsObject(), finish.AsObject());
  EXPECT_EQ(finish.Get("Shape").AsObject().get(), part->obj);
}

TEST_F(Shapes, SizeboxToParentTakesTheHostsColumnsAndPageUnits) {
  EXPECT_EQ(ToDouble(shape.Get("SizeboxToParentTransform").Call("Value", 3, 3)), 1.0);  // no shape: identity
  for (int i = 0; i < 16; ++i) part->xform[i] = i + 1;
  shape.Set("Shape", Scene::Obj(part));
  const Variant m = shape.Get("SizeboxToParentTransform");
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      double expected = part->xform[4 * c + r];
      if (c == 3 && r < 3) expected = expected * 1 / 0.001;  // metres to millimetres
      EXPECT_EQ(ToDouble(m.Get("Value", r, c)), expected) << r << "," << c;
    }
  }
}

TEST_F(Shapes, PositionTransformIsTheTurnThenTheMove) {
  FakeHost::Component* c = scene.AddComponent(part, 4);
  const double v[] = {10, 20, 30, 1, 2, 2, 40};  // point in millimetres, angle in degrees
  for (int n = 1; n <= 7; ++n) c->values[n] = v[n - 1];
  shape.Set("Shape", Scene::Obj(part));
  const Variant m = shape.Get("PositionTransform");
  // Rotation about the unit axis (1, 2, 2) / 3 for row vectors, then row 3 = the point.
  const double r = 40 * (3.14159265358979 / 180), co = std::cos(r), s = std::sin(r), t = 1 - co;
  const double x = 1.0 / 3, y = 2.0 / 3, z = 2.0 / 3;
  const double expected[4][4] = {{x * x + (1 - x * x) * co, x * y * t + s * z, x * z * t - s * y, 0},
                                 {x * y * t - s * z, y * y + (1 - y * y) * co, y * z * t + s * x, 0},
                                 {x * z * t + s * y, y * z * t - s * x, z * z + (1 - z * z) * co, 0},
                                 {10, 20, 30, 1}};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) EXPECT_NEAR(ToDouble(m.Get("Value", i, j)), expected[i][j], 1e-12) << i << j;
  // A shape without an anchor component gets one, and a matrix all the same.
  EXPECT_EQ(scene.CountOf(part, 5), 0u);
  EXPECT_EQ(ToDouble(shape.Get("AnchorTransform").Get("Value", 3, 3)), 1.0);
  EXPECT_EQ(scene.CountOf(part, 5), 1u);
}
