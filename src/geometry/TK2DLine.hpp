// TK2DLine: an infinite line in the plane in slope-intercept form,
// y = Slope · x + Intercept.  A new line is y = 0.
//
// A vertical line has no such form; it is stood in for by the sentinel slope
// 1e9 (kVerticalSlope): any slope of 1e9 or more counts as vertical, and the
// intercept of a vertical line is computed with the sentinel as well, so an
// intersection with a vertical line is that of a very steep line.  Only the
// positive side is capped: a large negative slope is kept as it is.
//
// Angles are degrees measured from the +x axis, converted with the 15-digit
// pi (so 45 degrees gives the slope 0.9999999999999983).  There is no
// tolerance: every comparison is exact.  The class stays out of the instance
// count.  Overflow raises 6.
#pragma once

#include <string_view>

#include "automation/Members.hpp"

namespace TessarkAO {

class TK2DLine final : public Dispatch<TK2DLine> {
 public:
  static constexpr std::string_view kClassName = "TK2DLine";
  static constexpr double kVerticalSlope = 1e9;
  static void Describe(ClassBuilder<TK2DLine>& b);

  // Stored unchanged (a slope of 1e9 or more makes the line vertical).
  double Slope() const noexcept { return slope_; }
  void LetSlope(double value) noexcept { slope_ = value; }
  double Intercept() const noexcept { return intercept_; }
  void LetIntercept(double value) noexcept { intercept_ = value; }
  bool IsVertical() const noexcept { return slope_ >= kVerticalSlope; }
  // The line through (x, y) at `angle` degrees.  Always returns true.
  bool SetDefinitionFromAngleAndPoint(double angle, double x, double y);
  // The line through two points; two equal points change nothing.  Returns
  // false in every case, also after a successful definition: that is the
  // interface's answer and stays so.
  bool SetDefinitionFromTwoPoints(double x1, double y1, double x2, double y2);
  // The crossing with `line` into x and y, true; false with x and y left as
  // they were when the slopes are equal or both lines are vertical.  `line`
  // is read through its Slope, Intercept and IsVertical.
  bool GetIntersectionPoint(Ref<Object> line, Variant& x, Variant& y) const;

 private:
  double slope_ = 0.0;
  double intercept_ = 0.0;
};

}  // namespace TessarkAO
