// Placement math of the reference host.
//
// Conventions: points and directions are column vectors, v' = M v; a 3x3
// matrix is indexed m[row][column].  Rotations are right-handed, angles in
// radians.  An axis-and-angle pair with a zero axis or a zero angle is the
// identity.  Composition: (A * B) v = A (B v), B applied first.
//
// A shape sits in its parent through its position (P, axis a, angle t) and its
// anchor (A, axis b, angle f), both given in the host's internal units here:
//
//     parent = Rp * M * Ra^T * (local - A) + P
//
// with Rp = R(a, t), Ra = R(b, f) and M = diag(1, 1, -1) when the shape is
// mirrored (a reflection through the anchor's XY plane), else the identity.
// The anchor is the point of the shape that the position puts at P.
#pragma once

namespace TessarkAO::RefHost {

struct Vec3 {
  double x = 0.0, y = 0.0, z = 0.0;
};

struct Mat3 {
  double m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
};

Vec3 operator+(Vec3 a, Vec3 b);
Vec3 operator-(Vec3 a, Vec3 b);
Vec3 operator*(const Mat3& m, Vec3 v);
Mat3 operator*(const Mat3& a, const Mat3& b);
Mat3 Transposed(const Mat3& m);
bool IsIdentity(const Mat3& m);

// Rotation by `angle` about `axis` (normalised here); the identity for a zero axis.
Mat3 RotationAboutAxis(Vec3 axis, double angle);
// The axis (unit length) and angle in [0, pi] of a rotation matrix; a zero
// axis and angle 0 for the identity.
void ToAxisAngle(const Mat3& r, Vec3& axis, double& angle);

// The transform from a shape's local space into its parent's.
struct Placement {
  Mat3 linear;    // rotation and mirror
  Mat3 rotation;  // rotation alone: what orientations are carried through
  Vec3 translation;
  bool rotates = false;  // rotation differs from the identity

  Vec3 PointUp(Vec3 p) const;    // local to parent
  Vec3 PointDown(Vec3 p) const;  // parent to local
  Vec3 DirectionUp(Vec3 d) const { return linear * d; }
  // Carries an orientation (axis, angle) up or down.  An axis and angle
  // cannot express a reflection, so a mirrored shape carries orientations
  // through its rotation alone.  Without a rotation the pair is passed
  // through unchanged, so that a zero axis stays a zero axis.
  void OrientationUp(Vec3& axis, double& angle) const;
  void OrientationDown(Vec3& axis, double& angle) const;
};

Placement MakePlacement(Vec3 position, Vec3 axis, double angle, bool mirror, Vec3 anchor, Vec3 anchorAxis,
                        double anchorAngle);

}  // namespace TessarkAO::RefHost
