// TKExtrudeShape: builds one extruded feature in the host's scene.
//
// A caller sets the heights, the material flag and the position, calls
// Create(Parent) to make the host shape, draws the cross-section into the
// returned PathComponents and calls Finish to regenerate the shape.
//   Create with a parent of type 1 (an assembly) first makes a part in it,
//   placed by the builder's position; the position is then zeroed so that the
//   extrude starts at the part's origin (the builder's position stays zeroed).
//   Finish before Create does nothing and makes no host call.
// Heights are in the page's length units, as the host holds them.
// UserName, Position, PathComponents and Finish are those of PlacedBuilder.
#pragma once

#include <cstdint>

#include "builders/BuilderBase.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

class TKExtrudeShape final : public PlacedBuilder<TKExtrudeShape, BuilderSteps::kExtrudeSizebox> {
 public:
  static constexpr std::string_view kClassName = "TKExtrudeShape";
  static void Describe(ClassBuilder<TKExtrudeShape>& b);

  // The default user name is string 117 of the shared localizer.
  TKExtrudeShape();

  bool GetRemovesMaterial() const { return removesMaterial_; }
  void LetRemovesMaterial(bool removes) { removesMaterial_ = removes; }
  // Height(1) up, Height(2) down; any other direction raises 9.
  double GetHeight(std::int32_t direction) const;
  void LetHeight(std::int32_t direction, double height);
  Variant Create(Variant parent);

 private:
  double heights_[2] = {5.0, 0.0};
  bool removesMaterial_ = false;
};

}  // namespace TessarkAO
