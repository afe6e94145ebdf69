// TKMatrix4d: documented values, the fast products against the literal sums,
// and properties of the axis-angle, point-and-vector and plane-frame members
// over many seeded random inputs.
#include "GeometrySupport.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

Vec4 Point(const TKMatrix4d& m, double x, double y, double z) {
  return Components(m.MultiplyByPoint(Vec(x, y, z)));
}

Mat4 Diagonal(double d) {
  Mat4 m{};
  for (int i = 0; i < 4; ++i) m.e[i][i] = d;
  return m;
}

void ExpectNear3(const Vec4& v, double x, double y, double z, double tolerance = 1e-9) {
  const double expected[] = {x, y, z};
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(v.c[i], expected[i], tolerance) << "component " << i;
}

Vec4 Unit(const Vec4& v) {
  const double n = Norm(v.c[0], v.c[1], v.c[2]);
  return Vec4{{v.c[0] / n, v.c[1] / n, v.c[2] / n, 0.0}};
}

}  // namespace

TEST(Matrix, ConstructorsAndTheirComposition) {
  TKMatrix4d m;
  EXPECT_EQ(m.Determinant(), 1.0);
  m.SetRotation(3, 90, false);
  m.SetTranslation(1, 2, 3, false);  // overwrites row 3 only
  ExpectNear3(Point(m, 0, 0, 0), 1, 2, 3, 0);
  ExpectNear3(Components(m.MultiplyByVector(Vec(0, 0, 0))), 0, 0, 0, 0);
  ExpectNear3(Point(m, 1, 0, 0), 1, 3, 3, 0);  // turned first, then moved: exact after clean-up

  TKMatrix4d x, y;
  x.SetRotation(1, 90, false);
  ExpectNear3(Point(x, 0, 1, 0), 0, 0, -1, 0);
  y.SetRotation(2, 90, false);
  ExpectNear3(Point(y, 0, 0, 1), 1, 0, 0, 0);
  ExpectNear3(Point(y, 1, 0, 0), 0, 0, -1, 0);

  // Rotation and scaling append, translation prepends: both give T · R here.
  TKMatrix4d a, b;
  a.SetTranslation(5, 0, 0, false);
  a.SetRotation(3, 90, true);
  b.SetRotation(3, 90, false);
  b.SetTranslation(5, 0, 0, true);
  for (const TKMatrix4d* t : {&a, &b}) ExpectNear3(Point(*t, 1, 0, 0), 0, 6, 0, 0);
  a.SetScaling(2, 2, 2, true);
  ExpectNear3(Point(a, 1, 0, 0), 0, 12, 0, 0);
  a.SetScaling(2, 2, 2, false);  // replaces everything, translation included
  ExpectNear3(Point(a, 0, 0, 0), 0, 0, 0, 0);

  Ref<Object> o = MakeRef<TKMatrix4d>();
  for (auto [i, j] : {std::pair{4, 0}, std::pair{0, 4}, std::pair{-1, 0}})
    EXPECT_EQ(ErrorOf([&] { Call(o, "Value", {i, j}, CallKind::Get); }), 9) << i << ", " << j;
  Call(o, "SetRotation", {3, 90});  // ApplyToCurrent may be left out
  EXPECT_EQ(ToDouble(Call(o, "Value", {0, 1}, CallKind::Get)), 1.0);
}

TEST(Matrix, ProductsEqualTheLiteralSumsBitForBit) {
  Random rnd(7);
  for (int n = 0; n < 300; ++n) {
    Mat4 a = rnd.Matrix(), b = rnd.Matrix();
    if (n % 3 == 0) {  // zeros and negative zeros take part too
      a.e[1][0] = -1.0;
      a.e[1][1] = a.e[1][2] = a.e[1][3] = 0.0;
      b.e[0][2] = 0.0;
    }
    const Mat4 expected = LiteralProduct(a, b);
    auto ma = Mat(a);
    EXPECT_TRUE(Same(ma->MultiplyByMatrix(Mat(b))->Elements(), expected));
    auto foreign = MakeRef<Foreign>(Mat(b));
    EXPECT_TRUE(Same(ma->MultiplyByMatrix(foreign)->Elements(), expected));
    EXPECT_EQ(foreign->calls, std::vector<std::string>{"AcquireMatrix"});

    Variant c;
    ma->MultiplyTwoMatrices(MatrixMath::MatrixArray(a), MatrixMath::MatrixArray(b), c);
    EXPECT_TRUE(Same(ArrayMatrix(c), expected));

    // Points, with zeros in the matrix and in the point taking part.
    Mat4 sparse = a;
    sparse.e[n % 3][0] = 0.0;
    const Vec4 p{{rnd.Uniform(-5, 5), n % 2 ? 0.0 : 1e-12, rnd.Uniform(-5, 5), 1.0}};
    auto point = Vec(p.c[0], p.c[1], p.c[2], p.c[3]);
    auto ms = Mat(sparse);
    EXPECT_TRUE(Same(Components(ms->MultiplyByPoint(point)), LiteralPoint(sparse, p, true)));
    EXPECT_TRUE(
        Same(Components(ms->MultiplyByVector(MakeRef<Foreign>(point))), LiteralPoint(sparse, p, false)));
  }
  auto big = Mat(Diagonal(1e200));
  EXPECT_EQ(ErrorOf([&] { big->MultiplySelfByMatrix(Ref<Object>(Mat(Diagonal(1e200)))); }), 6);
  EXPECT_EQ(big->Elements().e[0][0], 1e200);
}

TEST(Matrix, InvertScalesSingularMatricesAndInvertsRandomOnes) {
  TKMatrix4d zero;
  zero.Zero();
  EXPECT_EQ(zero.Invert(), 0.0);
  EXPECT_TRUE(Same(zero.Elements(), Mat4{}));

  // Row 3 is rows 0 and 1 added; noughts and ones keep the determinant an exact 0, scaled or not.
  auto s = Mat(Mat4{{{1, 0, 1, 0}, {0, 1, 0, 1}, {1, 1, 0, 0}, {1, 1, 1, 1}}});
  ASSERT_EQ(s->Determinant(), 0.0);
  EXPECT_EQ(s->Invert(), 0.0);
  EXPECT_EQ(s->Elements().e[1][1], 100000);  // left scaled

  // A determinant lost to underflow: the scaled retry still inverts.
  auto tiny = Mat(Diagonal(1e-82));
  EXPECT_EQ(tiny->Determinant(), 0.0);
  EXPECT_NEAR(tiny->Invert(), 1e-308, 1e-315);
  EXPECT_NEAR(tiny->Elements().e[2][2] / 1e82, 1.0, 1e-12);

  Random rnd(5);
  for (int n = 0; n < 300; ++n) {
    Mat4 m = rnd.Matrix();
    for (int i = 0; i < 4; ++i) m.e[i][i] += 25.0;  // well conditioned
    auto inverse = Mat(m);
    const double det = inverse->Determinant();
    EXPECT_EQ(inverse->Invert(), det);
    EXPECT_TRUE(Near(LiteralProduct(inverse->Elements(), m), MatrixMath::Identity(), 1e-12));
    EXPECT_TRUE(Near(LiteralProduct(Mat(m)->Adjoint()->Elements(), m), Diagonal(det), std::abs(det) * 1e-13));
  }
}

TEST(Matrix, EqualityAndLateBoundCopies) {
  auto a = MakeRef<TKMatrix4d>();
  Mat4 e = MatrixMath::Identity();
  e.e[0][0] = e.e[0][1] = 1.0000000005;
  a->Assign(MatrixMath::Identity(), kDefaultEpsilon);
  a->LetValue(0, 1, 1.0);
  EXPECT_TRUE(a->IsMatrixEqual(Mat(e)));
  e.e[0][1] = 1.000000002;
  auto foreign = MakeRef<Foreign>(Mat(e));
  EXPECT_FALSE(a->IsMatrixEqual(foreign));
  EXPECT_EQ(foreign->calls.size(), 2u);  // stops at the first element that differs

  // CopyFromIUnknown never raises; each missing member skips its own step.
  auto source = Mat(Diagonal(2.0));
  source->LetEpsilon(0.25);
  auto m = MakeRef<TKMatrix4d>();
  Ref<Object> mo = m;
  Call(mo, "CopyFromIUnknown",
       {Ref<Object>(MakeRef<Foreign>(source, std::set<std::string>{"AcquireMatrix"}))});
  EXPECT_EQ(std::make_pair(m->Elements().e[0][0], m->Epsilon()), std::make_pair(1.0, 0.25));
  m->LetEpsilon(1e-9);
  Call(mo, "Copy", {Ref<Object>(MakeRef<Foreign>(source, std::set<std::string>{"Epsilon"}))});
  EXPECT_EQ(std::make_pair(m->Elements().e[0][0], m->Epsilon()), std::make_pair(2.0, 1e-9));
  for (Variant junk :
       {Variant::Nothing(), Variant(3.0), Variant("text"), Variant(), Variant(MakeRef<TK2DLine>())})
    EXPECT_EQ(ErrorOf([&] { Call(mo, "CopyFromIUnknown", {junk}); }), 0) << junk.TypeName();
  EXPECT_EQ(m->Elements().e[3][3], 2.0);
}

TEST(Matrix, AxisAndAngleRebuildTheRotation) {
  Random rnd(13);
  std::vector<double> angles = {0, 90, 180, -180, 179.99999, 1e-3, 360, -90};
  for (int n = 0; n < 400; ++n) angles.push_back(rnd.Uniform(-720, 720));
  for (double degrees : angles) {
    TKMatrix4d m;
    m.SetRotationAboutArbitraryAxis(rnd.Vector(), degrees, false);
    double x, y, z, back;
    m.GetAxisAndAngle(x, y, z, back);
    EXPECT_NEAR(Norm(x, y, z), 1.0, 1e-12);
    EXPECT_GE(back, 0.0);
    EXPECT_LE(back, 180.00000001);
    TKMatrix4d rebuilt;
    rebuilt.SetRotationAboutArbitraryAxis(Vec(x, y, z), back, false);
    EXPECT_TRUE(Near(m.Elements(), rebuilt.Elements(), 1e-9)) << degrees;
    auto axis = Vec(9, 9, 9, 4);
    double again;
    m.GetVectorAxisAndAngle(axis, again);
    EXPECT_EQ((Xyzw{Of(axis)[0], Of(axis)[1], Of(axis)[2], again}), (Xyzw{x, y, z, back}));
  }
  Xyzw identity;
  TKMatrix4d().GetAxisAndAngle(identity[0], identity[1], identity[2], identity[3]);
  EXPECT_EQ(identity, (Xyzw{0, 0, 1, 0}));
}

TEST(Matrix, PlacementCarriesPointsAndTurnsDirections) {
  // The placement turns about the axis through the origin, then moves.
  TKMatrix4d place;
  auto axis = Vec(0, 0, 3);
  place.SetRotationFromPointAxisAndAngle(Vec(5, 0, 0), axis, 90);
  ExpectNear3(Point(place, 0, 0, 0), 5, 0, 0, 0);
  ExpectNear3(Point(place, 1, 0, 0), 5, 1, 0, 0);
  EXPECT_EQ(axis->Components().c[2], 3.0);  // the caller's axis is left alone

  Random rnd(17);
  for (int n = 0; n < 400; ++n) {
    auto fromP = rnd.Vector(), toP = rnd.Vector(), fromV = rnd.Vector(1);
    Ref<TKVector4d> toV = rnd.Vector(1);
    if (n % 5 == 0) toV = Vec(-2 * fromV->X(), -2 * fromV->Y(), -2 * fromV->Z());
    if (n % 5 == 1) toV = Vec(-fromV->X() + 1e-9, -fromV->Y(), -fromV->Z() + 1e-9);
    TKMatrix4d m;
    m.SetRotationFromPtAndVecToPtAndVec(fromP, fromV, toP, toV);
    const Vec4& f = fromP->Components();
    // The clean-up of the matrix (1e-9 on each element) bounds the accuracy.
    ExpectNear3(Point(m, f.c[0], f.c[1], f.c[2]), toP->X(), toP->Y(), toP->Z(), 1e-7);
    const Vec4 target = Unit(toV->Components());
    ExpectNear3(Unit(Components(m.MultiplyByVector(fromV))), target.c[0], target.c[1], target.c[2], 1e-8);
    EXPECT_NEAR(m.Determinant(), 1.0, 1e-12);
  }
}

TEST(Matrix, PlaneFramesGoOntoEachOther) {
  Random rnd(19);
  for (int n = 0; n < 300; ++n) {
    auto a1 = rnd.Vector(), t1 = rnd.Vector(), a2 = rnd.Vector(), t2 = rnd.Vector();
    auto p1 = rnd.Vector(), p2 = rnd.Vector();
    TKMatrix4d xy, frames, placed;
    xy.SetRotationFromAxisAndPlaneToXYPlane(a1, t1);
    ExpectNear3(Unit(Components(xy.MultiplyByVector(a1))), 1, 0, 0);
    const Vec4 tx = Components(xy.MultiplyByVector(t1));
    EXPECT_NEAR(tx.c[2], 0.0, 1e-9);  // the tangent lies in the XY plane
    EXPECT_GT(tx.c[1], 0.0);

    frames.SetRotationFromAxisAndPlaneToAxisAndPlane(a1, t1, a2, t2);
    placed.SetRotationFromPtAxisAndPlaneToPtAxisAndPlane(p1, a1, t1, p2, a2, t2);
    // The "from" frame lands on the "to" frame: compare with the to frame's
    // own XY-plane rotation.
    TKMatrix4d toXY, composed;
    toXY.SetRotationFromAxisAndPlaneToXYPlane(a2, t2);
    frames.MultiplyByMatrixInto(toXY, composed);
    EXPECT_TRUE(Near(composed.Elements(), xy.Elements(), 1e-9));
    const Vec4& p = p1->Components();
    ExpectNear3(Point(placed, p.c[0], p.c[1], p.c[2]), p2->X(), p2->Y(), p2->Z(), 1e-7);
    EXPECT_NEAR(placed.Determinant(), 1.0, 1e-12);
  }
  TKMatrix4d unchanged;
  unchanged.SetScaling(2, 2, 2, false);
  unchanged.SetRotationFromAxisAndPlaneToXYPlane(Vec(1, 0, 0), Vec(3, 0, 0));  // tangent along the axis
  unchanged.SetRotationFromAxisAndPlaneToXYPlane(Vec(0, 0, 0), Vec(0, 1, 0));
  EXPECT_EQ(unchanged.Elements().e[0][0], 2.0);
}
