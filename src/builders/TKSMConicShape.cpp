#include "builders/TKSMConicShape.hpp"

#include "automation/AutomationError.hpp"
#include "host/HostAccess.hpp"

namespace TessarkAO {

void TKSMConicShape::Describe(ClassBuilder<TKSMConicShape>& b) {
  using C = TKSMConicShape;
  DescribeUserName(b);
  DescribePosition(b)
      .Property<&C::GetTopRadius, &C::LetTopRadius>(
          "TopRadius",
          Doc{"The radius of the top circle, default 0.5; raises 5 when negative (0 makes a pointed cone)."})
      .Property<&C::GetBottomRadius, &C::LetBottomRadius>(
          "BottomRadius", Doc{"The radius of the bottom circle, default 1.0; raises 5 when negative."})
      .Property<&C::GetHeight, &C::LetHeight>(
          "Height", Doc{"The distance between the two circles, default 1.0; raises 5 unless above 0."})
      .Property<&C::GetThickness, &C::LetThickness>(
          "Thickness", Doc{"The sheet thickness, default 0.1; raises 5 unless above 0."});
  DescribeClosing(b, /*pathComponents=*/false, /*part=*/true);
}

TKSMConicShape::TKSMConicShape() : PlacedBuilder(StringId::SheetMetalName) {}

void TKSMConicShape::LetTopRadius(double radius) {
  BuilderSteps::RequireAtLeast(radius, 0.0, false);
  topRadius_ = radius;
}

void TKSMConicShape::LetBottomRadius(double radius) {
  BuilderSteps::RequireAtLeast(radius, 0.0, false);
  bottomRadius_ = radius;
}

void TKSMConicShape::LetHeight(double height) {
  BuilderSteps::RequireAtLeast(height, 0.0, true);
  height_ = height;
}

void TKSMConicShape::LetThickness(double thickness) {
  BuilderSteps::RequireAtLeast(thickness, 0.0, true);
  thickness_ = thickness;
}

namespace {
// Sends one of the conic's named parameters.
void LetNamedVariable(const Variant& component, std::string_view name, double value) {
  const Variant variable = Host::FindVariable(component, name);
  if (variable.IsNothing())
    Raise(Err::NoSuchMember,
          "The host's sheet-metal component has no variable \"" + std::string(name) + "\"");
  variable.Let("Value", value);
}
}  // namespace

Variant TKSMConicShape::Create(Variant parent) {
  // A cone with no opening at either end cannot be rolled from sheet.
  if (topRadius_ == 0.0 && bottomRadius_ == 0.0) Raise(Err::InvalidCall);
  const Stock stock = NewSheetMetalStock(parent, thickness_, BuilderSteps::StockForm::Conic);
  LetNamedVariable(stock.component, "Top Radius", topRadius_);
  LetNamedVariable(stock.component, "Bottom Radius", bottomRadius_);
  LetNamedVariable(stock.component, "Height", height_);
  return Keep(stock.shape);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSMConicShape)
