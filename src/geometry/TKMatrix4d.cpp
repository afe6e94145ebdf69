// TKMatrix4d.  Division of this file:
//   member table
//   reading objects passed as matrices
//   elements, copies and arrays          (Zero .. SetMatricesEqual, Value, Epsilon)
//   products                             (MultiplyBy*, Adjoint, Determinant, Invert)
//   constructors of transforms           (SetScaling .. SetRotationAboutArbitraryAxis)
//   axis and angle read-back             (GetAxisAndAngle, GetVectorAxisAndAngle)
//   frames                               (the point-and-vector and plane-frame members)
#include "geometry/TKMatrix4d.hpp"

#include <cmath>

#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO {

void TKMatrix4d::Describe(ClassBuilder<TKMatrix4d>& b) {
  using M = TKMatrix4d;
  b.Method<&M::Zero>("Zero", Doc{"Sets all 16 elements to 0."})
      .Method<&M::SetMatrix>("SetMatrix", Names{"Matrix"},
                             Doc{"Copies a 4x4 array (bounds 0 to 3 in both dimensions) into the elements; "
                                 "any other shape changes nothing, deliberately. No clean-up."})
      .Method<&M::Copy>("Copy", Names{"Matrix4d"}, Doc{"The same as CopyFromIUnknown."})
      .Method<&M::GetAxisAndAngle>(
          "GetAxisAndAngle", Names{"VecX", "VecY", "VecZ", "Degrees"}, Out<1, 2, 3, 4>{},
          Doc{"Writes the unit axis and the angle in degrees (0 to 180) of the rotation in the upper-left "
              "block, in the sense of SetRotationAboutArbitraryAxis; no rotation gives 0 about (0, 0, 1)."})
      .Get<&M::Adjoint>("Adjoint", Doc{"A new matrix holding the adjoint (transposed cofactor matrix)."})
      .Get<&M::Determinant>("Determinant", Doc{"The determinant of the 4x4 matrix."})
      .Method<&M::Invert>(
          "Invert",
          Doc{"Inverts in place and returns the determinant. A determinant of exactly 0 is retried on the "
              "matrix scaled by 100000; if still 0 the result is 0 and the matrix stays scaled."})
      .Method<&M::MultiplyByPoint>("MultiplyByPoint", Names{"Point"},
                                   Doc{"A new vector: Point times the upper-left block plus the translation "
                                       "row (W 0, Epsilon 1e-9, no clean-up)."})
      .Method<&M::MultiplyByVector>(
          "MultiplyByVector", Names{"Vector"},
          Doc{"A new vector: Vector times the upper-left 3x3 block, translation ignored (W 0, no clean-up)."})
      .Method<static_cast<void (M::*)(Ref<Object>)>(&M::MultiplySelfByMatrix)>(
          "MultiplySelfByMatrix", Names{"Matrix4d"},
          Doc{"Me = Me x Matrix4d; Me takes the product's Epsilon, 1e-9."})
      .Method<&M::MultiplyByMatrix>("MultiplyByMatrix", Names{"Matrix4d"},
                                    Doc{"A new matrix Me x Matrix4d (Epsilon 1e-9); Me unchanged."})
      .Method<&M::MultiplyTwoMatrices>(
          "MultiplyTwoMatrices", Names{"dblMatrixOne", "dblMatrixTwo", "dblResultMatrix"}, Out<3>{},
          Doc{"Multiplies two 4x4 Double arrays into dblResultMatrix (array form of MultiplyByMatrix)."})
      .Method<&M::SetMatricesEqual>("SetMatricesEqual", Names{"dblToMatrix", "dblFromMatrix"}, Out<1>{},
                                    Doc{"Copies the 4x4 array dblFromMatrix into dblToMatrix."})
      .Method<&M::MakeIdentity>("MakeIdentity", Doc{"Sets the identity matrix."})
      .Method<&M::SetScaling>("SetScaling", Names{"X", "Y", "Z", "ApplyToCurrent"}, Opt{false},
                              Doc{"S = diagonal (X, Y, Z, 1); with ApplyToCurrent Me = Me x S, otherwise Me "
                                  "= S (translation included). Then clean-up."})
      .Method<&M::GetScaling>("GetScaling", Names{"X", "Y", "Z"}, Out<1, 2, 3>{},
                              Doc{"Writes the diagonal scale factors M(0,0), M(1,1), M(2,2) into X, Y, Z."})
      .Method<&M::SetTranslation>(
          "SetTranslation", Names{"X", "Y", "Z", "ApplyToCurrent"}, Opt{false},
          Doc{"With ApplyToCurrent Me = T x Me (T the move by X, Y, Z, in Me's local frame); otherwise only "
              "the translation row is overwritten. Then clean-up."})
      .Method<&M::GetTranslation>("GetTranslation", Names{"X", "Y", "Z"}, Out<1, 2, 3>{},
                                  Doc{"Writes the translation row M(3,0..2) into X, Y, Z."})
      .Method<&M::SetRotation>(
          "SetRotation", Names{"Axis", "Degrees", "ApplyToCurrent"}, Opt{false},
          Doc{"Rotation by Degrees about axis 1 (X), 2 (Y) or 3 (Z); any other axis gives the zero matrix. "
              "With ApplyToCurrent Me = Me x R, otherwise Me = R. Then clean-up."})
      .Method<&M::SetRotationFromPtAndVecToPtAndVec>(
          "SetRotationFromPtAndVecToPtAndVec", Names{"FromPoint", "FromVector", "ToPoint", "ToVector"},
          Doc{"Me = T(-FromPoint) x R x T(ToPoint), R the shortest right-handed turn carrying FromVector's "
              "direction onto ToVector's: a point at FromPoint goes to ToPoint. Then clean-up."})
      .Method<&M::SetRotationFromPointAxisAndAngle>(
          "SetRotationFromPointAxisAndAngle", Names{"Point", "Axis", "Degrees"},
          Doc{"Me = R x T: a rotation by Degrees about Axis through the world origin, then the move to Point "
              "(not a turn about the line through Point, deliberately). Epsilon 1e-9."})
      .Method<&M::SetRotationAboutArbitraryAxis>(
          "SetRotationAboutArbitraryAxis", Names{"Vector", "Degrees", "ApplyToCurrent"}, Opt{false},
          Doc{"Right-handed rotation by Degrees about Vector through the origin; normalises the caller's "
              "Vector in place; a near-zero vector leaves Me as it is. With ApplyToCurrent Me = Me x R, "
              "otherwise Me = R."})
      .Method<&M::AcquireMatrix>("AcquireMatrix", Names{"dblMatrix"}, Out<1>{},
                                 Doc{"Copies the 16 elements into the caller's 4x4 array (bounds 0 to 3); "
                                     "any other shape is left unchanged, deliberately."})
      .Get<&M::Value>("Value", Names{"Row", "Column"},
                      Doc{"Element (Row, Column), each 0 to 3; raises 9 otherwise. The let cleans up."})
      .Let<&M::LetValue>("Value", Names{"Row", "Column", "Value"})
      .Property<&M::Epsilon, &M::LetEpsilon>("Epsilon",
                                             Doc{"The matrix's tolerance (default 1e-9): elements below it "
                                                 "in magnitude are set to 0 after most changes."})
      .Method<&M::GetVectorAxisAndAngle>(
          "GetVectorAxisAndAngle", Names{"Vector", "Degrees"}, Out<2>{},
          Doc{"As GetAxisAndAngle, the axis written into Vector through its SetPosition."})
      .Method<&M::IsMatrixEqual>(
          "IsMatrixEqual", Names{"pMatrix4d"},
          Doc{"True when all 16 elements differ from pMatrix4d's by less than Me's Epsilon."})
      .Method<&M::CopyFromIUnknown>(
          "CopyFromIUnknown", Names{"pMatrix4d"},
          Doc{"Copies another matrix late-bound (its AcquireMatrix, then its Epsilon). Every error is "
              "ignored, so an object lacking those members leaves Me partly or wholly unchanged."})
      .Method<&M::SetRotationFromAxisAndPlaneToXYPlane>(
          "SetRotationFromAxisAndPlaneToXYPlane", Names{"Axis", "PlaneTangent"},
          Doc{"The rotation carrying the frame (Axis, PlaneTangent, Axis x PlaneTangent) onto (X, Y, Z); "
              "only the part of PlaneTangent perpendicular to Axis counts. A near-zero axis or a tangent "
              "along it leaves Me unchanged."})
      .Method<&M::SetRotationFromAxisAndPlaneToAxisAndPlane>(
          "SetRotationFromAxisAndPlaneToAxisAndPlane",
          Names{"FromAxis", "FromPlaneTangent", "ToAxis", "ToPlaneTangent"},
          Doc{"The rotation carrying the \"from\" frame onto the \"to\" frame, each built from an axis and a "
              "plane tangent as for SetRotationFromAxisAndPlaneToXYPlane."})
      .Method<&M::SetRotationFromPtAxisAndPlaneToPtAxisAndPlane>(
          "SetRotationFromPtAxisAndPlaneToPtAxisAndPlane",
          Names{"FromPoint", "FromAxis", "FromPlaneTangent", "ToPoint", "ToAxis", "ToPlaneTangent"},
          Doc{"As SetRotationFromAxisAndPlaneToAxisAndPlane with the origins carried along: Me = "
              "T(-FromPoint) x R x T(ToPoint)."});
}

// ---------------------------------------------------------------------------
// Reading objects passed as matrices.

namespace {

const TKMatrix4d* NativeMatrix(const Ref<Object>& o) {
  if (!o) Raise(Err::ObjectNotSet);
  return dynamic_cast<const TKMatrix4d*>(o.get());
}

constexpr double kScaleForSingular = 100000.0;

Mat4 Zeros() { return Mat4{}; }

Mat4 Translation(double x, double y, double z) {
  Mat4 t = MatrixMath::Identity();
  t.e[3][0] = x;
  t.e[3][1] = y;
  t.e[3][2] = z;
  return t;
}

// The arguments' matrix through its AcquireMatrix, copied by the array rule
// into a zero 4×4 array (a foreign answer of the wrong shape gives zeros).
Mat4 AcquireForeign(const Ref<Object>& o) {
  Variant filled = MatrixMath::MatrixArray(Zeros());
  Variant args[] = {Variant::ByRef(filled)};
  o->Invoke("AcquireMatrix", CallKind::Method, args);
  Variant copy = MatrixMath::MatrixArray(Zeros());
  MatrixMath::SetArrayEqual(copy, filled);
  Mat4 m = Zeros();
  MatrixMath::ReadMatrixArray(copy, m);
  return m;
}

}  // namespace

Mat4 TKMatrix4d::ReadElements(Ref<Object> matrix4d) {
  if (const TKMatrix4d* m = NativeMatrix(matrix4d)) return m->m_;
  return AcquireForeign(matrix4d);
}

// ---------------------------------------------------------------------------
// Elements, copies and arrays.

void TKMatrix4d::Zero() noexcept { m_ = Zeros(); }

void TKMatrix4d::MakeIdentity() noexcept { m_ = MatrixMath::Identity(); }

void TKMatrix4d::SetMatrix(const Variant& matrix) {
  Variant mine = MatrixMath::MatrixArray(m_);
  MatrixMath::SetArrayEqual(mine, matrix);
  MatrixMath::ReadMatrixArray(mine, m_);
}

void TKMatrix4d::Copy(const Variant& matrix4d) { CopyFromIUnknown(matrix4d); }

void TKMatrix4d::CopyFromIUnknown(const Variant& matrix4d) noexcept {
  try {
    const Variant& d = matrix4d.Deref();
    if (!d.IsObject() || !d.AsObject()) return;
    const Ref<Object> o = d.AsObject();
    if (const TKMatrix4d* n = dynamic_cast<const TKMatrix4d*>(o.get())) {
      m_ = n->m_;
      epsilon_ = n->epsilon_;
      return;
    }
    // Each step on its own: a member the object lacks skips that step only.
    try {
      const Mat4 m = AcquireForeign(o);
      m_ = m;
    } catch (...) {
    }
    try {
      epsilon_ = ToDouble(Variant(o).Get("Epsilon"));
    } catch (...) {
    }
  } catch (...) {
  }
}

void TKMatrix4d::AcquireMatrix(Variant& matrix) const {
  MatrixMath::SetArrayEqual(matrix, MatrixMath::MatrixArray(m_));
}

void TKMatrix4d::MultiplyTwoMatrices(const Variant& matrixOne, const Variant& matrixTwo,
                                     Variant& result) {
  MatrixMath::MultiplyArrays(matrixOne, matrixTwo, result);
}

void TKMatrix4d::SetMatricesEqual(Variant& toMatrix, const Variant& fromMatrix) {
  MatrixMath::SetArrayEqual(toMatrix, fromMatrix);
}

double TKMatrix4d::Value(std::int32_t row, std::int32_t column) const {
  if (row < 0 || row > 3 || column < 0 || column > 3) Raise(Err::SubscriptOutOfRange);
  return m_.e[row][column];
}

void TKMatrix4d::LetValue(std::int32_t row, std::int32_t column, double value) {
  if (row < 0 || row > 3 || column < 0 || column > 3) Raise(Err::SubscriptOutOfRange);
  m_.e[row][column] = value;
  SnapToZero();
}

void TKMatrix4d::LetEpsilon(double value) noexcept {
  epsilon_ = value;
  SnapToZero();
}

bool TKMatrix4d::IsMatrixEqual(Ref<Object> matrix4d) const {
  const TKMatrix4d* n = NativeMatrix(matrix4d);
  for (std::int32_t r = 0; r < 4; ++r)
    for (std::int32_t c = 0; c < 4; ++c) {
      const double other = n ? n->m_.e[r][c] : ToDouble(Variant(matrix4d).Get("Value", r, c));
      if (!IsNearZero(Checked::Sub(m_.e[r][c], other))) return false;
    }
  return true;
}

// ---------------------------------------------------------------------------
// Products.

Ref<TKVector4d> TKMatrix4d::Transformed(const Ref<Object>& vector, bool translate) const {
  Vec4 v{{0.0, 0.0, 0.0, 0.0}};
  if (const TKVector4d* native = dynamic_cast<const TKVector4d*>(vector.get()))
    v = native->Components();
  else
    TKVector4d::ReadXYZ(vector, v.c[0], v.c[1], v.c[2]);
  auto result = MakeRef<TKVector4d>();
  result->Assign(MatrixMath::TransformChecked(m_, v, translate), kDefaultEpsilon);
  return result;
}

Ref<TKVector4d> TKMatrix4d::MultiplyByPoint(Ref<Object> point) const { return Transformed(point, true); }

Ref<TKVector4d> TKMatrix4d::MultiplyByVector(Ref<Object> vector) const { return Transformed(vector, false); }

void TKMatrix4d::MultiplySelfByMatrix(Ref<Object> matrix4d) {
  const Mat4 other = ReadElements(matrix4d);
  MatrixMath::MultiplyChecked(m_, other, m_);
  epsilon_ = kDefaultEpsilon;
}

Ref<TKMatrix4d> TKMatrix4d::MultiplyByMatrix(Ref<Object> matrix4d) const {
  auto result = MakeRef<TKMatrix4d>();
  if (const TKMatrix4d* n = NativeMatrix(matrix4d)) {
    MultiplyByMatrixInto(*n, *result);
  } else {
    MatrixMath::MultiplyChecked(m_, AcquireForeign(matrix4d), result->m_);
  }
  return result;
}

Ref<TKMatrix4d> TKMatrix4d::Adjoint() const {
  auto result = MakeRef<TKMatrix4d>();
  double determinant;
  Mat4 adjoint;
  MatrixMath::AdjointAndDeterminant(m_, adjoint, determinant);
  MatrixMath::RequireFinite(adjoint);
  result->m_ = adjoint;
  return result;
}

double TKMatrix4d::Determinant() const {
  double determinant;
  Mat4 adjoint;
  MatrixMath::AdjointAndDeterminant(m_, adjoint, determinant);
  return Checked::Finite(determinant);
}

double TKMatrix4d::Invert() {
  Mat4 adjoint;
  double determinant;
  MatrixMath::AdjointAndDeterminant(m_, adjoint, determinant);
  MatrixMath::RequireFinite(adjoint);
  Checked::Finite(determinant);
  bool scaled = false;
  if (determinant == 0.0) {
    // A determinant that vanished (perhaps by underflow) gets one more try
    // on the matrix scaled by 100000.  If that is still singular, Me stays
    // scaled and the result is 0: callers test for it.
    Mat4 s;
    for (int i = 0; i < 4; ++i)
      for (int j = 0; j < 4; ++j) s.e[i][j] = m_.e[i][j] * kScaleForSingular;
    MatrixMath::RequireFinite(s);
    m_ = s;
    scaled = true;
    MatrixMath::AdjointAndDeterminant(m_, adjoint, determinant);
    MatrixMath::RequireFinite(adjoint);
    Checked::Finite(determinant);
    if (determinant == 0.0) return 0.0;
  }
  const double reciprocal = Checked::Div(1.0, determinant);
  Mat4 inverse;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) inverse.e[i][j] = adjoint.e[i][j] * reciprocal;
  if (scaled) {
    // The inverse of the scaled matrix is the wanted one divided by 100000.
    for (int i = 0; i < 4; ++i)
      for (int j = 0; j < 4; ++j) inverse.e[i][j] *= kScaleForSingular;
  }
  MatrixMath::RequireFinite(inverse);
  m_ = inverse;
  return determinant;
}

// ---------------------------------------------------------------------------
// Constructors of transforms.

Mat4 TKMatrix4d::AxisRotation(std::int32_t axis, double degrees) {
  const double r = degrees * (kPi / 180.0);
  const double c = std::cos(r);
  const double s = std::sin(r);
  Mat4 R = Zeros();
  switch (axis) {
    case 1:  // turns Y towards -Z: the opposite sense to Y and Z, intended
      R.e[0][0] = 1.0;
      R.e[1][1] = c;
      R.e[1][2] = -s;
      R.e[2][1] = s;
      R.e[2][2] = c;
      R.e[3][3] = 1.0;
      break;
    case 2:
      R.e[0][0] = c;
      R.e[0][2] = -s;
      R.e[1][1] = 1.0;
      R.e[2][0] = s;
      R.e[2][2] = c;
      R.e[3][3] = 1.0;
      break;
    case 3:
      R.e[0][0] = c;
      R.e[0][1] = s;
      R.e[1][0] = -s;
      R.e[1][1] = c;
      R.e[2][2] = 1.0;
      R.e[3][3] = 1.0;
      break;
    default:  // no such axis: the zero matrix
      break;
  }
  return R;
}

Mat4 TKMatrix4d::AxisAngleRotation(double x, double y, double z, double c, double s) noexcept {
  const double t = 1.0 - c;
  Mat4 R = MatrixMath::Identity();
  R.e[0][0] = x * x + (1.0 - x * x) * c;
  R.e[0][1] = x * y * t + s * z;
  R.e[0][2] = x * z * t - s * y;
  R.e[1][0] = x * y * t - s * z;
  R.e[1][1] = y * y + (1.0 - y * y) * c;
  R.e[1][2] = y * z * t + s * x;
  R.e[2][0] = x * z * t + s * y;
  R.e[2][1] = y * z * t - s * x;
  R.e[2][2] = z * z + (1.0 - z * z) * c;
  return R;
}

void TKMatrix4d::SetScaling(double x, double y, double z, bool applyToCurrent) {
  Mat4 S = Zeros();
  S.e[0][0] = x;
  S.e[1][1] = y;
  S.e[2][2] = z;
  S.e[3][3] = 1.0;
  if (applyToCurrent)
    MatrixMath::MultiplyChecked(m_, S, m_);
  else
    m_ = S;
  SnapToZero();
}

void TKMatrix4d::GetScaling(double& x, double& y, double& z) const {
  x = m_.e[0][0];
  y = m_.e[1][1];
  z = m_.e[2][2];
}

void TKMatrix4d::SetTranslation(double x, double y, double z, bool applyToCurrent) {
  if (applyToCurrent) {
    MatrixMath::MultiplyChecked(Translation(x, y, z), m_, m_);
  } else {
    m_.e[3][0] = x;
    m_.e[3][1] = y;
    m_.e[3][2] = z;
  }
  SnapToZero();
}

void TKMatrix4d::GetTranslation(double& x, double& y, double& z) const {
  x = m_.e[3][0];
  y = m_.e[3][1];
  z = m_.e[3][2];
}

void TKMatrix4d::SetRotation(std::int32_t axis, double degrees, bool applyToCurrent) {
  const Mat4 R = AxisRotation(axis, degrees);
  if (applyToCurrent)
    MatrixMath::MultiplyChecked(m_, R, m_);
  else
    m_ = R;
  SnapToZero();
}

void TKMatrix4d::SetRotationAboutArbitraryAxis(Ref<Object> vector, double degrees,
                                               bool applyToCurrent) {
  TKVector4d::CallNormalize(vector);
  if (IsNearZero(TKVector4d::ReadLength(vector))) return;
  const double r = degrees * (kPi / 180.0);
  double x, y, z;
  TKVector4d::ReadXYZ(vector, x, y, z);
  // The temporary rotation is filled element by element and cleaned with its
  // own default tolerance, as a new matrix would be.
  Mat4 R = AxisAngleRotation(x, y, z, std::cos(r), std::sin(r));
  MatrixMath::RequireFinite(R);
  MatrixMath::SnapToZero(R, kDefaultEpsilon);
  if (applyToCurrent)
    MatrixMath::MultiplyChecked(m_, R, m_);
  else
    m_ = R;
  epsilon_ = kDefaultEpsilon;
}

void TKMatrix4d::SetRotationFromPointAxisAndAngle(Ref<Object> point, Ref<Object> axis,
                                                  double degrees) {
  auto unitAxis = MakeRef<TKVector4d>();
  unitAxis->Copy(axis);
  unitAxis->Normalize();
  SetRotationAboutArbitraryAxis(unitAxis, degrees, false);
  const double x = TKVector4d::ReadValue(point, 0);
  const double y = TKVector4d::ReadValue(point, 1);
  const double z = TKVector4d::ReadValue(point, 2);
  TKMatrix4d move;
  move.SetTranslation(x, y, z, false);
  MultiplySelfByMatrix(move);
}

// ---------------------------------------------------------------------------
// Axis and angle read-back.
//
// The rotation block R is read as the unit quaternion (w, q) = (cos t/2,
// sin t/2 · a) of a turn by t about the unit axis a, which stays accurate
// at every angle: for R as SetRotationAboutArbitraryAxis builds it,
//   4 w² = 1 + trace R,  4 q_k² = 1 + 2 R(k,k) - trace R,
//   4 w q = (R(1,2) - R(2,1), R(2,0) - R(0,2), R(0,1) - R(1,0)),
//   4 q_i q_j = R(i,j) + R(j,i).
// The largest of w and the q_k is taken from its square root and the others
// from the products (the usual way to keep every division well away from 0).
// With w >= 0 the angle lies in [0, 180] degrees.  The half angle comes
// through ArcCos from whichever of w and |q| is the smaller, where the arc
// cosine is well conditioned: ArcCos(w) for turns beyond a quarter,
// ArcCos(0) - ArcCos(|q|) for the others.  Neither argument reaches -1, so
// ArcCos's deliberate 0 for an opposite direction never applies here.

void TKMatrix4d::AxisAndAngle(double axis[3], double& radians) const {
  const auto& R = m_.e;
  const double trace = R[0][0] + R[1][1] + R[2][2];
  const double anti[3] = {R[1][2] - R[2][1], R[2][0] - R[0][2], R[0][1] - R[1][0]};
  double w, q[3];
  int k = 0;
  if (R[1][1] > R[k][k]) k = 1;
  if (R[2][2] > R[k][k]) k = 2;
  if (trace >= R[k][k]) {
    const double w4 = 2.0 * std::sqrt(std::max(0.0, 1.0 + trace));
    w = w4 / 4.0;
    for (int j = 0; j < 3; ++j) q[j] = anti[j] / w4;
  } else {
    const double q4 = 2.0 * std::sqrt(std::max(0.0, 1.0 + 2.0 * R[k][k] - trace));
    q[k] = q4 / 4.0;
    for (int j = 0; j < 3; ++j)
      if (j != k) q[j] = (R[k][j] + R[j][k]) / q4;
    w = anti[k] / q4;
  }
  if (w < 0.0) {
    w = -w;
    for (double& v : q) v = -v;
  }
  const double norm = std::sqrt(w * w + q[0] * q[0] + q[1] * q[1] + q[2] * q[2]);
  const double sine = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2]);
  radians = 0.0;
  axis[0] = 0.0;
  axis[1] = 0.0;
  axis[2] = 1.0;
  if (!std::isfinite(norm)) Raise(Err::Overflow);
  if (!(sine > 0.0)) return;  // no rotation: any axis, Z by convention
  w /= norm;
  const double s = sine / norm;
  const double half = w < s ? MatrixMath::ArcCos(w) : MatrixMath::ArcCos(0.0) - MatrixMath::ArcCos(s);
  radians = 2.0 * half;
  for (int j = 0; j < 3; ++j) axis[j] = q[j] / sine;
  MatrixMath::SnapToZero(axis, 3, epsilon_);
}

void TKMatrix4d::GetAxisAndAngle(double& vecX, double& vecY, double& vecZ, double& degrees) const {
  double axis[3], radians;
  AxisAndAngle(axis, radians);
  vecX = axis[0];
  vecY = axis[1];
  vecZ = axis[2];
  degrees = radians * (180.0 / kPi);
}

void TKMatrix4d::GetVectorAxisAndAngle(Ref<Object> vector, double& degrees) const {
  double axis[3], radians;
  AxisAndAngle(axis, radians);
  TKVector4d::CallSetPosition(vector, axis[0], axis[1], axis[2]);
  degrees = radians * (180.0 / kPi);
}

// ---------------------------------------------------------------------------
// Frames.

namespace {

double Length3(const double v[3]) {
  return std::sqrt(Checked::Finite(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]));
}

void Cross3(const double a[3], const double b[3], double out[3]) {
  out[0] = a[1] * b[2] - a[2] * b[1];
  out[1] = a[2] * b[0] - a[0] * b[2];
  out[2] = a[0] * b[1] - a[1] * b[0];
}

double Dot3(const double a[3], const double b[3]) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

// The rotation of SetRotationAboutArbitraryAxis for the unit axis n.
Mat4 Turn(const double n[3], double c, double s) {
  return TKMatrix4d::AxisAngleRotation(n[0], n[1], n[2], c, s);
}

// The shortest turn that carries the unit direction a onto the unit
// direction b (rows: a · R = b).
Mat4 TurnOnto(const double a[3], const double b[3]) {
  double n[3];
  Cross3(a, b, n);
  const double s = Length3(n);
  const double c = Dot3(a, b);
  if (c < 0.0 && s < 1e-6) {
    // Nearly opposite: the axis a × b is too short to trust.  A half turn
    // about an axis perpendicular to a (the world axis least along a gives
    // it) brings a onto -a, and the small turn from -a onto b finishes it.
    int k = 0;
    if (std::abs(a[1]) < std::abs(a[k])) k = 1;
    if (std::abs(a[2]) < std::abs(a[k])) k = 2;
    double e[3] = {0.0, 0.0, 0.0};
    e[k] = 1.0;
    double p[3];
    Cross3(a, e, p);
    const double lp = Length3(p);
    for (double& v : p) v /= lp;
    const double minusA[3] = {-a[0], -a[1], -a[2]};
    Mat4 result;
    MatrixMath::Multiply(Turn(p, -1.0, 0.0), TurnOnto(minusA, b), result);
    return result;
  }
  if (s == 0.0) return MatrixMath::Identity();
  for (double& v : n) v /= s;
  return Turn(n, c, s);
}

}  // namespace

bool TKMatrix4d::FrameFrom(Ref<Object> axis, Ref<Object> planeTangent, Mat4& frame) const {
  double a[3], t[3];
  TKVector4d::ReadXYZ(axis, a[0], a[1], a[2]);
  TKVector4d::ReadXYZ(planeTangent, t[0], t[1], t[2]);
  const double la = Length3(a);
  if (IsNearZero(la)) return false;
  for (double& v : a) v /= la;
  // Only the tangent's part perpendicular to the axis spans the plane.
  const double along = Dot3(t, a);
  double p[3] = {t[0] - along * a[0], t[1] - along * a[1], t[2] - along * a[2]};
  const double lp = Length3(p);
  if (IsNearZero(lp)) return false;
  for (double& v : p) v /= lp;
  double n[3];
  Cross3(a, p, n);
  frame = MatrixMath::Identity();
  for (int j = 0; j < 3; ++j) {
    frame.e[0][j] = a[j];
    frame.e[1][j] = p[j];
    frame.e[2][j] = n[j];
  }
  return true;
}

void TKMatrix4d::SetPlacement(const Ref<Object>* fromPoint, const Mat4& rotation,
                              const Ref<Object>* toPoint) {
  Mat4 m = rotation;
  if (fromPoint) {
    double x, y, z;
    TKVector4d::ReadXYZ(*fromPoint, x, y, z);
    MatrixMath::MultiplyChecked(Translation(-x, -y, -z), m, m);
  }
  if (toPoint) {
    double x, y, z;
    TKVector4d::ReadXYZ(*toPoint, x, y, z);
    MatrixMath::MultiplyChecked(m, Translation(x, y, z), m);
  }
  MatrixMath::RequireFinite(m);
  m_ = m;
  SnapToZero();
}

void TKMatrix4d::SetRotationFromPtAndVecToPtAndVec(Ref<Object> fromPoint,
                                                   Ref<Object> fromVector,
                                                   Ref<Object> toPoint,
                                                   Ref<Object> toVector) {
  double a[3], b[3];
  TKVector4d::ReadXYZ(fromVector, a[0], a[1], a[2]);
  TKVector4d::ReadXYZ(toVector, b[0], b[1], b[2]);
  const double la = Length3(a);
  const double lb = Length3(b);
  Mat4 R = MatrixMath::Identity();
  if (!IsNearZero(la) && !IsNearZero(lb)) {
    for (double& v : a) v /= la;
    for (double& v : b) v /= lb;
    R = TurnOnto(a, b);
  }
  SetPlacement(&fromPoint, R, &toPoint);
}

void TKMatrix4d::SetRotationFromAxisAndPlaneToXYPlane(Ref<Object> axis,
                                                      Ref<Object> planeTangent) {
  Mat4 frame;
  if (!FrameFrom(axis, planeTangent, frame)) return;
  // Row i of the frame goes onto world axis i: R is the frame's transpose.
  Mat4 R = MatrixMath::Identity();
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) R.e[i][j] = frame.e[j][i];
  SetPlacement(nullptr, R, nullptr);
}

bool TKMatrix4d::FrameToFrame(const Ref<Object>& fromAxis, const Ref<Object>& fromPlaneTangent,
                              const Ref<Object>& toAxis, const Ref<Object>& toPlaneTangent,
                              Mat4& rotation) const {
  Mat4 from, to;
  if (!FrameFrom(fromAxis, fromPlaneTangent, from) || !FrameFrom(toAxis, toPlaneTangent, to)) return false;
  Mat4 fromT = MatrixMath::Identity();
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) fromT.e[i][j] = from.e[j][i];
  // The "from" rows onto the world axes, then the world axes onto the "to" rows.
  MatrixMath::Multiply(fromT, to, rotation);
  return true;
}

void TKMatrix4d::SetRotationFromAxisAndPlaneToAxisAndPlane(Ref<Object> fromAxis, Ref<Object> fromPlaneTangent,
                                                           Ref<Object> toAxis, Ref<Object> toPlaneTangent) {
  Mat4 R;
  if (FrameToFrame(fromAxis, fromPlaneTangent, toAxis, toPlaneTangent, R)) SetPlacement(nullptr, R, nullptr);
}

void TKMatrix4d::SetRotationFromPtAxisAndPlaneToPtAxisAndPlane(Ref<Object> fromPoint, Ref<Object> fromAxis,
                                                               Ref<Object> fromPlaneTangent, Ref<Object> toPoint,
                                                               Ref<Object> toAxis, Ref<Object> toPlaneTangent) {
  Mat4 R;
  if (FrameToFrame(fromAxis, fromPlaneTangent, toAxis, toPlaneTangent, R)) SetPlacement(&fromPoint, R, &toPoint);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKMatrix4d)
