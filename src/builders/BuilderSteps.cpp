#include "builders/BuilderSteps.hpp"

#include "automation/AutomationError.hpp"
#include "host/HostAccess.hpp"
#include "scene/Functions.hpp"

namespace TessarkAO::BuilderSteps {

Variant AddShape(const Variant& container, std::int16_t kind) {
  return Functions::FindChildContainer(container).Get("Shapes", kind).Call("Add");
}

Variant LookupComponent(const Variant& shape, std::int32_t type) {
  return Host::FindComponent(shape, type, true);
}

void Place(const Variant& position, const Variant& shape, bool zeroAfterPlacing) {
  position.Set("Shape", shape);
  position.Call("SetShapePosition");
  if (zeroAfterPlacing) position.Call("Zero", std::int32_t{3});  // ZeroAll
  position.Let("AnchorPosX", 0.0);
  position.Let("AnchorPosY", 0.0);
  position.Let("AnchorPosZ", 0.0);
  position.Call("SetAnchorPosition");
}

void FinishWithSizebox(const Variant& shape, const std::int16_t (&values)[9]) {
  static constexpr std::int32_t kVariables[9] = {15, 8, 9, 10, 14, 4, 5, 6, 7};
  shape.Call("Update");
  shape.Call("ResetSizeBox");
  const Variant sizebox = LookupComponent(shape, Component::Sizebox);
  for (int i = 0; i < 9; ++i) Host::LetVariableValue(sizebox, kVariables[i], Variant(values[i]));
}

Variant FeatureContainer(const Variant& parent, const Variant& position) {
  if (Host::TypeOf(parent) != Host::ShapeType::Assembly) return parent;
  Variant part = AddShape(parent, ShapeKind::Part);
  Place(position, part, true);
  return part;
}

Variant SheetMetalContainer(const Variant& parent, const Variant& position) {
  Variant container = FeatureContainer(parent, position);
  LookupComponent(container, Component::SheetMetalPart);
  return container;
}

void RequireAtLeast(double value, double lowest, bool strict) {
  if (!(strict ? value > lowest : value >= lowest)) Raise(Err::InvalidCall);
}

Variant ProfilePaths(const Variant& shape) {
  const Variant profileComponent = LookupComponent(shape, Component::Profile);
  return profileComponent.Get("Profile").Get("Components", std::int32_t{3});
}

}  // namespace TessarkAO::BuilderSteps
