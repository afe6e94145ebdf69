#include "builders/TKSMConicShape.hpp"

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "builders/BuilderSteps.hpp"
#include "frame/StringTable.hpp"
#include "host/HostModel.hpp"

namespace TessarkAO {

void TKSMConicShape::Describe(ClassBuilder<TKSMConicShape>& b) {
  using C = TKSMConicShape;
  b.Property<&C::GetUserName, &C::LetUserName>("UserName")
      .PropertyRef<&C::GetPosition, &C::SetPosition>("Position")
      .Property<&C::GetTopRadius, &C::LetTopRadius>("TopRadius")
      .Property<&C::GetBottomRadius, &C::LetBottomRadius>("BottomRadius")
      .Property<&C::GetHeight, &C::LetHeight>("Height")
      .Property<&C::GetThickness, &C::LetThickness>("Thickness")
      .Get<&C::GetPart>("Part")
      .Method<&C::Finish>("Finish")
      .Method<&C::Create>("Create", Names{"Parent"});
}

TKSMConicShape::TKSMConicShape()
    : position_(CreateObject("TessarkAO.TKPosition")),
      userName_(Globals::LoadString(StringId::SheetMetalName)) {}

void TKSMConicShape::SetPosition(Ref<Object> position) {
  Variant(position_).Call("InheritPosition", position);
}

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
  const Variant variable = Globals::FindHostVariable(component, name);
  if (variable.IsNothing())
    Raise(Err::NoSuchMember, "The host's sheet-metal component has no variable \"" + std::string(name) + "\"");
  variable.Let("Value", value);
}
}  // namespace

Variant TKSMConicShape::Create(Variant parent) {
  using namespace BuilderSteps;
  // A cone with no opening at either end cannot be rolled from sheet.
  if (topRadius_ == 0.0 && bottomRadius_ == 0.0) Raise(Err::InvalidCall);
  const Variant position(position_);
  const Variant container = SheetMetalContainer(parent, position);
  Variant shape = AddShape(container, ShapeKind::SheetMetalExtrude);
  shape.Call("Initialize", StockForm::Conic);
  Place(position, shape, false);
  shape.Let("Name", userName_);
  const Variant stock = LookupComponent(shape, Component::SheetMetalExtrude);
  Host::LetVariableValue(stock, 55, thickness_);
  Host::LetVariableValue(stock, 56, 0.0);
  LetNamedVariable(stock, "Top Radius", topRadius_);
  LetNamedVariable(stock, "Bottom Radius", bottomRadius_);
  LetNamedVariable(stock, "Height", height_);
  shape_ = shape;
  created_ = true;
  return shape;
}

void TKSMConicShape::Finish() {
  if (!created_) return;
  BuilderSteps::FinishWithSizebox(shape_, BuilderSteps::kSheetMetalSizebox);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSMConicShape)
