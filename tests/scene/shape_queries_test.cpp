// SceneUtils and the Functions module on reference-host scenes: paths,
// parent searches that rename and restore, identity, deletion, faces.
#include "SceneTestSupport.hpp"
#include "scene/Functions.hpp"

using namespace TessarkAO;
using namespace TessarkAO::SceneTest;

namespace {

struct Queries : ThreeLevels {
  Variant utils{CreateObject("TessarkAO.SceneUtils")};
};

}  // namespace

TEST(IdentityTag, MillisecondsSinceMidnight) {
  EXPECT_EQ(Functions::IdentityTag(12 * 3600 + 34 * 60 + 56.123), "TKUTIL@45296123");
  EXPECT_EQ(Functions::IdentityTag(0.0), "TKUTIL@0");
  EXPECT_EQ(Functions::IdentityTag(86399.9999), "TKUTIL@86399999");
}

TEST_F(Queries, ParentSearchTagsTheShapeAndRestoresItsName) {
  Journal journal;
  EXPECT_TRUE(Same(utils.Call("GetShapeParent", extrude), part));
  EXPECT_EQ(ToString(extrude.Get("Name")), "Extrude");
  // The journal names the shape by its name at the time of each call.
  std::vector<std::string> written;
  for (const auto& e : journal.Calls("Name"))
    if (e.kind == CallKind::Let && e.object.rfind("Scene1//Assembly//Part//", 0) == 0)
      written.push_back(ToString(e.args.back()));
  ASSERT_EQ(written.size(), 2u);
  EXPECT_EQ(written[0].rfind("TKUTIL@", 0), 0u);
  EXPECT_GT(written[0].size(), 7u);
  EXPECT_EQ(written[0].find_first_not_of("0123456789", 7), std::string::npos);
  EXPECT_EQ(written[1], "Extrude");
  // Under the studio-marked top the answer is the page's root shape.
  EXPECT_TRUE(Same(utils.Call("GetShapeParent", assembly), Root(app)));
}

TEST_F(Queries, SameNamedSiblingsAreToldApartByTheTag) {
  const Variant twin = AddShape(assembly, 3, "Part");
  const Variant inTwin = AddShape(twin, 5, "Extrude");
  EXPECT_TRUE(Same(Functions::FindShapeParent(inTwin), twin));
  EXPECT_TRUE(Same(Functions::FindShapeParent(extrude), part));
  // Paths start with the page and end with a separator.
  EXPECT_EQ(ToString(utils.Call("GetShapePath", inTwin)), "Scene1//Assembly//Part//");
  // Same path and name, other identifier: not the same shape.
  EXPECT_FALSE(ToBoolean(utils.Call("IdenticalShapes", extrude, inTwin)));
  EXPECT_TRUE(ToBoolean(utils.Call("IdenticalShapes", extrude, extrude)));
  EXPECT_FALSE(ToBoolean(utils.Call("IdenticalShapes", extrude, part)));
}

TEST(IdenticalShapes, IdentifiersAreReadAsIntegers) {
  const Variant app(RefHost::LoadSceneFromString(R"({"pages": [{"name": "Scene1", "root": {
    "name": "", "type": 1, "components": [{"type": 18}, {"type": 2, "shapes": [
      {"name": "Big", "type": 5, "systemID": 40000}]}]}}]})"));
  const Variant big = Root(app).Get("Components", 2).Call("Item", 1).Get("Shapes").Call("Item", 1);
  Variant utils(CreateObject("TessarkAO.SceneUtils"));
  EXPECT_EQ(ErrorOf([&] { utils.Call("IdenticalShapes", big, big); }), 6);
  EXPECT_EQ(ToString(utils.Call("GetShapePath", big)), "Scene1//");  // the parent search reads a Long
}

TEST_F(Queries, ChildContainersByShapeTypeAndDeletion) {
  EXPECT_TRUE(utils.Call("GetShapeHistory", extrude).IsNothing());
  EXPECT_TRUE(Same(utils.Call("GetShapeHistory", assembly), assembly.Get("Components", 2).Call("Item", 1)));
  const Variant history = utils.Call("GetShapeHistory", part);
  EXPECT_TRUE(Same(history, part.Get("Components", 23).Call("Item", 1)));
  utils.Call("DeleteShape", extrude);  // from the parent's container
  EXPECT_EQ(ToLong(history.Get("Shapes").Get("Count")), 0);
}

TEST_F(Queries, FaceOwnership) {
  const Variant facet = AddShape(part, 2, "Facet");  // a facet shape carries faces
  const Variant own = Comp(facet, 10).Get("Faces").Call("Add");
  Journal journal;
  EXPECT_FALSE(ToBoolean(utils.Call("ShapeOwnFace", extrude, own)));
  EXPECT_EQ(journal.Count("IsMember"), 0u);
  EXPECT_EQ(journal.Count("Faces"), 0u);
  EXPECT_EQ(journal.Count("Components", "Scene1//Assembly//Part//Extrude"), 1u);
  EXPECT_TRUE(ToBoolean(utils.Call("ShapeOwnFace", facet, own)));
  const Variant other = AddShape(part, 2, "Other");
  EXPECT_FALSE(ToBoolean(utils.Call("ShapeOwnFace", other, own)));
}

TEST(ShapePath, FiveHundredTwelveEntriesAtMost) {
  const Variant app(RefHost::NewApplication());
  Variant s = Root(app);
  for (int i = 0; i < 512; ++i) s = AddShape(s, 1, "A" + std::to_string(i));
  const Variant leaf = AddShape(s, 5, "Leaf");
  // 512 ancestors and the page name make 513 entries.
  EXPECT_EQ(ErrorOf([&] { Functions::ShapePathOf(leaf); }), 9);
  const std::string path = Functions::ShapePathOf(s);
  EXPECT_EQ(path.rfind("Scene1//A0//A1//", 0), 0u);
  EXPECT_NE(path.find("//A510//"), std::string::npos);
  EXPECT_EQ(path.find("A511"), std::string::npos);
}

TEST(SceneUtils, BadArgumentsRaiseClassicErrors) {
  Variant utils(CreateObject("TessarkAO.SceneUtils"));
  EXPECT_EQ(ErrorOf([&] { utils.Call("GetShapePath", Variant::Nothing()); }), 91);
  EXPECT_EQ(ErrorOf([&] { utils.Call("GetShapePath", 3.0); }), 424);
  // A page is not a shape: the host's own error reaches the caller.
  const Variant app(RefHost::NewApplication());
  EXPECT_EQ(ErrorOf([&] { utils.Call("GetShapeParent", Page(app)); }), 438);
}
