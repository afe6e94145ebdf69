#include "FakeHost.hpp"

#include <algorithm>

namespace FakeHost {

Variant Dyn::Invoke(std::string_view name, CallKind kind, std::span<Variant> args) {
  if (scene_.journalOn) scene_.journal.push_back(label_ + "." + std::string(name));
  auto it = members_.find(std::string(name));
  if (it == members_.end()) Raise(Err::NoSuchMember);
  return it->second(kind, args);
}

namespace {

Variant Value(std::span<Variant> args) { return args.back().Deref(); }

Variant Collection(Scene& scene, Dyn* obj, std::function<std::int32_t()> count,
                   std::function<Variant(std::int32_t)> item) {
  (void)scene;
  obj->On("Count", [count](CallKind, std::span<Variant>) { return Variant(count()); });
  obj->On("Item", [count, item](CallKind, std::span<Variant> a) {
    const std::int32_t i = ToLong(a[0]);
    if (i < 1 || i > count()) Raise(Err::SubscriptOutOfRange);
    return item(i);
  });
  return Variant(Ref<Object>(obj));
}

// Evaluates the anchor formulas "(Sizebox\Length * r)" against the shape's
// box, and plain numbers.
double Evaluate(const Shape& shape, const std::string& text) {
  static const char* kSizes[] = {"(Sizebox\\Length * ", "(Sizebox\\Width * ", "(Sizebox\\Height * "};
  for (int axis = 0; axis < 3; ++axis) {
    const std::string prefix = kSizes[axis];
    if (text.rfind(prefix, 0) == 0 && text.back() == ')') {
      double ratio = 0;
      if (ParseNumber(text.substr(prefix.size(), text.size() - prefix.size() - 1), GetNumberLocale(), ratio))
        Raise(Err::TypeMismatch);
      return (shape.box[axis + 3] - shape.box[axis]) * ratio;
    }
  }
  double v = 0;
  if (ParseNumber(text, GetNumberLocale(), v)) Raise(Err::TypeMismatch);
  return v;
}

}  // namespace

Scene::Scene(double length, double angle) : lengthScale(length), angleScale(angle) {
  app_ = NewObject("Application");
  page_ = NewObject("Page");
  app_->On("ActivePage", [this](CallKind, std::span<Variant>) { return PageObject(); });
  page_->On("Name", [this](CallKind, std::span<Variant>) { return Variant(pageName); });
  page_->On("Shape", [this](CallKind, std::span<Variant>) { return Obj(root_); });
  page_->On("UnitsScale", [this](CallKind, std::span<Variant> a) {
    return Variant(ToLong(a[0]) == 2 ? lengthScale : angleScale);
  });
  root_ = AddShape(nullptr, 1, "");
  root_->obj->SetLabel("Root");
  AddComponent(root_, 18);
  AddComponent(root_, 2);
}

Scene::~Scene() = default;

Dyn* Scene::NewObject(std::string label) {
  auto obj = MakeRef<Dyn>(*this, std::move(label));
  pool_.push_back(obj);
  return obj.get();
}

Shape* Scene::AddShape(Shape* parent, std::int32_t type, std::string name, std::int32_t systemId) {
  shapes_.push_back(std::make_unique<Shape>());
  Shape* s = shapes_.back().get();
  s->obj = NewObject(name);
  s->name = std::move(name);
  s->type = type;
  s->systemId = systemId;
  s->parent = parent;
  for (int i = 0; i < 16; ++i) s->xform[i] = i + 1;
  if (parent) {
    const std::int32_t holder = parent->type == 3 ? 23 : 2;
    Component* c = First(parent, holder);
    if (!c) c = AddComponent(parent, holder);
    c->children.push_back(s);
  }
  WireShape(s);
  return s;
}

Component* Scene::First(Shape* shape, std::int32_t type) {
  auto it = shape->components.find(type);
  return it == shape->components.end() || it->second.empty() ? nullptr : it->second.front();
}

Component* Scene::AddComponent(Shape* shape, std::int32_t type) {
  components_.push_back(std::make_unique<Component>());
  Component* c = components_.back().get();
  c->type = type;
  c->obj = NewObject(shape->obj->Label() + ".Components(" + std::to_string(type) + ")");
  shape->components[type].push_back(c);
  WireComponent(shape, c);
  return c;
}

Dyn* Scene::AddFace(Component* c, std::string label) {
  Dyn* face = NewObject(std::move(label));
  c->faces.push_back(face);
  return face;
}

void Scene::WireShape(Shape* s) {
  Dyn* o = s->obj;
  o->On("Name", [s](CallKind k, std::span<Variant> a) {
    if (k == CallKind::Let) s->name = ToString(Value(a));
    return Variant(s->name);
  });
  o->On("SystemID", [s](CallKind, std::span<Variant>) { return s->systemId; });
  o->On("Type", [s](CallKind, std::span<Variant>) { return Variant(s->type); });
  o->On("Parent", [s](CallKind, std::span<Variant>) {
    s->nameSeenByParent = s->name;
    return s->parent ? Obj(s->parent) : Variant::Nothing();
  });
  o->On("Page", [this](CallKind, std::span<Variant>) { return PageObject(); });
  o->On("Application", [this](CallKind, std::span<Variant>) { return Variant(Ref<Object>(app_)); });
  o->On("Components", [this, s](CallKind, std::span<Variant> a) {
    const std::int32_t type = ToLong(a[0]);
    Dyn* list = NewObject(s->obj->Label() + ".Components(" + std::to_string(type) + ")");
    list->On("Add", [this, s, type](CallKind, std::span<Variant>) {
      return Variant(Ref<Object>(AddComponent(s, type)->obj));
    });
    return Collection(
        *this, list, [this, s, type] { return static_cast<std::int32_t>(CountOf(s, type)); },
        [s, type](std::int32_t i) { return Variant(Ref<Object>(s->components[type][i - 1]->obj)); });
  });
  o->On("BoundingBox", [this, s](CallKind, std::span<Variant>) {
    Dyn* box = NewObject(s->obj->Label() + ".BoundingBox");
    static const char* kNames[] = {"MinX", "MinY", "MinZ", "MaxX", "MaxY", "MaxZ"};
    for (int i = 0; i < 6; ++i)
      box->On(kNames[i], [s, i](CallKind, std::span<Variant>) { return Variant(s->box[i]); });
    return Variant(Ref<Object>(box));
  });
  o->On("GetLocalToParentXform", [s](CallKind, std::span<Variant> a) {
    SafeArray x = SafeArray::Vector(VarType::Double, 0, 15);
    for (int i = 0; i < 16; ++i) x.Put(i, s->xform[i]);
    a[0].Deref() = Variant(std::move(x));
    return Variant();
  });
  o->On("GetPointTransformUp", [s](CallKind, std::span<Variant> a) {
    const double x = ToDouble(a[0]), y = ToDouble(a[1]);
    const double c = std::cos(s->turn), sn = std::sin(s->turn);
    a[0].Deref() = c * x - sn * y + s->offset[0];
    a[1].Deref() = sn * x + c * y + s->offset[1];
    a[2].Deref() = ToDouble(a[2]) + s->offset[2];
    a[6].Deref() = ToDouble(a[6]) + s->turn;
    return Variant();
  });
  o->On("GetPointTransformDown", [this](CallKind, std::span<Variant> a) {
    Shape* child = nullptr;
    const Ref<Object> target = ToObject(a[0]);
    for (auto& sh : shapes_)
      if (sh->obj == target.get()) child = sh.get();
    if (!child) Raise(Err::InvalidCall);
    const double x = ToDouble(a[1]) - child->offset[0], y = ToDouble(a[2]) - child->offset[1];
    const double c = std::cos(child->turn), sn = std::sin(child->turn);
    a[1].Deref() = c * x + sn * y;
    a[2].Deref() = -sn * x + c * y;
    a[3].Deref() = ToDouble(a[3]) - child->offset[2];
    a[7].Deref() = ToDouble(a[7]) - child->turn;
    return Variant();
  });
  o->On("Shift", [this, s](CallKind, std::span<Variant> a) {
    lastShifted = s;
    for (int i = 0; i < 3; ++i) lastShift[i] = ToDouble(a[static_cast<std::size_t>(i)]);
    return Variant();
  });
  o->On("GetNormal", [](CallKind, std::span<Variant> a) {
    a[0].Deref() = 0.0;
    a[1].Deref() = 0.0;
    a[2].Deref() = 1.0;
    return Variant();
  });
  for (const char* m : {"Rotate", "ResetSizeBox", "RealignAnchor"})
    o->On(m, [](CallKind, std::span<Variant>) { return Variant(); });
}

void Scene::WireComponent(Shape* owner, Component* c) {
  Dyn* o = c->obj;
  o->On("Type", [c](CallKind, std::span<Variant>) { return Variant(c->type); });
  o->On("Name", [c](CallKind, std::span<Variant>) { return Variant(c->name); });
  auto variable = [this, owner, c](std::int32_t n) {
    Dyn* v = NewObject(c->obj->Label() + ".Variable(" + std::to_string(n) + ")");
    v->On("Value", [owner, c, n](CallKind k, std::span<Variant> a) {
      if (k == CallKind::Let) {
        c->values[n] = Value(a);
        c->expressions.erase(n);
      }
      auto it = c->values.find(n);
      return it == c->values.end() ? Variant(0.0) : it->second;
    });
    v->On("Expression", [owner, c, n](CallKind k, std::span<Variant> a) {
      if (k == CallKind::Let) {
        const std::string text = ToString(Value(a));
        c->values[n] = Evaluate(*owner, text);
        c->expressions[n] = text;
      }
      return Variant(c->expressions[n]);
    });
    v->On("Name", [c, n](CallKind, std::span<Variant>) { return Variant(c->varNames[n]); });
    v->On("Type", [](CallKind, std::span<Variant>) { return Variant(std::int32_t{5}); });
    return Variant(Ref<Object>(v));
  };
  o->On("Variable", [variable](CallKind, std::span<Variant> a) { return variable(ToLong(a[0])); });
  o->On("Variables", [this, c, variable](CallKind, std::span<Variant>) {
    Dyn* list = NewObject(c->obj->Label() + ".Variables");
    return Collection(
        *this, list, [c] { return static_cast<std::int32_t>(c->values.size()); },
        [c, variable](std::int32_t i) { return variable(std::next(c->values.begin(), i - 1)->first); });
  });
  o->On("Shapes", [this, c](CallKind, std::span<Variant>) { return ShapesCollection(c); });
  o->On("Faces", [this, c](CallKind, std::span<Variant>) {
    Dyn* faces = NewObject(c->obj->Label() + ".Faces");
    faces->On("IsMember", [c](CallKind, std::span<Variant> a) {
      const Ref<Object> face = ToObject(a[0]);
      for (Dyn* f : c->faces)
        if (f == face.get()) return Variant(true);
      return Variant(false);
    });
    return Variant(Ref<Object>(faces));
  });
  if (c->type == 7) {
    c->finish = NewObject(c->obj->Label() + ".SurfaceFinish");
    auto values = std::make_shared<std::map<std::string, Variant>>();
    for (const char* m : {"AmbientIntensity", "EdgeTransparency", "EmissionIntensity", "HighlightsIntensity",
                          "HighlightsShininess", "IndexOfRefraction", "SurfaceColorIntensity", "Transparency"})
      (*values)[m] = 7.0;
    for (const char* m : {"EdgeTransparencyOn", "Metallic"}) (*values)[m] = true;
    for (const char* m : {"HighlightsColor", "SurfaceColor"}) (*values)[m] = std::int32_t{0x102030};
    for (auto& [name, initial] : *values) {
      const std::string key = name;
      c->finish->On(key, [values, key](CallKind k, std::span<Variant> a) {
        if (k == CallKind::Let) (*values)[key] = Value(a);
        return (*values)[key];
      });
    }
    o->On("SurfaceFinish", [c](CallKind, std::span<Variant>) { return Variant(Ref<Object>(c->finish)); });
  }
}

Variant Scene::ShapesCollection(Component* c) {
  Dyn* list = NewObject(c->obj->Label() + ".Shapes");
  list->On("Remove", [c](CallKind, std::span<Variant> a) {
    const Ref<Object> target = ToObject(a[0]);
    auto it = std::find_if(c->children.begin(), c->children.end(),
                           [&](Shape* s) { return s->obj == target.get(); });
    if (it == c->children.end()) Raise(Err::InvalidCall);
    c->children.erase(it);
    return Variant();
  });
  return Collection(
      *this, list, [c] { return static_cast<std::int32_t>(c->children.size()); },
      [c](std::int32_t i) { return Obj(c->children[static_cast<std::size_t>(i - 1)]); });
}

std::size_t Scene::Calls(const std::string& entry) const {
  return static_cast<std::size_t>(std::count(journal.begin(), journal.end(), entry));
}

std::size_t Scene::CallsTo(const std::string& member) const {
  return static_cast<std::size_t>(std::count_if(journal.begin(), journal.end(), [&](const std::string& e) {
    return e.size() > member.size() && e.compare(e.size() - member.size(), member.size(), member) == 0 &&
           e[e.size() - member.size() - 1] == '.';
  }));
}

}  // namespace FakeHost
