#include "geometry/TKTransform.hpp"

#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO {

void TKTransform::Describe(ClassBuilder<TKTransform>& b) {
  using T = TKTransform;
  b.Method<&T::InheritTransform>("InheritTransform", Names{"cTransform"},
                                 Doc{"Copies another transform's placement through its GetPosition and "
                                     "GetRotation into SetPosition and SetRotation."})
      .Method<&T::SetPosition>(
          "SetPosition", Names{"X", "Y", "Z"},
          Doc{"Sets the position (X, Y, Z), then clean-up; the local axes are not touched."})
      .Method<&T::GetPosition>("GetPosition", Names{"X", "Y", "Z"}, Out<1, 2, 3>{},
                               Doc{"Writes the position into X, Y, Z."})
      .Method<&T::SetRotation>("SetRotation", Names{"X", "Y", "Z", "Degrees"},
                               Doc{"Sets the rotation: axis (X, Y, Z), normalised, and Degrees; the local "
                                   "axes are rebuilt from the world axes, then clean-up."})
      .Method<&T::GetRotation>(
          "GetRotation", Names{"X", "Y", "Z", "Degrees"}, Out<1, 2, 3, 4>{},
          Doc{"Writes the stored normalised axis and the angle of the last SetRotation."})
      .Method<&T::Shift>("Shift", Names{"X", "Y", "Z"},
                         Doc{"Adds (X, Y, Z) to the position in world directions (no clean-up)."})
      .Method<&T::ShiftLocal>(
          "ShiftLocal", Names{"X", "Y", "Z"},
          Doc{"Moves the position by X, Y, Z along local axes 1, 2 and 3, then cleans up. A zero local axis "
              "raises 11 (6 for a zero distance) and leaves the position unchanged."})
      .Get<&T::AxisVector>("AxisVector", Names{"Axis"},
                           Doc{"Local axis 1, 2 or 3 itself (a live TKVector4d: changing it changes the "
                               "transform); any other index gives a new zero vector."})
      .Method<&T::RotateAboutLocalAxis>(
          "RotateAboutLocalAxis", Names{"Axis", "Degrees"},
          Doc{"Turns the other two local axes by Degrees about local axis Axis (1 to 3; any other value does "
              "nothing); the stored position and rotation are not recomputed."})
      .Property<&T::Epsilon, &T::LetEpsilon>(
          "Epsilon", Doc{"The transform's tolerance (default 1e-9); the let only stores it."});
}

namespace {

Ref<TKVector4d> WorldAxis(int index) {
  auto v = MakeRef<TKVector4d>();
  double xyz[3] = {0.0, 0.0, 0.0};
  xyz[index] = 1.0;
  v->SetPosition(xyz);
  return v;
}

// Calls a member whose arguments are all Double outputs and reads them back.
template <std::size_t N>
std::array<double, N> ReadOutputs(const Ref<Object>& o, std::string_view member) {
  std::array<Variant, N> args;
  for (Variant& a : args) a = Variant(0.0);
  o->Invoke(member, CallKind::Method, args);
  std::array<double, N> out{};
  for (std::size_t i = 0; i < N; ++i) out[i] = ToDouble(args[i]);
  return out;
}

}  // namespace

TKTransform::TKTransform() {
  for (int i = 0; i < 3; ++i) axes_[static_cast<std::size_t>(i)] = WorldAxis(i);
  frame_ = MakeRef<TKMatrix4d>();
}

void TKTransform::SnapToZero() noexcept {
  MatrixMath::SnapToZero(position_.data(), 3, epsilon_);
  MatrixMath::SnapToZero(rotation_.data(), 4, epsilon_);
}

void TKTransform::UpdateFramePosition() {
  frame_->SetTranslation(position_[0], position_[1], position_[2], false);
}

void TKTransform::InheritTransform(Ref<Object> transform) {
  if (!transform) Raise(Err::ObjectNotSet);
  if (const TKTransform* t = dynamic_cast<const TKTransform*>(transform.get())) {
    const std::array<double, 3> p = t->position_;
    const std::array<double, 4> r = t->rotation_;
    SetPosition(p[0], p[1], p[2]);
    SetRotation(r[0], r[1], r[2], r[3]);
    return;
  }
  const auto p = ReadOutputs<3>(transform, "GetPosition");
  SetPosition(p[0], p[1], p[2]);
  const auto r = ReadOutputs<4>(transform, "GetRotation");
  SetRotation(r[0], r[1], r[2], r[3]);
}

void TKTransform::SetPosition(double x, double y, double z) {
  position_ = {x, y, z};
  SnapToZero();
  UpdateFramePosition();
}

void TKTransform::GetPosition(double& x, double& y, double& z) const {
  x = position_[0];
  y = position_[1];
  z = position_[2];
}

void TKTransform::RebuildLocalAxes() {
  double x = rotation_[0], y = rotation_[1], z = rotation_[2];
  if (!(x == 0.0 && y == 0.0 && z == 0.0)) {
    const double k =
        Checked::Div(1.0, Checked::Pow(Checked::Finite(x * x + y * y + z * z), 0.5));
    x = Checked::Mul(x, k);
    y = Checked::Mul(y, k);
    z = Checked::Mul(z, k);
    rotation_[0] = x;
    rotation_[1] = y;
    rotation_[2] = z;
  }
  for (int i = 0; i < 3; ++i) axes_[static_cast<std::size_t>(i)] = WorldAxis(i);
  auto axis = MakeRef<TKVector4d>();
  axis->SetPosition(x, y, z);
  for (auto& a : axes_) a->RotateAboutArbitraryAxis(axis, rotation_[3]);
}

void TKTransform::SetRotation(double x, double y, double z, double degrees) {
  rotation_ = {x, y, z, degrees};
  RebuildLocalAxes();
  SnapToZero();
  // The frame matrix is the placement of the position, axis and angle.
  auto point = MakeRef<TKVector4d>();
  point->Assign(Vec4{{position_[0], position_[1], position_[2], 0.0}}, kDefaultEpsilon);
  auto axis = MakeRef<TKVector4d>();
  axis->Assign(Vec4{{rotation_[0], rotation_[1], rotation_[2], 0.0}}, kDefaultEpsilon);
  frame_->MakeIdentity();  // a zero axis leaves the rotation out
  frame_->SetRotationFromPointAxisAndAngle(point, axis, rotation_[3]);
}

void TKTransform::GetRotation(double& x, double& y, double& z, double& degrees) const {
  x = rotation_[0];
  y = rotation_[1];
  z = rotation_[2];
  degrees = rotation_[3];
}

void TKTransform::Shift(double x, double y, double z) {
  const std::array<double, 3> moved = {Checked::Add(position_[0], x), Checked::Add(position_[1], y),
                                       Checked::Add(position_[2], z)};
  position_ = moved;
  UpdateFramePosition();
}

void TKTransform::ShiftLocal(double x, double y, double z) {
  auto moving = MakeRef<TKVector4d>();
  moving->SetPosition(position_[0], position_[1], position_[2]);
  moving->MoveAlongVector(axes_[0], x);
  moving->MoveAlongVector(axes_[1], y);
  moving->MoveAlongVector(axes_[2], z);
  moving->GetPosition(position_[0], position_[1], position_[2]);
  SnapToZero();
  UpdateFramePosition();
}

Ref<TKVector4d> TKTransform::AxisVector(std::int32_t axis) const {
  if (axis >= 1 && axis <= 3) return axes_[static_cast<std::size_t>(axis - 1)];
  return MakeRef<TKVector4d>();
}

void TKTransform::RotateAboutLocalAxis(std::int32_t axis, double degrees) {
  if (axis < 1 || axis > 3) return;
  const std::size_t k = static_cast<std::size_t>(axis - 1);
  const Ref<Object> about = axes_[k];
  for (std::size_t i = 0; i < 3; ++i)
    if (i != k) axes_[i]->RotateAboutArbitraryAxis(about, degrees);

  // The frame matrix takes the same turn: its rotation rows (the local axes)
  // are turned about the local axis through the origin, then it is moved
  // back to the position.
  Mat4 rows = frame_->Elements();
  rows.e[3][0] = rows.e[3][1] = rows.e[3][2] = 0.0;
  frame_->MakeIdentity();  // stays the identity for a near-zero local axis
  frame_->SetRotationAboutArbitraryAxis(about, degrees, false);
  Mat4 turned;
  MatrixMath::MultiplyChecked(rows, frame_->Elements(), turned);
  frame_->Assign(turned, kDefaultEpsilon);
  UpdateFramePosition();
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKTransform)
