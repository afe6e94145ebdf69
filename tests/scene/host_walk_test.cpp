// Walks of a host graph that does not form a tree: a shape that lists
// itself among its children, a parent chain that returns to a shape it
// passed, and an endless chain of fresh shapes all end in error 28.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "TestSupport.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "scene/Functions.hpp"

using namespace TessarkAO;
using Testing::ErrorOf;

namespace {

using Fake = Testing::FakeObject;

Ref<Fake> Collection(std::int32_t count, std::function<Variant()> item) {
  auto c = MakeRef<Fake>();
  c->Value("Count", count).On("Item", [item](CallKind, std::span<Variant>) { return item(); });
  return c;
}

// An assembly whose one child is whatever `child` gives.
Ref<Fake> Assembly(std::function<Variant()> child) {
  auto shape = MakeRef<Fake>();
  auto shapes = Collection(1, std::move(child));
  auto group = MakeRef<Fake>();
  group->Value("Shapes", Variant(shapes));
  auto groups = Collection(1, [group] { return Variant(group); });
  auto none = Collection(0, [] { return Variant(); });
  shape->Value("Type", 1).Value("Name", "A").On("Components", [groups, none](CallKind, std::span<Variant> a) {
    return ToLong(a[0]) == 2 ? Variant(groups) : Variant(none);
  });
  return shape;
}

int TreeViewError(const Ref<Fake>& root) {
  auto page = MakeRef<Fake>();
  page->Value("Shape", Variant(root));
  const Variant view(CreateObject("TessarkAO.TKTreeView"));
  view.Set("Scene", Variant(page));
  return ErrorOf([&] { view.Call("Refresh"); });
}

}  // namespace

TEST(HostWalk, ShapeTreesThatAreNoTreesEndIn28) {
  // A shape that is its own child (the Ref cycle is broken afterwards).
  Ref<Fake> self;
  Ref<Fake> loop = Assembly([&self] { return Variant(self); });
  self = loop;
  EXPECT_EQ(TreeViewError(loop), 28);
  self.reset();
  // Every level a fresh shape: no revisit, only a depth no scene reaches.
  std::function<Variant()> fresh = [&fresh] { return Variant(Assembly(fresh)); };
  EXPECT_EQ(TreeViewError(Assembly(fresh)), 28);
}

TEST(HostWalk, ParentChainsThatReturnEndIn28) {
  // Every shape's parent is the scene's top, whose Page.Shape is R; R has a
  // name, so the walk up goes on from R and meets R again.
  auto r = MakeRef<Fake>();
  auto top = MakeRef<Fake>();
  auto page = MakeRef<Fake>();
  page->Value("Shape", Variant(r));
  auto studio = Collection(1, [] { return Variant(); });
  top->Value("Page", Variant(page))
      .Value("Name", "")
      .On("Components", [studio](CallKind, std::span<Variant>) { return Variant(studio); });
  auto app = MakeRef<Fake>();
  app->Value("ActivePage", Variant(page));
  auto s = MakeRef<Fake>();
  s->Value("Application", Variant(app));
  for (const Ref<Fake>& shape : {s, r}) {
    auto name = std::make_shared<Variant>(shape == s ? "S" : "R");
    shape->Value("SystemID", 7)
        .Value("Parent", Variant(top))
        .On("Name", [name](CallKind, std::span<Variant> a) {
          if (!a.empty()) *name = a.back();
          return *name;
        });
  }
  const Variant position(CreateObject("TessarkAO.TKPosition"));
  position.Set("Shape", Variant(s));
  EXPECT_EQ(ErrorOf([&] { position.Call("GetWorldPosition"); }), 28);
  EXPECT_EQ(ErrorOf([&] { position.Call("GetPositionFromWoldToParent", Variant(s)); }), 28);
  EXPECT_EQ(ErrorOf([&] { Functions::ShapePathOf(Variant(s)); }), 28);
  page->Value("Shape", Variant());  // breaks the reference cycle page -> r -> top -> page
}
