#include "geometry/TKVector4d.hpp"

#include <array>

#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"
#include "automation/Enumerations.hpp"
#include "geometry/TKMatrix4d.hpp"

namespace TessarkAO {

void TKVector4d::Describe(ClassBuilder<TKVector4d>& b) {
  b.Property<&TKVector4d::X, &TKVector4d::LetX>("X", Doc{"Component 0 (the let runs no clean-up)."})
      .Property<&TKVector4d::Y, &TKVector4d::LetY>("Y", Doc{"Component 1 (the let runs no clean-up)."})
      .Property<&TKVector4d::Z, &TKVector4d::LetZ>("Z", Doc{"Component 2 (the let runs no clean-up)."})
      .Method<&TKVector4d::Normalize>("Normalize", Doc{"Divides X, Y, Z by Length when Length is above "
                                                       "Epsilon; otherwise nothing changes. W untouched."})
      .Method<&TKVector4d::Cross>("Cross", Names{"Vector"},
                                  Doc{"A new vector Me x Vector (right-handed); W 0, Epsilon 1e-9."})
      .Method<&TKVector4d::AngleBetween>(
          "AngleBetween", Names{"Vector"},
          Doc{"The angle to Vector in degrees, 0 to below 180: 0 when either vector is near zero and, "
              "deliberately, for opposite directions."})
      .Method<&TKVector4d::IsPerpendicular>("IsPerpendicular", Names{"Vector"},
                                            Doc{"True when the dot product with Vector is at most Epsilon in "
                                                "magnitude (unnormalised vectors)."})
      .Method<&TKVector4d::Dot>("Dot", Names{"Vector"}, Doc{"X*X' + Y*Y' + Z*Z' (W ignored)."})
      .Get<&TKVector4d::Length>("Length", Doc{"The length of (X, Y, Z) (W ignored)."})
      .Method<&TKVector4d::Copy>(
          "Copy", Names{"Vector"},
          Doc{"Copies Vector's four components (through its AcquireMatrix) and its Epsilon; no clean-up."})
      .Method<&TKVector4d::Zero>("Zero", Doc{"Sets all four components, W included, to 0."})
      .Method<&TKVector4d::SetPositionFromPoints>(
          "SetPositionFromPoints", Names{"X1", "X2", "Y1", "Y2", "Z1", "Z2"},
          Doc{"Me = (X2 - X1, Y2 - Y1, Z2 - Z1). The interleaved argument order is the interface's."})
      .Method<static_cast<void (TKVector4d::*)(double, double, double)>(&TKVector4d::SetPosition)>(
          "SetPosition", Names{"X", "Y", "Z"}, Doc{"Sets X, Y, Z, then clean-up; W untouched."})
      .Method<&TKVector4d::GetPosition>("GetPosition", Names{"X", "Y", "Z"}, Out<1, 2, 3>{},
                                        Doc{"Writes X, Y, Z into the three outputs."})
      .Method<&TKVector4d::Rotate>(
          "Rotate", Names{"Axis", "Degrees"},
          Doc{"Turns the vector by Degrees about axis 1 (X), 2 (Y) or 3 (Z), as TKMatrix4d.SetRotation; any "
              "other axis zeroes the vector. Then clean-up."})
      .Method<&TKVector4d::Stretch>("Stretch", Names{"X", "Y", "Z"},
                                    Doc{"Scales the components by X, Y, Z, then clean-up."})
      .Method<&TKVector4d::Shift>(
          "Shift", Names{"X", "Y", "Z"},
          Doc{"Adds (X, Y, Z) whatever W is, then clean-up; offsets below 1e-9 vanish."})
      .Method<&TKVector4d::MoveAlongVector>(
          "MoveAlongVector", Names{"Vector", "Distance"},
          Doc{"Moves Me by Distance along Vector. A zero-length Vector raises 11 (6 when Distance is 0 too) "
              "and leaves Me unchanged."})
      .Method<&TKVector4d::RotateAboutArbitraryAxis>(
          "RotateAboutArbitraryAxis", Names{"Vector", "Degrees"},
          Doc{"Turns Me right-handed by Degrees about Vector through the origin; the caller's Vector is "
              "normalised in place; a near-zero axis leaves Me as it is. Then clean-up."})
      .Method<&TKVector4d::SubtractVector>("SubtractVector", Names{"Vector"},
                                           Doc{"Subtracts Vector's X, Y, Z (W untouched), then clean-up."})
      .Method<&TKVector4d::AddVector>("AddVector", Names{"Vector"},
                                      Doc{"Adds Vector's X, Y, Z (W untouched), then clean-up."})
      .Method<&TKVector4d::AcquireMatrix>(
          "AcquireMatrix", Names{"dblMatrix"}, Out<1>{},
          Doc{"Copies the four components into the caller's one-dimensional array with upper bound 3; any "
              "other array is left unchanged, deliberately."})
      .Get<&TKVector4d::Value>(
          "Value", Names{"Index"},
          Doc{"Component Index, 0 to 3; raises 9 for any other index. The let runs no clean-up."})
      .Let<&TKVector4d::LetValue>("Value", Names{"Index", "Value"})
      .Property<&TKVector4d::Epsilon, &TKVector4d::LetEpsilon>(
          "Epsilon", Doc{"The vector's tolerance (default 1e-9); the let stores it and cleans up with it."})
      .Method<&TKVector4d::GetColinearStatus>(
          "GetColinearStatus", Names{"Vector"},
          Doc{"Whether Vector has the same or the opposite direction (TKColinearStatus), within Epsilon on "
              "the cosine; a zero vector on either side is NotColinear."});
}

// ---------------------------------------------------------------------------
// Reading objects passed as vectors.

namespace {

const TKVector4d* Native(const Ref<Object>& o) {
  if (!o) Raise(Err::ObjectNotSet);
  return dynamic_cast<const TKVector4d*>(o.get());
}

double GetDouble(const Ref<Object>& o, std::string_view name) { return ToDouble(Variant(o).Get(name)); }

}  // namespace

void TKVector4d::ReadXYZ(Ref<Object> vector, double& x, double& y, double& z) {
  if (const TKVector4d* v = Native(vector)) {
    x = v->v_.c[0];
    y = v->v_.c[1];
    z = v->v_.c[2];
    return;
  }
  x = GetDouble(vector, "X");
  y = GetDouble(vector, "Y");
  z = GetDouble(vector, "Z");
}

double TKVector4d::ReadValue(Ref<Object> vector, std::int32_t index) {
  if (const TKVector4d* v = Native(vector)) return v->Value(index);
  return ToDouble(Variant(vector).Get("Value", index));
}

double TKVector4d::ReadLength(Ref<Object> vector) {
  if (const TKVector4d* v = Native(vector)) return v->Length();
  return GetDouble(vector, "Length");
}

void TKVector4d::CallNormalize(Ref<Object> vector) {
  if (Native(vector)) {
    static_cast<TKVector4d*>(vector.get())->Normalize();
    return;
  }
  Variant(vector).Call("Normalize");
}

void TKVector4d::CallSetPosition(Ref<Object> vector, double x, double y, double z) {
  if (Native(vector)) {
    static_cast<TKVector4d*>(vector.get())->SetPosition(x, y, z);
    return;
  }
  Variant(vector).Call("SetPosition", x, y, z);
}

// ---------------------------------------------------------------------------
// Members.

void TKVector4d::Normalize() {
  const double length = Length();
  if (length > epsilon_) {
    v_.c[0] = Checked::Div(v_.c[0], length);
    v_.c[1] = Checked::Div(v_.c[1], length);
    v_.c[2] = Checked::Div(v_.c[2], length);
  }
}

Ref<TKVector4d> TKVector4d::Cross(Ref<Object> vector) const {
  double bx, by, bz;
  ReadXYZ(vector, bx, by, bz);
  const double ax = v_.c[0], ay = v_.c[1], az = v_.c[2];
  const double xyz[3] = {Checked::Sub(Checked::Mul(ay, bz), Checked::Mul(az, by)),
                         Checked::Sub(Checked::Mul(az, bx), Checked::Mul(ax, bz)),
                         Checked::Sub(Checked::Mul(ax, by), Checked::Mul(ay, bx))};
  auto result = MakeRef<TKVector4d>();
  result->SetPosition(xyz);
  return result;
}

double TKVector4d::AngleBetween(Ref<Object> vector) const {
  const double otherLength = ReadLength(vector);
  const double myLength = Length();
  if (IsNearZero(otherLength) || IsNearZero(myLength)) return 0.0;
  const double c = Checked::Div(Dot(vector), Checked::Mul(myLength, otherLength));
  return MatrixMath::ArcCos(c) * (180.0 / kPi);
}

bool TKVector4d::IsPerpendicular(Ref<Object> vector) const { return std::abs(Dot(vector)) <= epsilon_; }

double TKVector4d::Dot(Ref<Object> vector) const {
  double bx, by, bz;
  ReadXYZ(vector, bx, by, bz);
  return Checked::Finite(v_.c[0] * bx + v_.c[1] * by + v_.c[2] * bz);
}

double TKVector4d::Length() const {
  const double x = v_.c[0], y = v_.c[1], z = v_.c[2];
  return Checked::Pow(Checked::Finite(x * x + y * y + z * z), 0.5);
}

void TKVector4d::Copy(Ref<Object> vector) {
  if (const TKVector4d* v = Native(vector)) {
    v_ = v->v_;
    epsilon_ = v->epsilon_;
    return;
  }
  // The object fills a fresh 4-element array, which is then copied by the
  // array rule (a wrongly shaped answer copies nothing).
  Variant filled = MatrixMath::VectorArray(Vec4{{0.0, 0.0, 0.0, 0.0}});
  Variant args[] = {Variant::ByRef(filled)};
  vector->Invoke("AcquireMatrix", CallKind::Method, args);
  Variant mine = MatrixMath::VectorArray(v_);
  MatrixMath::SetArrayEqual(mine, filled);
  MatrixMath::ReadVectorArray(mine, v_);
  epsilon_ = GetDouble(vector, "Epsilon");
}

void TKVector4d::Zero() { v_ = Vec4{{0.0, 0.0, 0.0, 0.0}}; }

void TKVector4d::SetPositionFromPoints(double x1, double x2, double y1, double y2, double z1, double z2) {
  SetPosition(Checked::Sub(x2, x1), Checked::Sub(y2, y1), Checked::Sub(z2, z1));
}

void TKVector4d::SetPosition(double x, double y, double z) {
  const double xyz[3] = {x, y, z};
  SetPosition(xyz);
}

void TKVector4d::GetPosition(double& x, double& y, double& z) const {
  x = v_.c[0];
  y = v_.c[1];
  z = v_.c[2];
}

void TKVector4d::MultiplyBy(const Vec4& v, const Mat4& m) {
  Vec4 r;
  MatrixMath::Multiply(v, m, r);
  MatrixMath::RequireFinite(r.c, 4);
  v_ = r;
}

void TKVector4d::Rotate(std::int32_t axis, double degrees) {
  TKMatrix4d rotation;
  rotation.SetRotation(axis, degrees, false);
  MultiplyBy(v_, rotation.Elements());
  SnapToZero();
}

void TKVector4d::Stretch(double x, double y, double z) {
  TKMatrix4d scaling;
  scaling.SetScaling(x, y, z, false);
  MultiplyBy(v_, scaling.Elements());
  SnapToZero();
}

void TKVector4d::Shift(double x, double y, double z) {
  // W is 1 only for the product, so the offset is added whatever W was.  An
  // overflow leaves the vector as it was, W included.
  const double savedW = v_.c[3];
  TKMatrix4d translation;
  translation.SetTranslation(x, y, z, false);
  Vec4 moving = v_;
  moving.c[3] = 1.0;
  MultiplyBy(moving, translation.Elements());
  v_.c[3] = savedW;
  SnapToZero();
}

void TKVector4d::MoveAlongVector(Ref<Object> vector, double distance) {
  double vx, vy, vz;
  ReadXYZ(vector, vx, vy, vz);
  const double length = Checked::Pow(Checked::Finite(vx * vx + vy * vy + vz * vz), 0.5);
  const double k = Checked::Div(distance, length);
  const double x = Checked::Add(v_.c[0], Checked::Mul(vx, k));
  const double y = Checked::Add(v_.c[1], Checked::Mul(vy, k));
  const double z = Checked::Add(v_.c[2], Checked::Mul(vz, k));
  v_.c[0] = x;
  v_.c[1] = y;
  v_.c[2] = z;
}

void TKVector4d::RotateAboutArbitraryAxis(Ref<Object> vector, double degrees) {
  TKMatrix4d rotation;
  rotation.SetRotationAboutArbitraryAxis(vector, degrees, false);
  MultiplyBy(v_, rotation.Elements());
  SnapToZero();
}

void TKVector4d::SubtractVector(Ref<Object> vector) {
  double x, y, z;
  ReadXYZ(vector, x, y, z);
  const double r[3] = {Checked::Sub(v_.c[0], x), Checked::Sub(v_.c[1], y), Checked::Sub(v_.c[2], z)};
  SetPosition(r);
}

void TKVector4d::AddVector(Ref<Object> vector) {
  double x, y, z;
  ReadXYZ(vector, x, y, z);
  const double r[3] = {Checked::Add(v_.c[0], x), Checked::Add(v_.c[1], y), Checked::Add(v_.c[2], z)};
  SetPosition(r);
}

void TKVector4d::AcquireMatrix(Variant& matrix) const {
  MatrixMath::SetArrayEqual(matrix, MatrixMath::VectorArray(v_));
}

double TKVector4d::Value(std::int32_t index) const {
  if (index < 0 || index > 3) Raise(Err::SubscriptOutOfRange);
  return v_.c[index];
}

void TKVector4d::LetValue(std::int32_t index, double value) {
  if (index < 0 || index > 3) Raise(Err::SubscriptOutOfRange);
  v_.c[index] = value;
}

void TKVector4d::LetEpsilon(double value) {
  epsilon_ = value;
  SnapToZero();
}

TKColinearStatus TKVector4d::GetColinearStatus(Ref<Object> vector) const {
  auto a = MakeRef<TKVector4d>();
  a->Copy(vector);
  a->Normalize();
  auto b = MakeRef<TKVector4d>();
  b->v_ = v_;  // b.Copy(Me)
  b->epsilon_ = epsilon_;
  b->Normalize();
  const double lengths = Checked::Mul(b->Length(), a->Length());
  const double c = lengths == 0.0 ? 0.0 : Checked::Div(a->Dot(b), lengths);
  if (IsNearZero(c - 1.0)) return TKColinearStatus_SameDirection;
  if (IsNearZero(c + 1.0)) return TKColinearStatus_OppositeDirection;
  return TKColinearStatus_NotColinear;
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKVector4d)

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKColinearStatus, "TKVector4d", TKColinearStatus_NotColinear,
                        TKColinearStatus_SameDirection, TKColinearStatus_OppositeDirection)
