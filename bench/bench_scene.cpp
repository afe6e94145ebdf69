// TKTreeView over large scenes.
//   TreeView/N:      NumberOfShapes with a rebuild, N shapes below the root
//   DirectWalk/N:    the same host calls made by a plain recursive walk into a
//                    vector: the least any listing of the scene can cost
//   FilteredAll/N:   Shape(i, 5) for every extrude, through the tree view
//   LiteralScan/N:   the same lookups scanning the list from the top each time
//   RefHostView/N:   NumberOfShapes with a rebuild on a reference-host scene
//   RefHostWalk/N:   the direct walk on the same reference-host scene
// The first four use a small in-memory scene with member tables and nothing
// else, so that the library's own share of the time shows.
#include <benchmark/benchmark.h>

#include <vector>

#include "RatioReporter.hpp"
#include "automation/Convert.hpp"
#include "automation/Members.hpp"
#include "refhost/RefHost.hpp"
#include "scene/TKTreeView.hpp"

using namespace TessarkAO;

namespace {

class BenchShape;

class BenchShapes final : public Dispatch<BenchShapes> {
 public:
  static constexpr std::string_view kClassName = "Shapes";
  static void Describe(ClassBuilder<BenchShapes>& b) {
    b.Get<&BenchShapes::Count>("Count").Method<&BenchShapes::Item>("Item").Default();
  }
  std::int32_t Count() const { return static_cast<std::int32_t>(children.size()); }
  Ref<Object> Item(std::int32_t i) const;
  std::vector<Ref<BenchShape>> children;
};

class BenchComponent final : public Dispatch<BenchComponent> {
 public:
  static constexpr std::string_view kClassName = "Component";
  static void Describe(ClassBuilder<BenchComponent>& b) { b.Get<&BenchComponent::Shapes>("Shapes"); }
  Ref<BenchShapes> Shapes() const { return shapes; }
  Ref<BenchShapes> shapes = MakeRef<BenchShapes>();
};

class BenchComponents final : public Dispatch<BenchComponents> {
 public:
  static constexpr std::string_view kClassName = "Components";
  static void Describe(ClassBuilder<BenchComponents>& b) {
    b.Get<&BenchComponents::Count>("Count").Method<&BenchComponents::Item>("Item").Default();
  }
  std::int32_t Count() const { return component ? 1 : 0; }
  Ref<Object> Item(std::int32_t) const { return component; }
  Ref<BenchComponent> component;
};

class BenchShape final : public Dispatch<BenchShape> {
 public:
  static constexpr std::string_view kClassName = "Shape";
  static void Describe(ClassBuilder<BenchShape>& b) {
    b.Get<&BenchShape::Type>("Type").Get<&BenchShape::Components>("Components");
  }
  std::int32_t Type() const { return type; }
  Ref<Object> Components(std::int32_t t) const {
    const bool holds = (type == 1 && t == 2) || (type == 3 && t == 23);
    return holds ? Ref<Object>(children) : Ref<Object>(none);
  }
  std::int32_t type = 5;
  Ref<BenchComponents> children = MakeRef<BenchComponents>();
  Ref<BenchComponents> none = MakeRef<BenchComponents>();
};

Ref<Object> BenchShapes::Item(std::int32_t i) const { return children[static_cast<std::size_t>(i - 1)]; }

class BenchPage final : public Dispatch<BenchPage> {
 public:
  static constexpr std::string_view kClassName = "Page";
  static void Describe(ClassBuilder<BenchPage>& b) { b.Get<&BenchPage::Shape>("Shape"); }
  Ref<BenchShape> Shape() const { return root; }
  Ref<BenchShape> root;
};

// A scene of `n` shapes below a root assembly: containers (assemblies and
// parts by turns) of ten children each, filled level by level; the last
// level is extrudes.
Ref<BenchPage> MakeScene(std::int64_t n) {
  auto page = MakeRef<BenchPage>();
  page->root = MakeRef<BenchShape>();
  page->root->type = 1;
  std::vector<BenchShape*> open{page->root.get()};
  std::int64_t made = 0;
  for (std::size_t next = 0; made < n; ++next) {
    BenchShape* parent = open[next];
    parent->children->component = MakeRef<BenchComponent>();
    for (int i = 0; i < 10 && made < n; ++i, ++made) {
      auto child = MakeRef<BenchShape>();
      const bool container = made < n / 10;
      child->type = container ? (made % 2 ? 3 : 1) : 5;
      if (container) open.push_back(child.get());
      parent->children->component->shapes->children.push_back(child);
    }
  }
  return page;
}

void Walk(const Variant& shape, std::vector<Ref<Object>>& out) {
  const std::int32_t type = ToLong(shape.Get("Type"));
  out.push_back(ToObject(shape));
  const std::int32_t container = type == 1 ? 2 : type == 3 ? 23 : 0;
  if (!container) return;
  const Variant list = shape.Get("Components", container);
  if (ToLong(list.Get("Count")) == 0) return;
  const Variant shapes = list.Call("Item", std::int16_t{1}).Get("Shapes");
  const std::int32_t count = ToLong(shapes.Get("Count"));
  for (std::int32_t i = 1; i <= count; ++i) Walk(shapes.Call("Item", i), out);
}

void TreeView(benchmark::State& state) {
  const Ref<BenchPage> page = MakeScene(state.range(0));
  auto view = MakeRef<TKTreeView>();
  view->SetScene(page);
  for (auto _ : state) benchmark::DoNotOptimize(view->NumberOfShapes(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void DirectWalk(benchmark::State& state) {
  const Ref<BenchPage> page = MakeScene(state.range(0));
  std::vector<Ref<Object>> out;
  for (auto _ : state) {
    out.clear();
    Walk(Variant(page->root), out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void FilteredAll(benchmark::State& state) {
  const Ref<BenchPage> page = MakeScene(state.range(0));
  auto view = MakeRef<TKTreeView>();
  view->SetScene(page);
  view->LetRefreshSetting(0);
  view->LetRefreshSetting(1);
  const std::int32_t extrudes = view->NumberOfShapes(5);
  view->LetRefreshSetting(0);
  for (auto _ : state)
    for (std::int32_t i = 1; i <= extrudes; ++i) benchmark::DoNotOptimize(view->Shape(i, 5).get());
}

void LiteralScan(benchmark::State& state) {
  const Ref<BenchPage> page = MakeScene(state.range(0));
  std::vector<Ref<Object>> shapes;
  Walk(Variant(page->root), shapes);
  std::vector<std::int32_t> types;
  for (const auto& s : shapes) types.push_back(ToLong(Variant(s).Get("Type")));
  std::int32_t extrudes = 0;
  for (std::int32_t t : types) extrudes += t == 5;
  for (auto _ : state) {
    for (std::int32_t i = 1; i <= extrudes; ++i) {
      std::int32_t seen = 0;
      for (std::size_t k = 1; k < types.size(); ++k) {
        if (types[k] == 5 && ++seen == i) {
          benchmark::DoNotOptimize(shapes[k].get());
          break;
        }
      }
    }
  }
}

// The same scene shape on the reference host, built through its members.
Variant MakeRefHostScene(std::int64_t n) {
  Variant app(RefHost::NewApplication());
  std::vector<Variant> open{app.Get("ActivePage").Get("Shape")};
  std::int64_t made = 0;
  for (std::size_t next = 0; made < n; ++next) {
    const Variant parent = open[next];
    const Variant shapes =
        parent.Get("Components", ToLong(parent.Get("Type")) == 3 ? 23 : 2).Call("Item", 1).Get("Shapes");
    for (int i = 0; i < 10 && made < n; ++i, ++made) {
      const bool container = made < n / 10;
      const Variant child = shapes.Call("Add", container ? (made % 2 ? 3 : 1) : 5);
      if (container) open.push_back(child);
    }
  }
  return app;
}

void RefHostView(benchmark::State& state) {
  const Variant app = MakeRefHostScene(state.range(0));
  auto view = MakeRef<TKTreeView>();
  view->SetScene(ToObject(app.Get("ActivePage")));
  for (auto _ : state) benchmark::DoNotOptimize(view->NumberOfShapes(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void RefHostWalk(benchmark::State& state) {
  const Variant app = MakeRefHostScene(state.range(0));
  const Variant root = app.Get("ActivePage").Get("Shape");
  std::vector<Ref<Object>> out;
  for (auto _ : state) {
    out.clear();
    Walk(root, out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(RefHostWalk)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(RefHostView)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(TreeView)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(DirectWalk)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(FilteredAll)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(LiteralScan)->Arg(10000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  return Bench::RunWithRatios(argc, argv, [](const Bench::RatioReporter& r) {
    r.PrintRatio("tree view against the direct walk, 100000 shapes", "TreeView/100000", "DirectWalk/100000",
                 "about 1");
    r.PrintRatio("tree view, 100000 against 10000 shapes", "TreeView/100000", "TreeView/10000",
                 "about 10 (linear)");
    r.PrintRatio("direct walk, 100000 against 10000 shapes", "DirectWalk/100000", "DirectWalk/10000",
                 "about 10 (linear)");
    r.PrintRatio("tree view against the direct walk, reference host, 100000", "RefHostView/100000",
                 "RefHostWalk/100000", "about 1");
    r.PrintRatio("direct walk on the reference host, 100000 against 10000", "RefHostWalk/100000",
                 "RefHostWalk/10000", "the host's own scaling");
    r.PrintRatio("tree view on the reference host, 100000 against 10000 shapes", "RefHostView/100000",
                 "RefHostView/10000", "as the direct walk on the host");
    r.PrintRatio("every filtered lookup against the literal scan", "FilteredAll/10000", "LiteralScan/10000",
                 "far below 1");
  });
}
