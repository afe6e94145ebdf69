#include "builders/TKSMExtrudeShape.hpp"

#include "automation/Enumerations.hpp"

namespace TessarkAO {

void TKSMExtrudeShape::Describe(ClassBuilder<TKSMExtrudeShape>& b) {
  using C = TKSMExtrudeShape;
  DescribeUserName(b);
  DescribePosition(b)
      .Let<&C::LetSheetMetalType>(
          "SheetMetalType", Doc{"The kind of sheet-metal extrude (ESheetMetalTypes: flat stock or punch)."})
      .Get<&C::GetSheetMetalType>("SheetMetalType")
      .Property<&C::GetThickness, &C::LetThickness>("Thickness", Doc{"The sheet thickness."});
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

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::ESheetMetalTypes, "TKSMExtrudeShape", SheetMetalType_FlatStock,
                        SheetMetalType_Punch)
