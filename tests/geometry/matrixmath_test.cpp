// The MatrixMath array procedures (never raising, shape rules) and ArcCos.
#include "GeometrySupport.hpp"

#include "automation/Catalogue.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

Variant Filled(std::int32_t lb1, std::int32_t ub1, std::int32_t lb2, std::int32_t ub2, double start,
               VarType type = VarType::Double) {
  SafeArray a = SafeArray::Matrix(type, lb1, ub1, lb2, ub2);
  for (std::int32_t i = lb1; i <= ub1; ++i)
    for (std::int32_t j = lb2; j <= ub2; ++j) a.Put(i, j, Variant(start + 10 * i + j));
  return Variant(std::move(a));
}

}  // namespace

TEST(MatrixMath, SetArrayEqualCopiesOnlyMatchingShapes) {
  Variant dest = Filled(0, 3, 0, 3, 0);
  const Variant before = dest;
  for (const Variant& src : {Filled(0, 3, 0, 2, 100), Filled(0, 2, 0, 3, 100), Variant(1.0),
                             Variant(SafeArray::Vector(VarType::Double, 0, 3))}) {
    MatrixMath::SetArrayEqual(dest, src);
    EXPECT_TRUE(SameValue(dest, before));
  }
  // Same upper bounds, other lower bounds: elements below a lower bound are
  // skipped, the rest copied; elements that do not convert are skipped too.
  Variant src = Filled(1, 3, 0, 3, 100, VarType::Variant);
  src.AsArray().Put(2, 2, Variant("x"));
  MatrixMath::SetArrayEqual(dest, src);
  EXPECT_EQ(ToDouble(dest.AsArray().Get(0, 0)), 0.0);
  EXPECT_EQ(ToDouble(dest.AsArray().Get(1, 3)), 113.0);
  EXPECT_EQ(ToDouble(dest.AsArray().Get(2, 2)), 22.0);
  EXPECT_EQ(MatrixMath::CountDimensions(dest), 2);
  EXPECT_EQ(MatrixMath::CountDimensions(Variant(2.0)), 0);
}

TEST(MatrixMath, MultiplyArraysShapesAndSilences) {
  // 1 × 3 row times 3 × 2 (bounds from 0): a one-dimensional result.
  SafeArray row = SafeArray::Vector(VarType::Double, 0, 2);
  for (std::int32_t k = 0; k < 3; ++k) row.Put(k, Variant(k + 1.0));
  Variant b = Filled(0, 2, 0, 1, 0);  // B(k, j) = 10k + j
  Variant c;
  MatrixMath::MultiplyArrays(Variant(row), b, c);
  ASSERT_EQ(MatrixMath::CountDimensions(c), 1);
  EXPECT_EQ(c.AsArray().UBound(1), 1);
  EXPECT_EQ(ToDouble(c.AsArray().Get(0)), 1 * 0 + 2 * 10 + 3 * 20.0);
  EXPECT_EQ(ToDouble(c.AsArray().Get(1)), 1 * 1 + 2 * 11 + 3 * 21.0);

  Variant untouched = Variant("keep");
  MatrixMath::MultiplyArrays(Filled(0, 1, 0, 3, 0), b, untouched);  // A's columns exceed B's rows
  MatrixMath::MultiplyArrays(b, Variant(row), untouched);           // B is one-dimensional
  EXPECT_EQ(untouched.AsString(), "keep");
  SafeArray fixed = SafeArray::Vector(VarType::Double, 0, 0);
  fixed.SetFixed(true);
  Variant fixedC = Variant(std::move(fixed));
  MatrixMath::MultiplyArrays(Variant(row), b, fixedC);
  EXPECT_EQ(fixedC.AsArray().UBound(1), 0);
  // Through the member: C may also be one of the operands.
  Variant a = Filled(0, 3, 0, 3, 1);
  Ref<Object> m = CreateObject("TessarkAO.TKMatrix4d");
  std::vector<Variant> args = {a, a, Variant::ByRef(a)};
  m->Invoke("MultiplyTwoMatrices", CallKind::Method, args);
  const Mat4 before = ArrayMatrix(Filled(0, 3, 0, 3, 1));
  EXPECT_TRUE(Same(ArrayMatrix(a), LiteralProduct(before, before)));
}

TEST(MatrixMath, ArcCosReportsZeroAtBothEnds) {
  for (double x : {1.0, -1.0, -1.5, 2.0}) EXPECT_EQ(MatrixMath::ArcCos(x), 0.0) << x;  // -1 too: not pi
  EXPECT_EQ(MatrixMath::ArcCos(0.0), 2 * std::atan(1.0));
  for (double x = -0.999; x < 1.0; x += 0.037) EXPECT_NEAR(MatrixMath::ArcCos(x), std::acos(x), 1e-14);
}
