#include "profiles/TKCurve.hpp"

#include "automation/Catalogue.hpp"

namespace TessarkAO {

namespace {

// The largest B-spline array a curve makes; a larger count raises 7 (Out of
// memory) instead of exhausting the process.
constexpr std::int32_t kMaxArrayEntries = std::int32_t{1} << 25;

// The count rule shared by the four arrays: n >= 1 replaces the array by n
// zero entries, n <= 0 changes the count only.  The count is stored after
// the new array exists, so a failed allocation leaves the curve as it was.
template <class T>
void SizeArray(std::vector<T>& array, std::int32_t& count, std::int32_t n) {
  if (n >= 1) {
    if (n > kMaxArrayEntries) Raise(Err::OutOfMemory);
    array.assign(static_cast<std::size_t>(n), T{});
  }
  count = n;
}

// The entry at a 1-based index, or nullptr outside 1..count.
template <class T>
T* Entry(std::vector<T>& array, std::int32_t count, std::int32_t index) {
  if (index < 1 || index > count || static_cast<std::size_t>(index) > array.size()) return nullptr;
  return &array[static_cast<std::size_t>(index) - 1];
}

template <class T>
const T* Entry(const std::vector<T>& array, std::int32_t count, std::int32_t index) {
  return Entry(const_cast<std::vector<T>&>(array), count, index);
}

// A point entry as X and Y; both 0 outside 1..count.
void ReadPoint(const std::vector<std::array<double, 2>>& array, std::int32_t count, std::int32_t index,
               double& x, double& y) {
  const std::array<double, 2>* p = Entry(array, count, index);
  x = p ? (*p)[0] : 0.0;
  y = p ? (*p)[1] : 0.0;
}

}  // namespace

void TKCurve::Describe(ClassBuilder<TKCurve>& b) {
  b.Method<&TKCurve::GetKnot>("GetKnot", Names{"Index"})
      .Method<&TKCurve::SetKnot>("SetKnot", Names{"Index", "Knot"})
      .Method<&TKCurve::GetWeight>("GetWeight", Names{"Index"})
      .Method<&TKCurve::SetWeight>("SetWeight", Names{"Index", "Weight"})
      .Method<&TKCurve::GetFitPoint>("GetFitPoint", Names{"Index", "X", "Y"}, Out<2, 3>{})
      .Method<&TKCurve::SetFitPoint>("SetFitPoint", Names{"Index", "X", "Y"})
      .Method<&TKCurve::GetControlPoint>("GetControlPoint", Names{"Index", "X", "Y"}, Out<2, 3>{})
      .Method<&TKCurve::SetControlPoint>("SetControlPoint", Names{"Index", "X", "Y"})
      .Property<&TKCurve::GetBSplineKnots, &TKCurve::LetBSplineKnots>("BSplineKnots")
      .Property<&TKCurve::GetBSplineWeights, &TKCurve::LetBSplineWeights>("BSplineWeights")
      .Property<&TKCurve::GetBSplineFitPoints, &TKCurve::LetBSplineFitPoints>("BSplineFitPoints")
      .Property<&TKCurve::GetBSplineControlPoints, &TKCurve::LetBSplineControlPoints>("BSplineControlPoints")
      .Property<&TKCurve::GetBSplineDegree, &TKCurve::LetBSplineDegree>("BSplineDegree")
      .Property<&TKCurve::GetBSplineClosed, &TKCurve::LetBSplineClosed>("BSplineClosed")
      .Property<&TKCurve::GetBSplinePeriodic, &TKCurve::LetBSplinePeriodic>("BSplinePeriodic")
      .Property<&TKCurve::GetRadius, &TKCurve::LetRadius>("Radius")
      .Property<&TKCurve::GetX, &TKCurve::LetX>("X")
      .Property<&TKCurve::GetY, &TKCurve::LetY>("Y")
      .Property<&TKCurve::GetAngleMajor, &TKCurve::LetAngleMajor>("AngleMajor")
      .Property<&TKCurve::GetHFactor, &TKCurve::LetHFactor>("HFactor")
      .Property<&TKCurve::GetEccentricity, &TKCurve::LetEccentricity>("Eccentricity")
      .Property<&TKCurve::GetMinorHeight, &TKCurve::LetMinorHeight>("MinorHeight")
      .Property<&TKCurve::GetXPtOnCurve, &TKCurve::LetXPtOnCurve>("XPtOnCurve")
      .Property<&TKCurve::GetCenterX, &TKCurve::LetCenterX>("CenterX")
      .Property<&TKCurve::GetCenterY, &TKCurve::LetCenterY>("CenterY")
      .Property<&TKCurve::GetYPtOnCurve, &TKCurve::LetYPtOnCurve>("YPtOnCurve")
      .Property<&TKCurve::GetTan1X, &TKCurve::LetTan1X>("Tan1X")
      .Property<&TKCurve::GetTan1Y, &TKCurve::LetTan1Y>("Tan1Y")
      .Property<&TKCurve::GetTan2X, &TKCurve::LetTan2X>("Tan2X")
      .Property<&TKCurve::GetTan2Y, &TKCurve::LetTan2Y>("Tan2Y")
      .Property<&TKCurve::GetCurveType, &TKCurve::LetCurveType>("CurveType")
      .Property<&TKCurve::GetStartTrim, &TKCurve::LetStartTrim>("StartTrim")
      .Property<&TKCurve::GetEndTrim, &TKCurve::LetEndTrim>("EndTrim");
}

double TKCurve::GetKnot(std::int32_t index) const {
  const double* k = Entry(knots_, knotCount_, index);
  return k ? *k : 0.0;
}

void TKCurve::SetKnot(std::int32_t index, double knot) {
  if (double* k = Entry(knots_, knotCount_, index)) *k = knot;
}

double TKCurve::GetWeight(std::int32_t index) const {
  const double* w = Entry(weights_, weightCount_, index);
  return w ? *w : 0.0;
}

void TKCurve::SetWeight(std::int32_t index, double weight) {
  if (double* w = Entry(weights_, weightCount_, index)) *w = weight;
}

void TKCurve::GetFitPoint(std::int32_t index, double& x, double& y) const {
  ReadPoint(fitPoints_, fitPointCount_, index, x, y);
}

void TKCurve::SetFitPoint(std::int32_t index, double x, double y) {
  if (Point* p = Entry(fitPoints_, fitPointCount_, index)) *p = {x, y};
}

void TKCurve::GetControlPoint(std::int32_t index, double& x, double& y) const {
  ReadPoint(controlPoints_, controlPointCount_, index, x, y);
}

void TKCurve::SetControlPoint(std::int32_t index, double x, double y) {
  if (Point* p = Entry(controlPoints_, controlPointCount_, index)) *p = {x, y};
}

void TKCurve::LetBSplineKnots(std::int32_t n) { SizeArray(knots_, knotCount_, n); }
void TKCurve::LetBSplineWeights(std::int32_t n) { SizeArray(weights_, weightCount_, n); }
void TKCurve::LetBSplineFitPoints(std::int32_t n) { SizeArray(fitPoints_, fitPointCount_, n); }
void TKCurve::LetBSplineControlPoints(std::int32_t n) { SizeArray(controlPoints_, controlPointCount_, n); }

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKCurve)
