// TKSMCurvedStockShape: builds one curved sheet-metal stock (a curved
// flange) in the host's scene: a sheet-metal extrude (shape kind 11) whose
// cross-section is a circular arc the builder draws itself, thickened to the
// stock's thickness and extruded to its width.
//
// A caller sets the radius, the sweep angle, the width, the thickness and the
// position, calls Create(Parent) and then Finish; there is nothing to draw.
//   Create with a parent of type 1 (an assembly) first makes a part in it,
//   placed by the builder's position, which is then zeroed (it stays
//   zeroed); any other parent receives the stock directly.  The container's
//   sheet-metal part component (62) is looked up first.  Then:
//   Shapes(11).Add, Initialize(2) (curved stock), placement, Name = UserName;
//   component 63 receives Variable(55) = Thickness, (56) = 0 (the second
//   depth, as for flat stock) and (57) = Width, in that order.  Last the arc
//   is drawn into a new path of the profile: PathComponents.Add,
//   SetStartPoint(Radius, 0), AddArcTo(Radius * Cos(SweepAngle),
//   Radius * Sin(SweepAngle), Tan(SweepAngle / 4)).  The arc is the inside
//   face of the stock: centred on the profile's origin, it starts on the
//   profile's X axis and turns counter-clockwise (the host's H factor of an
//   arc is its height over the chord divided by half the chord, positive
//   for a left turn).
//   Finish regenerates the stock as the sheet-metal extrude does: Update,
//   ResetSizeBox, then the size-box variables 15, 8, 9, 10, 14, 4, 5, 6, 7
//   with 1, 1, 1, 1, 0, 0, 0, 1, 0.  Before Create it makes no host call.
// Lengths are in the page's length units; the sweep angle is in radians.
// UserName, Position, PathComponents (holding the drawn arc), Part and Finish
// are those of PlacedBuilder.
#pragma once

#include "builders/BuilderBase.hpp"
#include "frame/Conventions.hpp"

namespace TessarkAO {

class TKSMCurvedStockShape final : public PlacedBuilder<TKSMCurvedStockShape> {
 public:
  static constexpr std::string_view kClassName = "TKSMCurvedStockShape";
  static void Describe(ClassBuilder<TKSMCurvedStockShape>& b);

  // The default user name is string 122 ("Sheet Metal") of the shared localizer.
  TKSMCurvedStockShape();

  // The inside radius of the curve, default 1.0; raises 5 unless above 0.
  double GetRadius() const { return radius_; }
  void LetRadius(double radius);
  // The angle the stock turns through, in radians; default a quarter turn
  // computed as kPi / 180 * 90.  Raises 5 unless it lies
  // strictly between 0 and a full turn (2 * kPi): one arc
  // cannot close on itself.
  double GetSweepAngle() const { return sweepAngle_; }
  void LetSweepAngle(double angle);
  // The extent of the stock along the arc's axis, default 1.0; raises 5
  // unless above 0.
  double GetWidth() const { return width_; }
  void LetWidth(double width);
  // The sheet thickness, default 0.1; raises 5 unless above 0.
  double GetThickness() const { return thickness_; }
  void LetThickness(double thickness);
  // Makes the stock shape as described above and returns it.
  Variant Create(Variant parent);

 private:
  double radius_ = 1.0;
  double sweepAngle_ = kPi / 180 * 90;
  double width_ = 1.0;
  double thickness_ = 0.1;
};

}  // namespace TessarkAO
