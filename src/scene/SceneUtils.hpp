// SceneUtils: structural questions about host shapes (path, parent, child
// container, identity, face ownership) and deleting a shape from its parent.
//
// The methods are thin: each reads the shape's Name once, which raises the
// host's error for a reference that is no longer a valid shape, and then
// hands over to the Functions module.
#pragma once

#include <string>
#include <string_view>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"

namespace TessarkAO {

class SceneUtils final : public Dispatch<SceneUtils> {
 public:
  static constexpr std::string_view kClassName = "SceneUtils";
  static void Describe(ClassBuilder<SceneUtils>& b);

  std::string GetShapePath(Ref<Object> objShape);
  Ref<Object> GetShapeParent(Ref<Object> objShape);
  void DeleteShape(Ref<Object> objShape);
  Ref<Object> GetShapeHistory(Ref<Object> objShape);
  bool IdenticalShapes(Ref<Object> objShape1, Ref<Object> objShape2);
  bool ShapeOwnFace(Ref<Object> objShape, Ref<Object> objFace);

  // GetShapeParent without an instance: the Name read, then the parent
  // search.  The walks of TKPosition go through it.
  static Variant ParentOf(const Variant& shape);

 private:
  InstanceRegistration registration_;
};

}  // namespace TessarkAO
