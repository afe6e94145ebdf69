#include "profiles/TKOutline.hpp"

#include "automation/Catalogue.hpp"

namespace TessarkAO {

void TKOutline::Describe(ClassBuilder<TKOutline>& b) {
  b.PropertyRef<&TKOutline::GetPathComponent, &TKOutline::SetPathComponent>(
       "PathComponent", Doc{"The host path this outline was read from or written to."})
      .Property<&TKOutline::GetStartPointX, &TKOutline::LetStartPointX>(
          "StartPointX", Doc{"X of the outline's start point."})
      .Property<&TKOutline::GetStartPointY, &TKOutline::LetStartPointY>(
          "StartPointY", Doc{"Y of the outline's start point."})
      .Method<&TKOutline::AddLineTo>("AddLineTo", Names{"X", "Y"},
                                     Doc{"Appends a line (CurveType 1) ending at (X, Y)."})
      .Method<&TKOutline::AddEllipse>(
          "AddEllipse", Names{"CenterX", "CenterY", "Radius", "XPtOnEllipse", "YPtOnEllipse"}, Opt{0.0, 0.0},
          Doc{"Appends an ellipse (CurveType 4) centred at (X, Y); with a point on the ellipse, MinorHeight "
              "and the point are set from it, else MinorHeight is -1."})
      .Property<&TKOutline::GetConstruction, &TKOutline::LetConstruction>(
          "Construction",
          Doc{"Whether the outline is construction geometry (not part of the profile's shape)."})
      .Property<&TKOutline::GetClosed, &TKOutline::LetClosed>("Closed", Doc{"Whether the outline is closed."})
      .Get<&TKOutline::NumberOfCurves>("NumberOfCurves", Doc{"The number of curves."})
      .Method<&TKOutline::AddCurve>("AddCurve", Names{"lngType"}, Opt{Variant(std::int32_t{0})},
                                    Doc{"Appends a new TKCurve of CurveType and returns it; a type of 0 "
                                        "leaves the new curve's default type."})
      .Method<&TKOutline::GetCurve>("GetCurve", Names{"lngIndex"},
                                    Doc{"The curve at a 1-based index; Nothing above the count. An index "
                                        "below 1 raises 9 (the test is one-sided on purpose)."});
}

TKOutline::~TKOutline() {
  // The curves go first, in list order, then the path reference.
  for (Ref<TKCurve>& curve : curves_) curve.reset();
  pathComponent_.reset();
}

Ref<TKCurve> TKOutline::AddCurve(std::int32_t type) {
  auto curve = MakeRef<TKCurve>();
  if (type != 0) curve->LetCurveType(type);
  curves_.push_back(curve);
  return curve;
}

Ref<TKCurve> TKOutline::GetCurve(std::int32_t index) const {
  if (index > NumberOfCurves()) return Ref<TKCurve>();
  if (index < 1) Raise(Err::SubscriptOutOfRange);
  return curves_[static_cast<std::size_t>(index) - 1];
}

Ref<TKCurve> TKOutline::AddLineTo(double x, double y) {
  Ref<TKCurve> curve = AddCurve(TKCurveType_Line);
  curve->LetX(x);
  curve->LetY(y);
  return curve;
}

Ref<TKCurve> TKOutline::AddEllipse(double centerX, double centerY, double radius, double xPt, double yPt) {
  Ref<TKCurve> curve = AddCurve(TKCurveType_Ellipse);
  curve->LetX(centerX);
  curve->LetY(centerY);
  if (xPt != 0.0 || yPt != 0.0) {
    curve->LetMinorHeight(radius);
    curve->LetXPtOnCurve(xPt);
    curve->LetYPtOnCurve(xPt);  // intended: the point's Y is taken from xPt as well
  } else {
    curve->LetMinorHeight(-1.0);
    curve->LetXPtOnCurve(radius);
    curve->LetYPtOnCurve(0.0);
  }
  return curve;
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKOutline)
