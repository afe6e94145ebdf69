// TKSurfaceFinish: defaults, presets, reading and writing the host finish.
#include <gtest/gtest.h>

#include "FakeHost.hpp"
#include "scene/TKSurfaceFinish.hpp"

using namespace TessarkAO;
using FakeHost::Scene;

TEST(SurfaceFinish, FreshObjectHoldsTheDefaultsAndUpdatesNeedAShape) {
  auto f = MakeRef<TKSurfaceFinish>();
  EXPECT_EQ(f->GetHighlightColor(), 0xFFFFFF);
  EXPECT_EQ(f->GetSurfaceColor(), 0xC0C0C0);
  EXPECT_EQ(f->GetIndexOfRefraction(), 1.5);
  EXPECT_FALSE(f->GetMetallic());
  try {
    f->AssignDefaults();
    FAIL() << "no finish object to write";
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.Number(), 91);
  }
}

TEST(SurfaceFinish, PresetsAndOtherValues) {
  Scene scene;
  FakeHost::Shape* shape = scene.AddShape(scene.Root(), 5, "Extrude");
  auto f = MakeRef<TKSurfaceFinish>();
  Variant v{Ref<Object>(f)};
  v.Set("Shape", Scene::Obj(shape));
  ASSERT_EQ(scene.CountOf(shape, 7), 1u);  // added on assignment
  scene.Clear();
  v.Call("AssignCustomFinish", 0);
  v.Call("AssignCustomFinish", 7);
  EXPECT_TRUE(scene.journal.empty());
  EXPECT_FALSE(f->GetMetallic());

  struct Row {
    int preset;
    double emission, highlight;
    int r, g, b;
    double intensity;
  };
  const Row rows[] = {{1, 0, 30, 255, 255, 255, 30}, {2, 0, 90, 255, 154, 43, 80},
                      {3, 10, 50, 206, 112, 6, 80},  {4, 0, 90, 226, 174, 18, 80},
                      {5, 0, 90, 255, 217, 96, 80},  {6, 0, 100, 255, 255, 255, 80}};
  for (const Row& row : rows) {
    f->LetTransparency(33);
    v.Call("AssignCustomFinish", row.preset);
    EXPECT_TRUE(f->GetMetallic()) << row.preset;  // Nylon included
    EXPECT_EQ(f->GetEmissionIntensity(), row.emission) << row.preset;
    EXPECT_EQ(f->GetHighlightIntensity(), row.highlight) << row.preset;
    EXPECT_EQ(f->GetSurfaceColor(), row.r + 256 * row.g + 65536 * row.b) << row.preset;
    EXPECT_EQ(f->GetSurfaceColorIntensity(), row.intensity) << row.preset;
    EXPECT_EQ(f->GetTransparency(), 0.0);
  }
  // Every assignment ends with the twelve writes, in interface order.
  scene.Clear();
  v.Call("AssignPreviewDefaults");
  ASSERT_EQ(scene.journal.size(), 12u);
  EXPECT_EQ(scene.journal.front(), "Extrude.Components(7).SurfaceFinish.AmbientIntensity");
  EXPECT_EQ(scene.journal[4], "Extrude.Components(7).SurfaceFinish.HighlightsColor");
  EXPECT_EQ(scene.journal.back(), "Extrude.Components(7).SurfaceFinish.Transparency");
  EXPECT_EQ(f->GetTransparency(), 50.0);
  EXPECT_EQ(f->GetMetallic(), false);
}

TEST(SurfaceFinish, ReadsAndWritesTheHostMembers) {
  Scene scene;
  FakeHost::Shape* shape = scene.AddShape(scene.Root(), 5, "Extrude");
  FakeHost::Shape* other = scene.AddShape(scene.Root(), 5, "Other");
  auto f = MakeRef<TKSurfaceFinish>();
  Variant v{Ref<Object>(f)};
  v.Set("Shape", Scene::Obj(shape));
  const Variant same = v.Call("GetFinishFromShape", Scene::Obj(other));
  EXPECT_EQ(same.AsObject().get(), f.get());
  EXPECT_EQ(scene.CountOf(other, 7), 1u);
  EXPECT_EQ(f->GetHighlightColor(), 0x102030);
  EXPECT_EQ(f->GetAmbientIntensity(), 7.0);
  EXPECT_TRUE(f->GetEdgeTransparencyOn());
  EXPECT_EQ(v.Get("Shape").AsObject().get(), shape->obj);  // the stored shape stays

  v.Let("HighlightColor", 0x00FF00);
  v.Call("UpdateColor");
  const Variant written = Variant(Ref<Object>(scene.First(shape, 7)->finish)).Get("HighlightsColor");
  EXPECT_EQ(written.Type(), VarType::Long);
  EXPECT_EQ(written.AsLong(), 0x00FF00);
  EXPECT_EQ(ToLong(Variant(Ref<Object>(scene.First(other, 7)->finish)).Get("HighlightsColor")), 0x102030);
}
