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
  b.Method<&TKCurve::GetKnot>("GetKnot", Names{"Index"}, Doc{"Knot Index (1 to BSplineKnots); 0 outside."})
      .Method<&TKCurve::SetKnot>("SetKnot", Names{"Index", "Knot"},
                                 Doc{"Sets knot Index (1 to BSplineKnots); an index outside writes nothing."})
      .Method<&TKCurve::GetWeight>("GetWeight", Names{"Index"},
                                   Doc{"Weight Index (1 to BSplineWeights); 0 outside."})
      .Method<&TKCurve::SetWeight>(
          "SetWeight", Names{"Index", "Weight"},
          Doc{"Sets weight Index (1 to BSplineWeights); an index outside writes nothing."})
      .Method<&TKCurve::GetFitPoint>(
          "GetFitPoint", Names{"Index", "X", "Y"}, Out<2, 3>{},
          Doc{"Writes fit point Index (1 to BSplineFitPoints) into X and Y; 0 outside."})
      .Method<&TKCurve::SetFitPoint>(
          "SetFitPoint", Names{"Index", "X", "Y"},
          Doc{"Sets fit point Index (1 to BSplineFitPoints); an index outside writes nothing."})
      .Method<&TKCurve::GetControlPoint>(
          "GetControlPoint", Names{"Index", "X", "Y"}, Out<2, 3>{},
          Doc{"Writes control point Index (1 to BSplineControlPoints) into X and Y; 0 outside."})
      .Method<&TKCurve::SetControlPoint>(
          "SetControlPoint", Names{"Index", "X", "Y"},
          Doc{"Sets control point Index (1 to BSplineControlPoints); an index outside writes nothing."})
      .Property<&TKCurve::GetBSplineKnots, &TKCurve::LetBSplineKnots>(
          "BSplineKnots", Doc{"The number of knots. Assigning n >= 1 makes a fresh array of n zeros; n <= 0 "
                              "keeps the old one. Raises 7 when the array cannot be allocated."})
      .Property<&TKCurve::GetBSplineWeights, &TKCurve::LetBSplineWeights>(
          "BSplineWeights", Doc{"The number of weights. Assigning n >= 1 makes a fresh array of n zeros; n "
                                "<= 0 keeps the old one. Raises 7 when the array cannot be allocated."})
      .Property<&TKCurve::GetBSplineFitPoints, &TKCurve::LetBSplineFitPoints>(
          "BSplineFitPoints",
          Doc{"The number of fit points. Assigning n >= 1 makes a fresh array of n zero points; n <= 0 keeps "
              "the old one. Raises 7 when the array cannot be allocated."})
      .Property<&TKCurve::GetBSplineControlPoints, &TKCurve::LetBSplineControlPoints>(
          "BSplineControlPoints",
          Doc{"The number of control points. Assigning n >= 1 makes a fresh array of n zero points; n <= 0 "
              "keeps the old one. Raises 7 when the array cannot be allocated."})
      .Property<&TKCurve::GetBSplineDegree, &TKCurve::LetBSplineDegree>("BSplineDegree",
                                                                        Doc{"The B-spline's degree."})
      .Property<&TKCurve::GetBSplineClosed, &TKCurve::LetBSplineClosed>(
          "BSplineClosed", Doc{"Whether the B-spline is closed."})
      .Property<&TKCurve::GetBSplinePeriodic, &TKCurve::LetBSplinePeriodic>(
          "BSplinePeriodic", Doc{"Whether the B-spline is periodic."})
      .Property<&TKCurve::GetRadius, &TKCurve::LetRadius>(
          "Radius", Doc{"The radius of an arc or fillet; an ellipse's major radius."})
      .Property<&TKCurve::GetX, &TKCurve::LetX>("X", Doc{"X of the end point the curve runs to."})
      .Property<&TKCurve::GetY, &TKCurve::LetY>("Y", Doc{"Y of the end point the curve runs to."})
      .Property<&TKCurve::GetAngleMajor, &TKCurve::LetAngleMajor>(
          "AngleMajor", Doc{"The angle of an ellipse's major axis."})
      .Property<&TKCurve::GetHFactor, &TKCurve::LetHFactor>(
          "HFactor", Doc{"A further curve parameter of the host, carried unchanged."})
      .Property<&TKCurve::GetEccentricity, &TKCurve::LetEccentricity>("Eccentricity",
                                                                      Doc{"The eccentricity of an ellipse."})
      .Property<&TKCurve::GetMinorHeight, &TKCurve::LetMinorHeight>(
          "MinorHeight",
          Doc{"The minor-axis value of an ellipse; -1 marks an ellipse given without one (a circle)."})
      .Property<&TKCurve::GetXPtOnCurve, &TKCurve::LetXPtOnCurve>(
          "XPtOnCurve", Doc{"X of a point on the curve (arcs and ellipses)."})
      .Property<&TKCurve::GetCenterX, &TKCurve::LetCenterX>(
          "CenterX", Doc{"X of the centre of an arc, fillet or ellipse."})
      .Property<&TKCurve::GetCenterY, &TKCurve::LetCenterY>(
          "CenterY", Doc{"Y of the centre of an arc, fillet or ellipse."})
      .Property<&TKCurve::GetYPtOnCurve, &TKCurve::LetYPtOnCurve>(
          "YPtOnCurve", Doc{"Y of a point on the curve (arcs and ellipses)."})
      .Property<&TKCurve::GetTan1X, &TKCurve::LetTan1X>("Tan1X", Doc{"X of a Bezier's first tangent point."})
      .Property<&TKCurve::GetTan1Y, &TKCurve::LetTan1Y>("Tan1Y", Doc{"Y of a Bezier's first tangent point."})
      .Property<&TKCurve::GetTan2X, &TKCurve::LetTan2X>("Tan2X", Doc{"X of a Bezier's second tangent point."})
      .Property<&TKCurve::GetTan2Y, &TKCurve::LetTan2Y>("Tan2Y", Doc{"Y of a Bezier's second tangent point."})
      .Property<&TKCurve::GetCurveType, &TKCurve::LetCurveType>(
          "CurveType", Doc{"The curve's kind: 0 fillet, 1 line, 2 arc, 3 Bezier, 4 ellipse, 5 B-spline (any "
                           "Long is stored)."})
      .Property<&TKCurve::GetStartTrim, &TKCurve::LetStartTrim>(
          "StartTrim", Doc{"The trim parameter at the curve's start."})
      .Property<&TKCurve::GetEndTrim, &TKCurve::LetEndTrim>("EndTrim",
                                                            Doc{"The trim parameter at the curve's end."});
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
