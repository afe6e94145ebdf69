// Shapes: identity, tree links, placement members, size box; the typed
// component collections and the child-shape collections of groups and
// histories.
#include <algorithm>
#include <cmath>

#include "automation/Checked.hpp"
#include "automation/Convert.hpp"
#include "refhost/HostModel.hpp"

namespace TessarkAO::RefHost {

namespace {

// Off any page a shape measures in millimetres and degrees, the host's
// defaults for a new page.
constexpr double kDefaultLength = 0.001;
constexpr double kDefaultAngle = 0.017453292519943295;

// Deeper trees are refused: every level costs stack when a tree is released.
constexpr std::size_t kMaxNesting = 1000;

// Page units to the internal centimetres and back, as value * from / to.
double ToCentimetres(double v, double scale) { return v * scale / 0.01; }
double FromCentimetres(double v, double scale) { return v * 0.01 / scale; }

Vec3 ReadVec(const VarTable& t, std::int32_t first) {
  return {t.Number(first), t.Number(first + 1), t.Number(first + 2)};
}

double Finite(double v) { return Checked::Finite(v); }

}  // namespace

// ---------------------------------------------------------------------------
// ComponentHolder

ComponentHolder::~ComponentHolder() {
  for (Ref<HostComponent>& c : components_)
    if (c->Holder() == this) c->SetHolder(nullptr);
}

std::int32_t ComponentHolder::CountOf(std::int32_t type) const {
  std::int32_t n = 0;
  for (const Ref<HostComponent>& c : components_) n += c->Type() == type;
  return n;
}

HostComponent* ComponentHolder::ItemOf(std::int32_t type, std::int32_t index) const {
  if (index < 1) return nullptr;
  for (const Ref<HostComponent>& c : components_)
    if (c->Type() == type && --index == 0) return c.get();
  return nullptr;
}

Ref<HostComponent> ComponentHolder::AddComponent(std::int32_t type) {
  Ref<HostComponent> c = MakeComponent(type);
  c->SetHolder(this);
  components_.push_back(c);
  return c;
}

std::int32_t ComponentHolder::IndexOf(const HostComponent* c) const {
  std::int32_t n = 0;
  for (const Ref<HostComponent>& k : components_) {
    if (k->Type() == c->Type()) ++n;
    if (k.get() == c) return n;
  }
  return 0;
}

Ref<Object> ComponentHolder::Components(std::int32_t type) {
  return MakeRef<HostComponentList>(Ref<ComponentHolder>(this), type);
}

// ---------------------------------------------------------------------------
// Components(type)

void HostComponentList::Describe(ClassBuilder<HostComponentList>& b) {
  b.Get<&HostComponentList::Count>("Count")
      .Method<&HostComponentList::Item>("Item", Names{"Index"})
      .Default()
      .Method<&HostComponentList::Add>("Add");
}

Ref<Object> HostComponentList::Item(std::int32_t index) const {
  HostComponent* c = holder_->ItemOf(type_, index);
  if (!c) Raise(Err::SubscriptOutOfRange);
  return Ref<Object>(c);
}

// The scene's top carries the studio marker from the start; it cannot be
// added.  A profile holds paths only.
Ref<Object> HostComponentList::Add() {
  if (ComponentTypeName(type_).empty())
    Raise(Err::InvalidCall, "The host has no component type " + std::to_string(type_));
  if (type_ == ComponentType::Studio) Raise(Err::InvalidCall, "The studio component cannot be added");
  if (dynamic_cast<HostProfileObject*>(holder_.get()) && type_ != ComponentType::Path)
    Raise(Err::InvalidCall, "A profile holds paths (component type 3) only");
  return holder_->AddComponent(type_);
}

std::string HostComponentList::JournalName() const {
  return holder_->JournalName() + ".Components(" + std::to_string(type_) + ")";
}

// ---------------------------------------------------------------------------
// Shape

void HostShape::Describe(ClassBuilder<HostShape>& b) {
  b.Property<&HostShape::Name, &HostShape::LetName>("Name")
      .Get<&HostShape::SystemID>("SystemID")
      .Get<&HostShape::Type>("Type")
      .Get<&HostShape::Parent>("Parent")
      .Get<&HostShape::Page>("Page")
      .Get<&HostShape::Application>("Application")
      .Get<&HostShape::BoundingBox>("BoundingBox")
      .Method<&HostShape::GetLocalToParentXform>("GetLocalToParentXform", Names{"Values"}, Out<1>{})
      .Method<&HostShape::GetPointTransformUp>("GetPointTransformUp",
                                               Names{"X", "Y", "Z", "RotX", "RotY", "RotZ", "RotAngle"}, Out<1, 2, 3, 4, 5, 6, 7>{})
      .Method<&HostShape::GetPointTransformDown>(
          "GetPointTransformDown", Names{"Child", "X", "Y", "Z", "RotX", "RotY", "RotZ", "RotAngle"}, Out<1, 2, 3, 4, 5, 6, 7, 8>{})
      .Method<&HostShape::Rotate>("Rotate", Names{"Axis", "Angle"})
      .Method<&HostShape::Shift>("Shift", Names{"X", "Y", "Z", "UseParent"}, Opt{false}, Out<1, 2, 3, 4>{})
      .Method<&HostShape::GetNormal>("GetNormal", Names{"X", "Y", "Z"}, Out<1, 2, 3>{})
      .Method<&HostShape::ResetSizeBox>("ResetSizeBox")
      .Method<&HostShape::RealignAnchor>("RealignAnchor")
      .Method<&HostShape::Update>("Update")
      .Method<&HostShape::Initialize>(
          "Initialize", Opt{Variant::Missing(), Variant::Missing(), Variant::Missing(), Variant::Missing()})
      .Get<&ComponentHolder::Components>("Components", Names{"Type"});
}

HostShape::HostShape(std::int32_t type, std::int32_t systemId, std::string name)
    : type_(type), systemId_(systemId), name_(std::move(name)) {}

HostShape::~HostShape() = default;

HostShape* HostShape::ParentShape() const {
  return container_ ? static_cast<HostShape*>(container_->Holder()) : nullptr;
}

HostPage* HostShape::OwningPage() const {
  const HostShape* s = this;
  while (HostShape* p = s->ParentShape()) s = p;
  return s->page_;
}

// A shape's Parent is the shape one level up; that shape's own Parent is the
// next one up, and the page's root shape (the scene's top, with the studio
// marker) has none.
Ref<Object> HostShape::Parent() const { return Ref<Object>(ParentShape()); }

Ref<Object> HostShape::Page() const { return Ref<Object>(OwningPage()); }

Ref<Object> HostShape::Application() const {
  HostPage* p = OwningPage();
  return p ? p->Application() : Ref<Object>();
}

Ref<Object> HostShape::BoundingBox() { return MakeRef<HostBoundingBox>(Ref<HostShape>(this)); }

bool HostShape::Contains(const HostShape* d) const {
  for (; d; d = d->ParentShape())
    if (d == this) return true;
  return false;
}

double HostShape::LengthScale() const {
  HostPage* p = OwningPage();
  return p ? p->LengthScale() : kDefaultLength;
}

double HostShape::AngleScale() const {
  HostPage* p = OwningPage();
  return p ? p->AngleScale() : kDefaultAngle;
}

Placement HostShape::MakeLocalPlacement(bool internalUnits) const {
  const double lengthScale = LengthScale();
  const double toRadians = AngleScale();
  Vec3 position, axis, anchor, anchorAxis;
  double angle = 0.0, anchorAngle = 0.0;
  bool mirror = false;
  if (const HostComponent* c = First(ComponentType::Position)) {
    position = ReadVec(c->Vars(), 1);
    axis = ReadVec(c->Vars(), 4);
    angle = c->Vars().Number(7) * toRadians;
    mirror = c->Vars().Number(9) != 0.0;
  }
  if (const HostComponent* c = First(ComponentType::Anchor)) {
    anchor = ReadVec(c->Vars(), 1);
    anchorAxis = ReadVec(c->Vars(), 4);
    anchorAngle = c->Vars().Number(7) * toRadians;
  }
  auto scale = [&](Vec3 v) {
    if (!internalUnits) return v;
    return Vec3{ToCentimetres(v.x, lengthScale), ToCentimetres(v.y, lengthScale),
                ToCentimetres(v.z, lengthScale)};
  };
  return MakePlacement(scale(position), axis, angle, mirror, scale(anchor), anchorAxis, anchorAngle);
}

Placement HostShape::LocalPlacement() const { return MakeLocalPlacement(true); }

Placement HostShape::PagePlacement() const { return MakeLocalPlacement(false); }

// The 16 values of the local-to-parent matrix column by column, x[4c + r] =
// m(r, c), with the translation in x[12..14] in metres.
void HostShape::GetLocalToParentXform(Variant& values) const {
  const Placement p = LocalPlacement();
  double x[16] = {};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) x[4 * c + r] = p.linear.m[r][c];
  x[12] = Finite(p.translation.x * 0.01);
  x[13] = Finite(p.translation.y * 0.01);
  x[14] = Finite(p.translation.z * 0.01);
  x[15] = 1.0;
  if (values.IsArray() && values.AsArray().Dims() == 1 && values.AsArray().Size() == 16) {
    SafeArray& a = values.AsArray();
    const std::int32_t lb = a.LBound(1);
    for (std::int32_t i = 0; i < 16; ++i) a.Put(lb + i, Variant(x[i]));
    return;
  }
  if (values.IsArray() && values.AsArray().Fixed()) Raise(Err::ArrayFixed);
  if (!values.IsArray() && !values.IsEmpty() && !values.IsMissing()) Raise(Err::TypeMismatch);
  SafeArray a = SafeArray::Vector(VarType::Double, 0, 15);
  for (std::int32_t i = 0; i < 16; ++i) a.Put(i, Variant(x[i]));
  values = Variant(std::move(a));
}

void HostShape::GetPointTransformUp(double& x, double& y, double& z, double& rx, double& ry, double& rz,
                                    double& angle) const {
  const Placement p = LocalPlacement();
  const Vec3 q = p.PointUp({x, y, z});
  Vec3 axis{rx, ry, rz};
  double a = angle;
  p.OrientationUp(axis, a);
  const double out[7] = {Finite(q.x),    Finite(q.y),    Finite(q.z), Finite(axis.x),
                         Finite(axis.y), Finite(axis.z), Finite(a)};
  x = out[0], y = out[1], z = out[2], rx = out[3], ry = out[4], rz = out[5], angle = out[6];
}

// Carries the seven values from this shape's space into the space of `child`,
// which must lie below this shape (any depth).
void HostShape::GetPointTransformDown(Ref<Object>& child, double& x, double& y, double& z, double& rx,
                                      double& ry, double& rz, double& angle) const {
  auto* c = dynamic_cast<HostShape*>(child.get());
  if (!child) Raise(Err::InvalidCall, "GetPointTransformDown needs a child shape");
  if (!c) Raise(Err::TypeMismatch);
  if (c == this || !Contains(c)) Raise(Err::InvalidCall, "The shape is not below this shape");
  std::vector<const HostShape*> chain;
  for (const HostShape* s = c; s != this; s = s->ParentShape()) chain.push_back(s);
  Vec3 q{x, y, z};
  Vec3 axis{rx, ry, rz};
  double a = angle;
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    const Placement p = (*it)->LocalPlacement();
    q = p.PointDown(q);
    p.OrientationDown(axis, a);
  }
  const double out[7] = {Finite(q.x),    Finite(q.y),    Finite(q.z), Finite(axis.x),
                         Finite(axis.y), Finite(axis.z), Finite(a)};
  x = out[0], y = out[1], z = out[2], rx = out[3], ry = out[4], rz = out[5], angle = out[6];
}

void HostShape::WritePosition(Vec3 positionCm, const Mat3* rotation) {
  HostComponent* c = First(ComponentType::Position);
  if (!c) c = AddComponent(ComponentType::Position).get();
  const double s = LengthScale();
  const double values[3] = {Finite(FromCentimetres(positionCm.x, s)),
                            Finite(FromCentimetres(positionCm.y, s)),
                            Finite(FromCentimetres(positionCm.z, s))};
  if (rotation) {
    Vec3 axis;
    double angle = 0.0;
    ToAxisAngle(*rotation, axis, angle);
    c->Vars().SetNumber(4, axis.x);
    c->Vars().SetNumber(5, axis.y);
    c->Vars().SetNumber(6, axis.z);
    c->Vars().SetNumber(7, angle / AngleScale());
  }
  for (int i = 0; i < 3; ++i) c->Vars().SetNumber(i + 1, values[i]);
}

// Turns the shape by `angle` radians about the parent's X (1), Y (2) or Z (3)
// axis through the shape's position point.
void HostShape::Rotate(std::int32_t axis, double angle) {
  if (axis < 1 || axis > 3) Raise(Err::InvalidCall, "Rotate takes axis 1 (X), 2 (Y) or 3 (Z)");
  if (!std::isfinite(angle)) Raise(Err::Overflow);
  const Vec3 e{axis == 1 ? 1.0 : 0.0, axis == 2 ? 1.0 : 0.0, axis == 3 ? 1.0 : 0.0};
  Vec3 position, paxis;
  double pangle = 0.0;
  if (const HostComponent* c = First(ComponentType::Position)) {
    position = ReadVec(c->Vars(), 1);
    paxis = ReadVec(c->Vars(), 4);
    pangle = c->Vars().Number(7) * AngleScale();
  }
  const Mat3 r = RotationAboutAxis(e, angle) * RotationAboutAxis(paxis, pangle);
  const double s = LengthScale();
  WritePosition({ToCentimetres(position.x, s), ToCentimetres(position.y, s), ToCentimetres(position.z, s)},
                &r);
}

// Moves the shape by (dx, dy, dz) centimetres: along the parent's axes when
// `useParent` is True, else along the shape's own axes (so that a shift by
// an anchor's displacement keeps the geometry where it was).
void HostShape::Shift(double& dx, double& dy, double& dz, bool& useParent) {
  const Placement p = LocalPlacement();
  Vec3 d{dx, dy, dz};
  if (!useParent) d = p.DirectionUp(d);
  Vec3 position;
  if (const HostComponent* c = First(ComponentType::Position)) position = ReadVec(c->Vars(), 1);
  const double s = LengthScale();
  const Vec3 cm{ToCentimetres(position.x, s) + d.x, ToCentimetres(position.y, s) + d.y,
                ToCentimetres(position.z, s) + d.z};
  WritePosition(cm, nullptr);
}

// The shape's local Z axis in its parent's space.
void HostShape::GetNormal(double& x, double& y, double& z) const {
  const Vec3 n = LocalPlacement().DirectionUp({0.0, 0.0, 1.0});
  const double len = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  x = n.x / len;
  y = n.y / len;
  z = n.z / len;
}

// Fits the size box around the shape's paths (extruded by its extrude
// heights or sheet thickness) and its children's boxes, in local page units.
// A shape with no geometry keeps its box.
void HostShape::ResetSizeBox() {
  Vec3 lo{0, 0, 0}, hi{0, 0, 0};
  bool any = false;
  auto extend = [&](Vec3 v) {
    if (!any) {
      lo = hi = v;
      any = true;
      return;
    }
    lo = {std::min(lo.x, v.x), std::min(lo.y, v.y), std::min(lo.z, v.z)};
    hi = {std::max(hi.x, v.x), std::max(hi.y, v.y), std::max(hi.z, v.z)};
  };
  bool flat = false;
  Vec3 plo, phi;
  for (const Ref<HostComponent>& c : ComponentList()) {
    if (auto* path = dynamic_cast<HostPath*>(c.get())) path->Extend(plo, phi, flat);
    if (auto* prof = dynamic_cast<HostProfileComponent*>(c.get())) {
      for (const Ref<HostComponent>& k : prof->ProfileObject().ComponentList())
        if (auto* path = dynamic_cast<HostPath*>(k.get())) path->Extend(plo, phi, flat);
    }
  }
  if (flat) {
    double zlo = 0.0, zhi = 0.0;
    if (const HostComponent* e = First(ComponentType::Extrude)) {
      zlo = 0.0 - e->Vars().Number(56);  // 0 - 0 is +0: an unextruded side is not -0
      zhi = e->Vars().Number(55);
    } else if (const HostComponent* e = First(ComponentType::SMExtrude)) {
      // Curved stock stands as wide as its Width; flat stock as its thickness.
      const VarSlot* width = const_cast<HostComponent*>(e)->Vars().FindByName("Width");
      zhi = width ? width->num : e->Vars().Number(55);
    } else if (const HostComponent* f = First(ComponentType::SMForm)) {
      // A form reaches its depth above (direction 1) or below the sheet.
      const double depth = f->Vars().Number(2);
      if (f->Vars().Number(1) == 2.0)
        zlo = 0.0 - depth;  // 0 - 0 is +0
      else
        zhi = depth;
    }
    extend({plo.x, plo.y, std::min(zlo, zhi)});
    extend({phi.x, phi.y, std::max(zlo, zhi)});
  }
  for (const Ref<HostComponent>& c : ComponentList()) {
    auto* k = dynamic_cast<HostContainerComponent*>(c.get());
    if (!k) continue;
    for (const Ref<HostShape>& child : k->Children()) {
      const HostComponent* box = child->First(ComponentType::Sizebox);
      if (!box) continue;
      const Placement p = child->PagePlacement();
      const Vec3 bmin = ReadVec(box->Vars(), 11);
      const Vec3 size = ReadVec(box->Vars(), 1);
      for (int i = 0; i < 8; ++i)
        extend(p.PointUp({bmin.x + (i & 1 ? size.x : 0.0), bmin.y + (i & 2 ? size.y : 0.0),
                          bmin.z + (i & 4 ? size.z : 0.0)}));
    }
  }
  if (!any) return;
  HostComponent* box = First(ComponentType::Sizebox);
  if (!box) box = AddComponent(ComponentType::Sizebox).get();
  box->Vars().SetNumber(1, Finite(hi.x - lo.x));
  box->Vars().SetNumber(2, Finite(hi.y - lo.y));
  box->Vars().SetNumber(3, Finite(hi.z - lo.z));
  box->Vars().SetNumber(11, lo.x);
  box->Vars().SetNumber(12, lo.y);
  box->Vars().SetNumber(13, lo.z);
}

// Puts the anchor back at the size box's minimum corner, unturned.  The
// position is left alone, so the geometry moves with the anchor.
void HostShape::RealignAnchor() {
  HostComponent* a = First(ComponentType::Anchor);
  if (!a) a = AddComponent(ComponentType::Anchor).get();
  Vec3 corner;
  if (const HostComponent* box = First(ComponentType::Sizebox)) corner = ReadVec(box->Vars(), 11);
  a->Vars().SetNumber(1, corner.x);
  a->Vars().SetNumber(2, corner.y);
  a->Vars().SetNumber(3, corner.z);
  for (std::int32_t n = 4; n <= 7; ++n) a->Vars().SetNumber(n, 0.0);
}

void HostShape::Update() { Reevaluate(); }

// Sets up a sheet-metal feature: a sheet-metal extrude gets its extrude and
// profile components, a form shape its form and profile components, a part
// with a sheet-metal component is marked as initialised.  A sheet-metal
// extrude takes its stock form as the first argument: curved stock adds the
// variable "Width" (57) to its extrude component, conic stock the variables
// "Top Radius", "Bottom Radius" and "Height" (57 to 59); callers find the
// latter by name.  The other arguments are accepted and not used.
void HostShape::Initialize(const Variant& form, const Variant&, const Variant&, const Variant&) {
  if (type_ == ShapeType::SMExtrude) {
    if (!First(ComponentType::SMExtrude)) AddComponent(ComponentType::SMExtrude);
    if (!First(ComponentType::Profile)) AddComponent(ComponentType::Profile);
    const std::int32_t stock = form.IsMissing() ? StockForm::Flat : ToLong(form);
    VarTable& vars = First(ComponentType::SMExtrude)->Vars();
    auto declare = [&](std::int32_t number, const char* name, double initial) {
      if (vars.Declare(number, VarType::Double, name)) vars.SetNumber(number, initial);
    };
    switch (stock) {
      case StockForm::Flat: break;
      case StockForm::Curved: declare(57, "Width", 1.0); break;
      case StockForm::Conic:
        declare(57, "Top Radius", 0.5);
        declare(58, "Bottom Radius", 1.0);
        declare(59, "Height", 1.0);
        break;
      default: Raise(Err::InvalidCall, "The host has no sheet-metal stock form " + std::to_string(stock));
    }
  }
  if (type_ == ShapeType::SMForm) {
    if (!First(ComponentType::SMForm)) AddComponent(ComponentType::SMForm);
    if (!First(ComponentType::Profile)) AddComponent(ComponentType::Profile);
  }
  if (type_ == ShapeType::Bend && !First(ComponentType::SMBend)) AddComponent(ComponentType::SMBend);
  if (HostComponent* sm = First(ComponentType::SMPart)) sm->Vars().SetNumber(4, 1.0);
}

// Formulas can refer to one another within the shape; a few passes settle
// chains of them.
void HostShape::Reevaluate() {
  for (int pass = 0; pass < 8; ++pass) {
    bool changed = false;
    for (const Ref<HostComponent>& c : ComponentList()) {
      for (VarSlot& s : c->Vars().Slots()) changed = ReevaluateSlot(s, c->Vars(), this) || changed;
      if (auto* path = dynamic_cast<HostPath*>(c.get())) path->Reevaluate(this);
      if (auto* prof = dynamic_cast<HostProfileComponent*>(c.get())) {
        for (const Ref<HostComponent>& k : prof->ProfileObject().ComponentList())
          if (auto* path = dynamic_cast<HostPath*>(k.get())) path->Reevaluate(this);
      }
    }
    if (!changed) break;
  }
}

std::string HostShape::JournalName() const {
  std::vector<const HostShape*> up;
  const HostShape* s = this;
  for (; s->ParentShape(); s = s->ParentShape()) up.push_back(s);
  std::string out = s->page_ ? s->page_->Name() : std::string("?");
  out += "//";
  for (auto it = up.rbegin(); it != up.rend(); ++it) {
    if (it != up.rbegin()) out += "//";
    out += (*it)->name_;
  }
  return out;
}

// ---------------------------------------------------------------------------
// BoundingBox

void HostBoundingBox::Describe(ClassBuilder<HostBoundingBox>& b) {
  b.Get<&HostBoundingBox::Extent<0>>("MinX")
      .Get<&HostBoundingBox::Extent<1>>("MinY")
      .Get<&HostBoundingBox::Extent<2>>("MinZ")
      .Get<&HostBoundingBox::Extent<3>>("MaxX")
      .Get<&HostBoundingBox::Extent<4>>("MaxY")
      .Get<&HostBoundingBox::Extent<5>>("MaxZ");
}

template <int I>
double HostBoundingBox::Extent() const {
  Vec3 bmin, size;
  if (const HostComponent* box = shape_->First(ComponentType::Sizebox)) {
    bmin = ReadVec(box->Vars(), 11);
    size = ReadVec(box->Vars(), 1);
  }
  const Placement p = shape_->PagePlacement();
  double lo[3] = {0, 0, 0}, hi[3] = {0, 0, 0};
  for (int i = 0; i < 8; ++i) {
    const Vec3 v = p.PointUp(
        {bmin.x + (i & 1 ? size.x : 0.0), bmin.y + (i & 2 ? size.y : 0.0), bmin.z + (i & 4 ? size.z : 0.0)});
    const double c[3] = {v.x, v.y, v.z};
    for (int k = 0; k < 3; ++k) {
      lo[k] = i == 0 ? c[k] : std::min(lo[k], c[k]);
      hi[k] = i == 0 ? c[k] : std::max(hi[k], c[k]);
    }
  }
  return Finite(I < 3 ? lo[I] : hi[I - 3]);
}

// ---------------------------------------------------------------------------
// Group and history components, and their Shapes collections.

void HostContainerComponent::Describe(ClassBuilder<HostContainerComponent>& b) {
  DescribeCommon(b);
  b.Get<&HostContainerComponent::Shapes>("Shapes", Names{"Kind"}, Opt{Variant::Missing()});
}

HostContainerComponent::~HostContainerComponent() {
  for (Ref<HostShape>& c : children_)
    if (c->Container() == this) c->AttachTo(nullptr);
}

// `Shapes` is the child collection; `Shapes(kind)` is the same collection
// whose Add makes a shape of that kind.
Ref<Object> HostContainerComponent::Shapes(const Variant& kind) {
  const std::int32_t k = kind.IsMissing() ? 0 : ToLong(kind);
  return MakeRef<HostShapeList>(Ref<HostContainerComponent>(this), k);
}

Ref<HostShape> HostContainerComponent::AddShape(std::int32_t kind) {
  const std::string_view name = ShapeKindName(kind);
  if (name.empty()) Raise(Err::InvalidCall, "The host has no shape kind " + std::to_string(kind));
  auto* owner = static_cast<HostShape*>(Holder());
  HostPage* page = owner ? owner->OwningPage() : nullptr;
  HostApplication* app = page ? page->App() : nullptr;
  if (!app) RaiseDetached("shape");
  std::size_t depth = 0;
  for (const HostShape* up = owner; up; up = up->ParentShape()) ++depth;
  if (depth > kMaxNesting)
    Raise(Err::InvalidCall, "Shapes nest at most " + std::to_string(kMaxNesting) + " levels deep");
  auto s = MakeRef<HostShape>(kind, app->NextSystemID(), std::string(name));
  s->AddComponent(ComponentType::Sizebox);
  s->AddComponent(ComponentType::Position);
  s->AddComponent(ComponentType::Anchor);
  switch (kind) {
    case ShapeType::Assembly: s->AddComponent(ComponentType::Group); break;
    case ShapeType::Part: s->AddComponent(ComponentType::History); break;
    case ShapeType::Facet: s->AddComponent(ComponentType::Facet); break;
    case ShapeType::Extrude:
      s->AddComponent(ComponentType::Extrude);
      s->AddComponent(ComponentType::Profile);
      break;
    case ShapeType::Profile2D: s->AddComponent(ComponentType::Profile); break;
    case ShapeType::SMExtrude:
      s->AddComponent(ComponentType::SMExtrude);
      s->AddComponent(ComponentType::Profile);
      break;
    case ShapeType::Bend: s->AddComponent(ComponentType::SMBend); break;
    case ShapeType::SMForm:
      s->AddComponent(ComponentType::SMForm);
      s->AddComponent(ComponentType::Profile);
      break;
    default: break;
  }
  Adopt(s);
  return s;
}

void HostContainerComponent::Adopt(Ref<HostShape> shape) {
  shape->AttachTo(this);
  children_.push_back(std::move(shape));
}

void HostContainerComponent::RemoveShape(HostShape* shape) {
  auto it = std::find_if(children_.begin(), children_.end(),
                         [&](const Ref<HostShape>& c) { return c.get() == shape; });
  if (it == children_.end()) Raise(Err::InvalidCall, "The shape is not in this collection");
  if (HostPage* page = shape->OwningPage()) page->Unselect(shape);
  Ref<HostShape> keep = *it;  // the caller may hold the last other reference
  shape->AttachTo(nullptr);
  children_.erase(it);
}

void HostShapeList::Describe(ClassBuilder<HostShapeList>& b) {
  b.Get<&HostShapeList::Count>("Count")
      .Method<&HostShapeList::Item>("Item", Names{"Index"}, Out<1>{})
      .Default()
      .Method<&HostShapeList::Add>("Add", Names{"Kind"}, Opt{Variant::Missing()})
      .Method<&HostShapeList::Remove>("Remove", Names{"Shape"}, Out<1>{});
}

Ref<Object> HostShapeList::Item(std::int32_t& index) const {
  if (index < 1 || index > Count()) Raise(Err::SubscriptOutOfRange);
  return container_->Children()[static_cast<std::size_t>(index - 1)];
}

Ref<Object> HostShapeList::Add(const Variant& kind) {
  const std::int32_t k = kind.IsMissing() ? kind_ : ToLong(kind);
  if (k == 0) Raise(Err::InvalidCall, "Shapes.Add needs a shape kind: Shapes(kind).Add");
  return container_->AddShape(k);
}

void HostShapeList::Remove(Ref<Object>& shape) {
  auto* s = dynamic_cast<HostShape*>(shape.get());
  if (!shape) Raise(Err::InvalidCall, "Remove needs a shape");
  if (!s) Raise(Err::TypeMismatch);
  container_->RemoveShape(s);
}

std::string HostShapeList::JournalName() const {
  return container_->JournalName() + ".Shapes" + (kind_ ? "(" + std::to_string(kind_) + ")" : std::string());
}

}  // namespace TessarkAO::RefHost
