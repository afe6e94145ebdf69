#include "builders/TKExtrudeShape.hpp"

#include "automation/Catalogue.hpp"
#include "builders/BuilderSteps.hpp"
#include "frame/StringTable.hpp"
#include "host/HostModel.hpp"

namespace TessarkAO {

void TKExtrudeShape::Describe(ClassBuilder<TKExtrudeShape>& b) {
  b.Property<&TKExtrudeShape::GetUserName, &TKExtrudeShape::LetUserName>("UserName")
      .Property<&TKExtrudeShape::GetRemovesMaterial, &TKExtrudeShape::LetRemovesMaterial>("RemovesMaterial")
      .PropertyRef<&TKExtrudeShape::GetPosition, &TKExtrudeShape::SetPosition>("Position")
      .Property<&TKExtrudeShape::GetHeight, &TKExtrudeShape::LetHeight>("Height", Names{"Direction"})
      .Get<&TKExtrudeShape::GetPathComponents>("PathComponents")
      .Method<&TKExtrudeShape::Finish>("Finish")
      .Method<&TKExtrudeShape::Create>("Create", Names{"Parent"});
}

TKExtrudeShape::TKExtrudeShape()
    : position_(CreateObject("TessarkAO.TKPosition")), userName_(Globals::LoadString(StringId::ExtrudeName)) {}

void TKExtrudeShape::SetPosition(Ref<Object> position) {
  Variant(position_).Call("InheritPosition", position);
}

double TKExtrudeShape::GetHeight(std::int32_t direction) const {
  if (direction != TKExtrude_Up && direction != TKExtrude_Down) Raise(Err::SubscriptOutOfRange);
  return heights_[direction - 1];
}

void TKExtrudeShape::LetHeight(std::int32_t direction, double height) {
  if (direction != TKExtrude_Up && direction != TKExtrude_Down) Raise(Err::SubscriptOutOfRange);
  heights_[direction - 1] = height;
}

Variant TKExtrudeShape::Create(Variant parent) {
  using namespace BuilderSteps;
  const Variant position(position_);
  Variant container = parent;
  if (Host::TypeOf(parent) == 1) {
    container = AddShape(parent, ShapeKind::Part);
    Place(position, container, true);
  }
  Variant shape = AddShape(container, ShapeKind::Extrude);
  Place(position, shape, false);
  shape.Let("Name", userName_);
  const Variant extrude = LookupComponent(shape, Component::Extrude);
  Host::LetVariableValue(extrude, 55, heights_[0]);
  Host::LetVariableValue(extrude, 56, heights_[1]);
  Host::LetVariableValue(extrude, 1, std::int16_t{removesMaterial_ ? std::int16_t{1} : std::int16_t{0}});
  pathComponents_ = ProfilePaths(shape);
  shape_ = shape;
  created_ = true;
  return shape;
}

void TKExtrudeShape::Finish() {
  if (!created_) return;
  static constexpr std::int16_t kSizebox[9] = {1, 1, 1, 1, 0, 0, 0, 0, 0};
  BuilderSteps::FinishWithSizebox(shape_, kSizebox);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKExtrudeShape)
