// Profile paths: what the host itself does with fit points and refused
// arguments.  Fillets and every other curve kind the library writes are
// checked by its round trip (tests/profiles/host_paths_test).
#include "RefHostTestSupport.hpp"

using namespace TessarkAO;
using namespace TessarkAO::RefHostTest;

namespace {

struct Pt {
  double x = 0, y = 0;
  bool operator==(const Pt&) const = default;
};

// The points a B-spline lists through GetControlPoint or GetFitPoint.
std::vector<Pt> PointsOf(const Variant& curve, const char* member, std::int32_t count) {
  std::vector<Pt> out;
  for (std::int32_t n = 1; n <= count; ++n) {
    const std::vector<double> xy = CallDoubles(curve, member, {Variant(n), Variant(), Variant()});
    out.push_back({xy[0], xy[1]});
  }
  return out;
}

Variant NewPaths(const Variant& app) { return ProfileOf(AddShape(Root(app), 5)).Get("Components", 3); }

// De Boor evaluation of a clamped B-spline with unit weights.
Pt Evaluate(const std::vector<Pt>& ctrl, const std::vector<double>& knots, int p, double u) {
  const std::size_t n = ctrl.size();
  std::size_t span = static_cast<std::size_t>(p);
  while (span + 1 < n && knots[span + 1] <= u) ++span;
  std::vector<Pt> d(ctrl.begin() + static_cast<std::ptrdiff_t>(span) - p,
                    ctrl.begin() + static_cast<std::ptrdiff_t>(span) + 1);
  for (int r = 1; r <= p; ++r)
    for (int j = p; j >= r; --j) {
      const std::size_t i = span - static_cast<std::size_t>(p) + static_cast<std::size_t>(j);
      const double den = knots[i + static_cast<std::size_t>(p) + 1 - static_cast<std::size_t>(r)] - knots[i];
      const double a = den == 0 ? 0 : (u - knots[i]) / den;
      d[static_cast<std::size_t>(j)] = {
          (1 - a) * d[static_cast<std::size_t>(j - 1)].x + a * d[static_cast<std::size_t>(j)].x,
          (1 - a) * d[static_cast<std::size_t>(j - 1)].y + a * d[static_cast<std::size_t>(j)].y};
    }
  return d[static_cast<std::size_t>(p)];
}

}  // namespace

TEST(Paths, FitPointsAreInterpolated) {
  std::mt19937 rng(9);
  std::uniform_real_distribution<double> d(-50.0, 50.0);
  for (int n : {2, 3, 4, 7, 40}) {
    for (int degree : {1, 2, 3, 5}) {
      Variant app(RefHost::NewApplication());
      Variant p = NewPaths(app).Call("Add");
      std::vector<Pt> fit;
      SafeArray table = SafeArray::Matrix(VarType::Double, 1, n, 1, 2);
      for (int i = 1; i <= n; ++i) {
        fit.push_back({d(rng), d(rng)});
        table.Put(i, 1, Variant(fit.back().x));
        table.Put(i, 2, Variant(fit.back().y));
      }
      Variant curve = p.Call("AddBSplineTo", fit.back().x, fit.back().y);
      Variant t(std::move(table));
      std::vector<Variant> args = {Variant(std::int16_t{static_cast<std::int16_t>(degree)}),
                                   Variant(false),
                                   Variant(false),
                                   Variant::ByRef(t),
                                   Variant::Nothing(),
                                   Variant::Nothing()};
      curve.Invoke("SetDefinitionByFitPoints", CallKind::Method, args);
      ASSERT_EQ(ToLong(curve.Get("FitPoints")), n);
      // The fit points are kept exactly as given, in order.
      EXPECT_EQ(PointsOf(curve, "GetFitPoint", n), fit);
      const int np = ToLong(curve.Get("ControlPoints"));
      ASSERT_EQ(np, n);
      const int pdeg = std::min(degree, n - 1);
      const std::vector<Pt> ctrl = PointsOf(curve, "GetControlPoint", np);
      std::vector<double> knots;
      for (int i = 1; i <= ToLong(curve.Get("Knots")); ++i)
        knots.push_back(ToDouble(curve.Call("GetKnot", i)));
      ASSERT_EQ(knots.size(), static_cast<std::size_t>(n + pdeg + 1));
      // The curve passes through every fit point at its chord-length parameter.
      double total = 0;
      for (int i = 1; i < n; ++i) total += std::hypot(fit[i].x - fit[i - 1].x, fit[i].y - fit[i - 1].y);
      double u = 0;
      for (int i = 0; i < n; ++i) {
        if (i > 0) u += std::hypot(fit[i].x - fit[i - 1].x, fit[i].y - fit[i - 1].y) / total;
        const Pt at = Evaluate(ctrl, knots, pdeg, i == n - 1 ? 1.0 : u);
        EXPECT_NEAR(at.x, fit[static_cast<std::size_t>(i)].x, 1e-8) << "n " << n << " degree " << degree;
        EXPECT_NEAR(at.y, fit[static_cast<std::size_t>(i)].y, 1e-8) << "n " << n << " degree " << degree;
      }
    }
  }
}

TEST(Paths, ArgumentsTheHostRefuses) {
  Variant app(RefHost::NewApplication());
  Variant ext = AddShape(Root(app), 5);
  Variant paths = ProfileOf(ext).Get("Components", 3);
  Variant p = paths.Call("Add");
  Variant line = p.Call("AddLineTo", 1.0, 2.0);
  Variant spline = p.Call("AddBSplineTo", 1.0, 2.0);
  EXPECT_EQ(ErrorOf([&] { p.Call("Variable", 1, 3); }), 9);  // a line has no variable 3
  EXPECT_EQ(ErrorOf([&] { p.Call("Variable", 3, 1); }), 9);  // no curve 3
  EXPECT_EQ(ErrorOf([&] { p.Call("Variable", -1, 1); }), 9);
  EXPECT_EQ(ErrorOf([&] { line.Get("Degree"); }), 438);  // not a B-spline
  EXPECT_EQ(ErrorOf([&] { spline.Call("GetKnot", 1); }), 9);
  EXPECT_EQ(ErrorOf([&] { p.Call("AddEllipse", 1.0, 2.0, 3.0, 4.0); }), 450);
  // A fillet's position lies from 1 to one past the last curve; its radius is not negative.
  EXPECT_EQ(ErrorOf([&] { p.Call("AddFilletAt", 0, 1.0); }), 5);
  EXPECT_EQ(ErrorOf([&] { p.Call("AddFilletAt", 4, 1.0); }), 5);
  EXPECT_EQ(ErrorOf([&] { p.Call("AddFilletAt", 1, -1.0); }), 5);
  EXPECT_EQ(ErrorOf([&] { spline.Call("SetDefinition", 3, false, false, 1.0, 2.0, 3.0); }), 13);
  const auto row = [] { return SafeArray::Vector(VarType::Double, 1, 4); };
  const auto table = [] { return SafeArray::Matrix(VarType::Double, 1, 3, 1, 2); };
  // Control points must be rows of X and Y; a fit needs degree 1 or more; a
  // tangent is an object or nothing.
  EXPECT_EQ(ErrorOf([&] { spline.Call("SetDefinition", 3, false, false, row(), row(), row()); }), 5);
  EXPECT_EQ(ErrorOf([&] { spline.Call("SetDefinitionByFitPoints", 0, false, false, table()); }), 5);
  EXPECT_EQ(ErrorOf([&] { spline.Call("SetDefinitionByFitPoints", 3, false, false, table(), 5.0); }), 13);
  SafeArray twice = SafeArray::Matrix(VarType::Double, 1, 3, 1, 2);
  twice.Put(3, 1, Variant(1.0));
  EXPECT_EQ(ErrorOf([&] { spline.Call("SetDefinitionByFitPoints", 3, false, false, twice); }), 5);
  EXPECT_EQ(ErrorOf([&] { paths.Call("Item", 2); }), 9);
  // A profile holds paths only.
  EXPECT_EQ(ErrorOf([&] { ProfileOf(ext).Get("Components", 4).Call("Add"); }), 5);
}
