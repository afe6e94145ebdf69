// TKSurfaceFinish: defaults, presets, reading and writing the host finish.
#include "SceneTestSupport.hpp"
#include "scene/TKSurfaceFinish.hpp"

using namespace TessarkAO;
using namespace TessarkAO::SceneTest;

TEST(SurfaceFinish, DefaultsPresetsAndTheHostMembers) {
  const Variant app(RefHost::NewApplication());
  const Variant extrude = AddShape(Root(app), 5, "Extrude");
  auto f = MakeRef<TKSurfaceFinish>();
  EXPECT_EQ(f->GetHighlightColor(), 0xFFFFFF);  // the defaults before any shape
  EXPECT_EQ(f->GetSurfaceColor(), 0xC0C0C0);
  EXPECT_EQ(ErrorOf([&] { f->AssignDefaults(); }), 91);
  Variant v{Ref<Object>(f)};
  v.Set("Shape", extrude);
  ASSERT_EQ(CountOf(extrude, 7), 1);  // added on assignment
  Journal journal;
  v.Call("AssignCustomFinish", 0);
  v.Call("AssignCustomFinish", 7);
  EXPECT_TRUE(journal.Entries().empty());
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
  journal.Clear();
  v.Call("AssignPreviewDefaults");
  const auto writes = journal.Entries();
  ASSERT_EQ(writes.size(), 12u);
  EXPECT_EQ(writes.front().member, "AmbientIntensity");
  EXPECT_EQ(writes[4].member, "HighlightsColor");
  EXPECT_EQ(writes.back().member, "Transparency");
  EXPECT_EQ(ToDouble(Comp(extrude, 7).Call("Variable", 12).Get("Value")), 50.0);
  EXPECT_FALSE(f->GetMetallic());

  // Another shape's finish is read into this object; the stored shape stays.
  const Variant other = AddShape(Root(app), 5, "Other");
  const Variant same = v.Call("GetFinishFromShape", other);
  EXPECT_EQ(same.AsObject().get(), f.get());
  EXPECT_EQ(CountOf(other, 7), 1);
  EXPECT_EQ(f->GetHighlightColor(), 16777215);  // the host's initial values
  EXPECT_EQ(f->GetHighlightIntensity(), 50.0);
  EXPECT_EQ(f->GetIndexOfRefraction(), 1.0);
  EXPECT_TRUE(Same(v.Get("Shape"), extrude));

  journal.Clear();
  v.Let("HighlightColor", 0x00FF00);
  v.Call("UpdateColor");
  const auto colour = journal.Calls("HighlightsColor");
  ASSERT_EQ(colour.size(), 1u);
  EXPECT_EQ(colour[0].kind, CallKind::Let);
  EXPECT_EQ(colour[0].args.back().Type(), VarType::Long);
  EXPECT_EQ(ToLong(Comp(extrude, 7).Get("SurfaceFinish").Get("HighlightsColor")), 0x00FF00);
  EXPECT_EQ(ToLong(Comp(other, 7).Get("SurfaceFinish").Get("HighlightsColor")), 16777215);
}
