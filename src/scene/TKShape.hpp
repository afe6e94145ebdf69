// TKShape: one host shape with derived views of it: its position and anchor
// as matrices, the transform from its size box to its parent, its parent and
// history, its bounding-box extents, a TKPosition and a TKSurfaceFinish bound
// to it, and any of its components by type.
//
// The matrices are TKMatrix4d objects (row vectors, translation in row 3)
// created by ProgID; the unit conversions go through a UnitUtils whose Page
// is the shape's page.
#pragma once

#include <cstdint>
#include <string_view>

#include "automation/Members.hpp"
#include "frame/PublishedEnums.hpp"
#include "scene/TKPosition.hpp"
#include "scene/TKSurfaceFinish.hpp"

namespace TessarkAO {

class TKShape final : public Dispatch<TKShape> {
 public:
  static constexpr std::string_view kClassName = "TKShape";
  static void Describe(ClassBuilder<TKShape>& b);

  // Stores the shape, reads and keeps its host BoundingBox object, and makes
  // the next Parent and History reads search anew.
  void SetShape(Ref<Object> objShape);
  Ref<Object> GetShape() const { return shape_; }
  // The size box's placement in the parent (host values column by column,
  // translation converted from system to page length units); the identity
  // when no shape is stored.
  Ref<Object> SizeboxToParentTransform();
  // The parent shape, searched on the first read after Shape was set.
  Ref<Object> Parent();
  // The child container (history or group component), looked up on the first
  // read after Shape was set.
  Ref<Object> History();
  // Extents 1-6 (MinX..MaxZ), 7-9 the sizes; 0 for any other index.
  double BoundingBox(std::int32_t lngIndex);
  // The shape's TKPosition, refreshed from the host (anchor, then position).
  Ref<TKPosition> Position();
  // The shape's TKSurfaceFinish, refreshed from the host.
  Ref<TKSurfaceFinish> SurfaceFinish();
  // The shape's first component of a type; a missing one is added only when
  // bCanBeCreated is given and True, else Nothing.  Nothing with no shape.
  Ref<Object> Component(std::int32_t lngComponent, const Variant& bCanBeCreated);
  // Placements of the position (4) and anchor (5) components.
  Ref<Object> PositionTransform();
  Ref<Object> AnchorTransform();

 private:
  Ref<Object> ComponentTransform(std::int32_t type);

  Ref<Object> shape_;
  Variant boundingBox_ = Variant::Nothing();
  Ref<Object> parent_;
  bool parentFetched_ = false;
  Ref<Object> history_;
  bool historyFetched_ = false;
  Ref<TKPosition> position_;
  Ref<TKSurfaceFinish> finish_;
};

}  // namespace TessarkAO
