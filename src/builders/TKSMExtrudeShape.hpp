// TKSMExtrudeShape: builds one sheet-metal extrude (a flat stock or punch of
// a given thickness) in the host's scene, with the builder pattern of
// TKExtrudeShape: Create(Parent), draw into PathComponents, Finish.
//   Create with a parent of type 1 makes a part first (placed by the
//   builder's position, which is then zeroed), makes sure the container has
//   its sheet-metal part component (62), adds the sheet-metal shape (11),
//   initialises it, places it, names it and writes the thickness (variable
//   55) and the second depth (56, always 0) of its component 63, then the
//   stock type as variable 1 (1 for a punch, which removes material, else 0).
//   Finish differs from the extrude's in one host parameter: size-box
//   variable 6 receives 1.
// UserName, Position, PathComponents, Part and Finish are those of
// PlacedBuilder.
#pragma once

#include <cstdint>

#include "builders/BuilderBase.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

class TKSMExtrudeShape final : public PlacedBuilder<TKSMExtrudeShape> {
 public:
  static constexpr std::string_view kClassName = "TKSMExtrudeShape";
  static void Describe(ClassBuilder<TKSMExtrudeShape>& b);

  // The default user name is string 122 of the shared localizer.
  TKSMExtrudeShape();

  ESheetMetalTypes GetSheetMetalType() const { return type_; }
  void LetSheetMetalType(ESheetMetalTypes type) { type_ = type; }
  double GetThickness() const { return thickness_; }
  void LetThickness(double thickness) { thickness_ = thickness; }
  Variant Create(Variant parent);

 private:
  ESheetMetalTypes type_ = SheetMetalType_FlatStock;
  double thickness_ = 0.1;
};

}  // namespace TessarkAO
