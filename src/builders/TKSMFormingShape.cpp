#include "builders/TKSMFormingShape.hpp"

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "builders/BuilderSteps.hpp"
#include "frame/StringTable.hpp"
#include "host/HostModel.hpp"

namespace TessarkAO {

void TKSMFormingShape::Describe(ClassBuilder<TKSMFormingShape>& b) {
  using C = TKSMFormingShape;
  b.Property<&C::GetUserName, &C::LetUserName>("UserName")
      .PropertyRef<&C::GetPosition, &C::SetPosition>("Position")
      .Property<&C::GetDepth, &C::LetDepth>("Depth")
      .Property<&C::GetPunchRadius, &C::LetPunchRadius>("PunchRadius")
      .Property<&C::GetDieRadius, &C::LetDieRadius>("DieRadius")
      .Property<&C::GetDirection, &C::LetDirection>("Direction")
      .Get<&C::GetPathComponents>("PathComponents")
      .Get<&C::GetPart>("Part")
      .Method<&C::Finish>("Finish")
      .Method<&C::Create>("Create", Names{"Parent"});
}

TKSMFormingShape::TKSMFormingShape()
    : position_(CreateObject("TessarkAO.TKPosition")),
      userName_(Globals::LoadString(StringId::SheetMetalName)) {}

void TKSMFormingShape::SetPosition(Ref<Object> position) {
  Variant(position_).Call("InheritPosition", position);
}

void TKSMFormingShape::LetDepth(double depth) {
  BuilderSteps::RequireAtLeast(depth, 0.0, true);
  depth_ = depth;
}

void TKSMFormingShape::LetPunchRadius(double radius) {
  BuilderSteps::RequireAtLeast(radius, 0.0, false);
  punchRadius_ = radius;
}

void TKSMFormingShape::LetDieRadius(double radius) {
  BuilderSteps::RequireAtLeast(radius, 0.0, false);
  dieRadius_ = radius;
}

void TKSMFormingShape::LetDirection(ESheetMetalFormDirections direction) {
  if (direction != SheetMetalFormDirection_Up && direction != SheetMetalFormDirection_Down)
    Raise(Err::InvalidCall);
  direction_ = direction;
}

Variant TKSMFormingShape::Create(Variant parent) {
  using namespace BuilderSteps;
  const Variant position(position_);
  const Variant container = SheetMetalContainer(parent, position);
  Variant shape = AddShape(container, ShapeKind::SheetMetalForm);
  shape.Call("Initialize");
  Place(position, shape, false);
  shape.Let("Name", userName_);
  const Variant form = LookupComponent(shape, Component::SheetMetalForm);
  Host::LetVariableValue(form, 1, std::int32_t{direction_});
  Host::LetVariableValue(form, 2, depth_);
  Host::LetVariableValue(form, 3, punchRadius_);
  Host::LetVariableValue(form, 4, dieRadius_);
  pathComponents_ = ProfilePaths(shape);
  shape_ = shape;
  created_ = true;
  return shape;
}

void TKSMFormingShape::Finish() {
  if (!created_) return;
  BuilderSteps::FinishWithSizebox(shape_, BuilderSteps::kSheetMetalSizebox);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSMFormingShape)
