// TKTransform: the documented values, the live local axes, and the frame
// matrix kept equal to the placement of the position and the local axes
// through random sequences of every member.
#include "GeometrySupport.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

// The placement the frame matrix must hold: rows 0 to 2 the local axes, row
// 3 the position.
Mat4 Placement(const TKTransform& t) {
  Mat4 m = MatrixMath::Identity();
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) m.e[i][j] = t.AxisVector(i + 1)->Components().c[j];
  t.GetPosition(m.e[3][0], m.e[3][1], m.e[3][2]);
  return m;
}

// The stored rotation: axis and angle.
Xyzw RotationOf(const TKTransform& t) {
  Xyzw r;
  t.GetRotation(r[0], r[1], r[2], r[3]);
  return r;
}

std::array<double, 3> PositionOf(const TKTransform& t) {
  std::array<double, 3> p;
  t.GetPosition(p[0], p[1], p[2]);
  return p;
}

}  // namespace

TEST(Transform, DocumentedValues) {
  auto t = MakeRef<TKTransform>();
  EXPECT_EQ(RotationOf(*t), (Xyzw{0, 0, 0, 0}));
  EXPECT_EQ(Of(t->AxisVector(1)), (Xyzw{1, 0, 0, 0}));
  t->SetRotation(0, 0, 2, 90);
  EXPECT_EQ(RotationOf(*t), (Xyzw{0, 0, 1, 90}));
  EXPECT_EQ(Of(t->AxisVector(1)), (Xyzw{0, 1, 0, 0}));
  t->ShiftLocal(5, 0, 0);
  EXPECT_EQ(PositionOf(*t), (std::array<double, 3>{0, 5, 0}));
  t->SetPosition(1e-12, 1, 2);
  EXPECT_EQ(PositionOf(*t), (std::array<double, 3>{0, 1, 2}));
  EXPECT_EQ(std::make_pair(t->AxisVector(4)->Length(), Of(t->AxisVector(1))),
            std::make_pair(0.0, Xyzw{0, 1, 0, 0}));

  // RotateAboutLocalAxis turns the axes but not the stored rotation.
  t->RotateAboutLocalAxis(3, 90);
  EXPECT_EQ(RotationOf(*t), (Xyzw{0, 0, 1, 90}));
  EXPECT_EQ(t->AxisVector(1)->X(), -1.0);
}

TEST(Transform, LocalAxesAreLiveAndShiftLocalRaisesAlongAZeroAxis) {
  auto t = MakeRef<TKTransform>();
  t->AxisVector(2)->SetPosition(0, 0, 2);  // the transform's own axis changes
  t->ShiftLocal(0, 3, 0);
  EXPECT_EQ(PositionOf(*t), (std::array<double, 3>{0, 0, 3}));
  t->AxisVector(1)->Zero();
  EXPECT_EQ(ErrorOf([&] { t->ShiftLocal(1, 0, 0); }), 11);
  EXPECT_EQ(ErrorOf([&] { t->ShiftLocal(0, 0, 0); }), 6);
  EXPECT_EQ(PositionOf(*t), (std::array<double, 3>{0, 0, 3}));
  Ref<Object> o = t;
  EXPECT_EQ(ErrorOf([&] { Call(o, "InheritTransform", {Variant::Nothing()}); }), 91);
}

TEST(Transform, FrameMatrixFollowsEveryMember) {
  for (std::uint64_t seed = 1; seed <= 6; ++seed) {
    Random rnd(seed);
    auto t = MakeRef<TKTransform>();
    for (int step = 0; step < 150; ++step) {
      const int op = static_cast<int>(rnd.Uniform(0, 7));
      const double a = rnd.Uniform(-10, 10), b = rnd.Uniform(-10, 10), c = rnd.Uniform(-10, 10);
      switch (op) {
        case 0: t->SetPosition(a, b, c); break;
        case 1: t->Shift(a, b, c); break;
        case 2: t->ShiftLocal(a, b, c); break;
        case 3: t->RotateAboutLocalAxis(1 + step % 3, rnd.Uniform(-360, 360)); break;
        case 4: {
          auto source = MakeRef<TKTransform>();
          source->SetPosition(a, b, c);
          source->SetRotation(b, c, a, rnd.Uniform(-360, 360));
          auto foreign = MakeRef<Foreign>(source);
          t->InheritTransform(foreign);
          EXPECT_EQ(foreign->calls, (std::vector<std::string>{"GetPosition", "GetRotation"}));
          break;
        }
        default: {
          const double degrees = rnd.Uniform(-360, 360);
          t->SetRotation(a, b, c, degrees);
          // Exactly the placement of position, stored axis and angle.
          const Xyzw r = RotationOf(*t);
          const auto p = PositionOf(*t);
          TKMatrix4d model;
          model.SetRotationFromPointAxisAndAngle(Vec(p[0], p[1], p[2]), Vec(r[0], r[1], r[2]), r[3]);
          EXPECT_TRUE(Same(t->FrameMatrix().Elements(), model.Elements()));
        }
      }
      ASSERT_TRUE(Near(t->FrameMatrix().Elements(), Placement(*t), 1e-9)) << seed << " " << step;
    }
  }
}
