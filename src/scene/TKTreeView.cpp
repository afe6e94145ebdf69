#include "scene/TKTreeView.hpp"

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "automation/Enumerations.hpp"
#include "scene/Scene.hpp"

namespace TessarkAO {

void TKTreeView::Describe(ClassBuilder<TKTreeView>& b) {
  b.Get<&TKTreeView::NumberOfShapes>(
       "NumberOfShapes", Names{"lngShapeType"}, Opt{std::int32_t{0}},
       Doc{"The number of entries, or of entries of lngShapeType when it is not 0; NumberOfShapes(0) "
           "rebuilds the list when RefreshSetting says so."})
      .Method<&TKTreeView::Refresh>("Refresh", Doc{"Rebuilds the list of shapes from Scene."})
      .PropertyRef<&TKTreeView::GetScene, &TKTreeView::SetScene>(
          "Scene", Doc{"The page whose shapes are listed; assigning rebuilds when RefreshSetting says so."})
      .Get<&TKTreeView::Shape>(
          "Shape", Names{"lngIndex", "lngShapeType"},
          Doc{"Entry lngIndex (counting only lngShapeType when it is not 0); Nothing past the end."})
      .Get<&TKTreeView::ShapeDepth>(
          "ShapeDepth", Names{"lngIndex", "lngShapeType"},
          Doc{"The depth of the same entry (children of the root have depth 1); 0 past the end."})
      .Property<&TKTreeView::GetRefreshSetting, &TKTreeView::LetRefreshSetting>(
          "RefreshSetting",
          Doc{"When the list is rebuilt (RefreshSettings; 3 means both); stored as given."});
}

std::int32_t TKTreeView::NumberOfShapes(std::int32_t lngShapeType) {
  if (rebuildOnCount_) Rebuild();
  if (lngShapeType == 0) return count_;
  const auto it = byType_.find(lngShapeType);
  return it == byType_.end() ? 0 : static_cast<std::int32_t>(it->second.size());
}

std::int32_t TKTreeView::Refresh() { return NumberOfShapes(0); }

void TKTreeView::SetScene(Ref<Object> page) {
  scene_ = std::move(page);
  if (rebuildOnScene_) Rebuild();
}

void TKTreeView::LetRefreshSetting(std::int32_t setting) {
  refreshSetting_ = setting;
  // 3 combines both rebuilds, although RefreshSettings has no name for it.
  rebuildOnCount_ = setting == 1 || setting == 3;
  rebuildOnScene_ = setting == 2 || setting == 3;
}

void TKTreeView::Rebuild() {
  const Variant root = Variant(scene_).Get("Shape");

  class Recorder final : public Scene::ShapeVisitor {
   public:
    explicit Recorder(TKTreeView& view) : view_(view) {}
    void Visit(const Variant& shape, std::int32_t depth, std::int32_t type) override {
      ++view_.count_;
      if (view_.count_ < 1) return;  // the root itself is not listed
      view_.entries_.push_back(Entry{ToObject(shape), depth, type});
      view_.byType_[type].push_back(view_.count_ - 1);
    }

   private:
    TKTreeView& view_;
  };
  // The count is reset when the walk reaches the root, before its Type is
  // asked for, so that a root that fails leaves -1 as the walk always has.
  count_ = -1;
  entries_.clear();
  byType_.clear();
  Recorder recorder(*this);
  Scene::WalkShapes(root, recorder);
}

std::int64_t TKTreeView::Find(std::int32_t lngIndex, std::int32_t lngShapeType) const {
  if (lngIndex < 1) return -1;
  if (lngShapeType == 0) return lngIndex <= count_ ? lngIndex - 1 : -1;
  const auto it = byType_.find(lngShapeType);
  if (it == byType_.end() || static_cast<std::size_t>(lngIndex) > it->second.size()) return -1;
  return it->second[static_cast<std::size_t>(lngIndex - 1)];
}

Ref<Object> TKTreeView::Shape(std::int32_t lngIndex, std::int32_t lngShapeType) const {
  const std::int64_t at = Find(lngIndex, lngShapeType);
  return at < 0 ? Ref<Object>() : entries_[static_cast<std::size_t>(at)].shape;
}

std::int32_t TKTreeView::ShapeDepth(std::int32_t lngIndex, std::int32_t lngShapeType) const {
  const std::int64_t at = Find(lngIndex, lngShapeType);
  return at < 0 ? 0 : entries_[static_cast<std::size_t>(at)].depth;
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKTreeView)

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::RefreshSettings, "TKTreeView", OnDemand, OnNumberOfShapes, OnSetScene)
