// TKVector4d through its member table, against literal models where the
// class takes a faster route.
#include "GeometrySupport.hpp"
#include "automation/Catalogue.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

Ref<Object> NewVector(double x, double y, double z) {
  Ref<Object> v = CreateObject("TessarkAO.TKVector4d");
  Call(v, "SetPosition", {x, y, z});
  return v;
}

double Get(const Ref<Object>& o, std::string_view name, std::vector<Variant> args = {}) {
  return ToDouble(Call(o, name, std::move(args), CallKind::Get));
}

// X, Y, Z and W, read through the member table.
Xyzw Read(const Ref<Object>& v) { return {Get(v, "X"), Get(v, "Y"), Get(v, "Z"), Get(v, "Value", {3})}; }

}  // namespace

TEST(Vector, CleanUpFollowsEpsilonStrictly) {
  Ref<Object> v = CreateObject("TessarkAO.TKVector4d");
  EXPECT_EQ(Get(v, "Epsilon"), 1e-9);
  Call(v, "SetPosition", {1e-10, 2.0, -5e-10});
  EXPECT_EQ(Read(v), (Xyzw{0, 2, 0, 0}));
  Call(v, "SetPosition", {1e-9, 0.0, -1e-9});  // equal to Epsilon: kept
  EXPECT_EQ(Read(v), (Xyzw{1e-9, 0, -1e-9, 0}));
  Call(v, "SetPosition", {0.005, 1.0, -0.009});
  Call(v, "Epsilon", {0.01}, CallKind::Let);
  EXPECT_EQ(Read(v), (Xyzw{0, 1, 0, 0}));
  // The Value and X lets run no clean-up; Zero clears W as well.
  Call(v, "Value", {3, 1e-12}, CallKind::Let);
  Call(v, "X", {1e-12}, CallKind::Let);
  EXPECT_EQ(Read(v), (Xyzw{1e-12, 1, 0, 1e-12}));
  EXPECT_EQ(Get(v, "Value", {0}), 1e-12);
  Call(v, "Zero");
  EXPECT_EQ(Read(v), (Xyzw{}));
}

TEST(Vector, AnglesUseTheLibraryPi) {
  Ref<Object> x = NewVector(1, 0, 0);
  EXPECT_EQ(ToDouble(Call(x, "AngleBetween", {NewVector(0, 1, 0)})), 90.00000000000009);
  EXPECT_EQ(ToDouble(Call(x, "AngleBetween", {NewVector(-1, 0, 0)})), 0.0);  // opposite: 0
  EXPECT_EQ(ToDouble(Call(x, "AngleBetween", {NewVector(0, 0, 0)})), 0.0);
  EXPECT_EQ(ToDouble(Call(x, "AngleBetween", {NewVector(1, 1, 0)})), std::atan(1.0) * (180 / kPi));
  EXPECT_EQ(ToLong(Call(x, "GetColinearStatus", {NewVector(-3, 0, 0)})), 2);
  EXPECT_EQ(ToLong(Call(x, "GetColinearStatus", {NewVector(2, 1e-12, 0)})), 1);
  EXPECT_EQ(ToLong(Call(x, "GetColinearStatus", {NewVector(0, 0, 0)})), 0);
  EXPECT_EQ(ToLong(Call(x, "GetColinearStatus", {NewVector(1, 1, 0)})), 0);
  // Perpendicularity is judged on the unnormalised dot product (the 1e-13
  // is set without the clean-up that SetPosition would run).
  EXPECT_FALSE(ToBoolean(Call(NewVector(1e5, 0, 0), "IsPerpendicular", {Vec(1e-13, 1, 0)})));
  EXPECT_TRUE(ToBoolean(Call(x, "IsPerpendicular", {NewVector(1e-9, 1, 0)})));
  EXPECT_EQ(Read(Call(x, "Cross", {NewVector(0, 1, 0)}).AsObject()), (Xyzw{0, 0, 1, 0}));
}

// (The senses of the axis rotations are the matrix's, checked with it; the
// vector's products with it are compared below.)
TEST(Vector, MatrixMovesKeepTheirConventions) {
  auto w = Vec(1, 2, 3, 5);
  w->Shift(1, 2, 3);  // W takes no part and is kept
  EXPECT_EQ(Of(w), (Xyzw{2, 4, 6, 5}));
  w->Shift(1e-10, 0, 0);  // below the temporary matrix's tolerance
  EXPECT_EQ(Of(w), (Xyzw{2, 4, 6, 5}));
  w->Rotate(7, 30);  // no such axis: the zero matrix
  EXPECT_EQ(Of(w), (Xyzw{0, 0, 0, 0}));

  // The caller's axis is normalised in place by the rotation.
  auto axis = Vec(0, 0, 2);
  auto p = Vec(1, 0, 0);
  p->RotateAboutArbitraryAxis(axis, 90);
  EXPECT_EQ(Of(axis), (Xyzw{0, 0, 1, 0}));
  EXPECT_EQ(Of(p), (Xyzw{0, 1, 0, 0}));
}

TEST(Vector, ProductsMatchTheLiteralSum) {
  Random rnd(11);
  for (int n = 0; n < 500; ++n) {
    auto v = rnd.Vector();
    const Vec4 before = v->Components();
    const double degrees = rnd.Uniform(-400, 400);
    const int axis = n % 4;  // 0 is no axis
    auto axisVector = rnd.Vector();
    TKMatrix4d m;
    if (axis == 0) {
      m.SetRotationAboutArbitraryAxis(Vec(axisVector->X(), axisVector->Y(), axisVector->Z()), degrees, false);
      v->RotateAboutArbitraryAxis(axisVector, degrees);
    } else {
      m.SetRotation(axis, degrees, false);
      v->Rotate(axis, degrees);
    }
    for (int j = 0; j < 4; ++j) {
      double sum = before.c[0] * m.Elements().e[0][j];
      for (int k = 1; k < 4; ++k) sum = sum + before.c[k] * m.Elements().e[k][j];
      EXPECT_EQ(v->Components().c[j], std::abs(sum) < 1e-9 ? 0.0 : sum);
    }
  }
}

TEST(Vector, MoveAlongVectorAndErrors) {
  auto v = Vec(1, 1, 1, 7);
  v->MoveAlongVector(Vec(0, 3, 4), 10);
  EXPECT_EQ(Of(v), (Xyzw{1, 7, 9, 7}));
  EXPECT_EQ(ErrorOf([&] { v->MoveAlongVector(Vec(0, 0, 0), 2); }), 11);
  EXPECT_EQ(ErrorOf([&] { v->MoveAlongVector(Vec(0, 0, 0), 0); }), 6);  // 0 / 0
  EXPECT_EQ(Of(v), (Xyzw{1, 7, 9, 7}));

  Ref<Object> o = v;
  for (int i : {4, -1}) EXPECT_EQ(ErrorOf([&] { Call(o, "Value", {i}, CallKind::Get); }), 9) << i;
  EXPECT_EQ(ErrorOf([&] { Call(o, "Value", {4, 1.0}, CallKind::Let); }), 9);
  EXPECT_EQ(ErrorOf([&] { Call(o, "Dot", {1.0}); }), 424);
  EXPECT_EQ(ErrorOf([&] { Call(o, "Dot", {Variant::Nothing()}); }), 91);
  EXPECT_EQ(ErrorOf([&] { Call(o, "Stretch", {1e300, 1e300, 1e300}); }), 0);
  EXPECT_EQ(ErrorOf([&] { Call(o, "Stretch", {1e300, 1e300, 1e300}); }), 6);
  EXPECT_EQ(v->Components().c[0], 1e300);  // the overflowing product changed nothing
}

TEST(Vector, AcquireMatrixCopiesOnlyIntoTheRightShape) {
  auto v = Vec(1, 2, 3, 4);
  Variant right = Variant(SafeArray::Vector(VarType::Double, 0, 3));
  Variant longer = Variant(SafeArray::Vector(VarType::Double, 0, 4));
  Variant square = Variant(SafeArray::Matrix(VarType::Double, 0, 3, 0, 3));
  Variant oneBased = Variant(SafeArray::Vector(VarType::Variant, 1, 3));
  Variant scalar = Variant(5.0);
  for (Variant* a : {&right, &longer, &square, &oneBased, &scalar}) v->AcquireMatrix(*a);
  EXPECT_EQ(ToDouble(right.AsArray().Get(3)), 4.0);
  EXPECT_EQ(ToDouble(longer.AsArray().Get(3)), 0.0);
  EXPECT_EQ(ToDouble(square.AsArray().Get(0, 0)), 0.0);
  EXPECT_EQ(ToDouble(oneBased.AsArray().Get(1)), 2.0);  // same upper bound: index 0 is skipped
  EXPECT_EQ(scalar.AsDouble(), 5.0);
}

TEST(Vector, ForeignVectorsAreCalledByName) {
  auto inner = Vec(0, 3, 4, 9);
  inner->LetEpsilon(0.5);
  auto foreign = MakeRef<Foreign>(inner);
  auto v = Vec(1, 0, 0);
  EXPECT_EQ(v->Dot(foreign), 0.0);
  EXPECT_EQ(foreign->calls, (std::vector<std::string>{"X", "Y", "Z"}));
  v->Copy(foreign);
  EXPECT_EQ(std::make_pair(Of(v), v->Epsilon()), std::make_pair(Xyzw{0, 3, 4, 9}, 0.5));
  EXPECT_EQ(foreign->calls.back(), "Epsilon");
  // Copy has no handler: the components stay copied when Epsilon is missing.
  auto noEpsilon = MakeRef<Foreign>(Vec(5, 6, 7), std::set<std::string>{"Epsilon"});
  EXPECT_EQ(ErrorOf([&] { v->Copy(noEpsilon); }), 438);
  EXPECT_EQ(v->Components().c[0], 5.0);
  EXPECT_EQ(Vec(1, 0, 0)->AngleBetween(MakeRef<Foreign>(Vec(0, 2, 0))), 90.00000000000009);
}
