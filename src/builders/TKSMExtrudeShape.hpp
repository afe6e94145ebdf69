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
#pragma once

#include <cstdint>
#include <string>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"

namespace TessarkAO {

enum ESheetMetalTypes : std::int32_t { SheetMetalType_FlatStock = 1, SheetMetalType_Punch = 2 };

class TKSMExtrudeShape final : public Dispatch<TKSMExtrudeShape> {
 public:
  static constexpr std::string_view kClassName = "TKSMExtrudeShape";
  static void Describe(ClassBuilder<TKSMExtrudeShape>& b);

  // The default user name is string 122 of the shared localizer.
  TKSMExtrudeShape();

  std::string GetUserName() const { return userName_; }
  void LetUserName(std::string name) { userName_ = std::move(name); }
  Ref<Object> GetPosition() const { return position_; }
  void SetPosition(Ref<Object> position);
  ESheetMetalTypes GetSheetMetalType() const { return type_; }
  void LetSheetMetalType(ESheetMetalTypes type) { type_ = type; }
  double GetThickness() const { return thickness_; }
  void LetThickness(double thickness) { thickness_ = thickness; }
  Variant GetPathComponents() const { return pathComponents_; }
  // The created sheet-metal shape; Nothing before Create.
  Variant GetPart() const { return shape_; }
  void Finish();
  Variant Create(Variant parent);

 private:
  InstanceRegistration registration_;
  Variant shape_ = Variant::Nothing();
  bool created_ = false;
  Ref<Object> position_;
  Variant pathComponents_ = Variant::Nothing();
  ESheetMetalTypes type_ = SheetMetalType_FlatStock;
  double thickness_ = 0.1;
  double secondDepth_ = 0.0;  // the counterpart of the extrude's Down height; no member changes it
  std::string userName_;
};

}  // namespace TessarkAO
