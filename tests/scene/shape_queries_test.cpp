// SceneUtils and the Functions module on a small host: paths, parent
// searches that rename and restore, identity, deletion, face ownership.
#include <gtest/gtest.h>

#include "FakeHost.hpp"
#include "scene/Functions.hpp"
#include "scene/SceneUtils.hpp"

using namespace TessarkAO;
using FakeHost::Scene;

namespace {

int ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const AutomationError& e) {
    return e.Number();
  }
  return 0;
}

struct ThreeLevels : ::testing::Test {
  Scene scene;
  FakeHost::Shape* assembly = scene.AddShape(scene.Root(), 1, "Assembly", 1);
  FakeHost::Shape* part = scene.AddShape(assembly, 3, "Part", 2);
  FakeHost::Shape* extrude = scene.AddShape(part, 5, "Extrude", 3);
  Variant utils{CreateObject("TessarkAO.SceneUtils")};
};

}  // namespace

TEST(IdentityTag, MillisecondsSinceMidnight) {
  EXPECT_EQ(Functions::IdentityTag(12 * 3600 + 34 * 60 + 56.123), "TKUTIL@45296123");
  EXPECT_EQ(Functions::IdentityTag(0.0), "TKUTIL@0");
  EXPECT_EQ(Functions::IdentityTag(86399.9999), "TKUTIL@86399999");
}

TEST_F(ThreeLevels, PathsStartWithThePageAndEndWithSeparators) {
  EXPECT_EQ(ToString(utils.Call("GetShapePath", Scene::Obj(extrude))), "Scene1//Assembly//Part//");
  EXPECT_EQ(ToString(utils.Call("GetShapePath", Scene::Obj(part))), "Scene1//Assembly//");
  // Directly under the top: the root is nameless, so the page name alone.
  EXPECT_EQ(ToString(utils.Call("GetShapePath", Scene::Obj(assembly))), "Scene1//");
}

TEST_F(ThreeLevels, ParentSearchTagsTheShapeAndRestoresItsName) {
  const Variant parent = utils.Call("GetShapeParent", Scene::Obj(extrude));
  EXPECT_EQ(parent.AsObject().get(), part->obj);
  EXPECT_EQ(extrude->name, "Extrude");
  ASSERT_EQ(extrude->nameSeenByParent.rfind("TKUTIL@", 0), 0u) << extrude->nameSeenByParent;
  EXPECT_GT(extrude->nameSeenByParent.size(), 7u);
  // Under the studio-marked top the answer is the page's root shape.
  EXPECT_EQ(utils.Call("GetShapeParent", Scene::Obj(assembly)).AsObject().get(), scene.Root()->obj);
}

TEST_F(ThreeLevels, SameNamedSiblingsAreToldApartByTheTag) {
  FakeHost::Shape* twin = scene.AddShape(assembly, 3, "Part", 2);
  FakeHost::Shape* inTwin = scene.AddShape(twin, 5, "Extrude", 3);  // same name and identifier
  EXPECT_EQ(Functions::FindShapeParent(Scene::Obj(inTwin)).AsObject().get(), twin->obj);
  EXPECT_EQ(Functions::FindShapeParent(Scene::Obj(extrude)).AsObject().get(), part->obj);
}

TEST_F(ThreeLevels, IdentityNeedsPathAndSixteenBitIdentifier) {
  EXPECT_TRUE(ToBoolean(utils.Call("IdenticalShapes", Scene::Obj(extrude), Scene::Obj(extrude))));
  FakeHost::Shape* other = scene.AddShape(part, 5, "Extrude", 4);
  EXPECT_FALSE(ToBoolean(utils.Call("IdenticalShapes", Scene::Obj(extrude), Scene::Obj(other))));
  FakeHost::Shape* elsewhere = scene.AddShape(assembly, 5, "Extrude", 3);
  EXPECT_FALSE(ToBoolean(utils.Call("IdenticalShapes", Scene::Obj(extrude), Scene::Obj(elsewhere))));
  // The identifier is read as an Integer: above 32767 it overflows.
  extrude->systemId = std::int32_t{40000};
  EXPECT_EQ(ErrorOf([&] { utils.Call("IdenticalShapes", Scene::Obj(extrude), Scene::Obj(extrude)); }), 6);
  // The parent search reads it as a Long and still works.
  EXPECT_EQ(Functions::FindShapeParent(Scene::Obj(extrude)).AsObject().get(), part->obj);
}

TEST_F(ThreeLevels, ChildContainersByShapeType) {
  EXPECT_TRUE(utils.Call("GetShapeHistory", Scene::Obj(extrude)).IsNothing());
  EXPECT_EQ(utils.Call("GetShapeHistory", Scene::Obj(part)).AsObject().get(), scene.First(part, 23)->obj);
  EXPECT_EQ(utils.Call("GetShapeHistory", Scene::Obj(assembly)).AsObject().get(),
            scene.First(assembly, 2)->obj);
  // An empty part gets its history component on asking.
  FakeHost::Shape* empty = scene.AddShape(assembly, 3, "Empty");
  EXPECT_EQ(scene.CountOf(empty, 23), 0u);
  EXPECT_FALSE(utils.Call("GetShapeHistory", Scene::Obj(empty)).IsNothing());
  EXPECT_EQ(scene.CountOf(empty, 23), 1u);
}

TEST_F(ThreeLevels, DeleteRemovesFromTheParentsContainer) {
  utils.Call("DeleteShape", Scene::Obj(extrude));
  EXPECT_TRUE(scene.First(part, 23)->children.empty());
  EXPECT_EQ(extrude->name, "Extrude");
}

TEST_F(ThreeLevels, FaceOwnership) {
  Variant face = Variant(MakeRef<FakeHost::Dyn>(scene, "Face"));
  scene.Clear();
  EXPECT_FALSE(ToBoolean(utils.Call("ShapeOwnFace", Scene::Obj(extrude), face)));
  for (const std::string& call : scene.journal) EXPECT_EQ(call.rfind("Face.", 0), std::string::npos);
  FakeHost::Component* facets = scene.AddComponent(extrude, 10);
  Variant own(Ref<Object>(scene.AddFace(facets, "Own")));
  EXPECT_TRUE(ToBoolean(utils.Call("ShapeOwnFace", Scene::Obj(extrude), own)));
  EXPECT_FALSE(ToBoolean(utils.Call("ShapeOwnFace", Scene::Obj(extrude), face)));
}

TEST(ShapePath, FiveHundredTwelveEntriesAtMost) {
  Scene scene;
  FakeHost::Shape* s = scene.Root();
  for (int i = 0; i < 512; ++i) s = scene.AddShape(s, 1, "A" + std::to_string(i));
  FakeHost::Shape* leaf = scene.AddShape(s, 5, "Leaf");
  scene.journalOn = false;
  // 512 ancestors and the page name make 513 entries.
  EXPECT_EQ(ErrorOf([&] { Functions::ShapePathOf(Scene::Obj(leaf)); }), 9);
  const std::string path = Functions::ShapePathOf(Scene::Obj(s));
  EXPECT_EQ(path.rfind("Scene1//A0//A1//", 0), 0u);
  EXPECT_NE(path.find("//A510//"), std::string::npos);
  EXPECT_EQ(path.find("A511"), std::string::npos);
}

TEST(SceneUtils, BadArgumentsRaiseClassicErrors) {
  Variant utils(CreateObject("TessarkAO.SceneUtils"));
  EXPECT_EQ(ErrorOf([&] { utils.Call("GetShapePath", Variant::Nothing()); }), 91);
  EXPECT_EQ(ErrorOf([&] { utils.Call("GetShapePath", 3.0); }), 424);
  EXPECT_EQ(ErrorOf([&] { utils.Call("GetShapePath"); }), 449);
  EXPECT_EQ(ErrorOf([&] { utils.Call("IdenticalShapes", Variant::Nothing(), Variant::Nothing(), 1); }), 450);
}
