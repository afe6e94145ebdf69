#include "scene/SceneUtils.hpp"

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "host/HostAccess.hpp"
#include "scene/Functions.hpp"

namespace TessarkAO {

void SceneUtils::Describe(ClassBuilder<SceneUtils>& b) {
  b.Method<&SceneUtils::GetShapePath>("GetShapePath", Names{"objShape"},
                                      Doc{"The names of the shape's ancestors from the page down, joined "
                                          "into a path; the shape's own name is not part of it."})
      .Method<&SceneUtils::GetShapeParent>(
          "GetShapeParent", Names{"objShape"},
          Doc{"The shape that contains objShape, found by searching the scene; Nothing at the top."})
      .Method<&SceneUtils::DeleteShape>("DeleteShape", Names{"objShape"},
                                        Doc{"Removes objShape from its parent's collection."})
      .Method<&SceneUtils::GetShapeHistory>("GetShapeHistory", Names{"objShape"},
                                            Doc{"The component holding a container shape's children (history "
                                                "or group); Nothing for a shape of another type."})
      .Method<&SceneUtils::IdenticalShapes>("IdenticalShapes", Names{"objShape1", "objShape2"},
                                            Doc{"Whether the two references denote the same host shape."})
      .Method<&SceneUtils::ShapeOwnFace>(
          "ShapeOwnFace", Names{"objShape", "objFace"},
          Doc{"Whether objFace belongs to objShape; False for a shape without faces."});
}

std::string SceneUtils::GetShapePath(Ref<Object> objShape) {
  const Variant shape(std::move(objShape));
  Host::NameOf(shape);
  return Functions::ShapePathOf(shape);
}

Ref<Object> SceneUtils::GetShapeParent(Ref<Object> objShape) {
  return ToObject(ParentOf(Variant(std::move(objShape))));
}

Variant SceneUtils::ParentOf(const Variant& shape) {
  Host::NameOf(shape);
  return Functions::FindShapeParent(shape);
}

void SceneUtils::DeleteShape(Ref<Object> objShape) {
  const Variant shape(std::move(objShape));
  Host::NameOf(shape);
  Functions::RemoveShapeFromParent(shape);
}

Ref<Object> SceneUtils::GetShapeHistory(Ref<Object> objShape) {
  const Variant shape(std::move(objShape));
  Host::NameOf(shape);
  return ToObject(Functions::FindChildContainer(shape));
}

bool SceneUtils::IdenticalShapes(Ref<Object> objShape1, Ref<Object> objShape2) {
  const Variant shape1(std::move(objShape1));
  Host::NameOf(shape1);
  return Functions::ShapesAreIdentical(shape1, Variant(std::move(objShape2)));
}

bool SceneUtils::ShapeOwnFace(Ref<Object> objShape, Ref<Object> objFace) {
  const Variant shape(std::move(objShape));
  Host::NameOf(shape);
  return Functions::ShapeOwnsFace(shape, Variant(std::move(objFace)));
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::SceneUtils)
