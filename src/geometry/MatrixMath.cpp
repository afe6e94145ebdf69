#include "geometry/MatrixMath.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO::MatrixMath {

namespace {

const SafeArray* ArrayOf(const Variant& v) noexcept {
  const Variant& d = v.Deref();
  return d.IsArray() ? &d.AsArray() : nullptr;
}

SafeArray* ArrayOf(Variant& v) noexcept {
  Variant& d = v.Deref();
  return d.IsArray() ? &d.AsArray() : nullptr;
}

// An element read as a Double; false when it is out of bounds or not numeric
// (the statement that read it is then skipped).
bool ReadElement(const SafeArray& a, std::span<const std::int32_t> index, double& out) noexcept {
  try {
    out = ToDouble(a.Get(index));
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace

std::int32_t CountDimensions(const Variant& array) noexcept {
  const SafeArray* a = ArrayOf(array);
  return a ? a->Dims() : 0;
}

void SetArrayEqual(Variant& dest, const Variant& src) noexcept {
  SafeArray* d = ArrayOf(dest);
  const SafeArray* s = ArrayOf(src);
  if (!d || !s) return;
  const int dims = d->Dims();
  if (dims != s->Dims() || (dims != 1 && dims != 2)) return;
  for (int k = 1; k <= dims; ++k)
    if (d->UBound(k) != s->UBound(k)) return;
  // The same array may be both source and destination: copy the source first.
  const SafeArray from = *s;
  if (dims == 1) {
    for (std::int64_t i = 0; i <= from.UBound(1); ++i) {
      try {
        d->Put(static_cast<std::int32_t>(i), from.Get(static_cast<std::int32_t>(i)));
      } catch (...) {
      }
    }
  } else {
    for (std::int64_t i = 0; i <= from.UBound(1); ++i)
      for (std::int64_t j = 0; j <= from.UBound(2); ++j) {
        const auto r = static_cast<std::int32_t>(i), c = static_cast<std::int32_t>(j);
        try {
          d->Put(r, c, from.Get(r, c));
        } catch (...) {
        }
      }
  }
}

void MultiplyArrays(const Variant& a, const Variant& b, Variant& c) noexcept {
  const SafeArray* pa = ArrayOf(a);
  const SafeArray* pb = ArrayOf(b);
  if (!pa || !pb) return;
  const int dimsA = pa->Dims();
  if (dimsA > 2 || pb->Dims() != 2) return;
  if (pa->UBound(dimsA) > pb->UBound(1)) return;
  // Copies, so that C may be the same array as A or B.
  const SafeArray A = *pa;
  const SafeArray B = *pb;
  const std::int32_t ubK = A.UBound(dimsA);
  const std::int32_t ubJ = B.UBound(2);
  const std::int32_t ubI = dimsA == 2 ? A.UBound(1) : 0;

  std::vector<ArrayBound> bounds;
  try {
    // 0 .. ub holds ub + 1 elements, which for ub = 2147483647 is no Long (6).
    for (const std::int32_t ub :
         dimsA == 2 ? std::vector<std::int32_t>{ubI, ubJ} : std::vector<std::int32_t>{ubJ}) {
      if (ub == std::numeric_limits<std::int32_t>::max()) Raise(Err::Overflow);
      bounds.push_back(ArrayBound{0, std::max(0, ub + 1)});
    }
    Variant& target = c.Deref();
    if (target.IsArray()) {
      target.AsArray().Redim(bounds, false);
    } else {
      target = Variant(SafeArray(VarType::Double, bounds));
    }
  } catch (...) {
    return;  // a fixed array, or one too large to hold: C stays as it was
  }
  SafeArray& C = c.Deref().AsArray();

  // Indices below a lower bound read nothing, so the sum starts at the
  // higher of the two lower bounds of the shared dimension.
  const std::int64_t firstK = std::max<std::int64_t>({0, A.LBound(dimsA), B.LBound(1)});
  for (std::int32_t i = 0; i <= ubI; ++i) {
    for (std::int32_t j = 0; j <= ubJ; ++j) {
      double sum = 0.0;
      bool first = true;
      for (std::int64_t kk = firstK; kk <= ubK; ++kk) {
        const auto k = static_cast<std::int32_t>(kk);
        double x = 0.0, y = 0.0;
        const std::array<std::int32_t, 2> ia = {i, k};
        const bool okA = dimsA == 2 ? ReadElement(A, ia, x) : ReadElement(A, std::span(&k, 1), x);
        const std::array<std::int32_t, 2> ib = {k, j};
        if (!okA || !ReadElement(B, ib, y)) continue;
        const double next = first ? x * y : sum + x * y;
        if (!std::isfinite(next)) continue;  // an overflowing term is skipped
        sum = next;
        first = false;
      }
      try {
        if (dimsA == 2)
          C.Put(i, j, Variant(sum));
        else
          C.Put(j, Variant(sum));
      } catch (...) {
      }
    }
  }
}

double ArcCos(double x) {
  if (x > 1.0) return 0.0;
  if (x < -1.0) {
    x = -1.0;
  } else if (x == 1.0) {
    return 0.0;
  }
  const double s = std::sqrt(1.0 - x * x);
  // An exact cosine of -1 (or anything below it) lands here with s = 0 and
  // reports 0 rather than pi.  Intended: callers test for it.
  if (s == 0.0) return 0.0;
  return std::atan(-x / s) + 2.0 * std::atan(1.0);
}

Variant VectorArray(const Vec4& v) {
  SafeArray a = SafeArray::Vector(VarType::Double, 0, 3);
  for (std::int32_t i = 0; i < 4; ++i) a.Data()[static_cast<std::size_t>(i)] = Variant(v.c[i]);
  return Variant(std::move(a));
}

Variant MatrixArray(const Mat4& m) {
  SafeArray a = SafeArray::Matrix(VarType::Double, 0, 3, 0, 3);
  for (std::int32_t i = 0; i < 4; ++i)
    for (std::int32_t j = 0; j < 4; ++j) a.Put(i, j, Variant(m.e[i][j]));
  return Variant(std::move(a));
}

void ReadVectorArray(const Variant& array, Vec4& v) noexcept {
  const SafeArray* a = ArrayOf(array);
  if (!a || a->Dims() != 1) return;
  for (std::int32_t i = 0; i < 4; ++i) ReadElement(*a, std::span(&i, 1), v.c[i]);
}

void ReadMatrixArray(const Variant& array, Mat4& m) noexcept {
  const SafeArray* a = ArrayOf(array);
  if (!a || a->Dims() != 2) return;
  for (std::int32_t i = 0; i < 4; ++i)
    for (std::int32_t j = 0; j < 4; ++j) {
      const std::array<std::int32_t, 2> ij = {i, j};
      ReadElement(*a, ij, m.e[i][j]);
    }
}

void AdjointAndDeterminant(const Mat4& m, Mat4& b, double& determinant) noexcept {
  const auto& a = m.e;
  // 2×2 minors of rows 0-1 (s) and rows 2-3 (c); the determinant is the
  // Laplace expansion over complementary pairs of them.
  const double s0 = a[0][0] * a[1][1] - a[1][0] * a[0][1];
  const double s1 = a[0][0] * a[1][2] - a[1][0] * a[0][2];
  const double s2 = a[0][0] * a[1][3] - a[1][0] * a[0][3];
  const double s3 = a[0][1] * a[1][2] - a[1][1] * a[0][2];
  const double s4 = a[0][1] * a[1][3] - a[1][1] * a[0][3];
  const double s5 = a[0][2] * a[1][3] - a[1][2] * a[0][3];
  const double c5 = a[2][2] * a[3][3] - a[3][2] * a[2][3];
  const double c4 = a[2][1] * a[3][3] - a[3][1] * a[2][3];
  const double c3 = a[2][1] * a[3][2] - a[3][1] * a[2][2];
  const double c2 = a[2][0] * a[3][3] - a[3][0] * a[2][3];
  const double c1 = a[2][0] * a[3][2] - a[3][0] * a[2][2];
  const double c0 = a[2][0] * a[3][1] - a[3][0] * a[2][1];

  determinant = s0 * c5 - s1 * c4 + s2 * c3 + s3 * c2 - s4 * c1 + s5 * c0;

  b.e[0][0] = a[1][1] * c5 - a[1][2] * c4 + a[1][3] * c3;
  b.e[0][1] = -a[0][1] * c5 + a[0][2] * c4 - a[0][3] * c3;
  b.e[0][2] = a[3][1] * s5 - a[3][2] * s4 + a[3][3] * s3;
  b.e[0][3] = -a[2][1] * s5 + a[2][2] * s4 - a[2][3] * s3;

  b.e[1][0] = -a[1][0] * c5 + a[1][2] * c2 - a[1][3] * c1;
  b.e[1][1] = a[0][0] * c5 - a[0][2] * c2 + a[0][3] * c1;
  b.e[1][2] = -a[3][0] * s5 + a[3][2] * s2 - a[3][3] * s1;
  b.e[1][3] = a[2][0] * s5 - a[2][2] * s2 + a[2][3] * s1;

  b.e[2][0] = a[1][0] * c4 - a[1][1] * c2 + a[1][3] * c0;
  b.e[2][1] = -a[0][0] * c4 + a[0][1] * c2 - a[0][3] * c0;
  b.e[2][2] = a[3][0] * s4 - a[3][1] * s2 + a[3][3] * s0;
  b.e[2][3] = -a[2][0] * s4 + a[2][1] * s2 - a[2][3] * s0;

  b.e[3][0] = -a[1][0] * c3 + a[1][1] * c1 - a[1][2] * c0;
  b.e[3][1] = a[0][0] * c3 - a[0][1] * c1 + a[0][2] * c0;
  b.e[3][2] = -a[3][0] * s3 + a[3][1] * s1 - a[3][2] * s0;
  b.e[3][3] = a[2][0] * s3 - a[2][1] * s1 + a[2][2] * s0;
}

}  // namespace TessarkAO::MatrixMath
