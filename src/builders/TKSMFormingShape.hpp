// TKSMFormingShape: presses one forming tool into a sheet-metal part of the
// host's scene (a "Sheet Metal Form Shape", shape kind 13, whose form
// parameters live in its "SM Form" component, 67).
//
// A caller sets the form's parameters and position, calls Create(Parent),
// draws the tool's footprint (a closed outline in the sheet's plane) into
// the returned PathComponents and calls Finish to regenerate the shape.
//   Create with a parent of type 1 (an assembly) first makes a part in it,
//   placed by the builder's position; the position is then zeroed, so the
//   form sits at the new part's origin (the builder's position stays
//   zeroed).  Any other parent (a sheet-metal part) receives the form
//   directly, placed by the position.  The container's sheet-metal part
//   component (62) is looked up first, so a plain part becomes a sheet-metal
//   part.  Then: Shapes(13).Add, Initialize, placement, Name = UserName, and
//   component 67 receives Variable(1) = Direction, (2) = Depth,
//   (3) = PunchRadius, (4) = DieRadius, in that order.
//   Finish regenerates the form as the sheet-metal extrude does: Update,
//   ResetSizeBox, then the size-box variables 15, 8, 9, 10, 14, 4, 5, 6, 7
//   with 1, 1, 1, 1, 0, 0, 0, 1, 0.  Before Create it makes no host call.
// Lengths are in the page's length units, as the host holds them.
// UserName, Position, PathComponents, Part and Finish are those of
// PlacedBuilder.
#pragma once

#include "builders/BuilderBase.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

class TKSMFormingShape final : public PlacedBuilder<TKSMFormingShape> {
 public:
  static constexpr std::string_view kClassName = "TKSMFormingShape";
  static void Describe(ClassBuilder<TKSMFormingShape>& b);

  // The default user name is string 122 ("Sheet Metal") of the shared localizer.
  TKSMFormingShape();

  // How far the tool presses the sheet, default 0.25; raises 5 unless above 0.
  double GetDepth() const { return depth_; }
  void LetDepth(double depth);
  // The rounding of the tool's nose (the floor of the form), default
  // 0.0625; raises 5 when negative.
  double GetPunchRadius() const { return punchRadius_; }
  void LetPunchRadius(double radius);
  // The rounding where the form meets the flat sheet, default 0.0625;
  // raises 5 when negative.
  double GetDieRadius() const { return dieRadius_; }
  void LetDieRadius(double radius);
  // Up (1, the default) or Down (2); any other value raises 5.
  ESheetMetalFormDirections GetDirection() const { return direction_; }
  void LetDirection(ESheetMetalFormDirections direction);
  // Makes the form shape as described above and returns it.
  Variant Create(Variant parent);

 private:
  double depth_ = 0.25;
  double punchRadius_ = 0.0625;
  double dieRadius_ = 0.0625;
  ESheetMetalFormDirections direction_ = SheetMetalFormDirection_Up;
};

}  // namespace TessarkAO
