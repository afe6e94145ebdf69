#include "geometry/TK2DLine.hpp"

#include <cmath>

#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"
#include "geometry/MatrixMath.hpp"

namespace TessarkAO {

void TK2DLine::Describe(ClassBuilder<TK2DLine>& b) {
  b.Property<&TK2DLine::Slope, &TK2DLine::LetSlope>(
       "Slope", Doc{"The line's slope, stored unchanged (a slope of 1e9 or more makes the line vertical)."})
      .Property<&TK2DLine::Intercept, &TK2DLine::LetIntercept>(
          "Intercept", Doc{"The line's Y intercept (for a vertical line its X position), stored unchanged."})
      .Get<&TK2DLine::IsVertical>("IsVertical", Doc{"Whether the line is vertical."})
      .Method<&TK2DLine::SetDefinitionFromAngleAndPoint>(
          "SetDefinitionFromAngleAndPoint", Names{"Angle", "X", "Y"},
          Doc{"Defines the line through (X, Y) at Angle degrees. Always returns True."})
      .Method<&TK2DLine::SetDefinitionFromTwoPoints>(
          "SetDefinitionFromTwoPoints", Names{"X1", "Y1", "X2", "Y2"},
          Doc{"Defines the line through two points; two equal points change nothing. Returns False in every "
              "case, also after a successful definition, deliberately."})
      .Method<&TK2DLine::GetIntersectionPoint>(
          "GetIntersectionPoint", Names{"Line", "X", "Y"}, Out<2, 3>{},
          Doc{"Writes the crossing with Line into X and Y and returns True; returns False with X and Y "
              "untouched when the slopes are equal or both lines are vertical. Line is read through its "
              "Slope, Intercept and IsVertical."});
}

bool TK2DLine::SetDefinitionFromAngleAndPoint(double angle, double x, double y) {
  const double t = std::tan(Checked::Mul(angle, kPi) / 180.0);
  const double slope = t < kVerticalSlope ? t : kVerticalSlope;
  const double intercept = Checked::Sub(y, Checked::Mul(slope, x));
  slope_ = slope;
  intercept_ = intercept;
  return true;
}

bool TK2DLine::SetDefinitionFromTwoPoints(double x1, double y1, double x2, double y2) {
  if (x1 == x2 && y1 == y2) return false;
  const double dx = Checked::Sub(x2, x1);
  const double slope = dx == 0.0 ? kVerticalSlope : Checked::Div(Checked::Sub(y2, y1), dx);
  const double intercept = Checked::Sub(y1, Checked::Mul(x1, slope));
  slope_ = slope;
  intercept_ = intercept;
  return false;
}

bool TK2DLine::GetIntersectionPoint(Ref<Object> line, Variant& x, Variant& y) const {
  if (!line) Raise(Err::ObjectNotSet);
  double m2, b2;
  bool vertical2;
  if (const TK2DLine* other = dynamic_cast<const TK2DLine*>(line.get())) {
    m2 = other->slope_;
    b2 = other->intercept_;
    vertical2 = other->IsVertical();
  } else {
    const Variant o(line);
    m2 = ToDouble(o.Get("Slope"));
    b2 = ToDouble(o.Get("Intercept"));
    vertical2 = ToBoolean(o.Get("IsVertical"));
  }
  const double m1 = slope_, b1 = intercept_;
  if (m1 == m2 || (IsVertical() && vertical2)) return false;
  const double ix = Checked::Div(Checked::Sub(b1, b2), Checked::Sub(m2, m1));
  const double iy = Checked::Add(Checked::Mul(m1, ix), b1);
  x = Variant(ix);
  y = Variant(iy);
  return true;
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TK2DLine)
