#include "builders/TKSMFormingShape.hpp"

#include "automation/AutomationError.hpp"

namespace TessarkAO {

void TKSMFormingShape::Describe(ClassBuilder<TKSMFormingShape>& b) {
  using C = TKSMFormingShape;
  DescribeUserName(b);
  DescribePosition(b)
      .Property<&C::GetDepth, &C::LetDepth>(
          "Depth", Doc{"How far the tool presses the sheet, default 0.25; raises 5 unless above 0."})
      .Property<&C::GetPunchRadius, &C::LetPunchRadius>(
          "PunchRadius", Doc{"The rounding of the tool's nose (the floor of the form), default 0.0625; "
                             "raises 5 when negative."})
      .Property<&C::GetDieRadius, &C::LetDieRadius>(
          "DieRadius",
          Doc{"The rounding where the form meets the flat sheet, default 0.0625; raises 5 when negative."})
      .Property<&C::GetDirection, &C::LetDirection>(
          "Direction",
          Doc{"Up (1, the default) or Down (2) (ESheetMetalFormDirections); any other value raises 5."});
  DescribeClosing(b, /*pathComponents=*/true, /*part=*/true);
}

TKSMFormingShape::TKSMFormingShape() : PlacedBuilder(StringId::SheetMetalName) {}

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
  const Variant shape = AddShape(SheetMetalContainer(parent, Position()), ShapeKind::SheetMetalForm);
  shape.Call("Initialize");
  PlaceAndName(shape);
  const Variant form = LookupComponent(shape, Component::SheetMetalForm);
  Host::LetVariableValue(form, 1, std::int32_t{direction_});
  Host::LetVariableValue(form, 2, depth_);
  Host::LetVariableValue(form, 3, punchRadius_);
  Host::LetVariableValue(form, 4, dieRadius_);
  return Keep(shape, ProfilePaths(shape));
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSMFormingShape)
