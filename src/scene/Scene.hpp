// Scene: the scene-tree module.  It holds the display names of shape,
// component and curve types, the pre-order walk of a scene's shape tree that
// TKTreeView and the scene viewer share, and ShowScene, which opens the
// viewer (frmScene) on a page.
//
// The walk: an assembly (shape type 1) holds its children in its group
// component (2), a part (3) in its history component (23); a container
// without that component is a leaf.  Children keep the host's order.
#pragma once

#include <cstdint>
#include <string>

#include "automation/Variant.hpp"

namespace TessarkAO::Scene {

// "Assembly", "Part", "Sheet Metal Part" (a part with a sheet-metal
// component), ..., "[Unknown Shape]".
std::string ShapeTypeName(std::int32_t type, bool sheetMetal);
// The name of a host shape's type; asks for component 62 only for parts.
std::string ShapeTypeNameOf(const Variant& shape);
// "Sizebox" ... "SM Lance"; "Unknown [n]" for the codes without a name.
std::string ComponentTypeName(std::int32_t type);
// "Line", "Arc", "Bezier", "Ellipse", "B-Spline"; any other code "Fillet".
std::string CurveTypeName(std::int32_t type);

// Receives each shape of the walk: the shape, its depth (the root is 0) and
// its host Type.
class ShapeVisitor {
 public:
  virtual ~ShapeVisitor() = default;
  virtual void Visit(const Variant& shape, std::int32_t depth, std::int32_t type) = 0;
};

// Visits `root` and everything below it in pre-order.  The walk keeps its own
// stack, so the depth of a scene is not limited by the thread's stack.  Host
// errors end it; what was visited stays visited.  A shape met twice or a
// depth beyond any real scene ends it with 28 (see HostWalk.hpp).
void WalkShapes(const Variant& root, ShapeVisitor& visitor);

// Shows the scene viewer for `page` as a modal dialog of the user-interface
// service.
void ShowScene(const Variant& page);

}  // namespace TessarkAO::Scene
