#include "profiles/TKOutline.hpp"

#include "automation/Catalogue.hpp"

namespace TessarkAO {

void TKOutline::Describe(ClassBuilder<TKOutline>& b) {
  b.PropertyRef<&TKOutline::GetPathComponent, &TKOutline::SetPathComponent>("PathComponent")
      .Property<&TKOutline::GetStartPointX, &TKOutline::LetStartPointX>("StartPointX")
      .Property<&TKOutline::GetStartPointY, &TKOutline::LetStartPointY>("StartPointY")
      .Method<&TKOutline::AddLineTo>("AddLineTo", Names{"X", "Y"})
      .Method<&TKOutline::AddEllipse>(
          "AddEllipse", Names{"CenterX", "CenterY", "Radius", "XPtOnEllipse", "YPtOnEllipse"}, Opt{0.0, 0.0})
      .Property<&TKOutline::GetConstruction, &TKOutline::LetConstruction>("Construction")
      .Property<&TKOutline::GetClosed, &TKOutline::LetClosed>("Closed")
      .Get<&TKOutline::NumberOfCurves>("NumberOfCurves")
      .Method<&TKOutline::AddCurve>("AddCurve", Names{"lngType"}, Opt{Variant(std::int32_t{0})})
      .Method<&TKOutline::GetCurve>("GetCurve", Names{"lngIndex"});
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
