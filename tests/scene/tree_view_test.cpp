// TKTreeView: pre-order lists, type filters, refresh settings, and a
// differential test against the walk as the scene tree has always done it.
#include <gtest/gtest.h>

#include <random>

#include "FakeHost.hpp"
#include "scene/TKTreeView.hpp"

using namespace TessarkAO;
using FakeHost::Scene;

namespace {

// The walk kept literally: recursion, a count that starts at -1 for the root
// and lists that grow one entry at a time; filtered lookups scan from the top.
struct LiteralTreeView {
  std::vector<Ref<Object>> shapes{Ref<Object>()};
  std::vector<std::int32_t> depths{0}, types{0};
  std::int32_t count = 0;

  void Walk(const Variant& shape, std::int32_t depth) {
    if (depth == 0) count = -1;
    const std::int32_t type = ToLong(shape.Get("Type"));
    auto record = [&] {
      ++count;
      if (count >= 1) {
        shapes.resize(static_cast<std::size_t>(count) + 1);
        depths.resize(shapes.size());
        types.resize(shapes.size());
        shapes[static_cast<std::size_t>(count)] = ToObject(shape);
        depths[static_cast<std::size_t>(count)] = depth;
        types[static_cast<std::size_t>(count)] = type;
      }
    };
    for (std::int32_t container : {2, 23}) {
      if (type == (container == 2 ? 1 : 3) && ToLong(shape.Get("Components", container).Get("Count")) > 0) {
        record();
        const Variant children = shape.Get("Components", container).Call("Item", 1).Get("Shapes");
        for (std::int32_t i = 1; i <= ToLong(children.Get("Count")); ++i) Walk(children.Call("Item", i), depth + 1);
        return;
      }
    }
    record();
  }
  std::int32_t Number(std::int32_t type) const {
    if (type == 0) return count;
    std::int32_t n = 0;
    for (std::int32_t i = 1; i <= count; ++i) n += types[static_cast<std::size_t>(i)] == type;
    return n;
  }
  std::int32_t Find(std::int32_t index, std::int32_t type) const {
    if (type == 0) return index >= 1 && index <= count ? index : 0;
    std::int32_t seen = 0;
    for (std::int32_t i = 1; i <= count; ++i)
      if (types[static_cast<std::size_t>(i)] == type && ++seen == index) return i;
    return 0;
  }
};

void Grow(Scene& scene, FakeHost::Shape* parent, std::mt19937& rng, int depth, int& budget) {
  std::uniform_int_distribution<int> children(0, 4), type(1, 14);
  const int n = children(rng);
  for (int i = 0; i < n && budget > 0; ++i, --budget) {
    const int t = type(rng);
    FakeHost::Shape* s = scene.AddShape(parent, t, "S" + std::to_string(budget));
    if ((t == 1 || t == 3) && depth < 6) {
      if (rng() % 5 == 0) scene.AddComponent(s, t == 1 ? 2 : 23);  // an empty container
      else Grow(scene, s, rng, depth + 1, budget);
    }
  }
}

}  // namespace

TEST(TreeView, PreOrderWithoutTheRoot) {
  Scene scene;
  Variant tv(CreateObject("TessarkAO.TKTreeView"));
  tv.Set("Scene", scene.PageObject());
  EXPECT_EQ(ToLong(tv.Get("NumberOfShapes")), 0);  // the root alone is not listed

  FakeHost::Shape* a = scene.AddShape(scene.Root(), 1, "A");
  FakeHost::Shape* e1 = scene.AddShape(a, 5, "E1");
  FakeHost::Shape* p = scene.AddShape(a, 3, "P");
  FakeHost::Shape* e2 = scene.AddShape(p, 5, "E2");
  FakeHost::Shape* bare = scene.AddShape(scene.Root(), 3, "Bare");  // no history: a leaf
  FakeHost::Shape* empty = scene.AddShape(scene.Root(), 1, "Empty");
  scene.AddComponent(empty, 2);  // a group without children: listed once

  EXPECT_EQ(ToLong(tv.Get("NumberOfShapes")), 6);
  const FakeHost::Shape* order[] = {a, e1, p, e2, bare, empty};
  const int depths[] = {1, 2, 2, 3, 1, 1};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(tv.Get("Shape", i + 1, 0).AsObject().get(), order[i]->obj) << i;
    EXPECT_EQ(ToLong(tv.Get("ShapeDepth", i + 1, 0)), depths[i]) << i;
  }
  EXPECT_TRUE(tv.Get("Shape", 7, 0).IsNothing());
  EXPECT_EQ(ToLong(tv.Get("ShapeDepth", 7, 0)), 0);
  EXPECT_TRUE(tv.Get("Shape", 0, 0).IsNothing());
  EXPECT_EQ(ToLong(tv.Get("NumberOfShapes", 5)), 2);
  EXPECT_EQ(tv.Get("Shape", 2, 5).AsObject().get(), e2->obj);  // the second extrude
  EXPECT_EQ(ToLong(tv.Get("ShapeDepth", 2, 5)), 3);
  EXPECT_TRUE(tv.Get("Shape", 3, 5).IsNothing());
  EXPECT_EQ(ToLong(tv.Get("NumberOfShapes", 9)), 0);
}

TEST(TreeView, RefreshSettings) {
  Scene scene;
  scene.AddShape(scene.Root(), 5, "E1");
  Variant tv(CreateObject("TessarkAO.TKTreeView"));
  EXPECT_EQ(ToLong(tv.Get("RefreshSetting")), 1);

  tv.Let("RefreshSetting", 0);
  tv.Set("Scene", scene.PageObject());
  scene.Clear();
  EXPECT_EQ(ToLong(tv.Call("Refresh")), 0);  // never built, never walked
  EXPECT_TRUE(scene.journal.empty());

  tv.Let("RefreshSetting", 2);  // on setting Scene only
  tv.Set("Scene", scene.PageObject());
  scene.AddShape(scene.Root(), 5, "E2");
  EXPECT_EQ(ToLong(tv.Call("Refresh")), 1);
  tv.Set("Scene", scene.PageObject());
  EXPECT_EQ(ToLong(tv.Get("NumberOfShapes")), 2);

  tv.Let("RefreshSetting", 1);  // on every count
  scene.AddShape(scene.Root(), 5, "E3");
  EXPECT_EQ(ToLong(tv.Call("Refresh")), 3);

  tv.Let("RefreshSetting", 3);  // both, although the enumeration has no name for it
  EXPECT_EQ(ToLong(tv.Get("RefreshSetting")), 3);
  scene.AddShape(scene.Root(), 5, "E4");
  tv.Set("Scene", scene.PageObject());
  scene.AddShape(scene.Root(), 5, "E5");
  EXPECT_EQ(ToLong(tv.Get("NumberOfShapes")), 5);

  tv.Let("RefreshSetting", 7);  // neither
  scene.AddShape(scene.Root(), 5, "E6");
  tv.Set("Scene", scene.PageObject());
  EXPECT_EQ(ToLong(tv.Get("NumberOfShapes")), 5);
  EXPECT_EQ(ToLong(tv.Get("RefreshSetting")), 7);
}

TEST(TreeView, MatchesTheLiteralWalkOnRandomScenes) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    Scene scene;
    scene.journalOn = false;
    std::mt19937 rng(seed);
    int budget = 200;
    Grow(scene, scene.Root(), rng, 0, budget);
    LiteralTreeView model;
    model.Walk(scene.Obj(scene.Root()), 0);
    auto tv = MakeRef<TKTreeView>();
    tv->SetScene(ToObject(scene.PageObject()));
    ASSERT_EQ(tv->NumberOfShapes(0), model.count) << seed;
    for (std::int32_t type = 0; type <= 15; ++type) {
      ASSERT_EQ(tv->NumberOfShapes(type), model.Number(type)) << seed << " type " << type;
      for (std::int32_t i = 0; i <= model.Number(type) + 1; ++i) {
        const std::int32_t at = model.Find(i, type);
        const Ref<Object> expected = at ? model.shapes[static_cast<std::size_t>(at)] : Ref<Object>();
        ASSERT_EQ(tv->Shape(i, type), expected) << seed << " " << type << " " << i;
        ASSERT_EQ(tv->ShapeDepth(i, type), at ? model.depths[static_cast<std::size_t>(at)] : 0);
      }
    }
  }
}

TEST(TreeView, HostErrorsKeepWhatWasRecorded) {
  Scene scene;
  scene.AddShape(scene.Root(), 5, "E1");
  FakeHost::Shape* broken = scene.AddShape(scene.Root(), 5, "E2");
  auto tv = MakeRef<TKTreeView>();
  tv->SetScene(ToObject(scene.PageObject()));
  EXPECT_EQ(tv->NumberOfShapes(0), 2);
  broken->systemId = 0;
  broken->obj->On("Type", [](CallKind, std::span<Variant>) -> Variant { Raise(Err::NoSuchMember); });
  tv->LetRefreshSetting(1);
  EXPECT_THROW(tv->NumberOfShapes(0), AutomationError);
  tv->LetRefreshSetting(0);
  EXPECT_EQ(tv->NumberOfShapes(0), 1);
  try {
    Variant(Ref<Object>(tv)).Get("Shape", 1);
    FAIL();
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.Number(), 449);
  }
}
