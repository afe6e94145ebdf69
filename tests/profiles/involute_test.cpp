// TKInvoluteCurve: the involute's geometry, the deliberately kept constants
// and the missing quadrant correction, and sampling against a literal model.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "ProfilesTestSupport.hpp"
#include "frame/Conventions.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

namespace {

Ref<TKInvoluteCurve> NewInvolute(double radius = 1.0) {
  Ref<TKInvoluteCurve> c = RefCast<TKInvoluteCurve>(CreateObject("TessarkAO.TKInvoluteCurve"));
  c->LetCircleRadius(radius);
  return c;
}

std::pair<double, double> Point(const TKInvoluteCurve& c, double t) {
  std::pair<double, double> p;
  c.GetPointFromAngle(t, p.first, p.second);
  return p;
}

// The documented sampling, written out literally: the involute formula, the
// mirror, then the turn a TKVector4d makes (a Z rotation matrix built from
// degrees with the 15-digit pi and cleaned of entries below 1e-9, the row
// vector times the matrix, the result cleaned again).
std::vector<std::pair<double, double>> ModelSamples(double radius, double startAngle, bool ccw,
                                                    std::int32_t n, double angle) {
  auto snap = [](double v) { return std::fabs(v) < 1e-9 ? 0.0 : v; };
  std::vector<std::pair<double, double>> rows;
  for (std::int32_t i = 1; i <= n; ++i) {
    const double t = angle / (n - 1) * (i - 1);
    double x = (std::sin(t) * t + std::cos(t)) * radius;
    double y = (std::sin(t) - std::cos(t) * t) * radius;
    if (!ccw) y = -y;
    const double r = startAngle * (180 / kPi) * (kPi / 180);
    const double c = snap(std::cos(r)), s = snap(std::sin(r));
    x = snap(x), y = snap(y);  // SetPosition cleans up too
    rows.emplace_back(snap(x * c + y * -s + 0.0 * 0.0 + 0.0 * 0.0),
                      snap(x * s + y * c + 0.0 * 0.0 + 0.0 * 0.0));
  }
  return rows;
}

}  // namespace

TEST(Involute, PolarAngleKeepsTheLiteralTurnAndHasNoQuadrantCorrection) {
  auto c = NewInvolute(2.0);
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> height(0.01, 400);
  for (int i = 0; i < 300; ++i) {
    const double h = height(rng);
    const double t = c->GetAngleFromInvoluteHeight(h);
    const auto [x, y] = Point(*c, t);
    EXPECT_NEAR(std::hypot(x, y) - 2.0, h, 1e-9 * h);  // the point at t lies h above the base circle
    // The arctangent of Y / X lies in (-pi/2, pi/2): a point left of the Y
    // axis is reported half a turn off its true polar angle.
    const double a = std::atan(y / x);
    // Whole turns use 6.28318530717958, not the full-precision 2 pi.
    EXPECT_EQ(c->GetPointAngleFromInvoluteHeight(h), std::floor(t / 6.28318530717958) * 6.28318530717958 + a);
    // The arc length is the polar angle times R, not t * R.
    EXPECT_EQ(c->GetRequiredArcLengthForInvoluteHeight(h), a * 2.0);
  }
}

TEST(Involute, ArithmeticErrorsAndTheZeroSubstitution) {
  auto c = NewInvolute(10.0);
  EXPECT_EQ(c->GetPointAngleFromInvoluteHeight(0), 0.0);
  EXPECT_EQ(c->GetAngleFromInvoluteHeight(5), std::sqrt(1.25));
  EXPECT_EQ(ErrorOf([&] { c->GetAngleFromInvoluteHeight(-15); }), Err::InvalidCall);  // negative base
  EXPECT_NO_THROW(c->GetAngleFromInvoluteHeight(-25));  // h / R + 1 = -1.5 squares above 1
  c->LetCircleRadius(0);
  EXPECT_EQ(ErrorOf([&] { c->GetAngleFromInvoluteHeight(1); }), Err::DivisionByZero);
  EXPECT_EQ(ErrorOf([&] { c->GetAngleFromInvoluteHeight(0); }), Err::Overflow);  // 0 / 0

  double x = 0.0, y = 2.0;
  EXPECT_EQ(InvoluteMath::ArcTanOfRatio(x, y), std::atan(2.0 / 1e-16));
  EXPECT_EQ(x, 1e-16);  // the caller's X is overwritten
  x = 0.0, y = 1e300;
  EXPECT_EQ(ErrorOf([&] { InvoluteMath::ArcTanOfRatio(x, y); }), Err::Overflow);
}

TEST(Involute, TableAccessNeedsASampledRow) {
  auto c = NewInvolute();
  const Variant curve{Ref<Object>(c)};
  EXPECT_EQ(ErrorOf([&] { Sample(*c, 1); }), Err::SubscriptOutOfRange);  // nothing sampled yet
  c->LetPoints(0);
  EXPECT_EQ(ErrorOf([&] { c->CalculatePointsThroughAngle(1); }), Err::SubscriptOutOfRange);
  c->LetPoints(1);
  EXPECT_EQ(ErrorOf([&] { c->CalculatePointsThroughAngle(1); }), Err::DivisionByZero);
  EXPECT_EQ(ErrorOf([&] { c->CalculatePointsThroughAngle(0); }), Err::Overflow);  // 0 / 0
  c->LetPoints(3);
  c->CalculatePointsThroughAngle(1);
  EXPECT_EQ(ErrorOf([&] { Sample(*c, 4); }), Err::SubscriptOutOfRange);  // a row after the last
  // Errors leave the caller's outputs alone.
  Variant x(7.0), y(8.0);
  std::vector<Variant> args = {Variant(0), Variant::ByRef(x), Variant::ByRef(y)};
  EXPECT_EQ(ErrorOf([&] { curve.Invoke("GetCalculatedPointFromIndex", CallKind::Method, args); }),
            Err::SubscriptOutOfRange);
  EXPECT_EQ(std::make_pair(x.AsDouble(), y.AsDouble()), std::make_pair(7.0, 8.0));
  args[0] = Variant(3);
  curve.Invoke("GetCalculatedPointFromIndex", CallKind::Method, args);
  EXPECT_EQ(std::make_pair(x.AsDouble(), y.AsDouble()), Point(*c, 1.0));
}

TEST(Involute, SamplingMatchesTheLiteralModel) {
  auto c = NewInvolute();
  c->CalculatePointsThroughAngle(1);  // 3 points by default: t = 0, 0.5, 1
  for (int i = 1; i <= 3; ++i) EXPECT_EQ(Sample(*c, i), Point(*c, 0.5 * (i - 1)));
  c->LetStartAngle(std::numbers::pi / 2);
  c->CalculatePointsThroughAngle(1);
  EXPECT_EQ(Sample(*c, 1), std::make_pair(0.0, 1.0));
  // The vector's clean-up zeroes a coordinate below 1e-9.
  c->LetStartAngle(0);
  c->CalculatePointsThroughAngle(1e-4);
  EXPECT_NE(Point(*c, 5e-5).second, 0.0);
  EXPECT_EQ(Sample(*c, 2).second, 0.0);

  std::mt19937 rng(3);
  std::uniform_real_distribution<double> radius(0.1, 20), turn(-7, 7), angle(0, 4);
  std::uniform_int_distribution<int> points(2, 40), flag(0, 1);
  for (int k = 0; k < 200; ++k) {
    c->LetCircleRadius(radius(rng));
    c->LetStartAngle(turn(rng));
    c->LetCounterClockwise(flag(rng) == 1);
    c->LetPoints(points(rng));
    const double a = angle(rng);
    c->CalculatePointsThroughAngle(a);
    const auto model =
        ModelSamples(c->GetCircleRadius(), c->GetStartAngle(), c->GetCounterClockwise(), c->GetPoints(), a);
    for (std::int32_t i = 1; i <= c->GetPoints(); ++i)
      ASSERT_EQ(Sample(*c, i), model[static_cast<std::size_t>(i) - 1]) << "case " << k << " row " << i;
  }
}

TEST(Involute, GetInvolutePointsOrdersByTheProperty) {
  auto c = NewInvolute(3.0);
  c->LetPoints(4);
  c->CalculatePointsThroughAngle(2);
  for (bool ccw : {true, false}) {
    c->LetCounterClockwise(ccw);
    const Variant table(c->GetInvolutePoints());
    auto value = [&](int row, int column) { return ToDouble(table.Call("GetValue", row, column)); };
    ASSERT_EQ(table.Get("Rows").AsLong(), 4);
    for (int i = 1; i <= 4; ++i)
      EXPECT_EQ(std::make_pair(value(i, 1), value(i, 2)), Sample(*c, ccw ? i : 5 - i)) << i;
  }
}
