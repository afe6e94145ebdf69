// Shared helpers of the geometry tests: late-bound calls, a recording
// foreign object, seeded random inputs and the literal models the fast
// paths are compared with.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "TestSupport.hpp"
#include "automation/Convert.hpp"
#include "geometry/TK2DLine.hpp"
#include "geometry/TKMatrix4d.hpp"
#include "geometry/TKTransform.hpp"
#include "geometry/TKVector4d.hpp"

namespace TessarkAO::Testing {

inline Variant Call(const Ref<Object>& o, std::string_view name, std::vector<Variant> args = {},
                    CallKind kind = CallKind::Method) {
  return o->Invoke(name, kind, args);
}

// An object that is not one of ours: it answers by name, forwarding to a
// native object, records each call, and lacks the members named in `missing`.
class Foreign final : public Object {
 public:
  explicit Foreign(Ref<Object> inner, std::set<std::string> missing = {})
      : inner_(std::move(inner)), missing_(std::move(missing)) {}
  Variant Invoke(std::string_view name, CallKind kind, std::span<Variant> args) override {
    calls.emplace_back(name);
    if (missing_.count(std::string(name))) Raise(Err::NoSuchMember);
    return inner_->Invoke(name, kind, args);
  }
  std::vector<std::string> calls;

 private:
  Ref<Object> inner_;
  std::set<std::string> missing_;
};

inline Ref<TKVector4d> Vec(double x, double y, double z, double w = 0.0) {
  auto v = MakeRef<TKVector4d>();
  v->Assign(Vec4{{x, y, z, w}}, kDefaultEpsilon);
  return v;
}

inline Ref<TKMatrix4d> Mat(const Mat4& m) {
  auto r = MakeRef<TKMatrix4d>();
  r->Assign(m, kDefaultEpsilon);
  return r;
}

inline Vec4 Components(const Ref<Object>& v) { return RefCast<TKVector4d>(v)->Components(); }

// The four components, to compare at once.
using Xyzw = std::array<double, 4>;
inline Xyzw Of(const Ref<TKVector4d>& v) { return std::to_array(v->Components().c); }

// Seeded inputs: coordinates in [-range, range].
struct Random {
  std::mt19937_64 gen;
  explicit Random(std::uint64_t seed) : gen(seed) {}
  double Uniform(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(gen); }
  Ref<TKVector4d> Vector(double range = 10.0) {
    return Vec(Uniform(-range, range), Uniform(-range, range), Uniform(-range, range));
  }
  Mat4 Matrix(double range = 10.0) {
    Mat4 m;
    for (auto& row : m.e)
      for (double& x : row) x = Uniform(-range, range);
    return m;
  }
};

// ---- Literal models ---------------------------------------------------------

// C(i, j) = sum over k = 0..3 of A(i, k) · B(k, j), left to right.
inline Mat4 LiteralProduct(const Mat4& a, const Mat4& b) {
  Mat4 c;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      double sum = a.e[i][0] * b.e[0][j];
      for (int k = 1; k < 4; ++k) sum = sum + a.e[i][k] * b.e[k][j];
      c.e[i][j] = sum;
    }
  return c;
}

// MultiplyByVector: (X, Y, Z) · 3×3 block; MultiplyByPoint then adds the
// translation row.
inline Vec4 LiteralPoint(const Mat4& m, const Vec4& p, bool addTranslation) {
  Vec4 r{{0.0, 0.0, 0.0, 0.0}};
  for (int j = 0; j < 3; ++j) {
    double sum = p.c[0] * m.e[0][j];
    for (int k = 1; k < 3; ++k) sum = sum + p.c[k] * m.e[k][j];
    r.c[j] = sum;
  }
  if (addTranslation)
    for (int j = 0; j < 3; ++j) r.c[j] = r.c[j] + m.e[3][j];
  return r;
}

inline bool Near(const Mat4& a, const Mat4& b, double tolerance) {
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      if (!(std::abs(a.e[i][j] - b.e[i][j]) <= tolerance)) return false;
  return true;
}

// Bit for bit, negative zeros included.
template <class T>
bool Same(const T& a, const T& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

inline Mat4 ArrayMatrix(const Variant& array) {
  Mat4 m{};
  MatrixMath::ReadMatrixArray(array, m);
  return m;
}

inline double Norm(double x, double y, double z) { return std::sqrt(x * x + y * y + z * z); }

}  // namespace TessarkAO::Testing
