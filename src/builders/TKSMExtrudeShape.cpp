#include "builders/TKSMExtrudeShape.hpp"

namespace TessarkAO {

void TKSMExtrudeShape::Describe(ClassBuilder<TKSMExtrudeShape>& b) {
  using C = TKSMExtrudeShape;
  DescribeUserName(b);
  DescribePosition(b)
      .Let<&C::LetSheetMetalType>("SheetMetalType")
      .Get<&C::GetSheetMetalType>("SheetMetalType")
      .Property<&C::GetThickness, &C::LetThickness>("Thickness");
  DescribeClosing(b, /*pathComponents=*/true, /*part=*/true);
}

TKSMExtrudeShape::TKSMExtrudeShape() : PlacedBuilder(StringId::SheetMetalName) {}

Variant TKSMExtrudeShape::Create(Variant parent) {
  // Flat stock: Initialize goes out without a stock form.
  const Stock stock = NewSheetMetalStock(parent, thickness_);
  Host::LetVariableValue(stock.component, 1,
                         std::int16_t{type_ == SheetMetalType_Punch ? std::int16_t{1} : std::int16_t{0}});
  return Keep(stock.shape, BuilderSteps::ProfilePaths(stock.shape));
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSMExtrudeShape)
