// TKTreeView: pre-order lists, type filters, refresh settings, and a
// differential test against the walk as the scene tree has always done it.
#include <random>

#include "SceneTestSupport.hpp"
#include "scene/TKTreeView.hpp"

using namespace TessarkAO;
using namespace TessarkAO::SceneTest;

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
      if (++count < 1) return;
      shapes.push_back(ToObject(shape));
      depths.push_back(depth);
      types.push_back(type);
    };
    for (std::int32_t container : {2, 23}) {
      if (type == (container == 2 ? 1 : 3) && ToLong(shape.Get("Components", container).Get("Count")) > 0) {
        record();
        const Variant children = shape.Get("Components", container).Call("Item", 1).Get("Shapes");
        for (std::int32_t i = 1; i <= ToLong(children.Get("Count")); ++i)
          Walk(children.Call("Item", i), depth + 1);
        return;
      }
    }
    record();
  }
  std::int32_t Find(std::int32_t index, std::int32_t type) const {
    if (type == 0) return index >= 1 && index <= count ? index : 0;
    std::int32_t seen = 0;
    for (std::int32_t i = 1; i <= count; ++i)
      if (types[static_cast<std::size_t>(i)] == type && ++seen == index) return i;
    return 0;
  }
};

void Grow(const Variant& parent, std::mt19937& rng, int depth, int& budget) {
  std::uniform_int_distribution<int> children(0, 4), kind(1, 14);
  const int n = children(rng);
  for (int i = 0; i < n && budget > 0; ++i, --budget) {
    const int k = kind(rng);
    const Variant s = AddShape(parent, k, "S" + std::to_string(budget));
    if ((k == 1 || k == 3) && depth < 6) Grow(s, rng, depth + 1, budget);
  }
}

}  // namespace

TEST(TreeView, RefreshSettings) {
  const Variant app(RefHost::NewApplication());
  AddShape(Root(app), 5, "E1");
  Variant tv(CreateObject("TessarkAO.TKTreeView"));
  EXPECT_EQ(ToLong(tv.Get("RefreshSetting")), 1);

  tv.Let("RefreshSetting", 0);
  tv.Set("Scene", Page(app));
  {
    Journal journal;
    EXPECT_EQ(ToLong(tv.Call("Refresh")), 0);  // never built, never walked
    EXPECT_TRUE(journal.Entries().empty());
    tv.Let("RefreshSetting", 1);
    EXPECT_EQ(ToLong(tv.Call("Refresh")), 1);
    EXPECT_EQ(journal.Count("Shape", "Scene1"), 1u);  // the walk starts at the page's root
  }
  tv.Let("RefreshSetting", 2);  // on setting Scene only
  tv.Set("Scene", Page(app));
  AddShape(Root(app), 5, "E2");
  EXPECT_EQ(ToLong(tv.Call("Refresh")), 1);
  tv.Set("Scene", Page(app));
  EXPECT_EQ(ToLong(tv.Get("NumberOfShapes")), 2);

  tv.Let("RefreshSetting", 1);  // on every count
  AddShape(Root(app), 5, "E3");
  EXPECT_EQ(ToLong(tv.Call("Refresh")), 3);

  tv.Let("RefreshSetting", 3);  // both, although the enumeration has no name for it
  AddShape(Root(app), 5, "E4");
  tv.Set("Scene", Page(app));
  AddShape(Root(app), 5, "E5");
  EXPECT_EQ(ToLong(tv.Get("NumberOfShapes")), 5);

  tv.Let("RefreshSetting", 7);  // neither
  AddShape(Root(app), 5, "E6");
  tv.Set("Scene", Page(app));
  EXPECT_EQ(ToLong(tv.Get("NumberOfShapes")), 5);
  EXPECT_EQ(ToLong(tv.Get("RefreshSetting")), 7);
}

// Seed 0 is the root alone, which is not listed.  (Bare parts without a
// history are walked as leaves in the viewer's scene of every kind.)
TEST(TreeView, MatchesTheLiteralWalkOnRandomScenes) {
  for (unsigned seed = 0; seed <= 30; ++seed) {
    const Variant app(RefHost::NewApplication());
    std::mt19937 rng(seed);
    int budget = seed == 0 ? 0 : 150;
    Grow(Root(app), rng, 0, budget);
    LiteralTreeView model;
    model.Walk(Root(app), 0);
    auto tv = MakeRef<TKTreeView>();
    tv->SetScene(ToObject(Page(app)));
    ASSERT_EQ(tv->NumberOfShapes(0), model.count) << seed;
    tv->LetRefreshSetting(0);
    for (std::int32_t type = 0; type <= 15; ++type) {
      std::int32_t n = 0;
      while (model.Find(n + 1, type)) ++n;
      if (type) {
        ASSERT_EQ(tv->NumberOfShapes(type), n) << seed << " type " << type;
      }
      for (std::int32_t i = 0; i <= n + 1; ++i) {
        const std::int32_t at = model.Find(i, type);
        const Ref<Object> expected = at ? model.shapes[static_cast<std::size_t>(at)] : Ref<Object>();
        ASSERT_EQ(tv->Shape(i, type), expected) << seed << " " << type << " " << i;
        ASSERT_EQ(tv->ShapeDepth(i, type), at ? model.depths[static_cast<std::size_t>(at)] : 0);
      }
    }
  }
}
