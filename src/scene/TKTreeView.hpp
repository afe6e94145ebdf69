// TKTreeView: the shape tree of a scene flattened into a pre-order list that
// callers count and index, optionally filtered by shape type.
//
// The list is rebuilt from the page's root shape, which is never listed
// itself.  When it is rebuilt depends on RefreshSetting: 1 (the initial
// setting) on every NumberOfShapes, 2 on every assignment of Scene, 3 on
// both, anything else never.  Entries and their depths count from 1; an
// index past the end gives Nothing or 0, not an error.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

class TKTreeView final : public Dispatch<TKTreeView> {
 public:
  static constexpr std::string_view kClassName = "TKTreeView";
  static void Describe(ClassBuilder<TKTreeView>& b);

  // The number of entries (lngShapeType 0) or of entries of one type.
  std::int32_t NumberOfShapes(std::int32_t lngShapeType);
  // NumberOfShapes(0): rebuilds only when the setting says so.
  std::int32_t Refresh();
  Ref<Object> GetScene() const { return scene_; }
  void SetScene(Ref<Object> page);
  // The lngIndex-th entry (of lngShapeType, when not 0); Nothing past the end.
  Ref<Object> Shape(std::int32_t lngIndex, std::int32_t lngShapeType) const;
  // The same entry's depth (children of the root have depth 1); 0 past the end.
  std::int32_t ShapeDepth(std::int32_t lngIndex, std::int32_t lngShapeType) const;
  std::int32_t GetRefreshSetting() const { return refreshSetting_; }
  void LetRefreshSetting(std::int32_t setting);

 private:
  // Rebuilds the lists from Scene.Shape.
  void Rebuild();
  // The list position (from 0) of the lngIndex-th entry of a type; -1 when none.
  std::int64_t Find(std::int32_t lngIndex, std::int32_t lngShapeType) const;

  struct Entry {
    Ref<Object> shape;
    std::int32_t depth;
    std::int32_t type;
  };

  InstanceRegistration registration_;
  Ref<Object> scene_;
  std::vector<Entry> entries_;
  // The count starts at -1 during a walk so that the root is not kept; a
  // walk that fails at the root leaves it there.
  std::int32_t count_ = 0;
  // List positions of the entries of each type, in list order.
  std::unordered_map<std::int32_t, std::vector<std::int32_t>> byType_;
  std::int32_t refreshSetting_ = 1;
  bool rebuildOnCount_ = true;
  bool rebuildOnScene_ = false;
};

}  // namespace TessarkAO
