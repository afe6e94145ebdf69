// Placement members: point transforms up and down the tree, the local-to-
// parent matrix, Shift, Rotate and the anchor, on random nested scenes.
#include "refhost/Placement.hpp"

#include <array>

#include "RefHostTestSupport.hpp"
#include "frame/Conventions.hpp"

using namespace TessarkAO;
using namespace TessarkAO::RefHostTest;
using RefHost::Mat3;
using RefHost::Vec3;

namespace {

Mat3 Rot(double ax, double ay, double az, double angle) {
  return RefHost::RotationAboutAxis({ax, ay, az}, angle);
}

void ExpectSameRotation(const Mat3& a, const Mat3& b, const std::string& where) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) ASSERT_NEAR(a.m[i][j], b.m[i][j], 1e-9) << where;
}

void ExpectNear(const std::vector<double>& a, const Pose& p, const std::string& where) {
  ASSERT_EQ(a.size(), 7u);
  const double scale = 1.0 + std::abs(p.x) + std::abs(p.y) + std::abs(p.z);
  EXPECT_NEAR(a[0], p.x, 1e-10 * scale) << where;
  EXPECT_NEAR(a[1], p.y, 1e-10 * scale) << where;
  EXPECT_NEAR(a[2], p.z, 1e-10 * scale) << where;
  ExpectSameRotation(Rot(a[3], a[4], a[5], a[6]), Rot(p.ax, p.ay, p.az, p.angle), where);
}

Pose RandomPose(std::mt19937& rng) {
  std::uniform_real_distribution<double> d(-50.0, 50.0), u(-1.0, 1.0), a(-7.0, 7.0);
  return {d(rng), d(rng), d(rng), u(rng), u(rng), u(rng), a(rng)};
}

// The 16 values of GetLocalToParentXform as a point map in metres.
std::array<double, 16> Xform(const Variant& shape) {
  std::vector<Variant> args(1);
  shape.Invoke("GetLocalToParentXform", CallKind::Method, args);
  const SafeArray& a = args[0].AsArray();
  std::array<double, 16> x{};
  for (int i = 0; i < 16; ++i) x[static_cast<std::size_t>(i)] = a.Get(a.LBound(1) + i).AsDouble();
  return x;
}

}  // namespace

// Up to the parent and back down returns the input; up level by level to the
// root and down again in one call composes every level the same way.
TEST(Placement, UpAndDownAreInversesOnRandomNestedScenes) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    std::mt19937 rng(seed);
    RandomScene s = MakeRandomScene(rng, 40);
    const Variant page = s.app.Get("ActivePage"), root = Root(s.app);
    if (seed % 2) page.Let("UnitsScale", 2, 0.0254);    // inches
    if (seed % 3 == 0) page.Let("UnitsScale", 1, 1.0);  // radians
    for (std::size_t i = 0; i < s.shapes.size(); ++i) {
      const std::string where = "seed " + std::to_string(seed) + " shape " + std::to_string(i);
      const Pose p = RandomPose(rng);
      const Variant parent = s.shapes[i].Get("Parent");
      ASSERT_TRUE(SameValue(parent, s.parents[i]));
      ExpectNear(Down(parent, s.shapes[i], ToPose(Up(s.shapes[i], p))), p, where);
      Pose q = p;
      for (Variant cur = s.shapes[i]; !SameValue(cur, root); cur = cur.Get("Parent")) q = ToPose(Up(cur, q));
      ExpectNear(Down(root, s.shapes[i], q), p, where + " from the root");
    }
  }
}

TEST(Placement, AnchorLandsOnThePositionAndTheMatrixAgreesWithTheTransform) {
  std::mt19937 rng(7);
  RandomScene s = MakeRandomScene(rng, 30);
  Variant page = s.app.Get("ActivePage");
  page.Let("UnitsScale", 2, 0.3048);  // feet
  const double toCm = 0.3048 / 0.01;
  for (const Variant& shape : s.shapes) {
    // The anchor point (local, page units) is put at the position point.
    const Pose anchor{
        GetVar(shape, 5, 1) * toCm, GetVar(shape, 5, 2) * toCm, GetVar(shape, 5, 3) * toCm, 0, 0, 0, 0};
    const std::vector<double> at = Up(shape, anchor);
    for (int k = 0; k < 3; ++k)
      EXPECT_NEAR(at[static_cast<std::size_t>(k)], GetVar(shape, 4, k + 1) * toCm, 1e-9);

    // The matrix (column by column, translation in metres) maps points as
    // GetPointTransformUp does, and its linear part is orthonormal with
    // determinant -1 exactly when the shape is mirrored.
    const std::array<double, 16> x = Xform(shape);
    const Pose p = RandomPose(rng);
    const std::vector<double> u = Up(shape, p);
    const double pm[3] = {p.x / 100, p.y / 100, p.z / 100};
    for (int r = 0; r < 3; ++r) {
      double v = x[static_cast<std::size_t>(12 + r)];
      for (int c = 0; c < 3; ++c) v += x[static_cast<std::size_t>(4 * c + r)] * pm[c];
      EXPECT_NEAR(v * 100, u[static_cast<std::size_t>(r)], 1e-9);
    }
    EXPECT_EQ(x[3], 0.0);
    EXPECT_EQ(x[15], 1.0);
    const double det = x[0] * (x[5] * x[10] - x[9] * x[6]) - x[4] * (x[1] * x[10] - x[9] * x[2]) +
                       x[8] * (x[1] * x[6] - x[5] * x[2]);
    EXPECT_NEAR(det, GetVar(shape, 4, 9) != 0 ? -1.0 : 1.0, 1e-12);
  }
}

TEST(Placement, ShiftAndRotate) {
  std::mt19937 rng(11);
  RandomScene s = MakeRandomScene(rng, 20);
  std::uniform_real_distribution<double> d(-20.0, 20.0);
  for (const Variant& shape : s.shapes) {
    const Pose probe = RandomPose(rng);
    const std::vector<double> before = Up(shape, probe);
    // Move the anchor by d (page units, millimetres here) and shift the shape
    // by the same d in centimetres along its own axes, as an anchor reset
    // does: the geometry stays.
    const double delta[3] = {d(rng), d(rng), d(rng)};
    for (int k = 0; k < 3; ++k) SetVar(shape, 5, k + 1, GetVar(shape, 5, k + 1) + delta[k]);
    shape.Call("Shift", delta[0] / 10, delta[1] / 10, delta[2] / 10);
    ExpectNear(Up(shape, probe), ToPose(before), "shift");

    // Along the parent's axes the move is the same whatever the orientation.
    const std::vector<double> moved = Up(shape, probe);
    shape.Call("Shift", 1.5, -2.0, 0.25, true);
    const std::vector<double> after = Up(shape, probe);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(after[k] - moved[k], (std::array{1.5, -2.0, 0.25})[k], 1e-9);

    // Rotate about the parent's Z axis through the position point: the
    // position stays, every orientation turns by the rotation in front.
    const std::array<double, 16> m0 = Xform(shape);
    const double p0[3] = {GetVar(shape, 4, 1), GetVar(shape, 4, 2), GetVar(shape, 4, 3)};
    shape.Call("Rotate", 3, 0.5);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(GetVar(shape, 4, k + 1), p0[k], 1e-9);
    const std::array<double, 16> m1 = Xform(shape);
    const Mat3 r = Rot(0, 0, 1, 0.5);
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j) {
        double v = 0;
        for (int k = 0; k < 3; ++k) v += r.m[i][k] * m0[static_cast<std::size_t>(4 * j + k)];
        EXPECT_NEAR(m1[static_cast<std::size_t>(4 * j + i)], v, 1e-12);
      }
  }
}

TEST(Placement, AxisAngleConversionIsExactAtTheSpecialAngles) {
  std::mt19937 rng(3);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  const double angles[] = {0.0, 1e-9, 0.3, kPi, 3.141592653589793, 3.14159265, 6.0, -2.0};
  for (double a : angles) {
    for (int k = 0; k < 50; ++k) {
      const Mat3 r = Rot(u(rng), u(rng), u(rng), a);
      Vec3 axis;
      double angle = 0;
      RefHost::ToAxisAngle(r, axis, angle);
      EXPECT_GE(angle, 0.0);
      EXPECT_LE(angle, 3.141592653589794);
      ExpectSameRotation(Rot(axis.x, axis.y, axis.z, angle), r, "angle " + std::to_string(a));
    }
  }
  // A shape without a rotation passes a zero axis through unchanged.
  Variant app(RefHost::NewApplication());
  Variant part = AddShape(Root(app), 3);
  const std::vector<double> u0 = Up(part, {1, 2, 3, 0, 0, 0, 0});
  EXPECT_EQ(u0, (std::vector<double>{1, 2, 3, 0, 0, 0, 0}));
}

TEST(Placement, ArgumentsTheHostRefuses) {
  Variant app(RefHost::NewApplication());
  Variant root = Root(app);
  Variant a = AddShape(root, 1);
  Variant b = AddShape(root, 3);
  EXPECT_EQ(ErrorOf([&] { Down(a, b, {0, 0, 0, 0, 0, 0, 0}); }), 5);  // not below a
  EXPECT_EQ(ErrorOf([&] { Down(a, Variant(nullptr), {0, 0, 0, 0, 0, 0, 0}); }), 5);
  EXPECT_EQ(ErrorOf([&] { Down(a, app.Get("ActivePage"), {0, 0, 0, 0, 0, 0, 0}); }), 13);
  SetVar(a, 4, 1, 1e308);  // millimetres: 1e307 cm
  EXPECT_EQ(ErrorOf([&] { Up(a, {1.75e308, 0, 0, 0, 0, 0, 0}); }), 6);
  EXPECT_EQ(ErrorOf([&] { a.Call("Rotate", 4, 1.0); }), 5);
  std::vector<Variant> wrong = {Variant(2.5)};
  EXPECT_EQ(ErrorOf([&] { a.Invoke("GetLocalToParentXform", CallKind::Method, wrong); }), 13);
  // A caller's 16-element array is filled in place, keeping its bounds.
  std::vector<Variant> fixed = {Variant(SafeArray::Vector(VarType::Double, 1, 16))};
  a.Invoke("GetLocalToParentXform", CallKind::Method, fixed);
  EXPECT_EQ(fixed[0].AsArray().LBound(1), 1);
  EXPECT_EQ(fixed[0].AsArray().Get(16).AsDouble(), 1.0);
}
