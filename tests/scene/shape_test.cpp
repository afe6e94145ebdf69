// TKShape on reference-host scenes: cached parent and history, bounding-box
// indices, component access, the position and finish it hands out, and its
// placement matrices against the scene's placements computed here.
#include <cmath>

#include "SceneTestSupport.hpp"
#include "frame/Conventions.hpp"

using namespace TessarkAO;
using namespace TessarkAO::SceneTest;

namespace {

struct Shapes : ThreeLevels {
  Variant shape{CreateObject("TessarkAO.TKShape")};
};

double Element(const Variant& matrix, int r, int c) { return ToDouble(matrix.Get("Value", r, c)); }

}  // namespace

TEST_F(Shapes, ParentAndHistoryAreSearchedOncePerAssignment) {
  shape.Set("Shape", part);
  Journal journal;
  // The part carries its identity tag while its Parent is asked.
  auto searches = [&] {
    std::size_t n = 0;
    for (const auto& e : journal.Calls("Parent")) n += e.object.rfind("Scene1//Assembly//TKUTIL@", 0) == 0;
    return n;
  };
  EXPECT_TRUE(Same(shape.Get("Parent"), assembly));
  EXPECT_TRUE(Same(shape.Get("Parent"), assembly));
  EXPECT_EQ(searches(), 1u);
  EXPECT_TRUE(Same(shape.Get("History"), part.Get("Components", 23).Call("Item", 1)));
  shape.Get("History");
  EXPECT_EQ(journal.Count("Type", "Scene1//Assembly//Part"), 1u);
  // Assigning the same shape again makes the next reads search anew.
  shape.Set("Shape", part);
  shape.Get("Parent");
  shape.Get("History");
  EXPECT_EQ(searches(), 2u);
  EXPECT_EQ(journal.Count("Type", "Scene1//Assembly//Part"), 2u);
}

TEST_F(Shapes, BoundingBoxIndices) {
  const double sizes[] = {4, 6, 9}, mins[] = {-1, -2, -3};
  for (int n = 0; n < 3; ++n) {
    SetVar(part, 1, n + 1, sizes[n]);
    SetVar(part, 1, n + 11, mins[n]);
  }
  shape.Set("Shape", part);
  const double expected[] = {0, -1, -2, -3, 3, 4, 6, 4, 6, 9, 0};
  for (int i = 0; i <= 10; ++i) EXPECT_NEAR(ToDouble(shape.Get("BoundingBox", i)), expected[i], 1e-12) << i;
  SetVar(part, 4, 1, 10.0);  // the same box object, read anew
  EXPECT_NEAR(ToDouble(shape.Get("BoundingBox", 1)), 9.0, 1e-12);
}

TEST(Shape, ComponentsAreCreatedOnlyWhenAskedTo) {
  const Variant app(RefHost::LoadSceneFromString(R"({"pages": [{"name": "Scene1", "root": {
    "name": "", "type": 1, "components": [{"type": 18}, {"type": 2, "shapes": [
      {"name": "Bare", "type": 5, "components": [{"type": 1}]}]}]}}]})"));
  const Variant bare = Root(app).Get("Components", 2).Call("Item", 1).Get("Shapes").Call("Item", 1);
  Variant shape(CreateObject("TessarkAO.TKShape"));
  EXPECT_TRUE(shape.Get("Component", 4, true).IsNothing());  // no shape: Nothing
  shape.Set("Shape", bare);
  EXPECT_TRUE(shape.Get("Component", 4).IsNothing());
  EXPECT_TRUE(shape.Get("Component", 4, false).IsNothing());
  EXPECT_EQ(CountOf(bare, 4), 0);
  const Variant made = shape.Get("Component", 4, true);
  EXPECT_EQ(CountOf(bare, 4), 1);
  EXPECT_TRUE(Same(shape.Get("Component", 4), made));
  // The placement matrix asks with creation allowed: always a matrix.
  EXPECT_EQ(CountOf(bare, 5), 0);
  EXPECT_EQ(Element(shape.Get("AnchorTransform"), 3, 3), 1.0);
  EXPECT_EQ(CountOf(bare, 5), 1);
}

TEST_F(Shapes, PositionAndFinishAreKeptAndRefreshed) {
  SetVar(part, 4, 1, 12.0);
  shape.Set("Shape", part);
  Journal journal;
  const Variant pos = shape.Get("Position");
  EXPECT_EQ(ToDouble(pos.Get("PosX")), 12.0);
  const auto reads = journal.Calls("Value");
  ASSERT_FALSE(reads.empty());
  EXPECT_NE(reads.front().object.find("Components(5)"), std::string::npos);  // the anchor first
  SetVar(part, 4, 1, 13.0);
  EXPECT_TRUE(Same(shape.Get("Position"), pos));
  EXPECT_EQ(ToDouble(pos.Get("PosX")), 13.0);

  const Variant finish = shape.Get("SurfaceFinish");
  EXPECT_EQ(ToLong(finish.Get("SurfaceColor")), 8421504);  // the host's initial colour
  EXPECT_TRUE(Same(shape.Get("SurfaceFinish"), finish));
  EXPECT_TRUE(Same(finish.Get("Shape"), part));
}

TEST_F(Shapes, SizeboxToParentTakesTheHostsColumnsInPageUnits) {
  EXPECT_EQ(Element(shape.Get("SizeboxToParentTransform"), 3, 3), 1.0);  // no shape: the identity
  const double position[] = {10, 20, 30, 0, 0, 1, 90};
  for (int n = 1; n <= 7; ++n) SetVar(part, 4, n, position[n - 1]);
  SetVar(part, 5, 1, 1.0);  // the anchor one millimetre along the shape's X
  shape.Set("Shape", part);
  const Variant m = shape.Get("SizeboxToParentTransform");
  // Turned a quarter about Z (column form: X goes to Y), moved so that the
  // anchor lands on the position point: translation P - R A.
  const double expected[4][4] = {{0, -1, 0, 10}, {1, 0, 0, 19}, {0, 0, 1, 30}, {0, 0, 0, 1}};
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) EXPECT_NEAR(Element(m, r, c), expected[r][c], 1e-9) << r << "," << c;
}

TEST_F(Shapes, PositionTransformIsTheTurnThenTheMove) {
  const double v[] = {10, 20, 30, 1, 2, 2, 40};  // point in millimetres, angle in degrees
  for (int n = 1; n <= 7; ++n) SetVar(part, 4, n, v[n - 1]);
  shape.Set("Shape", part);
  const Variant m = shape.Get("PositionTransform");
  // The page's degree goes through the library's degree, then the turn for
  // row vectors about the unit axis (1, 2, 2) / 3; row 3 holds the point.
  const double degrees = 40 * ToDouble(Page(app).Get("UnitsScale", 1)) / 0.017453292519943278;
  const double r = degrees * (kPi / 180), co = std::cos(r), s = std::sin(r), t = 1 - co;
  const double x = 1.0 / 3, y = 2.0 / 3, z = 2.0 / 3;
  const double expected[4][4] = {{x * x + (1 - x * x) * co, x * y * t + s * z, x * z * t - s * y, 0},
                                 {x * y * t - s * z, y * y + (1 - y * y) * co, y * z * t + s * x, 0},
                                 {x * z * t + s * y, y * z * t - s * x, z * z + (1 - z * z) * co, 0},
                                 {10, 20, 30, 1}};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) EXPECT_NEAR(Element(m, i, j), expected[i][j], 1e-12) << i << j;
}
