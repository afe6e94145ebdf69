#include "scene/HostWalk.hpp"

#include "automation/AutomationError.hpp"

namespace TessarkAO::Scene {

namespace {
constexpr std::int32_t kOutOfStackSpace = 28;
}

void HostWalk::Step(const Variant& shape, std::int64_t depth) {
  if (depth > kMaxWalkDepth) Raise(kOutOfStackSpace);
  if (!shape.IsObject() || shape.IsNothing()) return;
  const Ref<Object>& object = shape.AsObject();
  if (!seen_.insert(object.get()).second) Raise(kOutOfStackSpace);
  held_.push_back(object);
}

}  // namespace TessarkAO::Scene
