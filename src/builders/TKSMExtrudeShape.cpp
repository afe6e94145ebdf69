#include "builders/TKSMExtrudeShape.hpp"

#include "automation/Catalogue.hpp"
#include "builders/BuilderSteps.hpp"
#include "frame/StringTable.hpp"
#include "host/HostModel.hpp"

namespace TessarkAO {

void TKSMExtrudeShape::Describe(ClassBuilder<TKSMExtrudeShape>& b) {
  b.Property<&TKSMExtrudeShape::GetUserName, &TKSMExtrudeShape::LetUserName>("UserName")
      .PropertyRef<&TKSMExtrudeShape::GetPosition, &TKSMExtrudeShape::SetPosition>("Position")
      .Let<&TKSMExtrudeShape::LetSheetMetalType>("SheetMetalType")
      .Get<&TKSMExtrudeShape::GetSheetMetalType>("SheetMetalType")
      .Property<&TKSMExtrudeShape::GetThickness, &TKSMExtrudeShape::LetThickness>("Thickness")
      .Get<&TKSMExtrudeShape::GetPathComponents>("PathComponents")
      .Get<&TKSMExtrudeShape::GetPart>("Part")
      .Method<&TKSMExtrudeShape::Finish>("Finish")
      .Method<&TKSMExtrudeShape::Create>("Create", Names{"Parent"});
}

TKSMExtrudeShape::TKSMExtrudeShape()
    : position_(CreateObject("TessarkAO.TKPosition")),
      userName_(Globals::LoadString(StringId::SheetMetalName)) {}

void TKSMExtrudeShape::SetPosition(Ref<Object> position) {
  Variant(position_).Call("InheritPosition", position);
}

Variant TKSMExtrudeShape::Create(Variant parent) {
  using namespace BuilderSteps;
  const Variant position(position_);
  Variant container = parent;
  if (Host::TypeOf(parent) == 1) {
    container = AddShape(parent, ShapeKind::Part);
    Place(position, container, true);
  }
  LookupComponent(container, Component::SheetMetalPart);
  Variant shape = AddShape(container, ShapeKind::SheetMetalExtrude);
  shape.Call("Initialize");
  Place(position, shape, false);
  shape.Let("Name", userName_);
  const Variant extrude = LookupComponent(shape, Component::SheetMetalExtrude);
  Host::LetVariableValue(extrude, 55, thickness_);
  Host::LetVariableValue(extrude, 56, secondDepth_);
  Host::LetVariableValue(extrude, 1,
                         std::int16_t{type_ == SheetMetalType_Punch ? std::int16_t{1} : std::int16_t{0}});
  pathComponents_ = ProfilePaths(shape);
  shape_ = shape;
  created_ = true;
  return shape;
}

void TKSMExtrudeShape::Finish() {
  if (!created_) return;
  // Variable 6 receives 1 here, unlike the plain extrude: the host's
  // parameter for sheet-metal stock.
  static constexpr std::int16_t kSizebox[9] = {1, 1, 1, 1, 0, 0, 0, 1, 0};
  BuilderSteps::FinishWithSizebox(shape_, kSizebox);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSMExtrudeShape)
