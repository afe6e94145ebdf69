#include "builders/TKExtrudeShape.hpp"

#include "automation/Enumerations.hpp"

namespace TessarkAO {

void TKExtrudeShape::Describe(ClassBuilder<TKExtrudeShape>& b) {
  using C = TKExtrudeShape;
  DescribeUserName(b).Property<&C::GetRemovesMaterial, &C::LetRemovesMaterial>(
      "RemovesMaterial", Doc{"Whether the extrude cuts material (a new builder: False)."});
  DescribePosition(b).Property<&C::GetHeight, &C::LetHeight>(
      "Height", Names{"Direction"},
      Doc{"The extrude height in direction 1 (TKExtrude_Up, default 5) or 2 (TKExtrude_Down, default 0). Any "
          "other direction raises 9."});
  DescribeClosing(b, /*pathComponents=*/true, /*part=*/false);
}

TKExtrudeShape::TKExtrudeShape() : PlacedBuilder(StringId::ExtrudeName) {}

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
  const Variant shape = AddShape(FeatureContainer(parent, Position()), ShapeKind::Extrude);
  PlaceAndName(shape);
  const Variant extrude = LookupComponent(shape, Component::Extrude);
  Host::LetVariableValue(extrude, 55, heights_[0]);
  Host::LetVariableValue(extrude, 56, heights_[1]);
  Host::LetVariableValue(extrude, 1, std::int16_t{removesMaterial_ ? std::int16_t{1} : std::int16_t{0}});
  return Keep(shape, ProfilePaths(shape));
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKExtrudeShape)

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKExtrudeDirection, "TKExtrudeShape", TKExtrude_Up, TKExtrude_Down)
