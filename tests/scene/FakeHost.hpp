// A small scene host for the scene tests: shapes with typed components and
// numbered variables, placements that turn about Z and move, a page with its
// unit scales, and a journal of every member call ("Part.Components" ...).
//
// Shape.Parent answers the owning shape; the page's root shape is nameless,
// carries the studio marker (18) and holds the top-level shapes in its group
// component (2).  Placements: a shape at offset t turned by a about Z maps a
// point p of its own space to R(a) p + t in its parent's space (internal
// units, centimetres and radians).
#pragma once

#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "automation/Members.hpp"

namespace FakeHost {

using namespace TessarkAO;

struct NoCaseLess {
  bool operator()(const std::string& a, const std::string& b) const { return LowerCase(a) < LowerCase(b); }
};

class Scene;

// A host object whose members are handlers by name.
class Dyn final : public Object {
 public:
  using Handler = std::function<Variant(CallKind, std::span<Variant>)>;
  Dyn(Scene& scene, std::string label) : scene_(scene), label_(std::move(label)) {}
  Variant Invoke(std::string_view name, CallKind kind, std::span<Variant> args) override;
  std::string TypeName() const override { return "HostObject"; }
  void On(const std::string& name, Handler h) { members_[name] = std::move(h); }
  const std::string& Label() const { return label_; }
  void SetLabel(std::string l) { label_ = std::move(l); }

 private:
  Scene& scene_;
  std::string label_;
  std::map<std::string, Handler, NoCaseLess> members_;
};

struct Shape;

struct Component {
  Dyn* obj = nullptr;
  std::int32_t type = 0;
  std::string name;
  std::map<std::int32_t, Variant> values;
  std::map<std::int32_t, std::string> expressions;
  std::map<std::int32_t, std::string> varNames;
  std::vector<Shape*> children;  // group and history components
  std::vector<Dyn*> faces;
  Dyn* finish = nullptr;
  Dyn* profile = nullptr;
};

struct Shape {
  Dyn* obj = nullptr;
  std::string name;
  Variant systemId = std::int32_t{0};
  std::int32_t type = 0;
  Shape* parent = nullptr;
  std::map<std::int32_t, std::vector<Component*>> components;
  double box[6] = {0, 0, 0, 0, 0, 0};
  double xform[16] = {};
  double offset[3] = {0, 0, 0};  // centimetres, in the parent's space
  double turn = 0;               // radians about Z
  std::string nameSeenByParent;  // the name it carried when Parent was asked
};

class Scene {
 public:
  Scene(double lengthScale = 0.01, double angleScale = 1.0);
  ~Scene();
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  Shape* Root() { return root_; }
  Variant PageObject() { return Variant(Ref<Object>(page_)); }
  static Variant Obj(Shape* s) { return Variant(Ref<Object>(s->obj)); }
  Shape* AddShape(Shape* parent, std::int32_t type, std::string name, std::int32_t systemId = 0);
  Component* AddComponent(Shape* shape, std::int32_t type);
  Component* First(Shape* shape, std::int32_t type);
  Dyn* AddFace(Component* c, std::string label);
  std::size_t CountOf(Shape* shape, std::int32_t type) {
    auto it = shape->components.find(type);
    return it == shape->components.end() ? 0 : it->second.size();
  }

  // The journal: "Label.Member" per call, in order.
  std::vector<std::string> journal;
  bool journalOn = true;
  std::size_t Calls(const std::string& entry) const;
  std::size_t CallsTo(const std::string& member) const;  // any object
  void Clear() { journal.clear(); }

  double lengthScale, angleScale;  // UnitsScale(2), UnitsScale(1)
  Shape* lastShifted = nullptr;
  double lastShift[3] = {0, 0, 0};
  std::string pageName = "Scene1";

 private:
  Dyn* NewObject(std::string label);
  void WireShape(Shape* s);
  void WireComponent(Shape* owner, Component* c);
  Variant ShapesCollection(Component* c);
  std::vector<Ref<Object>> pool_;
  std::vector<std::unique_ptr<Shape>> shapes_;
  std::vector<std::unique_ptr<Component>> components_;
  Dyn* app_ = nullptr;
  Dyn* page_ = nullptr;
  Shape* root_ = nullptr;
};

}  // namespace FakeHost
