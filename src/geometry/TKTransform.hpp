// TKTransform: a placement kept the way people type it, a position (X, Y, Z)
// and a rotation given as an axis (X, Y, Z) and an angle in degrees.
//
// From the rotation it keeps the placed frame's three local axes, the world
// axes (1,0,0), (0,1,0), (0,0,1) turned right-handedly by the angle about the
// axis, so that callers can shift along them and turn about them.
//
// Conventions (see MatrixMath.hpp): row vectors, v' = v · M; angles in
// degrees with the 15-digit pi; local axes are numbered 1 (X), 2 (Y), 3 (Z).
// The rotation axis is kept normalised once set (a zero axis stays zero and
// means no rotation).  Epsilon is an absolute tolerance: the clean-up sets
// each of the three position values and four rotation values with
// |value| < Epsilon (strictly) to 0.  The local axes and the frame matrix keep
// their own default tolerance.
//
// The frame matrix is the placement of the frame: its rows 0 to 2 are the
// local axes and row 3 the position, so a point p given in the placed frame
// lies at p · frame in the world.  After SetRotation it is exactly what
// TKMatrix4d.SetRotationFromPointAxisAndAngle builds from the position, axis
// and angle (turn about the axis through the origin, then move to the
// position):
//        t.SetPosition(5, 0, 0); t.SetRotation(0, 0, 1, 90)
//        (1, 0, 0) · frame = (5, 1, 0)
// RotateAboutLocalAxis turns the frame further while GetRotation keeps
// reporting the last SetRotation values, deliberately; the frame matrix then
// follows the turned axes.  No public member returns it; C++ callers can
// read it through FrameMatrix().
//
// Errors: failures of the vector and matrix arithmetic (6 overflow, 11
// division by zero in ShiftLocal along a zero local axis) raise to the caller.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "geometry/TKMatrix4d.hpp"
#include "geometry/TKVector4d.hpp"

namespace TessarkAO {

class TKTransform final : public Dispatch<TKTransform> {
 public:
  static constexpr std::string_view kClassName = "TKTransform";
  static void Describe(ClassBuilder<TKTransform>& b);

  TKTransform();

  // Copies the placement of another transform through its GetPosition and
  // GetRotation, into SetPosition and SetRotation.
  void InheritTransform(Ref<Object> transform);
  // Position = (x, y, z), then clean-up; the local axes are not touched.
  void SetPosition(double x, double y, double z);
  void GetPosition(double& x, double& y, double& z) const;
  // Rotation = (x, y, z, degrees); the axis is normalised and the local axes
  // rebuilt from the world axes; then clean-up.
  void SetRotation(double x, double y, double z, double degrees);
  // The stored (normalised) axis and the angle of the last SetRotation.
  void GetRotation(double& x, double& y, double& z, double& degrees) const;
  // Position += (x, y, z) in world directions (no clean-up).
  void Shift(double x, double y, double z);
  // Moves the position by x along local axis 1, y along local axis 2 and z
  // along local axis 3, in that order, then cleans up.  A zero local axis
  // raises (11, or 6 for a zero distance) and leaves the position unchanged.
  void ShiftLocal(double x, double y, double z);
  // Local axis 1, 2 or 3 itself (a live reference: changing it changes the
  // transform's axis); any other value gives a new zero vector.
  Ref<TKVector4d> AxisVector(std::int32_t axis) const;
  // Turns the other two local axes by `degrees` about local axis `axis`
  // (1 to 3; any other value does nothing).  The stored position and
  // rotation are not recomputed: GetRotation still reports the last
  // SetRotation values while AxisVector reports the turned axes.
  void RotateAboutLocalAxis(std::int32_t axis, double degrees);
  // The let only stores the value.
  double Epsilon() const noexcept { return epsilon_; }
  void LetEpsilon(double value) noexcept { epsilon_ = value; }

  // ---- Native access ------------------------------------------------------
  const TKMatrix4d& FrameMatrix() const noexcept { return *frame_; }

 private:
  void SnapToZero() noexcept;
  // Normalises the stored axis and turns the world axes by the rotation.
  void RebuildLocalAxes();
  // The frame matrix's translation row follows the position.
  void UpdateFramePosition();

  InstanceRegistration registration_;
  std::array<double, 3> position_{0.0, 0.0, 0.0};
  std::array<double, 4> rotation_{0.0, 0.0, 0.0, 0.0};  // axis X, Y, Z and degrees
  std::array<Ref<TKVector4d>, 3> axes_;
  Ref<TKMatrix4d> frame_;
  double epsilon_ = kDefaultEpsilon;
};

}  // namespace TessarkAO
