// Profile paths: what the library writes with the Add...To members it reads
// back through Variable(curve, n) and the curve members, for all six curve
// kinds.  The library's own writing and reading procedures are kept here as
// literal models and run over random profiles.
#include "RefHostTestSupport.hpp"

using namespace TessarkAO;
using namespace TessarkAO::RefHostTest;

namespace {

struct Pt {
  double x = 0, y = 0;
  bool operator==(const Pt&) const = default;
};

struct CurveRec {
  int type = 0;
  double X = 0, Y = 0, Radius = 0, CenterX = 0, CenterY = 0, AngleMajor = 0, HFactor = 0, Eccentricity = 0,
         MinorHeight = 0, XPt = 0, YPt = 0, T1X = 0, T1Y = 0, T2X = 0, T2Y = 0, StartTrim = 0, EndTrim = 0;
  int degree = 0;
  bool periodic = false, closed = false;
  std::vector<Pt> ctrl, fit;
  std::vector<double> knots, weights;
};

struct OutlineRec {
  double sx = 0, sy = 0;
  std::int32_t construction = 0;
  bool closed = false;
  std::vector<CurveRec> curves;
};

// The library's profile writer, step by step.
void WriteProfile(const Variant& paths, const std::vector<OutlineRec>& outlines) {
  for (const OutlineRec& o : outlines) {
    Variant p = paths.Call("Add");
    p.Call("SetStartPoint", o.sx, o.sy);
    std::vector<std::pair<std::int32_t, double>> fillets;
    for (std::size_t j = 0; j < o.curves.size(); ++j) {
      const CurveRec& k = o.curves[j];
      switch (k.type) {
        case 0: fillets.emplace_back(static_cast<std::int32_t>(j + 1), k.Radius); break;
        case 1: p.Call("AddLineTo", k.X, k.Y); break;
        case 2: p.Call("AddArcTo", k.X, k.Y, k.HFactor); break;
        case 3: p.Call("AddSplineTo", k.X, k.Y, k.T1X, k.T1Y, k.T2X, k.T2Y); break;
        case 4:
          if (k.MinorHeight == -1) {
            p.Call("AddEllipse", k.CenterX, k.CenterY, std::pow(k.XPt * k.XPt + k.YPt * k.YPt, 1.0 / 2.0));
          } else {
            p.Call("AddEllipse", k.CenterX, k.CenterY, k.MinorHeight, k.XPt, k.YPt);
          }
          break;
        case 5: {
          Variant s = p.Call("AddBSplineTo", k.X, k.Y);
          const auto n = static_cast<std::int32_t>(k.ctrl.size());
          SafeArray ctrl = SafeArray::Matrix(VarType::Double, 1, n, 1, 2);
          SafeArray w = SafeArray::Vector(VarType::Double, 1, n), kn = SafeArray::Vector(VarType::Double, 1, n);
          for (std::size_t i = 0; i < k.ctrl.size(); ++i) {
            const auto at = static_cast<std::int32_t>(i + 1);
            ctrl.Put(at, 1, Variant(k.ctrl[i].x)), ctrl.Put(at, 2, Variant(k.ctrl[i].y));
            w.Put(at, Variant(k.weights[i])), kn.Put(at, Variant(k.knots[i]));
          }
          Variant vc(std::move(ctrl)), vw(std::move(w)), vk(std::move(kn));
          std::vector<Variant> args = {Variant(k.degree),  Variant(k.periodic), Variant(k.closed),
                                       Variant::ByRef(vc), Variant::ByRef(vw),  Variant::ByRef(vk)};
          s.Invoke("SetDefinition", CallKind::Method, args);
          break;
        }
      }
    }
    p.Let("Construction", o.construction);
    p.Let("Closed", o.closed);
    for (const auto& [j, r] : fillets) p.Call("AddFilletAt", j, r);
  }
}

// The points a B-spline lists through GetControlPoint or GetFitPoint.
std::vector<Pt> PointsOf(const Variant& curve, const char* member, std::int32_t count) {
  std::vector<Pt> out;
  for (std::int32_t n = 1; n <= count; ++n) {
    const std::vector<double> xy = CallDoubles(curve, member, {Variant(n), Variant(), Variant()});
    out.push_back({xy[0], xy[1]});
  }
  return out;
}

// The library's profile reader, step by step.
std::vector<OutlineRec> ReadProfile(const Variant& paths) {
  std::vector<OutlineRec> out;
  for (std::int32_t i = 1; i <= ToLong(paths.Get("Count")); ++i) {
    Variant p = paths.Call("Item", i);
    OutlineRec o;
    o.closed = ToBoolean(p.Get("Closed"));
    o.construction = ToLong(p.Get("Construction"));
    o.sx = ToDouble(p.Call("Variable", 0, 1));
    o.sy = ToDouble(p.Call("Variable", 0, 2));
    for (std::int32_t j = 1; j <= ToLong(p.Get("Curves").Get("Count")); ++j) {
      Variant c = p.Get("Curves").Call("Item", j);
      CurveRec k;
      k.type = ToLong(c.Get("Type"));
      auto V = [&](int n) { return ToDouble(p.Call("Variable", j, n).Get("Value")); };
      switch (k.type) {
        case 0: k.X = V(1), k.Y = V(2), k.Radius = V(3), k.CenterX = V(5), k.CenterY = V(6); break;
        case 1: k.X = V(1), k.Y = V(2), k.StartTrim = V(9), k.EndTrim = V(10); break;
        case 2:
          k.X = V(1), k.Y = V(2), k.StartTrim = V(3), k.EndTrim = V(4), k.AngleMajor = V(8), k.HFactor = V(9),
          k.Eccentricity = V(10);
          break;
        case 3:
          k.X = V(1), k.Y = V(2), k.T1X = V(3), k.T1Y = V(4), k.T2X = V(5), k.T2Y = V(6), k.StartTrim = V(9),
          k.EndTrim = V(10);
          break;
        case 4: {
          k.CenterX = V(1), k.CenterY = V(2), k.XPt = V(3), k.YPt = V(4);
          Variant minor = p.Call("Variable", j, 9);
          EXPECT_EQ(ToString(minor.Get("Expression")), "");  // so the plain value is read
          k.MinorHeight = ToDouble(minor.Get("Value"));
          break;
        }
        case 5: {
          k.X = V(1), k.Y = V(2);
          k.closed = ToBoolean(c.Get("Closed"));
          k.periodic = ToBoolean(c.Get("Periodic"));
          k.degree = ToLong(c.Get("Degree"));
          k.ctrl = PointsOf(c, "GetControlPoint", ToLong(c.Get("ControlPoints")));
          k.fit = PointsOf(c, "GetFitPoint", ToLong(c.Get("FitPoints")));
          for (std::int32_t n = 1; n <= ToLong(c.Get("Knots")); ++n)
            k.knots.push_back(ToDouble(c.Call("GetKnot", n)));
          for (std::int32_t n = 1; n <= ToLong(c.Get("Weights")); ++n)
            k.weights.push_back(ToDouble(c.Call("GetWeight", n)));
          break;
        }
      }
      o.curves.push_back(k);
    }
    out.push_back(std::move(o));
  }
  return out;
}

std::vector<OutlineRec> RandomProfile(std::mt19937& rng) {
  std::uniform_real_distribution<double> d(-100.0, 100.0);
  std::uniform_int_distribution<int> kind(0, 5), count(1, 7);
  std::vector<OutlineRec> out(static_cast<std::size_t>(std::uniform_int_distribution<int>(1, 4)(rng)));
  for (OutlineRec& o : out) {
    o.sx = d(rng), o.sy = d(rng);
    o.construction = std::uniform_int_distribution<int>(0, 1)(rng);
    o.closed = std::uniform_int_distribution<int>(0, 1)(rng) == 1;
    const int n = count(rng);
    for (int j = 0; j < n; ++j) {
      CurveRec k;
      k.type = kind(rng);
      switch (k.type) {
        case 0: k.Radius = std::abs(d(rng)) / 10; break;
        case 1: k.X = d(rng), k.Y = d(rng); break;
        case 2: k.X = d(rng), k.Y = d(rng), k.HFactor = d(rng) / 100; break;
        case 3: k.X = d(rng), k.Y = d(rng), k.T1X = d(rng), k.T1Y = d(rng), k.T2X = d(rng), k.T2Y = d(rng); break;
        case 4:  // every other one a circle: its radius in XPt, YPt 0
          k.CenterX = d(rng), k.CenterY = d(rng), k.MinorHeight = j % 2 ? -1 : std::abs(d(rng));
          k.XPt = j % 2 ? std::abs(d(rng)) : d(rng), k.YPt = j % 2 ? 0 : d(rng);
          break;
        case 5: {
          k.X = d(rng), k.Y = d(rng);
          k.degree = std::uniform_int_distribution<int>(1, 5)(rng);
          k.periodic = j % 2 == 1;
          k.closed = j % 3 == 1;
          const int m = std::uniform_int_distribution<int>(2, 9)(rng);
          for (int i = 0; i < m; ++i) {
            k.ctrl.push_back({d(rng), d(rng)});
            k.weights.push_back(std::abs(d(rng)) + 0.5);
            k.knots.push_back(i / double(m));
          }
          break;
        }
      }
      o.curves.push_back(k);
    }
  }
  return out;
}

// Every field a curve record carries (a fillet's corner and centre are the
// host's, so only its radius is written and compared).
auto Fields(const CurveRec& k) {
  return std::tie(k.type, k.X, k.Y, k.HFactor, k.CenterX, k.CenterY, k.MinorHeight, k.XPt, k.YPt, k.T1X, k.T1Y,
                  k.T2X, k.T2Y, k.StartTrim, k.EndTrim, k.AngleMajor, k.Eccentricity, k.degree, k.periodic,
                  k.closed, k.knots, k.weights);
}

void ExpectSame(const std::vector<OutlineRec>& a, const std::vector<OutlineRec>& b) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    EXPECT_EQ(std::tie(a[i].sx, a[i].sy, a[i].construction, a[i].closed),
              std::tie(b[i].sx, b[i].sy, b[i].construction, b[i].closed));
    ASSERT_EQ(a[i].curves.size(), b[i].curves.size()) << "outline " << i;
    for (std::size_t j = 0; j < a[i].curves.size(); ++j) {
      const CurveRec &x = a[i].curves[j], &y = b[i].curves[j];
      const std::string at = "outline " + std::to_string(i) + " curve " + std::to_string(j);
      ASSERT_EQ(x.type, y.type) << at;
      if (x.type == 0) {
        EXPECT_EQ(x.Radius, y.Radius) << at;
      } else {
        EXPECT_EQ(Fields(x), Fields(y)) << at;
        EXPECT_TRUE(x.ctrl == y.ctrl && x.fit == y.fit) << at;
      }
    }
  }
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

TEST(Paths, ProfilesWrittenByTheLibraryReadBackTheSameForEveryCurveKind) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    std::mt19937 rng(seed);
    Variant app(RefHost::NewApplication());
    Variant paths = NewPaths(app);
    const std::vector<OutlineRec> profile = RandomProfile(rng);
    WriteProfile(paths, profile);
    ExpectSame(profile, ReadProfile(paths));
    if (HasFailure()) FAIL() << "seed " << seed;
  }
}

TEST(Paths, FilletsTakeTheirPositionAndRoundTheCornerBetweenLines) {
  Variant app(RefHost::NewApplication());
  Variant p = NewPaths(app).Call("Add");
  p.Call("SetStartPoint", 0.0, 0.0);
  p.Call("AddLineTo", 10.0, 0.0);
  p.Call("AddLineTo", 10.0, 10.0);
  p.Let("Closed", true);
  p.Call("AddFilletAt", 2, 2.0);
  EXPECT_EQ(ToLong(p.Get("Curves").Get("Count")), 3);
  EXPECT_EQ(ToLong(p.Get("Curves").Call("Item", 2).Get("Type")), 0);
  EXPECT_EQ(ToLong(p.Get("Curves").Call("Item", 3).Get("Type")), 1);
  // The corner (10, 0) between a line along +X and one along +Y: the centre
  // lies 2 inside both.
  EXPECT_DOUBLE_EQ(ToDouble(p.Call("Variable", 2, 1)), 10.0);
  EXPECT_NEAR(ToDouble(p.Call("Variable", 2, 5)), 8.0, 1e-12);
  EXPECT_NEAR(ToDouble(p.Call("Variable", 2, 6)), 2.0, 1e-12);
  EXPECT_EQ(ErrorOf([&] { p.Call("AddFilletAt", 0, 1.0); }), 5);
  EXPECT_EQ(ErrorOf([&] { p.Call("AddFilletAt", 5, 1.0); }), 5);
  EXPECT_EQ(ErrorOf([&] { p.Call("AddFilletAt", 1, -1.0); }), 5);
}

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
      const std::vector<Pt> kept = PointsOf(curve, "GetFitPoint", n);
      for (int i = 0; i < n; ++i) {
        EXPECT_EQ(kept[static_cast<std::size_t>(i)].x, fit[static_cast<std::size_t>(i)].x) << i;
        EXPECT_EQ(kept[static_cast<std::size_t>(i)].y, fit[static_cast<std::size_t>(i)].y) << i;
      }
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
  EXPECT_EQ(ErrorOf([&] { p.Call("AddLineTo", "a", 1.0); }), 13);
  // A profile holds paths only.
  EXPECT_EQ(ErrorOf([&] { ProfileOf(ext).Get("Components", 4).Call("Add"); }), 5);
}
