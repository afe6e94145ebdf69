#include "profiles/TKInvoluteCurve.hpp"

#include <cmath>

#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"
#include "frame/Conventions.hpp"
#include "geometry/TKVector4d.hpp"
#include "tables/TK2DArray.hpp"

namespace TessarkAO {

namespace {

// One turn of the unwinding angle, kept at exactly these digits rather than
// the full-precision 2 pi: results depend on it.
constexpr double kTwoPi = 6.28318530717958;
// The largest table that sampling makes; more rows raise 7 (Out of memory).
constexpr std::int32_t kMaxRows = std::int32_t{1} << 25;
// Axis code of the Z axis for TKVector4d.Rotate.
constexpr std::int32_t kAxisZ = 3;
// The degree the host's fit-point B-spline is defined with, as a 16-bit integer.
constexpr std::int16_t kFitPointDegree = 3;

}  // namespace

double InvoluteMath::ArcTanOfRatio(double& x, double& y) {
  if (x == 0.0) x = 1e-16;
  return std::atan(Checked::Div(y, x));
}

void TKInvoluteCurve::Describe(ClassBuilder<TKInvoluteCurve>& b) {
  b.Property<&TKInvoluteCurve::GetPoints, &TKInvoluteCurve::LetPoints>(
       "Points", Doc{"The number of points CalculatePointsThroughAngle samples."})
      .Property<&TKInvoluteCurve::GetCounterClockwise, &TKInvoluteCurve::LetCounterClockwise>(
          "CounterClockwise", Doc{"Whether the sampled points run counter-clockwise."})
      .Property<&TKInvoluteCurve::GetStartAngle, &TKInvoluteCurve::LetStartAngle>(
          "StartAngle", Doc{"The polar angle in degrees the curve starts at."})
      .Property<&TKInvoluteCurve::GetCircleRadius, &TKInvoluteCurve::LetCircleRadius>(
          "CircleRadius", Doc{"The base circle's radius R."})
      .Method<&TKInvoluteCurve::GetPointFromAngle>(
          "GetPointFromAngle", Names{"Angle", "X", "Y"}, Out<2, 3>{},
          Doc{"Writes the involute point for unwinding angle Angle into X and Y; StartAngle and "
              "CounterClockwise are not applied."})
      .Method<&TKInvoluteCurve::GetAngleFromInvoluteHeight>(
          "GetAngleFromInvoluteHeight", Names{"Height"},
          Doc{"The unwinding angle at which the curve is Height above the base circle."})
      .Method<&TKInvoluteCurve::GetPointAngleFromInvoluteHeight>(
          "GetPointAngleFromInvoluteHeight", Names{"Height"},
          Doc{"The polar angle of the point at Height, continued by whole turns of the unwinding angle."})
      .Method<&TKInvoluteCurve::GetRequiredArcLengthForInvoluteHeight>(
          "GetRequiredArcLengthForInvoluteHeight", Names{"Height"},
          Doc{"The polar angle of the point at Height times R."})
      .Method<&TKInvoluteCurve::GetCalculatedPointFromIndex>(
          "GetCalculatedPointFromIndex", Names{"Index", "X", "Y"}, Out<2, 3>{},
          Doc{"Writes row Index of the last sampled table into X and Y; raises 9 outside its rows."})
      .Method<&TKInvoluteCurve::CalculatePointsThroughAngle>(
          "CalculatePointsThroughAngle", Names{"Angle"},
          Doc{"Samples Points points from unwinding angle 0 to Angle into the table."})
      .Method<&TKInvoluteCurve::DrawInvolute>(
          "DrawInvolute", Names{"Path", "CounterClockwise"},
          Doc{"Adds one B-spline segment through the sampled points to the host path Path."})
      .Method<&TKInvoluteCurve::GetInvolutePoints>(
          "GetInvolutePoints",
          Doc{"The sampled points as a Points x 2 TK2DArray, ordered by CounterClockwise."});
}

void TKInvoluteCurve::GetPointFromAngle(double angle, double& x, double& y) const {
  const double s = std::sin(angle), c = std::cos(angle);
  const double newX = Checked::Mul(Checked::Add(Checked::Mul(s, angle), c), circleRadius_);
  const double newY = Checked::Mul(Checked::Sub(s, Checked::Mul(c, angle)), circleRadius_);
  x = newX;
  y = newY;
}

double TKInvoluteCurve::GetAngleFromInvoluteHeight(double height) const {
  const double ratio = Checked::Add(Checked::Div(height, circleRadius_), 1.0);
  return Checked::Pow(Checked::Sub(Checked::Pow(ratio, 2.0), 1.0), 1.0 / 2.0);
}

double TKInvoluteCurve::GetPointAngleFromInvoluteHeight(double height) const {
  const double t = GetAngleFromInvoluteHeight(height);
  double x = 0, y = 0;
  GetPointFromAngle(t, x, y);
  const double a = InvoluteMath::ArcTanOfRatio(x, y);
  return Checked::Add(Checked::Mul(std::floor(Checked::Div(t, kTwoPi)), kTwoPi), a);
}

double TKInvoluteCurve::GetRequiredArcLengthForInvoluteHeight(double height) const {
  const double t = GetAngleFromInvoluteHeight(height);
  double x = 0, y = 0;
  GetPointFromAngle(t, x, y);
  return Checked::Mul(InvoluteMath::ArcTanOfRatio(x, y), circleRadius_);
}

const TKInvoluteCurve::Row& TKInvoluteCurve::TableRow(std::int32_t index) const {
  if (index < 1 || static_cast<std::size_t>(index) > table_.size()) Raise(Err::SubscriptOutOfRange);
  return table_[static_cast<std::size_t>(index) - 1];
}

void TKInvoluteCurve::GetCalculatedPointFromIndex(std::int32_t index, double& x, double& y) const {
  const Row& row = TableRow(index);
  x = row[0];
  y = row[1];
}

void TKInvoluteCurve::CalculatePointsThroughAngle(double angle) {
  const std::int32_t n = points_;
  // The old table is discarded first; a row count below 1 cannot be
  // dimensioned (9) and a failure further on leaves the new, partly filled
  // table in place.
  table_.clear();
  if (n < 1) Raise(Err::SubscriptOutOfRange);
  if (n > kMaxRows) Raise(Err::OutOfMemory);
  table_.assign(static_cast<std::size_t>(n), Row{0.0, 0.0});

  // Evenly spaced in the unwinding angle: angle / (n - 1) * (i - 1), the
  // division first.  One point (n = 1) divides by zero.
  for (std::int32_t i = 1; i <= n; ++i) {
    const double t =
        Checked::Mul(Checked::Div(angle, static_cast<double>(n - 1)), static_cast<double>(i - 1));
    Row& row = table_[static_cast<std::size_t>(i) - 1];
    GetPointFromAngle(t, row[0], row[1]);
  }
  if (!counterClockwise_)
    for (Row& row : table_) row[1] = -row[1];

  // The turn by StartAngle goes through a vector, degrees converted with the
  // library's 15-digit pi; the vector's clean-up is part of the result.
  const double degrees = Checked::Mul(startAngle_, 180.0 / kPi);
  for (Row& row : table_) {
    Variant vector(New<TKVector4d>());
    vector.Call("SetPosition", row[0], row[1], 0.0);
    vector.Call("Rotate", kAxisZ, degrees);
    row[0] = ToDouble(vector.Get("Value", std::int32_t{0}));
    row[1] = ToDouble(vector.Get("Value", std::int32_t{1}));
  }
}

std::vector<TKInvoluteCurve::Row> TKInvoluteCurve::OrderedRows(bool inOrder) const {
  const std::int32_t n = points_;
  // Points rows are taken from the table, which may hold fewer after Points
  // changed: a missing row raises 9 before anything is handed out.
  if (n < 1 || static_cast<std::size_t>(n) > table_.size()) Raise(Err::SubscriptOutOfRange);
  std::vector<Row> rows(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n; ++i)
    rows[static_cast<std::size_t>(i) - 1] = TableRow(inOrder ? i : n + 1 - i);
  return rows;
}

void TKInvoluteCurve::DrawInvolute(Ref<Object> path, bool counterClockwise) {
  const std::vector<Row> rows = OrderedRows(counterClockwise);
  const std::int32_t n = static_cast<std::int32_t>(rows.size());

  SafeArray table = SafeArray::Matrix(VarType::Double, 1, n, 1, 2);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    table.Data()[i] = Variant(rows[i][0]);
    table.Data()[rows.size() + i] = Variant(rows[i][1]);
  }

  // The segment ends at the last computed sample whatever the direction
  // asked for: the end point is deliberately not taken from the reordered
  // rows.
  const Row& last = TableRow(points_);
  Variant endX(last[0]), endY(last[1]);
  std::array<Variant, 2> endArgs = {Variant::ByRef(endX), Variant::ByRef(endY)};
  const Variant curve = Variant(std::move(path)).Invoke("AddBSplineTo", CallKind::Method, endArgs);

  Variant fitPoints(std::move(table));
  std::array<Variant, 6> args = {Variant(kFitPointDegree),  Variant(false),     Variant(false),
                                 Variant::ByRef(fitPoints), Variant::Nothing(), Variant::Nothing()};
  curve.Invoke("SetDefinitionByFitPoints", CallKind::Method, args);
}

Ref<Object> TKInvoluteCurve::GetInvolutePoints() const {
  const std::vector<Row> rows = OrderedRows(counterClockwise_);
  const std::int32_t n = static_cast<std::int32_t>(rows.size());
  Ref<Object> array = New<TK2DArray>();
  const Variant a(array);
  a.Call("SetDimensions", n, std::int32_t{2}, false);
  for (std::int32_t i = 1; i <= n; ++i) {
    a.Call("SetValue", i, std::int32_t{1}, rows[static_cast<std::size_t>(i) - 1][0]);
    a.Call("SetValue", i, std::int32_t{2}, rows[static_cast<std::size_t>(i) - 1][1]);
  }
  return array;
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKInvoluteCurve)
