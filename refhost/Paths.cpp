// Profile paths and their curves.
//
// A path is a start point (curve 0, variables 1 and 2) followed by curves,
// each drawn from the previous end point.  The variables of each curve kind
// (HostTypes.cpp) are what the Add...To members write and what
// `Variable(curve, n)` reads back:
//   line      1 X, 2 Y, 9 start trim, 10 end trim
//   arc       1 X, 2 Y, 3 start trim, 4 end trim, 8 angle major, 9 H factor, 10 eccentricity
//   Bezier    1 X, 2 Y, 3..6 the two tangent points, 9 and 10 trims
//   ellipse   1 and 2 centre, 3 and 4 point on curve, 9 minor height (-1: a circle)
//   fillet    1 and 2 the corner it rounds, 3 radius, 5 and 6 centre
//   B-spline  1 X, 2 Y, and the spline's data on the curve object
#include <algorithm>
#include <cmath>

#include "automation/Convert.hpp"
#include "refhost/HostModel.hpp"

namespace TessarkAO::RefHost {

namespace {

constexpr std::int32_t kMaxDegree = 25;

double FiniteArg(double v) {
  if (!std::isfinite(v)) Raise(Err::Overflow);
  return v;
}

const SafeArray& ArrayArg(const Variant& v, const char* what) {
  const Variant& d = v.Deref();
  if (!d.IsArray()) Raise(Err::TypeMismatch, std::string(what) + " must be an array");
  return d.AsArray();
}

// Rows of an n x 2 (or wider) table: column one X, column two Y.
std::vector<Point2> ReadPoints(const Variant& v, const char* what) {
  const SafeArray& a = ArrayArg(v, what);
  if (a.Dims() != 2 || a.Bounds()[1].count < 2)
    Raise(Err::InvalidCall, std::string(what) + " must be a table of rows with X and Y");
  std::vector<Point2> out;
  const std::int32_t c = a.LBound(2);
  for (std::int64_t row = a.LBound(1); row <= a.UBound(1); ++row) {
    const auto r = static_cast<std::int32_t>(row);
    out.push_back({FiniteArg(ToDouble(a.Get(r, c))), FiniteArg(ToDouble(a.Get(r, c + 1)))});
  }
  return out;
}

std::vector<double> ReadNumbers(const Variant& v, const char* what) {
  const SafeArray& a = ArrayArg(v, what);
  if (a.Dims() != 1) Raise(Err::InvalidCall, std::string(what) + " must be a list of numbers");
  std::vector<double> out;
  for (std::int64_t i = a.LBound(1); i <= a.UBound(1); ++i)
    out.push_back(FiniteArg(ToDouble(a.Get(static_cast<std::int32_t>(i)))));
  return out;
}

void CheckDegree(std::int32_t degree) {
  if (degree < 1 || degree > kMaxDegree)
    Raise(Err::InvalidCall, "A B-spline degree lies from 1 to " + std::to_string(kMaxDegree));
}

// A tangent argument: left out, Empty or an object (none is used).
void CheckTangent(const Variant& v) {
  const Variant& d = v.Deref();
  if (d.IsMissing() || d.IsEmpty() || d.IsObject()) return;
  Raise(Err::TypeMismatch);
}

}  // namespace

// ---------------------------------------------------------------------------
// Path

void HostPath::Describe(ClassBuilder<HostPath>& b) {
  b.Get<&HostComponent::Type>("Type")
      .Property<&HostComponent::Name, &HostComponent::LetName>("Name")
      .Method<&HostPath::PathVariable>("Variable", Names{"Curve", "Index"})
      .Property<&HostPath::Closed, &HostPath::LetClosed>("Closed")
      .Property<&HostPath::Construction, &HostPath::LetConstruction>("Construction")
      .Get<&HostPath::Curves>("Curves")
      .Method<&HostPath::SetStartPoint>("SetStartPoint", Names{"X", "Y"}, Out<1, 2>{})
      .Method<&HostPath::AddLineTo>("AddLineTo", Names{"X", "Y"}, Out<1, 2>{})
      .Method<&HostPath::AddArcTo>("AddArcTo", Names{"X", "Y", "HFactor"}, Out<1, 2, 3>{})
      .Method<&HostPath::AddSplineTo>("AddSplineTo", Names{"X", "Y", "Tan1X", "Tan1Y", "Tan2X", "Tan2Y"}, Out<1, 2, 3, 4, 5, 6>{})
      .Method<&HostPath::AddEllipse>("AddEllipse", Names{"CenterX", "CenterY", "Radius", "XPt", "YPt"},
                                     Opt{Variant::Missing(), Variant::Missing()}, Out<1, 2, 3>{})
      .Method<&HostPath::AddBSplineTo>("AddBSplineTo", Names{"X", "Y"}, Out<1, 2>{})
      .Method<&HostPath::AddFilletAt>("AddFilletAt", Names{"Position", "Radius"}, Out<1, 2>{});
}

HostPath::HostPath() : HostDispatch(ComponentType::Path, std::span<const VarDef>()), start_(StartVarDefs()) {}

HostPath::~HostPath() {
  for (Ref<HostCurve>& c : curves_) c->Attach(nullptr);
}

Ref<Object> HostPath::PathVariable(std::int32_t curve, std::int32_t number) {
  if (curve < 0 || curve > static_cast<std::int32_t>(curves_.size())) Raise(Err::SubscriptOutOfRange);
  VarTable& t = curve == 0 ? start_ : curves_[static_cast<std::size_t>(curve - 1)]->Vars();
  t.At(number);
  return MakeRef<HostVariable>(Ref<HostObject>(this), &t, number, curve);
}

Ref<Object> HostPath::Curves() { return MakeRef<HostCurveList>(Ref<HostPath>(this)); }

Ref<HostCurve> HostPath::InsertCurve(std::size_t at, std::int32_t type) {
  auto c = MakeRef<HostCurve>(type);
  c->Attach(this);
  curves_.insert(curves_.begin() + static_cast<std::ptrdiff_t>(at), c);
  return c;
}

Ref<HostCurve> HostPath::AppendCurve(std::int32_t type) { return InsertCurve(curves_.size(), type); }

void HostPath::SetStartPoint(double& x, double& y) {
  const double sx = FiniteArg(x), sy = FiniteArg(y);
  start_.SetNumber(1, sx);
  start_.SetNumber(2, sy);
}

Ref<Object> HostPath::AddLineTo(double& x, double& y) {
  const double v[2] = {FiniteArg(x), FiniteArg(y)};
  Ref<HostCurve> c = AppendCurve(CurveType::Line);
  c->Vars().SetNumber(1, v[0]);
  c->Vars().SetNumber(2, v[1]);
  return c;
}

Ref<Object> HostPath::AddArcTo(double& x, double& y, double& hFactor) {
  const double v[3] = {FiniteArg(x), FiniteArg(y), FiniteArg(hFactor)};
  Ref<HostCurve> c = AppendCurve(CurveType::Arc);
  c->Vars().SetNumber(1, v[0]);
  c->Vars().SetNumber(2, v[1]);
  c->Vars().SetNumber(9, v[2]);
  return c;
}

Ref<Object> HostPath::AddSplineTo(double& x, double& y, double& t1x, double& t1y, double& t2x, double& t2y) {
  const double v[6] = {FiniteArg(x),   FiniteArg(y),   FiniteArg(t1x),
                       FiniteArg(t1y), FiniteArg(t2x), FiniteArg(t2y)};
  Ref<HostCurve> c = AppendCurve(CurveType::Bezier);
  for (std::int32_t n = 1; n <= 6; ++n) c->Vars().SetNumber(n, v[n - 1]);
  return c;
}

// Three arguments draw a circle (centre and radius; the minor height is then
// -1 and the radius is the point on the curve's X); five an ellipse (centre,
// minor height, point on the curve).
Ref<Object> HostPath::AddEllipse(double& cx, double& cy, double& a, const Variant& b, const Variant& c) {
  if (b.IsMissing() != c.IsMissing()) Raise(Err::WrongArgumentCount);
  double v[5] = {FiniteArg(cx), FiniteArg(cy), 0.0, 0.0, 0.0};
  if (b.IsMissing()) {
    v[2] = FiniteArg(a);
    v[4] = -1.0;
  } else {
    v[2] = FiniteArg(ToDouble(b));
    v[3] = FiniteArg(ToDouble(c));
    v[4] = FiniteArg(a);
  }
  Ref<HostCurve> k = AppendCurve(CurveType::Ellipse);
  k->Vars().SetNumber(1, v[0]);
  k->Vars().SetNumber(2, v[1]);
  k->Vars().SetNumber(3, v[2]);
  k->Vars().SetNumber(4, v[3]);
  k->Vars().SetNumber(9, v[4]);
  return k;
}

Ref<Object> HostPath::AddBSplineTo(double& x, double& y) {
  const double v[2] = {FiniteArg(x), FiniteArg(y)};
  Ref<HostCurve> c = AppendCurve(CurveType::BSpline);
  c->Vars().SetNumber(1, v[0]);
  c->Vars().SetNumber(2, v[1]);
  return c;
}

// Rounds the corner before curve `position` (1: the corner at the start
// point, which closes the path; one past the last curve: the corner at the
// end).  The fillet becomes curve `position`.  Its centre is placed on the
// bisector of the chords of the neighbouring curves.
Ref<Object> HostPath::AddFilletAt(std::int32_t& position, double& radius) {
  const std::int32_t count = static_cast<std::int32_t>(curves_.size());
  if (position < 1 || position > count + 1)
    Raise(Err::InvalidCall, "A fillet position lies from 1 to " + std::to_string(count + 1));
  if (!(FiniteArg(radius) >= 0.0)) Raise(Err::InvalidCall, "A fillet radius cannot be negative");
  const std::size_t j = static_cast<std::size_t>(position);
  const Vec3 corner = EndOf(j - 1);
  const Vec3 prev = j >= 2 ? EndOf(j - 2) : EndOf(curves_.size());
  const Vec3 next = j <= curves_.size() ? EndOf(j) : EndOf(curves_.empty() ? 0 : 1);
  Vec3 centre = corner;
  const double ux = prev.x - corner.x, uy = prev.y - corner.y;
  const double wx = next.x - corner.x, wy = next.y - corner.y;
  const double ul = std::hypot(ux, uy), wl = std::hypot(wx, wy);
  if (ul > 0.0 && wl > 0.0) {
    const double bx = ux / ul + wx / wl, by = uy / ul + wy / wl;
    const double bl = std::hypot(bx, by);
    const double cosTheta = std::clamp((ux * wx + uy * wy) / (ul * wl), -1.0, 1.0);
    const double sinHalf = std::sqrt((1.0 - cosTheta) / 2.0);
    if (bl > 1e-12 && sinHalf > 1e-12) {
      const double d = radius / sinHalf;
      centre = {corner.x + bx / bl * d, corner.y + by / bl * d, 0.0};
    }
  }
  Ref<HostCurve> c = InsertCurve(j - 1, CurveType::Fillet);
  c->Vars().SetNumber(1, corner.x);
  c->Vars().SetNumber(2, corner.y);
  c->Vars().SetNumber(3, radius);
  c->Vars().SetNumber(5, centre.x);
  c->Vars().SetNumber(6, centre.y);
  return c;
}

Vec3 HostPath::EndOf(std::size_t j) const {
  const VarTable& t = j == 0 ? start_ : curves_[j - 1]->Vars();
  return {t.Number(1), t.Number(2), 0.0};
}

void HostPath::Extend(Vec3& lo, Vec3& hi, bool& any) const {
  auto add = [&](double x, double y) {
    if (!any) {
      lo = hi = {x, y, 0.0};
      any = true;
      return;
    }
    lo.x = std::min(lo.x, x), lo.y = std::min(lo.y, y);
    hi.x = std::max(hi.x, x), hi.y = std::max(hi.y, y);
  };
  add(start_.Number(1), start_.Number(2));
  for (const Ref<HostCurve>& c : curves_) {
    const VarTable& t = c->Vars();
    const double x = t.Number(1), y = t.Number(2);
    switch (c->Type()) {
      case CurveType::Ellipse: {
        const double r = std::max(std::hypot(t.Number(3), t.Number(4)), std::abs(t.Number(9)));
        add(x - r, y - r);
        add(x + r, y + r);
        break;
      }
      case CurveType::Bezier:
        add(x, y);
        add(t.Number(3), t.Number(4));
        add(t.Number(5), t.Number(6));
        break;
      case CurveType::BSpline:
        add(x, y);
        for (const Point2& p : c->Spline().control) add(p.x, p.y);
        for (const Point2& p : c->Spline().fit) add(p.x, p.y);
        break;
      default: add(x, y); break;
    }
  }
}

void HostPath::Reevaluate(HostShape* shape) {
  for (VarSlot& s : start_.Slots()) ReevaluateSlot(s, start_, shape);
  for (Ref<HostCurve>& c : curves_)
    for (VarSlot& s : c->Vars().Slots()) ReevaluateSlot(s, c->Vars(), shape);
}

void HostCurveList::Describe(ClassBuilder<HostCurveList>& b) {
  b.Get<&HostCurveList::Count>("Count").Method<&HostCurveList::Item>("Item", Names{"Index"}).Default();
}

Ref<Object> HostCurveList::Item(std::int32_t index) const {
  if (index < 1 || index > Count()) Raise(Err::SubscriptOutOfRange);
  return path_->CurveList()[static_cast<std::size_t>(index - 1)];
}

// ---------------------------------------------------------------------------
// Curve

void HostCurve::Describe(ClassBuilder<HostCurve>& b) {
  b.Get<&HostCurve::Type>("Type")
      .Method<&HostCurve::Variable>("Variable", Names{"Index"})
      .Get<&HostCurve::Closed>("Closed")
      .Get<&HostCurve::Periodic>("Periodic")
      .Get<&HostCurve::Degree>("Degree")
      .Get<&HostCurve::ControlPoints>("ControlPoints")
      .Method<&HostCurve::GetControlPoint>("GetControlPoint", Names{"Index", "X", "Y"}, Out<2, 3>{})
      .Get<&HostCurve::FitPoints>("FitPoints")
      .Method<&HostCurve::GetFitPoint>("GetFitPoint", Names{"Index", "X", "Y"}, Out<2, 3>{})
      .Get<&HostCurve::Knots>("Knots")
      .Method<&HostCurve::GetKnot>("GetKnot", Names{"Index"})
      .Get<&HostCurve::Weights>("Weights")
      .Method<&HostCurve::GetWeight>("GetWeight", Names{"Index"})
      .Method<&HostCurve::SetDefinition>(
          "SetDefinition", Names{"Degree", "Periodic", "Closed", "ControlPoints", "Weights", "Knots"})
      .Method<&HostCurve::SetDefinitionByFitPoints>(
          "SetDefinitionByFitPoints",
          Names{"Degree", "Periodic", "Closed", "FitPoints", "StartTangent", "EndTangent"},
          Opt{Variant::Missing(), Variant::Missing()});
}

HostCurve::HostCurve(std::int32_t type) : type_(type), vars_(CurveVarDefs(type)) {}

Ref<Object> HostCurve::Variable(std::int32_t number) {
  vars_.At(number);
  if (path_) {
    std::int32_t index = 0;
    for (const Ref<HostCurve>& c : path_->CurveList()) {
      ++index;
      if (c.get() == this) break;
    }
    return MakeRef<HostVariable>(Ref<HostObject>(path_), &vars_, number, index);
  }
  return MakeRef<HostVariable>(Ref<HostObject>(this), &vars_, number);
}

void HostCurve::RequireBSpline() const {
  if (type_ != CurveType::BSpline) Raise(Err::NoSuchMember);
}

bool HostCurve::Closed() const { return RequireBSpline(), spline_.closed; }
bool HostCurve::Periodic() const { return RequireBSpline(), spline_.periodic; }
std::int32_t HostCurve::Degree() const { return RequireBSpline(), spline_.degree; }
std::int32_t HostCurve::ControlPoints() const {
  return RequireBSpline(), static_cast<std::int32_t>(spline_.control.size());
}
std::int32_t HostCurve::FitPoints() const {
  return RequireBSpline(), static_cast<std::int32_t>(spline_.fit.size());
}
std::int32_t HostCurve::Knots() const {
  return RequireBSpline(), static_cast<std::int32_t>(spline_.knots.size());
}
std::int32_t HostCurve::Weights() const {
  return RequireBSpline(), static_cast<std::int32_t>(spline_.weights.size());
}

namespace {
template <class T>
const T& Entry(const std::vector<T>& v, std::int32_t index) {
  if (index < 1 || index > static_cast<std::int32_t>(v.size())) Raise(Err::SubscriptOutOfRange);
  return v[static_cast<std::size_t>(index - 1)];
}
}  // namespace

void HostCurve::GetControlPoint(std::int32_t index, double& x, double& y) const {
  RequireBSpline();
  const Point2 p = Entry(spline_.control, index);
  x = p.x, y = p.y;
}

void HostCurve::GetFitPoint(std::int32_t index, double& x, double& y) const {
  RequireBSpline();
  const Point2 p = Entry(spline_.fit, index);
  x = p.x, y = p.y;
}

double HostCurve::GetKnot(std::int32_t index) const { return RequireBSpline(), Entry(spline_.knots, index); }
double HostCurve::GetWeight(std::int32_t index) const {
  return RequireBSpline(), Entry(spline_.weights, index);
}

// Defines the spline by its control points, weights and knots, taken as given
// (the host does not insist on a knot count); the fit points are dropped.
void HostCurve::SetDefinition(std::int32_t degree, bool periodic, bool closed, const Variant& controlPoints,
                              const Variant& weights, const Variant& knots) {
  RequireBSpline();
  CheckDegree(degree);
  BSplineData s;
  s.degree = degree;
  s.periodic = periodic;
  s.closed = closed;
  s.control = ReadPoints(controlPoints, "The control points");
  s.weights = ReadNumbers(weights, "The weights");
  s.knots = ReadNumbers(knots, "The knots");
  spline_ = std::move(s);
}

// Defines the spline through fit points: the host interpolates them and
// keeps both the fit points and the control points, knots and weights.
void HostCurve::SetDefinitionByFitPoints(std::int32_t degree, bool periodic, bool closed,
                                         const Variant& fitPoints, const Variant& startTangent,
                                         const Variant& endTangent) {
  RequireBSpline();
  CheckDegree(degree);
  CheckTangent(startTangent);
  CheckTangent(endTangent);
  BSplineData s;
  s.degree = degree;
  s.periodic = periodic;
  s.closed = closed;
  s.fit = ReadPoints(fitPoints, "The fit points");
  if (s.fit.size() < 2) Raise(Err::InvalidCall, "A B-spline needs at least 2 fit points");
  InterpolateBSpline(s);
  spline_ = std::move(s);
}

std::string HostCurve::JournalName() const {
  if (!path_) return "(curve of a deleted path)";
  std::int32_t index = 0;
  for (const Ref<HostCurve>& c : path_->CurveList()) {
    ++index;
    if (c.get() == this) break;
  }
  return path_->JournalName() + ".Curves.Item(" + std::to_string(index) + ")";
}

// ---------------------------------------------------------------------------
// Global interpolation: parameters by chord length, clamped knots by
// averaging, the banded collocation system solved without pivoting (it is
// totally positive, so elimination in order is stable).

void InterpolateBSpline(BSplineData& s) {
  const std::size_t n = s.fit.size();
  const int p = static_cast<int>(std::min<std::size_t>(static_cast<std::size_t>(s.degree), n - 1));
  std::vector<double> u(n, 0.0);
  double total = 0.0;
  for (std::size_t k = 1; k < n; ++k)
    total += std::hypot(s.fit[k].x - s.fit[k - 1].x, s.fit[k].y - s.fit[k - 1].y);
  for (std::size_t k = 1; k < n; ++k) {
    const double step = total > 0.0
                            ? std::hypot(s.fit[k].x - s.fit[k - 1].x, s.fit[k].y - s.fit[k - 1].y) / total
                            : 1.0 / static_cast<double>(n - 1);
    u[k] = u[k - 1] + step;
    if (total > 0.0 && step == 0.0)
      Raise(Err::InvalidCall,
            "Fit points " + std::to_string(k) + " and " + std::to_string(k + 1) + " coincide");
  }
  u[n - 1] = 1.0;
  std::vector<double> knots(n + static_cast<std::size_t>(p) + 1, 0.0);
  for (std::size_t i = n; i < knots.size(); ++i) knots[i] = 1.0;
  for (std::size_t j = 1; j + static_cast<std::size_t>(p) < n; ++j) {
    double sum = 0.0;
    for (std::size_t i = j; i < j + static_cast<std::size_t>(p); ++i) sum += u[i];
    knots[j + static_cast<std::size_t>(p)] = sum / p;
  }

  // Band storage: row k holds columns k - p .. k + p at offsets 0 .. 2p.
  const std::size_t w = 2 * static_cast<std::size_t>(p) + 1;
  std::vector<double> band(n * w, 0.0);
  auto at = [&](std::size_t r, std::size_t c) -> double& { return band[r * w + (c + p - r)]; };
  std::vector<double> basis(static_cast<std::size_t>(p) + 1), left(basis.size()), right(basis.size());
  // The knot span of u[k]: the last i in [p, n - 1] with knots[i] <= u[k].
  // The parameters increase with k, so the search goes on from the span of
  // the previous point and the whole pass is linear in n.
  std::size_t span = static_cast<std::size_t>(p);
  for (std::size_t k = 0; k < n; ++k) {
    while (span + 1 < n && knots[span + 1] <= u[k]) ++span;
    basis[0] = 1.0;
    for (int j = 1; j <= p; ++j) {
      left[static_cast<std::size_t>(j)] = u[k] - knots[span + 1 - static_cast<std::size_t>(j)];
      right[static_cast<std::size_t>(j)] = knots[span + static_cast<std::size_t>(j)] - u[k];
      double saved = 0.0;
      for (int r = 0; r < j; ++r) {
        const double den = right[static_cast<std::size_t>(r + 1)] + left[static_cast<std::size_t>(j - r)];
        const double t = den != 0.0 ? basis[static_cast<std::size_t>(r)] / den : 0.0;
        basis[static_cast<std::size_t>(r)] = saved + right[static_cast<std::size_t>(r + 1)] * t;
        saved = left[static_cast<std::size_t>(j - r)] * t;
      }
      basis[static_cast<std::size_t>(j)] = saved;
    }
    for (int j = 0; j <= p; ++j) {
      const std::size_t col = span - static_cast<std::size_t>(p) + static_cast<std::size_t>(j);
      if (col + static_cast<std::size_t>(p) < k || col > k + static_cast<std::size_t>(p)) continue;
      at(k, col) = basis[static_cast<std::size_t>(j)];
    }
  }
  std::vector<Point2> rhs = s.fit;
  for (std::size_t k = 0; k < n; ++k) {
    const double pivot = at(k, k);
    if (std::abs(pivot) < 1e-300) Raise(Err::InvalidCall, "The fit points cannot be interpolated");
    for (std::size_t r = k + 1; r < n && r <= k + static_cast<std::size_t>(p); ++r) {
      const double f = at(r, k) / pivot;
      if (f == 0.0) continue;
      for (std::size_t c = k; c < n && c <= k + static_cast<std::size_t>(p); ++c) at(r, c) -= f * at(k, c);
      rhs[r].x -= f * rhs[k].x;
      rhs[r].y -= f * rhs[k].y;
    }
  }
  std::vector<Point2> ctrl(n);
  for (std::size_t k = n; k-- > 0;) {
    double x = rhs[k].x, y = rhs[k].y;
    for (std::size_t c = k + 1; c < n && c <= k + static_cast<std::size_t>(p); ++c) {
      x -= at(k, c) * ctrl[c].x;
      y -= at(k, c) * ctrl[c].y;
    }
    ctrl[k] = {x / at(k, k), y / at(k, k)};
  }
  s.control = std::move(ctrl);
  s.knots = std::move(knots);
  s.weights.assign(n, 1.0);
}

}  // namespace TessarkAO::RefHost
