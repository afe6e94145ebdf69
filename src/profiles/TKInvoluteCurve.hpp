// TKInvoluteCurve: the involute of a circle, for gear teeth.
//
// The involute is the path of the end of a taut string unwound from a base
// circle of radius R = CircleRadius.  For the unwinding angle t (radians)
//
//     X = (sin t * t + cos t) * R        Y = (sin t - cos t * t) * R
//
// so it starts at (R, 0) for t = 0 and unwinds counter-clockwise.  Sampling
// (CalculatePointsThroughAngle) stores Points rows evenly spaced in t from 0
// to the given angle; with CounterClockwise false every Y is negated, then
// every row is turned about the origin by StartAngle (radians) through a
// TKVector4d, whose clean-up sets coordinates below 1e-9 in size to 0.
// Changing a property never recomputes the table.  All angles are radians.
//
// Errors are not trapped: Points = 1 divides by zero while sampling (11), a
// height below the base circle by more than its radius takes a square root
// of a negative number (5), and table access outside the rows raises 9.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"

namespace TessarkAO {

namespace InvoluteMath {

// arctan(y / x) without a quadrant correction, so the result lies in
// (-pi/2, pi/2).  An x of exactly 0 is first overwritten with 1e-16, in the
// caller's variable too, which is how the division by zero is avoided.
double ArcTanOfRatio(double& x, double& y);

}  // namespace InvoluteMath

class TKInvoluteCurve final : public Dispatch<TKInvoluteCurve> {
 public:
  static constexpr std::string_view kClassName = "TKInvoluteCurve";
  static void Describe(ClassBuilder<TKInvoluteCurve>& b);

  std::int32_t GetPoints() const { return points_; }
  void LetPoints(std::int32_t v) { points_ = v; }
  bool GetCounterClockwise() const { return counterClockwise_; }
  void LetCounterClockwise(bool v) { counterClockwise_ = v; }
  double GetStartAngle() const { return startAngle_; }
  void LetStartAngle(double v) { startAngle_ = v; }
  double GetCircleRadius() const { return circleRadius_; }
  void LetCircleRadius(double v) { circleRadius_ = v; }

  // The involute point for unwinding angle `angle`; StartAngle and
  // CounterClockwise are not applied.
  void GetPointFromAngle(double angle, double& x, double& y) const;
  // The unwinding angle t at which the curve is `height` above the base
  // circle: ((h / R + 1)^2 - 1)^(1/2).
  double GetAngleFromInvoluteHeight(double height) const;
  // The polar angle of the point at `height`, continued by whole turns of
  // the unwinding angle: floor(t / 6.28318530717958) * 6.28318530717958 + a.
  double GetPointAngleFromInvoluteHeight(double height) const;
  // The polar angle of the point at `height` times R (not t * R).
  double GetRequiredArcLengthForInvoluteHeight(double height) const;
  // Row `index` of the last sampled table; 9 outside its rows.
  void GetCalculatedPointFromIndex(std::int32_t index, double& x, double& y) const;
  // Samples Points rows from t = 0 to t = angle into the table.
  void CalculatePointsThroughAngle(double angle);
  // Adds one B-spline segment to a host path through the sampled points.
  void DrawInvolute(Ref<Object> path, bool counterClockwise);
  // The sampled points as a Points x 2 TK2DArray, ordered by CounterClockwise.
  Ref<Object> GetInvolutePoints() const;

 private:
  using Row = std::array<double, 2>;

  // Row `index` (1-based) of the table; 9 outside it.
  const Row& TableRow(std::int32_t index) const;
  // The first Points rows, in order or reversed.
  std::vector<Row> OrderedRows(bool inOrder) const;

  InstanceRegistration registration_;
  std::int32_t points_ = 3;
  bool counterClockwise_ = true;
  double startAngle_ = 0.0;
  double circleRadius_ = 1.0;
  std::vector<Row> table_;
};

}  // namespace TessarkAO
