// MatrixMath: the array procedures and numeric kernels that TKVector4d,
// TKMatrix4d and TKTransform share.
//
// Conventions of the whole geometry layer:
//  - Points and directions are row vectors multiplied on the left of a
//    matrix, v' = v · M, so v'(j) = sum over k of v(k) · M(k, j).
//  - Matrices are 4×4, indexed (row, column) from 0 to 3; the translation sits
//    in row 3 (M(3,0), M(3,1), M(3,2)) and the upper-left 3×3 block holds
//    rotation and scale.
//  - A · B means "first A, then B":
//        p' = p · A · B      // p is turned by A, the result then by B
//        C = A.MultiplyByMatrix(B)  ==>  p · C == (p · A) · B
//  - Angles are degrees at every public member; they become radians with the
//    library's 15-digit pi (kPi, frame/Conventions.hpp), never a more precise one.
//  - Tolerances (Epsilon, default 1e-9) are absolute and compared strictly:
//    a value is "near zero" when |value| < Epsilon.
//  - Sums of products run k = 0, 1, 2, 3 left to right, starting with the
//    first product, in the generic array product and in every kernel here,
//    so that fast and generic paths give the same bits.
//
// The array procedures (MultiplyArrays, SetArrayEqual, CountDimensions) work
// on automation arrays and never raise: a failing step is skipped and the
// procedure carries on with the next one, and a wrongly shaped array is left
// as it was.  Callers rely on that leniency.
#pragma once

#include <cmath>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "automation/AutomationError.hpp"
#include "automation/Variant.hpp"
#include "frame/Conventions.hpp"

namespace TessarkAO {

inline constexpr double kDefaultEpsilon = 1e-9;

// A 4×4 block of doubles, (row, column), as TKMatrix4d stores it.
struct alignas(16) Mat4 {
  double e[4][4];
};

// A homogeneous row vector (X, Y, Z, W).
struct alignas(16) Vec4 {
  double c[4];
};

namespace MatrixMath {

// ---------------------------------------------------------------------------
// Automation-array procedures.

// Number of dimensions of an array argument, 0 for anything that is not an
// array.
std::int32_t CountDimensions(const Variant& array) noexcept;

// Copies Src into Dest when both have the same number of dimensions (one or
// two) and the same upper bound in every dimension; elements are copied from
// index 0 to the upper bound.  Otherwise nothing happens, deliberately: a
// caller that passes a wrongly shaped array gets it back unchanged.  An
// element that cannot be read (below a lower bound) or converted to Dest's
// element type is skipped.  Never raises.
void SetArrayEqual(Variant& dest, const Variant& src) noexcept;

// C = A · B for a one- or two-dimensional A and a two-dimensional B, C
// re-dimensioned to (0 to UB(B,2)) or (0 to UB(A,1), 0 to UB(B,2)).  Does
// nothing when A has more than two dimensions, B does not have exactly two,
// or A's last upper bound exceeds B's first one; returns silently when C
// cannot be re-dimensioned.  A term whose elements cannot be read or whose
// arithmetic overflows is left out of its sum.  Never raises.
void MultiplyArrays(const Variant& a, const Variant& b, Variant& c) noexcept;

// Arc cosine in radians through the arctangent.  Deliberately returns 0 for
// x >= 1 and for x <= -1 (an exact cosine of -1 included, so exactly
// opposite directions report 0, not pi); callers rely on it.
double ArcCos(double x);

// ---------------------------------------------------------------------------
// Array views of the native storage (4-element vectors, 4×4 matrices), with
// bounds 0 to 3, as the classes hand them to SetArrayEqual and to foreign
// AcquireMatrix members.
Variant VectorArray(const Vec4& v);
Variant MatrixArray(const Mat4& m);
// Reads the elements back (an element that is not numeric keeps its old value).
void ReadVectorArray(const Variant& array, Vec4& v) noexcept;
void ReadMatrixArray(const Variant& array, Mat4& m) noexcept;

// ---------------------------------------------------------------------------
// Numeric kernels.  Unchecked: callers pass the result through Finite* and
// raise 6 (overflow) as the classic runtime would have at the first
// overflowing operation.

inline Mat4 Identity() noexcept {
  return Mat4{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
}

// out = a · b.  `out` may alias neither a nor b.
inline void Multiply(const Mat4& a, const Mat4& b, Mat4& out) noexcept {
  for (int i = 0; i < 4; ++i) {
    double r[4];
    for (int j = 0; j < 4; ++j) r[j] = a.e[i][0] * b.e[0][j];
    for (int k = 1; k < 4; ++k) {
      const double aik = a.e[i][k];
      for (int j = 0; j < 4; ++j) r[j] += aik * b.e[k][j];
    }
    for (int j = 0; j < 4; ++j) out.e[i][j] = r[j];
  }
}

// out = v · m over all four components (W takes part, so a vector whose W is
// not 0 picks up the translation row).
inline void Multiply(const Vec4& v, const Mat4& m, Vec4& out) noexcept {
  double r[4];
  for (int j = 0; j < 4; ++j) r[j] = v.c[0] * m.e[0][j];
  for (int k = 1; k < 4; ++k) {
    const double vk = v.c[k];
    for (int j = 0; j < 4; ++j) r[j] += vk * m.e[k][j];
  }
  for (int j = 0; j < 4; ++j) out.c[j] = r[j];
}

// (x, y, z) · the upper-left 3×3 block of m; the translation row is ignored.
inline void MultiplyDirection(double x, double y, double z, const Mat4& m, double out[3]) noexcept {
  for (int j = 0; j < 3; ++j) out[j] = (x * m.e[0][j] + y * m.e[1][j]) + z * m.e[2][j];
}

// True when every element is finite.  x - x is 0 for a finite x and NaN for
// an infinity or a NaN, and the sum of those stays 0 only when all are finite.
inline bool AllFinite(const Mat4& m) noexcept {
  double acc[4] = {0.0, 0.0, 0.0, 0.0};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) acc[j] += m.e[i][j] - m.e[i][j];
  return (acc[0] + acc[1]) + (acc[2] + acc[3]) == 0.0;
}
inline bool AllFinite(const double* x, int n) noexcept {
  double acc = 0.0;
  for (int i = 0; i < n; ++i) acc += x[i] - x[i];
  return acc == 0.0;
}

// Sets every element with |e| < epsilon (strictly) to exactly 0.
inline void SnapToZero(Mat4& m, double epsilon) noexcept {
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      if (std::abs(m.e[i][j]) < epsilon) m.e[i][j] = 0.0;
}
inline void SnapToZero(double* x, int n, double epsilon) noexcept {
  for (int i = 0; i < n; ++i)
    if (std::abs(x[i]) < epsilon) x[i] = 0.0;
}

// Raises 6 unless every element is finite.
inline void RequireFinite(const Mat4& m) {
  if (!AllFinite(m)) Raise(Err::Overflow);
}
inline void RequireFinite(const double* x, int n) {
  if (!AllFinite(x, n)) Raise(Err::Overflow);
}

// ---------------------------------------------------------------------------
// The hot paths: the checked matrix product and the point and direction
// transforms.  With SSE2 (every x86-64) they run on pairs of lanes; each lane
// does exactly the scalar arithmetic in the same order, so both forms give
// the same bits.  A value is finite exactly when v - v is 0 (not NaN), which
// lets one unordered compare test a whole result for overflow.

#if defined(__SSE2__)
namespace Lanes {
// True when any lane of a or b is not finite (v - v is then NaN).
inline bool AnyNotFinite(__m128d a, __m128d b) noexcept {
  return _mm_movemask_pd(_mm_cmpunord_pd(_mm_sub_pd(a, a), _mm_sub_pd(b, b))) != 0;
}
}  // namespace Lanes
#endif

// Checked product: out = a · b, 6 on overflow.  `out` may be a or b, and is
// then left unchanged by an overflow; a separate `out` holds unspecified
// values after one (the members hand such a result out only on success).
inline void MultiplyChecked(const Mat4& a, const Mat4& b, Mat4& out) {
#if defined(__SSE2__)
  if (&out == &a || &out == &b) {
    Mat4 r;
    MultiplyChecked(a, b, r);
    out = r;
    return;
  }
  const __m128d zero = _mm_setzero_pd();
  __m128d bl[4], bh[4];
  for (int k = 0; k < 4; ++k) {
    bl[k] = _mm_loadu_pd(&b.e[k][0]);
    bh[k] = _mm_loadu_pd(&b.e[k][2]);
  }
  __m128d total = zero;
  for (int i = 0; i < 4; ++i) {
    const __m128d a01 = _mm_loadu_pd(&a.e[i][0]), a23 = _mm_loadu_pd(&a.e[i][2]);
    const __m128d ai[4] = {_mm_unpacklo_pd(a01, a01), _mm_unpackhi_pd(a01, a01),
                           _mm_unpacklo_pd(a23, a23), _mm_unpackhi_pd(a23, a23)};
    __m128d lo = _mm_mul_pd(ai[0], bl[0]), hi = _mm_mul_pd(ai[0], bh[0]);
    for (int k = 1; k < 4; ++k) {
      lo = _mm_add_pd(lo, _mm_mul_pd(ai[k], bl[k]));
      hi = _mm_add_pd(hi, _mm_mul_pd(ai[k], bh[k]));
    }
    total = _mm_add_pd(total, _mm_add_pd(lo, hi));
    _mm_storeu_pd(&out.e[i][0], lo);
    _mm_storeu_pd(&out.e[i][2], hi);
  }
  // The sum of all sixteen results is finite when they all are, unless it
  // overflows on its own; only then is each result looked at.
  if (Lanes::AnyNotFinite(total, total)) {
    for (int i = 0; i < 4; ++i)
      if (Lanes::AnyNotFinite(_mm_loadu_pd(&out.e[i][0]), _mm_loadu_pd(&out.e[i][2])))
        Raise(Err::Overflow);
  }
#else
  Mat4 r;
  Multiply(a, b, r);
  RequireFinite(r);
  out = r;
#endif
}

// (x, y, z) · the upper-left 3×3 block of m, then (with `translate`) plus
// the translation row: the arithmetic of MultiplyByVector and
// MultiplyByPoint.  W of the result is 0.  6 on overflow.
inline Vec4 TransformChecked(const Mat4& m, const Vec4& p, bool translate) {
#if defined(__SSE2__)
  // Mat4 and Vec4 are 16-byte aligned, so every pair below is an aligned load.
  const __m128d xy = _mm_load_pd(&p.c[0]);
  const __m128d x = _mm_unpacklo_pd(xy, xy), y = _mm_unpackhi_pd(xy, xy), z = _mm_set1_pd(p.c[2]);
  __m128d lo = _mm_add_pd(_mm_add_pd(_mm_mul_pd(x, _mm_load_pd(&m.e[0][0])), _mm_mul_pd(y, _mm_load_pd(&m.e[1][0]))),
                          _mm_mul_pd(z, _mm_load_pd(&m.e[2][0])));
  __m128d hi = _mm_add_pd(_mm_add_pd(_mm_mul_pd(x, _mm_load_pd(&m.e[0][2])), _mm_mul_pd(y, _mm_load_pd(&m.e[1][2]))),
                          _mm_mul_pd(z, _mm_load_pd(&m.e[2][2])));
  if (translate) {
    lo = _mm_add_pd(lo, _mm_load_pd(&m.e[3][0]));
    hi = _mm_add_pd(hi, _mm_load_pd(&m.e[3][2]));
  }
  hi = _mm_move_sd(_mm_setzero_pd(), hi);  // the fourth lane is W = 0, not part of the test
  if (Lanes::AnyNotFinite(lo, hi)) Raise(Err::Overflow);
  Vec4 r;
  _mm_store_pd(&r.c[0], lo);
  _mm_store_pd(&r.c[2], hi);
  return r;
#else
  double out[3];
  MultiplyDirection(p.c[0], p.c[1], p.c[2], m, out);
  if (translate)
    for (int j = 0; j < 3; ++j) out[j] += m.e[3][j];
  RequireFinite(out, 3);
  return Vec4{{out[0], out[1], out[2], 0.0}};
#endif
}

// The adjoint (transposed cofactor matrix) and the determinant of m, by an
// exact cofactor expansion along 2×2 minors.  Unchecked.
void AdjointAndDeterminant(const Mat4& m, Mat4& adjoint, double& determinant) noexcept;

}  // namespace MatrixMath
}  // namespace TessarkAO
