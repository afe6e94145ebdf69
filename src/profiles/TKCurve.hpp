// TKCurve: one 2D curve segment of a profile outline, as a plain record.
//
// A curve runs from the previous curve's end (or the outline's start point)
// to its own X, Y; the other fields carry what its kind needs.  Kinds are the
// host's curve codes:
//
//     0 fillet   1 line   2 arc   3 Bezier   4 ellipse   5 B-spline
//
// Nothing is computed or validated: every property stores exactly what it is
// given (CurveType 99 is kept as 99).
//
// B-spline data lives in four arrays indexed from 1: knots, weights, fit
// points and control points.  Setting a count property (BSplineKnots, ...) to
// n >= 1 replaces the array by n zero entries; setting it to 0 or below only
// changes the count and keeps the old array, unreachable since every index is
// then out of range.  The asymmetry is intended.  Indexed access outside
// 1..count reads 0 and ignores writes, without an error.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

class TKCurve final : public Dispatch<TKCurve> {
 public:
  static constexpr std::string_view kClassName = "TKCurve";
  static void Describe(ClassBuilder<TKCurve>& b);

  // Indexed B-spline data; an index outside 1..count reads 0 and writes nothing.
  double GetKnot(std::int32_t index) const;
  void SetKnot(std::int32_t index, double knot);
  double GetWeight(std::int32_t index) const;
  void SetWeight(std::int32_t index, double weight);
  void GetFitPoint(std::int32_t index, double& x, double& y) const;
  void SetFitPoint(std::int32_t index, double x, double y);
  void GetControlPoint(std::int32_t index, double& x, double& y) const;
  void SetControlPoint(std::int32_t index, double x, double y);

  // Counts: n >= 1 makes a fresh array of n zero entries; n <= 0 keeps the old
  // array.  An array too large to allocate raises 7 and changes nothing.
  std::int32_t GetBSplineKnots() const { return knotCount_; }
  void LetBSplineKnots(std::int32_t n);
  std::int32_t GetBSplineWeights() const { return weightCount_; }
  void LetBSplineWeights(std::int32_t n);
  std::int32_t GetBSplineFitPoints() const { return fitPointCount_; }
  void LetBSplineFitPoints(std::int32_t n);
  std::int32_t GetBSplineControlPoints() const { return controlPointCount_; }
  void LetBSplineControlPoints(std::int32_t n);

  std::int32_t GetBSplineDegree() const { return degree_; }
  void LetBSplineDegree(std::int32_t v) { degree_ = v; }
  bool GetBSplineClosed() const { return closed_; }
  void LetBSplineClosed(bool v) { closed_ = v; }
  bool GetBSplinePeriodic() const { return periodic_; }
  void LetBSplinePeriodic(bool v) { periodic_ = v; }

  double GetRadius() const { return radius_; }
  void LetRadius(double v) { radius_ = v; }
  double GetX() const { return x_; }
  void LetX(double v) { x_ = v; }
  double GetY() const { return y_; }
  void LetY(double v) { y_ = v; }
  double GetAngleMajor() const { return angleMajor_; }
  void LetAngleMajor(double v) { angleMajor_ = v; }
  double GetHFactor() const { return hFactor_; }
  void LetHFactor(double v) { hFactor_ = v; }
  double GetEccentricity() const { return eccentricity_; }
  void LetEccentricity(double v) { eccentricity_ = v; }
  // -1 marks an ellipse given without a minor value (a circle).
  double GetMinorHeight() const { return minorHeight_; }
  void LetMinorHeight(double v) { minorHeight_ = v; }
  double GetXPtOnCurve() const { return xPtOnCurve_; }
  void LetXPtOnCurve(double v) { xPtOnCurve_ = v; }
  double GetCenterX() const { return centerX_; }
  void LetCenterX(double v) { centerX_ = v; }
  double GetCenterY() const { return centerY_; }
  void LetCenterY(double v) { centerY_ = v; }
  double GetYPtOnCurve() const { return yPtOnCurve_; }
  void LetYPtOnCurve(double v) { yPtOnCurve_ = v; }
  double GetTan1X() const { return tan1X_; }
  void LetTan1X(double v) { tan1X_ = v; }
  double GetTan1Y() const { return tan1Y_; }
  void LetTan1Y(double v) { tan1Y_ = v; }
  double GetTan2X() const { return tan2X_; }
  void LetTan2X(double v) { tan2X_ = v; }
  double GetTan2Y() const { return tan2Y_; }
  void LetTan2Y(double v) { tan2Y_ = v; }
  std::int32_t GetCurveType() const { return curveType_; }
  void LetCurveType(std::int32_t v) { curveType_ = v; }
  double GetStartTrim() const { return startTrim_; }
  void LetStartTrim(double v) { startTrim_ = v; }
  double GetEndTrim() const { return endTrim_; }
  void LetEndTrim(double v) { endTrim_ = v; }

 private:
  using Point = std::array<double, 2>;

  InstanceRegistration registration_;
  std::int32_t curveType_ = 0;
  double x_ = 0, y_ = 0, radius_ = 0, centerX_ = 0, centerY_ = 0;
  double angleMajor_ = 0, hFactor_ = 0, eccentricity_ = 0, minorHeight_ = 0;
  double xPtOnCurve_ = 0, yPtOnCurve_ = 0;
  double tan1X_ = 0, tan1Y_ = 0, tan2X_ = 0, tan2Y_ = 0;
  double startTrim_ = 0, endTrim_ = 0;
  std::int32_t degree_ = 0;
  bool closed_ = false, periodic_ = false;
  std::int32_t knotCount_ = 0, weightCount_ = 0, fitPointCount_ = 0, controlPointCount_ = 0;
  std::vector<double> knots_, weights_;
  std::vector<Point> fitPoints_, controlPoints_;
};

}  // namespace TessarkAO
