#include "refhost/Placement.hpp"

#include <cmath>

namespace TessarkAO::RefHost {

Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

Vec3 operator*(const Mat3& m, Vec3 v) {
  return {m.m[0][0] * v.x + m.m[0][1] * v.y + m.m[0][2] * v.z,
          m.m[1][0] * v.x + m.m[1][1] * v.y + m.m[1][2] * v.z,
          m.m[2][0] * v.x + m.m[2][1] * v.y + m.m[2][2] * v.z};
}

Mat3 operator*(const Mat3& a, const Mat3& b) {
  Mat3 r;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      r.m[i][j] = a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] + a.m[i][2] * b.m[2][j];
  return r;
}

Mat3 Transposed(const Mat3& m) {
  Mat3 r;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r.m[i][j] = m.m[j][i];
  return r;
}

bool IsIdentity(const Mat3& m) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      if (m.m[i][j] != (i == j ? 1.0 : 0.0)) return false;
  return true;
}

Mat3 RotationAboutAxis(Vec3 axis, double angle) {
  const double len = std::sqrt(axis.x * axis.x + axis.y * axis.y + axis.z * axis.z);
  Mat3 r;
  if (len == 0.0 || angle == 0.0 || !std::isfinite(len)) return r;
  const double x = axis.x / len, y = axis.y / len, z = axis.z / len;
  const double c = std::cos(angle), s = std::sin(angle), t = 1.0 - c;
  r.m[0][0] = t * x * x + c;
  r.m[0][1] = t * x * y - s * z;
  r.m[0][2] = t * x * z + s * y;
  r.m[1][0] = t * x * y + s * z;
  r.m[1][1] = t * y * y + c;
  r.m[1][2] = t * y * z - s * x;
  r.m[2][0] = t * x * z - s * y;
  r.m[2][1] = t * y * z + s * x;
  r.m[2][2] = t * z * z + c;
  return r;
}

void ToAxisAngle(const Mat3& r, Vec3& axis, double& angle) {
  // v = 2 sin(angle) axis, trace = 1 + 2 cos(angle): atan2 keeps the angle
  // accurate near 0 and near pi alike.
  const Vec3 v{r.m[2][1] - r.m[1][2], r.m[0][2] - r.m[2][0], r.m[1][0] - r.m[0][1]};
  const double vlen = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  const double c = (r.m[0][0] + r.m[1][1] + r.m[2][2] - 1.0) / 2.0;
  angle = std::atan2(vlen / 2.0, c);
  if (c > -0.9) {
    if (vlen < 1e-15) {
      axis = {0.0, 0.0, 0.0};
      angle = 0.0;
    } else {
      axis = {v.x / vlen, v.y / vlen, v.z / vlen};
    }
    return;
  }
  // Near a half turn the antisymmetric part vanishes; the symmetric part
  // (R + R^T) / 2 - c I = (1 - c) a a^T gives the axis up to its sign, which
  // the antisymmetric part then fixes.
  const double k = 1.0 - c;
  double b[3][3];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) b[i][j] = (r.m[i][j] + r.m[j][i]) / 2.0 - (i == j ? c : 0.0);
  int big = 0;
  if (b[1][1] > b[big][big]) big = 1;
  if (b[2][2] > b[big][big]) big = 2;
  double a[3];
  a[big] = std::sqrt(b[big][big] / k);
  for (int j = 0; j < 3; ++j)
    if (j != big) a[j] = b[big][j] / (k * a[big]);
  if (a[0] * v.x + a[1] * v.y + a[2] * v.z < 0.0) {
    for (double& e : a) e = -e;
  }
  const double len = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
  axis = {a[0] / len, a[1] / len, a[2] / len};
}

Vec3 Placement::PointUp(Vec3 p) const { return linear * p + translation; }

Vec3 Placement::PointDown(Vec3 p) const { return Transposed(linear) * (p - translation); }

void Placement::OrientationUp(Vec3& axis, double& angle) const {
  if (!rotates) return;
  ToAxisAngle(rotation * RotationAboutAxis(axis, angle), axis, angle);
}

void Placement::OrientationDown(Vec3& axis, double& angle) const {
  if (!rotates) return;
  ToAxisAngle(Transposed(rotation) * RotationAboutAxis(axis, angle), axis, angle);
}

Placement MakePlacement(Vec3 position, Vec3 axis, double angle, bool mirror, Vec3 anchor, Vec3 anchorAxis,
                        double anchorAngle) {
  const Mat3 rp = RotationAboutAxis(axis, angle);
  const Mat3 raT = Transposed(RotationAboutAxis(anchorAxis, anchorAngle));
  Placement p;
  p.rotation = rp * raT;
  p.rotates = !IsIdentity(p.rotation);
  if (mirror) {
    Mat3 m;
    m.m[2][2] = -1.0;
    p.linear = rp * m * raT;
  } else {
    p.linear = p.rotation;
  }
  p.translation = position - p.linear * anchor;
  return p;
}

}  // namespace TessarkAO::RefHost
