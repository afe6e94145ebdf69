// TKVector4d: the library's point and direction value.
//
// Four Double components, index 0 to 3: 0 = X, 1 = Y, 2 = Z, 3 = W (the
// homogeneous component).  A new vector is (0, 0, 0, 0) with Epsilon 1e-9.
//
// Conventions (shared with TKMatrix4d, see MatrixMath.hpp):
//  - A vector is a row vector and is transformed as v' = v · M over all four
//    components: v'(j) = sum over k of v(k) · M(k, j).  Because W takes part,
//    a vector whose W is not 0 picks up a matrix's translation row; Shift
//    forces W to 1 for its product and restores it afterwards.
//  - Rotate, Stretch, Shift and RotateAboutArbitraryAxis build a temporary
//    TKMatrix4d (Epsilon 1e-9, cleaned up by its own constructor) and
//    multiply by it, so they turn exactly as the matrix constructors do:
//        v.Rotate(3, 90)     // (1,0,0) -> (0,1,0): about Z, X towards Y
//        v.Rotate(1, 90)     // (0,1,0) -> (0,0,-1): the sense about X is the
//                            // opposite one, deliberately
//  - Angles are degrees (15-digit pi).  AngleBetween answers in [0, 180) and
//    reports 0 for exactly opposite directions, deliberately (see ArcCos).
//  - Epsilon is an absolute tolerance on component values and on the dot
//    product (IsPerpendicular: |Dot| <= Epsilon, unnormalised vectors); the
//    clean-up sets every component with |c| < Epsilon (strictly) to 0.  Which
//    members clean up is said at each member.
//
// Arguments that are vectors are taken as any object: a native TKVector4d is
// read directly, any other object late-bound through the members the
// algorithm names (X, Y, Z, Value, Length, Normalize, AcquireMatrix,
// Epsilon), so foreign objects with those members work.  Nothing raises 91.
//
// Errors: 9 for an index outside 0 to 3, 11 for a division by zero, 6 for an
// overflow; components already written stay written.
#pragma once

#include <cstdint>
#include <string_view>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "frame/PublishedEnums.hpp"
#include "geometry/MatrixMath.hpp"

namespace TessarkAO {

class TKVector4d final : public Dispatch<TKVector4d> {
 public:
  static constexpr std::string_view kClassName = "TKVector4d";
  static void Describe(ClassBuilder<TKVector4d>& b);

  TKVector4d() = default;

  // X, Y, Z: components 0 to 2 through Value (the let runs no clean-up).
  double X() const { return v_.c[0]; }
  void LetX(double value) { v_.c[0] = value; }
  double Y() const { return v_.c[1]; }
  void LetY(double value) { v_.c[1] = value; }
  double Z() const { return v_.c[2]; }
  void LetZ(double value) { v_.c[2] = value; }

  // Divides X, Y, Z by Length when Length > Epsilon (strictly); otherwise
  // leaves the vector as it is.  W untouched, no clean-up.
  void Normalize();
  // A new vector Me × vector (right-handed), set through SetPosition; W 0,
  // Epsilon 1e-9.
  Ref<TKVector4d> Cross(Ref<Object> vector) const;
  // Angle in degrees in [0, 180): 0 when either vector is near zero (Me's
  // Epsilon against each length) and, deliberately, for opposite directions.
  double AngleBetween(Ref<Object> vector) const;
  // |Dot(vector)| <= Epsilon, on the unnormalised vectors.
  bool IsPerpendicular(Ref<Object> vector) const;
  // X·X' + Y·Y' + Z·Z' (W ignored).
  double Dot(Ref<Object> vector) const;
  // (X² + Y² + Z²) to the power 1/2 (W ignored).
  double Length() const;
  // Copies the four components (through vector.AcquireMatrix) and then the
  // Epsilon of `vector`; no clean-up.
  void Copy(Ref<Object> vector);
  // All four components, W included, to 0.
  void Zero();
  // Me = (X2 - X1, Y2 - Y1, Z2 - Z1) through SetPosition.  The interleaved
  // argument order (both X first, then Y, then Z) is the interface's.
  void SetPositionFromPoints(double x1, double x2, double y1, double y2, double z1, double z2);
  // Components 0 to 2, then clean-up; W untouched.
  void SetPosition(double x, double y, double z);
  void GetPosition(double& x, double& y, double& z) const;
  // Me = Me · SetRotation(axis, degrees) (axis 1 X, 2 Y, 3 Z; any other axis
  // is the zero matrix, which zeroes the vector), then clean-up.
  void Rotate(std::int32_t axis, double degrees);
  // Me = Me · SetScaling(x, y, z), then clean-up.
  void Stretch(double x, double y, double z);
  // Adds (x, y, z) whatever W is: W is set to 1 for the product with the
  // translation matrix and restored afterwards; then clean-up.  Offsets
  // below 1e-9 vanish in the temporary matrix's own clean-up.
  void Shift(double x, double y, double z);
  // Moves Me by `distance` along `vector`: k = distance / |vector|, then
  // X += Vx·k and so on.  A zero-length vector raises 11 (6 when the
  // distance is 0 too) and leaves Me unchanged.  W untouched, no clean-up.
  void MoveAlongVector(Ref<Object> vector, double distance);
  // Me = Me · SetRotationAboutArbitraryAxis(vector, degrees): a right-handed
  // turn about the axis through the origin.  The matrix normalises the
  // caller's `vector` in place; a near-zero axis leaves Me as it is.  Then
  // clean-up.
  void RotateAboutArbitraryAxis(Ref<Object> vector, double degrees);
  // X, Y, Z -= / += the vector's X, Y, Z (W untouched), then clean-up.
  void SubtractVector(Ref<Object> vector);
  void AddVector(Ref<Object> vector);
  // Copies the four components into the caller's array when it is a
  // one-dimensional array with upper bound 3; any other array is left
  // unchanged, deliberately and without an error.
  void AcquireMatrix(Variant& matrix) const;
  // Component `index`, 0 to 3; 9 for any other index.  The let runs no clean-up.
  double Value(std::int32_t index) const;
  void LetValue(std::int32_t index, double value);
  // The let stores the tolerance and cleans up with it.
  double Epsilon() const { return epsilon_; }
  void LetEpsilon(double value);
  // Same or opposite direction within Me's Epsilon on the cosine of the
  // normalised vectors; a zero vector on either side is NotColinear.
  TKColinearStatus GetColinearStatus(Ref<Object> vector) const;

  // ---- Native access ------------------------------------------------------
  const Vec4& Components() const noexcept { return v_; }
  // Replaces all four components and the tolerance, as a new vector built
  // from them would be (no clean-up).
  void Assign(const Vec4& v, double epsilon) noexcept {
    v_ = v;
    epsilon_ = epsilon;
  }
  // Sets X, Y, Z and cleans up, as SetPosition does; W untouched.
  void SetPosition(const double xyz[3]) noexcept {
    v_.c[0] = xyz[0];
    v_.c[1] = xyz[1];
    v_.c[2] = xyz[2];
    MatrixMath::SnapToZero(v_.c, 3, epsilon_);
  }

  // ---- Reading an object passed as a vector -------------------------------
  // A native TKVector4d is read directly; any other object through its
  // members by name.  91 for Nothing.
  static void ReadXYZ(Ref<Object> vector, double& x, double& y, double& z);
  static double ReadValue(Ref<Object> vector, std::int32_t index);
  static double ReadLength(Ref<Object> vector);
  static void CallNormalize(Ref<Object> vector);
  static void CallSetPosition(Ref<Object> vector, double x, double y, double z);

 private:
  void SnapToZero() noexcept { MatrixMath::SnapToZero(v_.c, 4, epsilon_); }
  bool IsNearZero(double value) const noexcept { return std::abs(value) < epsilon_; }
  // Me = v · m over all four components; 6 on overflow, Me then unchanged.
  void MultiplyBy(const Vec4& v, const Mat4& m);

  InstanceRegistration registration_;
  Vec4 v_{{0.0, 0.0, 0.0, 0.0}};
  double epsilon_ = kDefaultEpsilon;
};

}  // namespace TessarkAO
