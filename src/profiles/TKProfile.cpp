// TKProfile: outline list, the host-path reader and writer, and the
// in-memory edits.
//
//   outline list ........ AddOutline, GetOutline, IsProfileEmpty, ...
//   reading ............. GetProfileFromPaths, ReadCurve, ReadBSpline
//   writing ............. SetProfileData, WriteBSpline
//   deparameterizing .... DeparameterizeProfile
//   edits ............... ShiftProfileData, MirrorProfileAboutAxis, CopyProfile
#include "profiles/TKProfile.hpp"

#include <array>
#include <cmath>
#include <span>
#include <utility>

#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"
#include "automation/Enumerations.hpp"
#include "frame/Conventions.hpp"

namespace TessarkAO {

namespace {

// Variable n of curve j of a host path.
Variant PathVariable(const Variant& path, std::int32_t curve, std::int32_t n) {
  return path.Get("Variable", curve, n);
}

// V(n) read through the variable's Value property.
double ValueOf(const Variant& path, std::int32_t curve, std::int32_t n) {
  return ToDouble(PathVariable(path, curve, n).Get("Value"));
}

// V(n) read as the variable's default value (its default member).
double DefaultOf(const Variant& path, std::int32_t curve, std::int32_t n) {
  return ToDouble(PathVariable(path, curve, n));
}

// Reading state shared by the curves of one GetProfileFromPaths call.
struct Reader {
  Ref<Object> page;
  Ref<Object> units;  // UnitUtils, created on first need

  // A variable driven by an expression is converted from page units to system
  // length units; a plain value is taken as it stands.  The asymmetry is
  // intended and callers rely on it.
  double ReadVariableInSystemUnits(const Variant& variable) {
    if (ToString(variable.Get("Expression")).empty()) return ToDouble(variable.Get("Value"));
    Variant value = variable.Get("Value");
    if (!units) units = CreateObject("TessarkAO.UnitUtils");
    return ToDouble(
        Variant(units).Call("ConvertUnits", page, value, UNIT_PAGEUNITS, UNIT_SYSTEM_LENGTH_UNITS));
  }
};

// Reads B-spline data from host curve `c` into `k`; each count is set before
// its entries, since setting a count clears the curve's array.
void ReadBSpline(const Variant& c, TKCurve& k) {
  k.LetBSplineClosed(ToBoolean(c.Get("Closed")));
  k.LetBSplinePeriodic(ToBoolean(c.Get("Periodic")));
  k.LetBSplineDegree(ToLong(c.Get("Degree")));

  auto readPoints = [&](std::string_view countName, std::string_view getName, auto let, auto count,
                        auto set) {
    (k.*let)(ToLong(c.Get(countName)));
    const std::int32_t n = (k.*count)();
    for (std::int32_t i = 1; i <= n; ++i) {
      Variant x, y;
      std::array<Variant, 3> args = {Variant(i), Variant::ByRef(x), Variant::ByRef(y)};
      c.Invoke(getName, CallKind::Method, args);
      (k.*set)(i, ToDouble(x), ToDouble(y));
    }
  };
  auto readValues = [&](std::string_view countName, std::string_view getName, auto let, auto count,
                        auto set) {
    (k.*let)(ToLong(c.Get(countName)));
    const std::int32_t n = (k.*count)();
    for (std::int32_t i = 1; i <= n; ++i) (k.*set)(i, ToDouble(c.Call(getName, i)));
  };
  readPoints("ControlPoints", "GetControlPoint", &TKCurve::LetBSplineControlPoints,
             &TKCurve::GetBSplineControlPoints, &TKCurve::SetControlPoint);
  readPoints("FitPoints", "GetFitPoint", &TKCurve::LetBSplineFitPoints, &TKCurve::GetBSplineFitPoints,
             &TKCurve::SetFitPoint);
  readValues("Knots", "GetKnot", &TKCurve::LetBSplineKnots, &TKCurve::GetBSplineKnots, &TKCurve::SetKnot);
  readValues("Weights", "GetWeight", &TKCurve::LetBSplineWeights, &TKCurve::GetBSplineWeights,
             &TKCurve::SetWeight);
}

// The reading table: which variable of a path curve fills which field, by
// type code.  Lines read X and Y, Beziers all their values, as the variable's
// default value; the rest through Value (the number is the same).
struct FieldRead {
  std::int32_t variable;
  void (TKCurve::*let)(double);
  bool byDefault;
};

std::span<const FieldRead> FieldsOfType(std::int32_t type) {
  using K = TKCurve;
  static constexpr FieldRead kFillet[] = {{1, &K::LetX, false},
                                          {2, &K::LetY, false},
                                          {3, &K::LetRadius, false},
                                          {5, &K::LetCenterX, false},
                                          {6, &K::LetCenterY, false}};
  static constexpr FieldRead kLine[] = {
      {1, &K::LetX, true}, {2, &K::LetY, true}, {9, &K::LetStartTrim, false}, {10, &K::LetEndTrim, false}};
  static constexpr FieldRead kArc[] = {{1, &K::LetX, false},
                                       {2, &K::LetY, false},
                                       {3, &K::LetStartTrim, false},
                                       {4, &K::LetEndTrim, false},
                                       {8, &K::LetAngleMajor, false},
                                       {9, &K::LetHFactor, false},
                                       {10, &K::LetEccentricity, false}};
  static constexpr FieldRead kBezier[] = {{1, &K::LetX, true},         {2, &K::LetY, true},
                                          {3, &K::LetTan1X, true},     {4, &K::LetTan1Y, true},
                                          {5, &K::LetTan2X, true},     {6, &K::LetTan2Y, true},
                                          {9, &K::LetStartTrim, true}, {10, &K::LetEndTrim, true}};
  // The ellipse's centre goes to CenterX/CenterY, not to X/Y; its minor
  // value (variable 9) is read unit-aware on its own.
  static constexpr FieldRead kEllipse[] = {{1, &K::LetCenterX, false},
                                           {2, &K::LetCenterY, false},
                                           {3, &K::LetXPtOnCurve, false},
                                           {4, &K::LetYPtOnCurve, false}};
  static constexpr FieldRead kBSpline[] = {{1, &K::LetX, false}, {2, &K::LetY, false}};
  switch (type) {
    case TKCurveType_Fillet: return kFillet;
    case TKCurveType_Line: return kLine;
    case TKCurveType_Arc: return kArc;
    case TKCurveType_Bezier: return kBezier;
    case TKCurveType_Ellipse: return kEllipse;
    case TKCurveType_BSpline: return kBSpline;
    default: return {};  // an unknown kind keeps only its CurveType
  }
}

// Fills curve `k` from the variables of curve j of path `p` by its type code.
void ReadCurve(Reader& reader, const Variant& p, std::int32_t j, const Variant& c, TKCurve& k) {
  for (const FieldRead& f : FieldsOfType(k.GetCurveType()))
    (k.*f.let)(f.byDefault ? DefaultOf(p, j, f.variable) : ValueOf(p, j, f.variable));
  if (k.GetCurveType() == TKCurveType_Ellipse)
    k.LetMinorHeight(reader.ReadVariableInSystemUnits(PathVariable(p, j, 9)));
  else if (k.GetCurveType() == TKCurveType_BSpline)
    ReadBSpline(c, k);
}

// Draws a B-spline curve: the segment to (X, Y), then its definition from the
// control points (rows 1..n, column 1 X, column 2 Y), weights and knots,
// the arrays passed by reference.
void WriteBSpline(const Variant& p, const TKCurve& k) {
  Variant s = p.Call("AddBSplineTo", k.GetX(), k.GetY());

  const std::int32_t nc = std::max(k.GetBSplineControlPoints(), 0);
  SafeArray cp = SafeArray::Matrix(VarType::Double, 1, nc, 1, 2);
  for (std::int32_t i = 1; i <= nc; ++i) {
    double x = 0, y = 0;
    k.GetControlPoint(i, x, y);
    cp.Data()[static_cast<std::size_t>(i - 1)] = Variant(x);
    cp.Data()[static_cast<std::size_t>(nc + i - 1)] = Variant(y);
  }
  auto vector = [](std::int32_t count, double (TKCurve::*get)(std::int32_t) const, const TKCurve& curve) {
    const std::int32_t n = std::max(count, 0);
    SafeArray a = SafeArray::Vector(VarType::Double, 1, n);
    for (std::int32_t i = 1; i <= n; ++i)
      a.Data()[static_cast<std::size_t>(i - 1)] = Variant((curve.*get)(i));
    return a;
  };
  Variant controlPoints(std::move(cp));
  Variant weights(vector(k.GetBSplineWeights(), &TKCurve::GetWeight, k));
  Variant knots(vector(k.GetBSplineKnots(), &TKCurve::GetKnot, k));
  std::array<Variant, 6> args = {Variant(k.GetBSplineDegree()), Variant(k.GetBSplinePeriodic()),
                                 Variant(k.GetBSplineClosed()), Variant::ByRef(controlPoints),
                                 Variant::ByRef(weights),       Variant::ByRef(knots)};
  s.Invoke("SetDefinition", CallKind::Method, args);
}

// Which coordinate a field of the reading table is: the X-like fields (X,
// CenterX, Tan1X, Tan2X, XPtOnCurve) and the Y-like ones.  Trims, radii,
// angles and factors are not coordinates and keep their expressions;
// B-spline points are not path variables.
enum class Axis { None, X, Y };

Axis AxisOfField(void (TKCurve::*let)(double)) {
  using K = TKCurve;
  for (auto x : {&K::LetX, &K::LetCenterX, &K::LetTan1X, &K::LetTan2X, &K::LetXPtOnCurve})
    if (let == x) return Axis::X;
  for (auto y : {&K::LetY, &K::LetCenterY, &K::LetTan1Y, &K::LetTan2Y, &K::LetYPtOnCurve})
    if (let == y) return Axis::Y;
  return Axis::None;
}

// Reassigns a variable's current value to it, replacing any expression.
void FixVariable(const Variant& path, std::int32_t curve, std::int32_t n) {
  Variant variable = PathVariable(path, curve, n);
  variable.Let("Value", variable.Get("Value"));
}

}  // namespace

void TKProfile::Describe(ClassBuilder<TKProfile>& b) {
  b.PropertyRef<&TKProfile::GetPage, &TKProfile::SetPage>(
       "Page", Doc{"The scene page whose units convert the values that need converting."})
      .Get<&TKProfile::IsProfileEmpty>(
          "IsProfileEmpty",
          Doc{"True when no outline has Construction 0 (no outlines, or construction outlines only)."})
      .Get<&TKProfile::IsProfileCompletelyClosed>(
          "IsProfileCompletelyClosed", Doc{"False when an outline with Construction 0 is not Closed; the "
                                           "outlines' Closed flags are taken as read."})
      .Get<&TKProfile::NumberOfOutlines>("NumberOfOutlines", Doc{"The number of outlines."})
      .Method<&TKProfile::AddOutline>("AddOutline", Doc{"Appends a new TKOutline and returns it."})
      .Method<&TKProfile::GetOutline>(
          "GetOutline", Names{"lngIndex"},
          Doc{"The outline at a 1-based index; Nothing above the count, and 9 below 1."})
      .Method<&TKProfile::DeparameterizeProfile>(
          "DeparameterizeProfile", Names{"objPathComponents", "eOptions"},
          Opt{Variant(std::int32_t{TKDeparameterizeAll})},
          Doc{"Fixes the coordinate variables of the given host paths at their current values (dropping "
              "their formulas): all, only X or only Y (TKDeparameterizeOptions)."})
      .Method<&TKProfile::GetProfileFromPaths>("GetProfileFromPaths", Names{"objPathComponents"},
                                               Doc{"Replaces the content with the outlines and curves read "
                                                   "from the host path collection; returns this profile."})
      .Method<&TKProfile::SetProfileData>(
          "SetProfileData", Names{"objPathComponents"},
          Doc{"Adds one host path per outline to the collection and draws the curves into it."})
      .Method<&TKProfile::ShiftProfileData>(
          "ShiftProfileData", Names{"dblAngle", "dblDistance"},
          Doc{"Moves every point by Distance along the direction Angle (degrees)."})
      .Method<&TKProfile::MirrorProfileAboutAxis>(
          "MirrorProfileAboutAxis", Names{"lngAxis"},
          Doc{"Axis 1 negates the Y coordinates, axis 2 the X coordinates; every curve's HFactor is negated "
              "whatever the axis."})
      .Method<&TKProfile::CopyProfile>("CopyProfile", Names{"cProfile"},
                                       Doc{"Appends copies of another profile's outlines."});
}

TKProfile::~TKProfile() {
  for (Ref<TKOutline>& outline : outlines_) outline.reset();
  page_.reset();
}

bool TKProfile::IsProfileEmpty() const {
  for (const Ref<TKOutline>& o : outlines_)
    if (o->GetConstruction() == 0) return false;
  return true;
}

bool TKProfile::IsProfileCompletelyClosed() const {
  for (const Ref<TKOutline>& o : outlines_)
    if (o->GetConstruction() == 0 && !o->GetClosed()) return false;
  return true;
}

Ref<TKOutline> TKProfile::AddOutline() {
  auto outline = MakeRef<TKOutline>();
  outlines_.push_back(outline);
  return outline;
}

Ref<TKOutline> TKProfile::GetOutline(std::int32_t index) const {
  if (index > NumberOfOutlines()) return Ref<TKOutline>();
  if (index < 1) Raise(Err::SubscriptOutOfRange);
  return outlines_[static_cast<std::size_t>(index) - 1];
}

Ref<TKProfile> TKProfile::GetProfileFromPaths(Ref<Object> pathComponents) {
  outlines_.clear();
  Reader reader{page_, {}};
  const Variant paths(std::move(pathComponents));
  const std::int32_t count = ToLong(paths.Get("Count"));
  for (std::int32_t i = 1; i <= count; ++i) {
    const Variant p = paths.Call("Item", i);
    Ref<TKOutline> o = AddOutline();
    o->SetPathComponent(ToObject(p));
    o->LetClosed(ToBoolean(p.Get("Closed")));
    o->LetConstruction(ToLong(p.Get("Construction")));
    o->LetStartPointX(DefaultOf(p, 0, 1));
    o->LetStartPointY(DefaultOf(p, 0, 2));
    const Variant curves = p.Get("Curves");
    const std::int32_t curveCount = ToLong(curves.Get("Count"));
    for (std::int32_t j = 1; j <= curveCount; ++j) {
      const Variant c = curves.Call("Item", j);
      Ref<TKCurve> k = o->AddCurve(ToLong(c.Get("Type")));
      ReadCurve(reader, p, j, c, *k);
    }
  }
  return Ref<TKProfile>(this);
}

void TKProfile::SetProfileData(Ref<Object> pathComponents) {
  const Variant paths(std::move(pathComponents));
  // Copies of the lists keep every outline and curve alive should a host call
  // reach back into this profile.
  const std::vector<Ref<TKOutline>> outlines = outlines_;
  std::vector<std::pair<std::int32_t, double>> fillets;
  for (const Ref<TKOutline>& o : outlines) {
    const Variant p = paths.Call("Add");
    p.Call("SetStartPoint", o->GetStartPointX(), o->GetStartPointY());
    fillets.clear();
    const std::vector<Ref<TKCurve>> curves = o->Curves();
    std::int32_t j = 0;
    for (const Ref<TKCurve>& k : curves) {
      ++j;
      switch (k->GetCurveType()) {
        case TKCurveType_Fillet: fillets.emplace_back(j, k->GetRadius()); break;
        case TKCurveType_Line: p.Call("AddLineTo", k->GetX(), k->GetY()); break;
        case TKCurveType_Arc: p.Call("AddArcTo", k->GetX(), k->GetY(), k->GetHFactor()); break;
        case TKCurveType_Bezier:
          p.Call("AddSplineTo", k->GetX(), k->GetY(), k->GetTan1X(), k->GetTan1Y(), k->GetTan2X(),
                 k->GetTan2Y());
          break;
        case TKCurveType_Ellipse:
          if (k->GetMinorHeight() == -1.0) {
            // A circle: the radius is the length of the stored point, with the
            // root taken as the power 1.0 / 2.0.
            const double x = k->GetXPtOnCurve(), y = k->GetYPtOnCurve();
            const double radius =
                Checked::Pow(Checked::Add(Checked::Mul(x, x), Checked::Mul(y, y)), 1.0 / 2.0);
            p.Call("AddEllipse", k->GetCenterX(), k->GetCenterY(), radius);
          } else {
            p.Call("AddEllipse", k->GetCenterX(), k->GetCenterY(), k->GetMinorHeight(), k->GetXPtOnCurve(),
                   k->GetYPtOnCurve());
          }
          break;
        case TKCurveType_BSpline: WriteBSpline(p, *k); break;
        default: break;
      }
    }
    p.Let("Construction", o->GetConstruction());
    p.Let("Closed", o->GetClosed());
    // Fillets go in only once the path is complete and closed, at the
    // position of their fillet curve in the outline (fillets counted too).
    for (const auto& [position, radius] : fillets) p.Call("AddFilletAt", position, radius);
  }
}

void TKProfile::DeparameterizeProfile(Ref<Object> pathComponents, TKDeparameterizeOptions options) {
  // Any other option value selects no coordinate, so nothing is touched.
  if (options != TKDeparameterizeAll && options != TKDeparameterizeXAxis && options != TKDeparameterizeYAxis)
    return;
  auto selected = [options](Axis axis) {
    return axis != Axis::None &&
           (options == TKDeparameterizeAll || axis == (options == TKDeparameterizeXAxis ? Axis::X : Axis::Y));
  };
  const Variant paths(std::move(pathComponents));
  const std::int32_t count = ToLong(paths.Get("Count"));
  for (std::int32_t i = 1; i <= count; ++i) {
    const Variant p = paths.Call("Item", i);
    // The start point is X variable 1 and Y variable 2 of curve 0; a curve's
    // coordinates are those of the reading table, in ascending number order.
    if (selected(Axis::X)) FixVariable(p, 0, 1);
    if (selected(Axis::Y)) FixVariable(p, 0, 2);
    const Variant curves = p.Get("Curves");
    const std::int32_t curveCount = ToLong(curves.Get("Count"));
    for (std::int32_t j = 1; j <= curveCount; ++j) {
      const std::int32_t type = ToLong(curves.Call("Item", j).Get("Type"));
      for (const FieldRead& f : FieldsOfType(type))
        if (selected(AxisOfField(f.let))) FixVariable(p, j, f.variable);
    }
  }
}

void TKProfile::ShiftProfileData(double angle, double distance) {
  const double a = Checked::Mul(kPi / 180, angle);
  const double dx = Checked::Mul(std::cos(a), distance);
  const double dy = Checked::Mul(std::sin(a), distance);
  auto movePoints = [&](TKCurve& k, std::int32_t n, auto get, auto set) {
    for (std::int32_t i = 1; i <= n; ++i) {
      double x = 0, y = 0;
      (k.*get)(i, x, y);
      (k.*set)(i, Checked::Add(x, dx), Checked::Add(y, dy));
    }
  };
  for (const Ref<TKOutline>& o : outlines_) {
    o->LetStartPointX(Checked::Add(o->GetStartPointX(), dx));
    o->LetStartPointY(Checked::Add(o->GetStartPointY(), dy));
    for (const Ref<TKCurve>& k : o->Curves()) {
      k->LetX(Checked::Add(k->GetX(), dx));
      k->LetY(Checked::Add(k->GetY(), dy));
      k->LetCenterX(Checked::Add(k->GetCenterX(), dx));
      k->LetCenterY(Checked::Add(k->GetCenterY(), dy));
      if (k->GetCurveType() == TKCurveType_BSpline) {
        movePoints(*k, k->GetBSplineControlPoints(), &TKCurve::GetControlPoint, &TKCurve::SetControlPoint);
        movePoints(*k, k->GetBSplineFitPoints(), &TKCurve::GetFitPoint, &TKCurve::SetFitPoint);
      }
    }
  }
}

void TKProfile::MirrorProfileAboutAxis(std::int32_t axis) {
  const bool negateY = axis == 1;
  const bool negateX = axis == 2;
  auto mirrorPoints = [&](TKCurve& k, std::int32_t n, auto get, auto set) {
    for (std::int32_t i = 1; i <= n; ++i) {
      double x = 0, y = 0;
      (k.*get)(i, x, y);
      (k.*set)(i, negateX ? -x : x, negateY ? -y : y);
    }
  };
  for (const Ref<TKOutline>& o : outlines_) {
    if (negateY) o->LetStartPointY(-o->GetStartPointY());
    if (negateX) o->LetStartPointX(-o->GetStartPointX());
    for (const Ref<TKCurve>& k : o->Curves()) {
      if (negateY) {
        k->LetY(-k->GetY());
        k->LetCenterY(-k->GetCenterY());
        k->LetTan1Y(-k->GetTan1Y());
        k->LetTan2Y(-k->GetTan2Y());
        k->LetYPtOnCurve(-k->GetYPtOnCurve());
      }
      if (negateX) {
        k->LetX(-k->GetX());
        k->LetCenterX(-k->GetCenterX());
        k->LetTan1X(-k->GetTan1X());
        k->LetTan2X(-k->GetTan2X());
        k->LetXPtOnCurve(-k->GetXPtOnCurve());
      }
      if ((negateX || negateY) && k->GetCurveType() == TKCurveType_BSpline) {
        mirrorPoints(*k, k->GetBSplineControlPoints(), &TKCurve::GetControlPoint, &TKCurve::SetControlPoint);
        mirrorPoints(*k, k->GetBSplineFitPoints(), &TKCurve::GetFitPoint, &TKCurve::SetFitPoint);
      }
      // Intended for every axis value, 1 and 2 or not: a reflection reverses
      // the sense of a curve.
      k->LetHFactor(-k->GetHFactor());
    }
  }
}

void TKProfile::CopyProfile(Ref<TKProfile> source) {
  if (!source) Raise(Err::ObjectNotSet);
  // The count is taken once, so copying a profile into itself doubles it.
  const std::int32_t count = source->NumberOfOutlines();
  for (std::int32_t i = 1; i <= count; ++i) {
    Ref<TKOutline> s = source->GetOutline(i);
    Ref<TKOutline> d = AddOutline();
    const std::vector<Ref<TKCurve>> curves = s->Curves();
    for (const Ref<TKCurve>& from : curves) {
      Ref<TKCurve> to = d->AddCurve(from->GetCurveType());
      to->LetAngleMajor(from->GetAngleMajor());
      to->LetCenterX(from->GetCenterX());
      to->LetCenterY(from->GetCenterY());
      to->LetEccentricity(from->GetEccentricity());
      // Intended: the copy's EndTrim receives the source's Eccentricity; the
      // source's EndTrim is never read.
      to->LetEndTrim(from->GetEccentricity());
      to->LetHFactor(from->GetHFactor());
      to->LetMinorHeight(from->GetMinorHeight());
      to->LetRadius(from->GetRadius());
      to->LetStartTrim(from->GetStartTrim());
      to->LetTan1X(from->GetTan1X());
      to->LetTan1Y(from->GetTan1Y());
      to->LetTan2X(from->GetTan2X());
      to->LetTan2Y(from->GetTan2Y());
      to->LetX(from->GetX());
      to->LetXPtOnCurve(from->GetXPtOnCurve());
      to->LetY(from->GetY());
      to->LetYPtOnCurve(from->GetYPtOnCurve());
      if (from->GetCurveType() == TKCurveType_BSpline) {
        to->LetBSplineClosed(from->GetBSplineClosed());
        to->LetBSplinePeriodic(from->GetBSplinePeriodic());
        to->LetBSplineDegree(from->GetBSplineDegree());
        auto copyPoints = [&](std::int32_t n, auto let, auto get, auto set) {
          ((*to).*let)(n);
          for (std::int32_t j = 1; j <= n; ++j) {
            double x = 0, y = 0;
            ((*from).*get)(j, x, y);
            ((*to).*set)(j, x, y);
          }
        };
        auto copyValues = [&](std::int32_t n, auto let, auto get, auto set) {
          ((*to).*let)(n);
          for (std::int32_t j = 1; j <= n; ++j) ((*to).*set)(j, ((*from).*get)(j));
        };
        copyPoints(from->GetBSplineControlPoints(), &TKCurve::LetBSplineControlPoints,
                   &TKCurve::GetControlPoint, &TKCurve::SetControlPoint);
        copyPoints(from->GetBSplineFitPoints(), &TKCurve::LetBSplineFitPoints, &TKCurve::GetFitPoint,
                   &TKCurve::SetFitPoint);
        copyValues(from->GetBSplineKnots(), &TKCurve::LetBSplineKnots, &TKCurve::GetKnot, &TKCurve::SetKnot);
        copyValues(from->GetBSplineWeights(), &TKCurve::LetBSplineWeights, &TKCurve::GetWeight,
                   &TKCurve::SetWeight);
      }
    }
    d->LetClosed(s->GetClosed());
    d->LetConstruction(s->GetConstruction());
    d->LetStartPointX(s->GetStartPointX());
    d->LetStartPointY(s->GetStartPointY());
  }
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKProfile)

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKDeparameterizeOptions, "TKProfile", TKDeparameterizeAll,
                        TKDeparameterizeXAxis, TKDeparameterizeYAxis)
