#include "builders/TKSMCurvedStockShape.hpp"

#include <cmath>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "builders/BuilderSteps.hpp"
#include "frame/StringTable.hpp"
#include "host/HostModel.hpp"

namespace TessarkAO {

namespace {
constexpr double kFullTurn = 2 * 3.14159265358979;
}

void TKSMCurvedStockShape::Describe(ClassBuilder<TKSMCurvedStockShape>& b) {
  using C = TKSMCurvedStockShape;
  b.Property<&C::GetUserName, &C::LetUserName>("UserName")
      .PropertyRef<&C::GetPosition, &C::SetPosition>("Position")
      .Property<&C::GetRadius, &C::LetRadius>("Radius")
      .Property<&C::GetSweepAngle, &C::LetSweepAngle>("SweepAngle")
      .Property<&C::GetWidth, &C::LetWidth>("Width")
      .Property<&C::GetThickness, &C::LetThickness>("Thickness")
      .Get<&C::GetPathComponents>("PathComponents")
      .Get<&C::GetPart>("Part")
      .Method<&C::Finish>("Finish")
      .Method<&C::Create>("Create", Names{"Parent"});
}

TKSMCurvedStockShape::TKSMCurvedStockShape()
    : position_(CreateObject("TessarkAO.TKPosition")),
      userName_(Globals::LoadString(StringId::SheetMetalName)) {}

void TKSMCurvedStockShape::SetPosition(Ref<Object> position) {
  Variant(position_).Call("InheritPosition", position);
}

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
  using namespace BuilderSteps;
  const Variant position(position_);
  const Variant container = SheetMetalContainer(parent, position);
  Variant shape = AddShape(container, ShapeKind::SheetMetalExtrude);
  shape.Call("Initialize", StockForm::Curved);
  Place(position, shape, false);
  shape.Let("Name", userName_);
  const Variant stock = LookupComponent(shape, Component::SheetMetalExtrude);
  Host::LetVariableValue(stock, 55, thickness_);
  Host::LetVariableValue(stock, 56, 0.0);
  Host::LetVariableValue(stock, 57, width_);

  // The inside face of the stock, counter-clockwise from the X axis.  The
  // radius and angle were checked on assignment, so the end point and the
  // H factor are finite (a quarter of less than a full turn stays below a
  // right angle).
  const Variant paths = ProfilePaths(shape);
  const Variant arc = paths.Call("Add");
  arc.Call("SetStartPoint", radius_, 0.0);
  arc.Call("AddArcTo", radius_ * std::cos(sweepAngle_), radius_ * std::sin(sweepAngle_),
           std::tan(sweepAngle_ / 4));
  pathComponents_ = paths;
  shape_ = shape;
  created_ = true;
  return shape;
}

void TKSMCurvedStockShape::Finish() {
  if (!created_) return;
  BuilderSteps::FinishWithSizebox(shape_, BuilderSteps::kSheetMetalSizebox);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSMCurvedStockShape)
