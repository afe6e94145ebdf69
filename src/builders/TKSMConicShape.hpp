// TKSMConicShape: builds one conic sheet-metal stock (the frustum of a cone
// rolled from sheet) in the host's scene: a sheet-metal extrude (shape kind
// 11) initialised as conic stock, whose size the host takes from three named
// variables of its "SM Extrude" component (63).
//
// A caller sets the two radii, the height, the thickness and the position,
// calls Create(Parent) and then Finish; there is nothing to draw.
//   Create raises 5 before any host call when both radii are 0.  With a
//   parent of type 1 (an assembly) it first makes a part in it, placed by
//   the builder's position, which is then zeroed (it stays zeroed); any
//   other parent receives the stock directly.  The container's sheet-metal
//   part component (62) is looked up first.  Then: Shapes(11).Add,
//   Initialize(3) (conic stock), placement, Name = UserName; component 63
//   receives Variable(55) = Thickness and (56) = 0 (the second depth, as
//   for flat stock); then the variables named "Top Radius", "Bottom Radius"
//   and "Height" receive TopRadius, BottomRadius and Height, in that order.
//   The host gives these three names but no fixed numbers, so each is found
//   by name in the component's variable list (Host::FindVariable);
//   a host that lacks one raises 438 naming the variable, after the values
//   before it were sent.
//   Finish regenerates the stock as the sheet-metal extrude does: Update,
//   ResetSizeBox, then the size-box variables 15, 8, 9, 10, 14, 4, 5, 6, 7
//   with 1, 1, 1, 1, 0, 0, 0, 1, 0.  Before Create it makes no host call.
// The cone's axis is the stock's Z axis; the bottom circle lies in its XY
// plane and the top one Height above it.  Lengths are in the page's length
// units; radii are those of the inside face.
// UserName, Position, Part and Finish are those of PlacedBuilder.
#pragma once

#include "builders/BuilderBase.hpp"

namespace TessarkAO {

class TKSMConicShape final : public PlacedBuilder<TKSMConicShape> {
 public:
  static constexpr std::string_view kClassName = "TKSMConicShape";
  static void Describe(ClassBuilder<TKSMConicShape>& b);

  // The default user name is string 122 ("Sheet Metal") of the shared localizer.
  TKSMConicShape();

  // The radius of the top circle, default 0.5; raises 5 when negative (0
  // makes a pointed cone).
  double GetTopRadius() const { return topRadius_; }
  void LetTopRadius(double radius);
  // The radius of the bottom circle, default 1.0; raises 5 when negative.
  double GetBottomRadius() const { return bottomRadius_; }
  void LetBottomRadius(double radius);
  // The distance between the two circles, default 1.0; raises 5 unless above 0.
  double GetHeight() const { return height_; }
  void LetHeight(double height);
  // The sheet thickness, default 0.1; raises 5 unless above 0.
  double GetThickness() const { return thickness_; }
  void LetThickness(double thickness);
  // Makes the conic stock as described above and returns it.
  Variant Create(Variant parent);

 private:
  double topRadius_ = 0.5;
  double bottomRadius_ = 1.0;
  double height_ = 1.0;
  double thickness_ = 0.1;
};

}  // namespace TessarkAO
