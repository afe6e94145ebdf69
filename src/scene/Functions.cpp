#include "scene/Functions.hpp"

#include <chrono>
#include <cmath>
#include <ctime>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "host/HostAccess.hpp"
#include "scene/HostWalk.hpp"

namespace TessarkAO::Functions {

using Host::ComponentType::Group;
using Host::ComponentType::History;

std::string IdentityTag(double secondsSinceMidnight) {
  const double ms = std::floor(secondsSinceMidnight * 1000.0);
  return "TKUTIL@" + std::to_string(static_cast<std::int64_t>(ms));
}

double SecondsSinceMidnight() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t t = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&t, &local);
  const auto sinceEpoch = now.time_since_epoch();
  const auto fraction = sinceEpoch - std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch);
  return local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec +
         std::chrono::duration<double>(fraction).count();
}

Variant FindChildContainer(const Variant& shape) {
  const std::int32_t type = Host::TypeOf(shape);
  std::int32_t container = 0;
  if (type == Host::ShapeType::Part) {
    container = History;
  } else if (type == Host::ShapeType::Assembly) {
    container = Group;
  } else {
    return Variant::Nothing();
  }
  return Host::FindComponent(shape, container, true);
}

Variant FindShapeParent(const Variant& shape) {
  const std::string savedName = Host::NameOf(shape);
  const std::int32_t savedId = ToLong(shape.Get("SystemID"));
  const std::string tag = IdentityTag(SecondsSinceMidnight());
  shape.Let("Name", tag);

  Variant result = Variant::Nothing();
  Variant parent = shape.Get("Parent");
  if (Host::CountOf(Host::Components(parent, Host::ComponentType::Studio)) != 0) {
    result = parent.Get("Page").Get("Shape");
  } else {
    // The owning shape one level further up lists the parent among its
    // children; the parent is the child whose own children hold the tagged
    // shape.  The host's collections are asked afresh at every step, as the
    // host may rebuild them between calls.
    parent = parent.Get("Parent");
    const Variant container = FindChildContainer(parent);
    const std::int32_t siblings = Host::CountOf(container.Get("Shapes"));
    for (std::int32_t i = 1; i <= siblings && result.IsNothing(); ++i) {
      const Variant candidate = container.Get("Shapes").Call("Item", i);
      const std::int32_t type = Host::TypeOf(candidate);
      if (type != Host::ShapeType::Assembly && type != Host::ShapeType::Part) continue;
      const Variant inner = FindChildContainer(candidate);
      const std::int32_t children = Host::CountOf(inner.Get("Shapes"));
      for (std::int32_t j = 1; j <= children; ++j) {
        const Variant child = inner.Get("Shapes").Call("Item", j);
        // Both tests are made, as the identifier alone is not trusted.
        const bool sameId = ToDouble(child.Get("SystemID")) == static_cast<double>(savedId);
        const bool tagged = Host::NameOf(child) == tag;
        if (sameId && tagged) {
          result = candidate;
          break;
        }
      }
    }
  }

  shape.Let("Name", savedName);
  return result;
}

std::string ShapePathOf(const Variant& shape) {
  const Variant page = shape.Get("Application").Get("ActivePage");
  std::vector<std::string> names;
  Variant current = shape;
  Scene::HostWalk walk;
  walk.Step(current);
  for (;;) {
    current = FindShapeParent(current);
    walk.Step(current);
    std::string name = Host::NameOf(current);
    const bool top = name.empty();
    if (top) name = Host::NameOf(page);
    if (names.size() >= static_cast<std::size_t>(kMaxPathEntries)) Raise(Err::SubscriptOutOfRange);
    names.push_back(std::move(name));
    if (top) break;
  }
  std::string path;
  for (auto it = names.rbegin(); it != names.rend(); ++it) {
    path += *it;
    path += "//";
  }
  return path;
}

void RemoveShapeFromParent(const Variant& shape) {
  const Variant parent = FindShapeParent(shape);
  const Variant container = FindChildContainer(parent);
  Variant child = shape;
  Variant args[] = {Variant::ByRef(child)};
  container.Get("Shapes").Invoke("Remove", CallKind::Method, args);
}

bool ShapesAreIdentical(const Variant& shape1, const Variant& shape2) {
  if (ShapePathOf(shape1) != ShapePathOf(shape2)) return false;
  // Read as 16-bit Integers: an identifier above 32767 overflows (6), as callers expect.
  const std::int16_t id1 = ToInteger(shape1.Get("SystemID"));
  const std::int16_t id2 = ToInteger(shape2.Get("SystemID"));
  return id1 == id2;
}

bool ShapeOwnsFace(const Variant& shape, const Variant& face) {
  const Variant components = Host::Components(shape, Host::ComponentType::FaceGeometry);
  if (Host::CountOf(components) <= 0) return false;
  Variant faceRef = face;
  Variant args[] = {Variant::ByRef(faceRef)};
  return ToBoolean(
      components.Call("Item", std::int16_t{1}).Get("Faces").Invoke("IsMember", CallKind::Method, args));
}

}  // namespace TessarkAO::Functions
