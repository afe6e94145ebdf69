#include "builders/TKSMCurvedStockShape.hpp"

#include <cmath>

#include "automation/AutomationError.hpp"

namespace TessarkAO {

namespace {
constexpr double kFullTurn = 2 * kPi;
}

void TKSMCurvedStockShape::Describe(ClassBuilder<TKSMCurvedStockShape>& b) {
  using C = TKSMCurvedStockShape;
  DescribeUserName(b);
  DescribePosition(b)
      .Property<&C::GetRadius, &C::LetRadius>(
          "Radius", Doc{"The inside radius of the curve, default 1.0; raises 5 unless above 0."})
      .Property<&C::GetSweepAngle, &C::LetSweepAngle>(
          "SweepAngle", Doc{"The angle the stock turns through, in radians, default a quarter turn. Raises 5 "
                            "unless strictly between 0 and a full turn."})
      .Property<&C::GetWidth, &C::LetWidth>(
          "Width", Doc{"The extent of the stock along the arc's axis, default 1.0; raises 5 unless above 0."})
      .Property<&C::GetThickness, &C::LetThickness>(
          "Thickness", Doc{"The sheet thickness, default 0.1; raises 5 unless above 0."});
  DescribeClosing(b, /*pathComponents=*/true, /*part=*/true);
}

TKSMCurvedStockShape::TKSMCurvedStockShape() : PlacedBuilder(StringId::SheetMetalName) {}

void TKSMCurvedStockShape::LetRadius(double radius) {
  BuilderSteps::RequireAtLeast(radius, 0.0, true);
  radius_ = radius;
}

void TKSMCurvedStockShape::LetSweepAngle(double angle) {
  BuilderSteps::RequireAtLeast(angle, 0.0, true);
  if (!(angle < kFullTurn)) Raise(Err::InvalidCall);
  sweepAngle_ = angle;
}

void TKSMCurvedStockShape::LetWidth(double width) {
  BuilderSteps::RequireAtLeast(width, 0.0, true);
  width_ = width;
}

void TKSMCurvedStockShape::LetThickness(double thickness) {
  BuilderSteps::RequireAtLeast(thickness, 0.0, true);
  thickness_ = thickness;
}

Variant TKSMCurvedStockShape::Create(Variant parent) {
  const Stock stock = NewSheetMetalStock(parent, thickness_, BuilderSteps::StockForm::Curved);
  Host::LetVariableValue(stock.component, 57, width_);

  // The inside face of the stock, counter-clockwise from the X axis.  The
  // radius and angle were checked on assignment, so the end point and the
  // H factor are finite (a quarter of less than a full turn stays below a
  // right angle).
  const Variant paths = BuilderSteps::ProfilePaths(stock.shape);
  const Variant arc = paths.Call("Add");
  arc.Call("SetStartPoint", radius_, 0.0);
  arc.Call("AddArcTo", radius_ * std::cos(sweepAngle_), radius_ * std::sin(sweepAngle_),
           std::tan(sweepAngle_ / 4));
  return Keep(stock.shape, paths);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSMCurvedStockShape)
