// TKMatrix4d: the library's 4×4 homogeneous transform.
//
// Elements M(row, column), each index 0 to 3.  A new matrix is the identity
// with Epsilon 1e-9.  The class stays out of the instance count.
//
// Conventions (binding for every class that uses matrices, see MatrixMath.hpp):
//  - Row vectors multiplied on the left: v' = v · M, v'(j) = sum over k of
//    v(k) · M(k, j).  The translation is row 3, M(3,0..2); the upper-left 3×3
//    block holds rotation and scale; M(3,3) is 1 for an affine transform.
//  - A · B applied to a row vector means first A, then B:
//        a.SetRotation(3, 90); b.SetTranslation(5, 0, 0)
//        a.MultiplyByMatrix(b).MultiplyByPoint((1,0,0)) = (5, 1, 0)
//  - With ApplyToCurrent, SetRotation and SetScaling append (Me = Me · R,
//    about the world origin) while SetTranslation prepends (Me = T · Me, in
//    Me's local frame).  The asymmetry is intended; callers depend on it.
//  - SetRotation about axes 2 (Y) and 3 (Z) turns a point right-handedly;
//    about axis 1 (X) it turns the other way (Y towards -Z), deliberately.
//    SetRotationAboutArbitraryAxis and every member derived from it turn
//    right-handedly about their axis.
//  - Angles are degrees, converted with the library's 15-digit pi (kPi).
//    Axis-angle results give the axis as a unit vector and the angle in
//    [0, 180] degrees.
//  - Epsilon is an absolute tolerance on element values: the clean-up sets
//    every element with |e| < Epsilon (strictly) to 0, and IsMatrixEqual
//    compares each elementwise difference with Me's Epsilon, strictly.
//
// Arguments that are vectors or matrices are taken as any object: native ones
// are read directly, other objects late-bound through the members the
// algorithm names (AcquireMatrix, Epsilon, Value, X, Y, Z, Length,
// Normalize, SetPosition), so foreign objects with those members work.
//
// Errors: 9 for an index outside 0 to 3, 11 for a division by zero, 6 for an
// overflow (elements already written stay written).  CopyFromIUnknown and the
// array helpers never raise.
#pragma once

#include <cstdint>
#include <string_view>

#include "automation/Members.hpp"
#include "geometry/MatrixMath.hpp"
#include "geometry/TKVector4d.hpp"

namespace TessarkAO {

class TKMatrix4d final : public Dispatch<TKMatrix4d> {
 public:
  static constexpr std::string_view kClassName = "TKMatrix4d";
  static void Describe(ClassBuilder<TKMatrix4d>& b);

  TKMatrix4d() = default;

  // All 16 elements to 0.
  void Zero() noexcept;
  // Copies the caller's 4×4 array (bounds 0 to 3 in both dimensions) into
  // the elements; any other shape changes nothing, deliberately.  No clean-up.
  void SetMatrix(const Variant& matrix);
  // The same as CopyFromIUnknown.
  void Copy(const Variant& matrix4d);
  // The axis (a unit vector) and the angle in degrees of the rotation held
  // in the upper-left block, in the sense of SetRotationAboutArbitraryAxis:
  // rebuilding with that axis and angle gives the same block.  The angle is
  // in [0, 180]; for no rotation it is 0 with the axis (0, 0, 1).  The block
  // is taken as a pure rotation; any scale in it is not removed.
  void GetAxisAndAngle(double& vecX, double& vecY, double& vecZ, double& degrees) const;
  // A new matrix holding the adjoint (transposed cofactor matrix).
  Ref<TKMatrix4d> Adjoint() const;
  double Determinant() const;
  // Inverts in place and returns the determinant.  A determinant of exactly
  // 0 first scales Me by 100000 and retries; if it is still 0 the result is
  // 0 and Me stays scaled (callers test the result for 0).  When the scaling
  // was used the inverse is scaled by 100000 again, which gives the inverse
  // of the unscaled matrix; the result is then the scaled determinant.
  double Invert();
  // MultiplyByVector(point), then adds the translation row: a point moved by
  // the whole transform.  The result's W is 0 and its Epsilon 1e-9; no
  // clean-up.
  Ref<TKVector4d> MultiplyByPoint(Ref<Object> point) const;
  // A new vector (Vx, Vy, Vz) · the upper-left 3×3 block, written straight
  // into its components (no clean-up; a matrix built by the constructors is
  // itself clean, so quarter turns still give exact zeros); translation
  // ignored, W 0.
  Ref<TKVector4d> MultiplyByVector(Ref<Object> vector) const;
  // Me = Me · matrix4d; Me takes the product's Epsilon, the default 1e-9.
  void MultiplySelfByMatrix(Ref<Object> matrix4d);
  // A new matrix Me · matrix4d (Epsilon 1e-9); Me unchanged.
  Ref<TKMatrix4d> MultiplyByMatrix(Ref<Object> matrix4d) const;
  // Array forms: MultiplyArrays and SetArrayEqual of MatrixMath.
  void MultiplyTwoMatrices(const Variant& matrixOne, const Variant& matrixTwo, Variant& result);
  void SetMatricesEqual(Variant& toMatrix, const Variant& fromMatrix);
  void MakeIdentity() noexcept;
  // S = diagonal (x, y, z, 1).  ApplyToCurrent: Me = Me · S; otherwise Me = S
  // (the whole matrix, translation included, is replaced).  Then clean-up.
  void SetScaling(double x, double y, double z, bool applyToCurrent);
  void GetScaling(double& x, double& y, double& z) const;
  // ApplyToCurrent: Me = T · Me with T the identity with row 3 (x, y, z, 1),
  // the move put in front, in Me's local frame; otherwise only M(3,0..2) are
  // overwritten.  Then clean-up.
  void SetTranslation(double x, double y, double z, bool applyToCurrent);
  void GetTranslation(double& x, double& y, double& z) const;
  // Rotation by `degrees` about coordinate axis 1 (X), 2 (Y) or 3 (Z); any
  // other axis gives the zero rotation matrix.  ApplyToCurrent: Me = Me · R;
  // otherwise Me = R.  Then clean-up.
  void SetRotation(std::int32_t axis, double degrees, bool applyToCurrent);
  // Me = T(-fromPoint) · R · T(toPoint), R the shortest right-handed turn
  // that carries the direction of fromVector onto that of toVector (about
  // fromVector × toVector; a half turn about an axis perpendicular to
  // fromVector when they are opposite; no turn when either is near zero).
  // A point at fromPoint goes to toPoint.  Epsilon kept, then clean-up.
  void SetRotationFromPtAndVecToPtAndVec(Ref<Object> fromPoint, Ref<Object> fromVector,
                                         Ref<Object> toPoint, Ref<Object> toVector);
  // The placement of a frame whose origin is `point`: rotation by `degrees`
  // about `axis` through the world origin, then the move to `point`
  // (Me = R · T).  It does not turn about the line through `point`,
  // deliberately.  The caller's axis is not changed.  Epsilon 1e-9 after.
  void SetRotationFromPointAxisAndAngle(Ref<Object> point, Ref<Object> axis,
                                        double degrees);
  // Right-handed rotation by `degrees` about `vector` through the origin.
  // Normalises the caller's vector in place (part of the contract); a
  // near-zero vector leaves Me as it is.  ApplyToCurrent: Me = Me · R,
  // otherwise Me = R; either way Me's Epsilon becomes 1e-9.  R itself is
  // cleaned with 1e-9, so quarter turns give exact zeros.
  void SetRotationAboutArbitraryAxis(Ref<Object> vector, double degrees, bool applyToCurrent);
  // Copies the 16 elements into the caller's 4×4 array (bounds 0 to 3); any
  // other shape is left unchanged, deliberately.
  void AcquireMatrix(Variant& matrix) const;
  // M(row, column), each 0 to 3; 9 otherwise.  The let cleans up.
  double Value(std::int32_t row, std::int32_t column) const;
  void LetValue(std::int32_t row, std::int32_t column, double value);
  double Epsilon() const noexcept { return epsilon_; }
  void LetEpsilon(double value) noexcept;
  // As GetAxisAndAngle, the axis written into `vector` through its SetPosition.
  void GetVectorAxisAndAngle(Ref<Object> vector, double& degrees) const;
  // True when |M(r,c) - other(r,c)| < Me's Epsilon for all 16 elements;
  // stops at the first element that differs.
  bool IsMatrixEqual(Ref<Object> matrix4d) const;
  // Late-bound copy: the object's AcquireMatrix fills a 4×4 array that is
  // copied into Me, then Me's Epsilon is set to the object's Epsilon.  Every
  // error is ignored, so an object lacking either member leaves Me partly or
  // wholly unchanged, deliberately without an error.
  void CopyFromIUnknown(const Variant& matrix4d) noexcept;
  // The rotation that carries the orthonormal frame (axis, plane tangent,
  // axis × plane tangent) onto (X, Y, Z): the plane of axis and tangent goes
  // onto the XY plane.  The tangent need not be perpendicular to the axis:
  // only its part perpendicular to the axis counts.  A near-zero axis or a
  // tangent along the axis (Me's Epsilon) leaves Me unchanged.  Epsilon
  // kept, then clean-up.
  void SetRotationFromAxisAndPlaneToXYPlane(Ref<Object> axis, Ref<Object> planeTangent);
  // The rotation that carries the "from" frame onto the "to" frame, both
  // built as above: v · R expresses in the "to" frame what v was in the
  // "from" frame.
  void SetRotationFromAxisAndPlaneToAxisAndPlane(Ref<Object> fromAxis,
                                                 Ref<Object> fromPlaneTangent,
                                                 Ref<Object> toAxis,
                                                 Ref<Object> toPlaneTangent);
  // The same with the origins carried along: Me = T(-fromPoint) · R · T(toPoint).
  void SetRotationFromPtAxisAndPlaneToPtAxisAndPlane(
      Ref<Object> fromPoint, Ref<Object> fromAxis, Ref<Object> fromPlaneTangent,
      Ref<Object> toPoint, Ref<Object> toAxis, Ref<Object> toPlaneTangent);

  // ---- Native access and fast paths ----------------------------------------
  // Each fast path gives exactly what its late-bound member gives, without
  // creating objects.
  const Mat4& Elements() const noexcept { return m_; }
  void Assign(const Mat4& m, double epsilon) noexcept {
    m_ = m;
    epsilon_ = epsilon;
  }
  // result = Me · other, with the default Epsilon (MultiplyByMatrix).  On an
  // overflow (6) a result other than Me or `other` holds unspecified values.
  void MultiplyByMatrixInto(const TKMatrix4d& other, TKMatrix4d& result) const {
    MatrixMath::MultiplyChecked(m_, other.m_, result.m_);
    result.epsilon_ = kDefaultEpsilon;
  }
  // Me = Me · other (MultiplySelfByMatrix).
  void MultiplySelfByMatrix(const TKMatrix4d& other) {
    MatrixMath::MultiplyChecked(m_, other.m_, m_);
    epsilon_ = kDefaultEpsilon;
  }
  // result = the vector MultiplyByVector would return (W 0, Epsilon 1e-9).
  void MultiplyByVectorInto(const TKVector4d& vector, TKVector4d& result) const {
    result.Assign(MatrixMath::TransformChecked(m_, vector.Components(), false),
                  kDefaultEpsilon);
  }
  // result = the point MultiplyByPoint would return (W 0, Epsilon 1e-9).
  void MultiplyByPointInto(const TKVector4d& point, TKVector4d& result) const {
    result.Assign(MatrixMath::TransformChecked(m_, point.Components(), true),
                  kDefaultEpsilon);
  }

  // The rotation block of SetRotation before clean-up (the zero matrix for
  // an axis other than 1 to 3).
  static Mat4 AxisRotation(std::int32_t axis, double degrees);
  // The rotation of SetRotationAboutArbitraryAxis for a unit axis (x, y, z)
  // and the cosine and sine of the angle, before clean-up.
  static Mat4 AxisAngleRotation(double x, double y, double z, double c, double s) noexcept;
  // The elements of an object passed as a matrix (a 4×4 array filled by its
  // AcquireMatrix, zeros where it wrote nothing).  91 for Nothing.
  static Mat4 ReadElements(Ref<Object> matrix4d);

 private:
  void SnapToZero() noexcept { MatrixMath::SnapToZero(m_, epsilon_); }
  bool IsNearZero(double value) const noexcept { return std::abs(value) < epsilon_; }
  // Unit axis and angle in radians of the rotation block.
  void AxisAndAngle(double axis[3], double& radians) const;
  // Row i of `frame` is the i-th axis of the orthonormal frame (axis, plane
  // tangent, axis × tangent); false when it cannot be built.
  bool FrameFrom(Ref<Object> axis, Ref<Object> planeTangent, Mat4& frame) const;
  // The rotation carrying the "from" frame onto the "to" frame; false when
  // either cannot be built.
  bool FrameToFrame(const Ref<Object>& fromAxis, const Ref<Object>& fromPlaneTangent,
                    const Ref<Object>& toAxis, const Ref<Object>& toPlaneTangent, Mat4& rotation) const;
  // A new vector: (X, Y, Z) of `vector` times the rotation block, plus the
  // translation row when `translate`.
  Ref<TKVector4d> Transformed(const Ref<Object>& vector, bool translate) const;
  // Me = T(-from) · R · T(to) with R the rotation block given.
  void SetPlacement(const Ref<Object>* fromPoint, const Mat4& rotation, const Ref<Object>* toPoint);

  alignas(16) Mat4 m_ = MatrixMath::Identity();
  double epsilon_ = kDefaultEpsilon;
};

}  // namespace TessarkAO
