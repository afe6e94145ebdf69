// The reference host's object model (internal to refhost/ and its tests).
//
// Division map:
//   HostObject        journaling base of every host object
//   VarTable          numbered variables of a component or a path curve
//   ComponentHolder   an object with typed components (shape, profile)
//   HostApplication, HostPage, collections of pages and selected items
//   HostShape         the scene tree node, with its placement members
//   HostComponent     a typed component; subclasses for group / history,
//                     profile, surface finish, faces and the sheet-metal bend
//   HostPath, HostCurve   profile paths and their curves (B-spline data)
//
// Ownership runs downwards through Ref (application -> pages -> root shape ->
// components -> child shapes; path -> curves).  Links upwards are plain
// pointers that the owner clears when it lets go, so an object that outlives
// its owner answers Nothing for Parent, Page and Application instead of
// pointing at freed memory.
//
// Units: component variables and path coordinates are in page units; the
// placement members (GetPointTransformUp / Down, Shift) work in centimetres
// and radians; the translation of GetLocalToParentXform is in metres.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "automation/Members.hpp"
#include "refhost/Placement.hpp"

namespace TessarkAO::RefHost {

class HostApplication;
class HostPage;
class HostShape;
class HostComponent;
class HostPath;
class HostCurve;

// Shape kinds and component types the host knows.
namespace ShapeType {
constexpr std::int32_t Assembly = 1, Facet = 2, Part = 3, Extrude = 5, Profile2D = 9, SMExtrude = 11,
                       Bend = 14, Last = 14;
constexpr std::int32_t SMForm = 13;
}
// What a sheet-metal extrude's Initialize makes of it (its first argument;
// flat stock when it is left out).
namespace StockForm {
constexpr std::int32_t Flat = 1, Curved = 2, Conic = 3;
}
namespace ComponentType {
constexpr std::int32_t Sizebox = 1, Group = 2, Path = 3, Position = 4, Anchor = 5, SurfaceFinish = 7,
                       Facet = 10, Extrude = 14, Profile = 15, Studio = 18, History = 23, AddOn = 43,
                       SMPart = 62, SMExtrude = 63, SMBend = 66;
constexpr std::int32_t SMForm = 67;
}
namespace CurveType {
constexpr std::int32_t Fillet = 0, Line = 1, Arc = 2, Bezier = 3, Ellipse = 4, BSpline = 5;
}

// The display name of a shape kind ("" when the host has no such kind).
std::string_view ShapeKindName(std::int32_t kind);
// The display name of a component type ("" when the host has no such type).
std::string_view ComponentTypeName(std::int32_t type);

// ---------------------------------------------------------------------------

class HostObject : public Object {
 public:
  // A readable, stable path of the object for the journal.
  virtual std::string JournalName() const = 0;
  // The shape whose components expressions on this object refer to.
  virtual HostShape* ContextShape() const { return nullptr; }
};

// The journal: whether it is on (cheap), and recording one call.
bool JournalRecording() noexcept;
void RecordCall(const HostObject& callee, const ClassInfo& info, DispId id, std::string_view calledName,
                CallKind kind, std::span<Variant> args);

// The base of every host class: the member table of the runtime, with both
// entry points (by name and by dispatch id) first recording the call in the
// journal when it is on, then dispatching through the table themselves, so
// that a call is recorded exactly once whichever route it takes.
template <class C, class Base>
class HostDispatch : public Dispatch<C, Base> {
 public:
  using Dispatch<C, Base>::Dispatch;

  Variant Invoke(std::string_view name, CallKind kind, std::span<Variant> args) override {
    const ClassInfo& info = Dispatch<C, Base>::StaticClass();
    const DispId id = info.Find(name);
    if (JournalRecording()) RecordCall(*this, info, id, name, kind, args);
    if (id == DispIdUnknown) Raise(Err::NoSuchMember);
    return Call(info, id, kind, args);
  }

  Variant InvokeId(DispId id, CallKind kind, std::span<Variant> args) override {
    const ClassInfo& info = Dispatch<C, Base>::StaticClass();
    if (JournalRecording()) RecordCall(*this, info, id, {}, kind, args);
    return Call(info, id, kind, args);
  }

 private:
  // Property gets and methods without arguments go straight to their thunk.
  Variant Call(const ClassInfo& info, DispId id, CallKind kind, std::span<Variant> args) {
    if (args.empty() && (kind == CallKind::Get || kind == CallKind::Method)) {
      if (Thunk t = info.PlainGetter(id)) return t(this, args);
    }
    return info.Invoke(this, id, kind, args);
  }
};

// Raised when an object's owner is gone (a component of a deleted shape).
[[noreturn]] void RaiseDetached(std::string_view what);

// ---------------------------------------------------------------------------
// Variables.

struct VarDef {
  std::int32_t number;
  std::string_view name;
  VarType type;  // Double, Long, Boolean or String
  double initial;
};

struct VarSlot {
  std::int32_t number = 0;
  VarType type = VarType::Double;
  double num = 0.0;             // Double, Long and Boolean values
  const VarDef* def = nullptr;  // the host's definition; null for a declared variable
  struct Extra {
    std::string text;        // String value
    std::string expression;  // formula; empty when none
    std::string name;        // name of a declared variable
  };
  std::unique_ptr<Extra> extra;

  Extra& Ext();
  const std::string& Expression() const;
  std::string_view Name() const;
  bool IsInitial() const;  // holds its definition's initial value and no formula
};

// The variables of one component or curve, kept sorted by number.
class VarTable {
 public:
  VarTable() = default;
  explicit VarTable(std::span<const VarDef> defs);

  std::vector<VarSlot>& Slots() { return slots_; }
  const std::vector<VarSlot>& Slots() const { return slots_; }
  VarSlot* Find(std::int32_t number);
  const VarSlot* Find(std::int32_t number) const;
  VarSlot& At(std::int32_t number);  // 9 when there is no such variable
  VarSlot* FindByName(std::string_view name);
  // Adds a declared variable (scene files, for component types the host
  // defines no variables for); false when the number is taken.
  bool Declare(std::int32_t number, VarType type, std::string name);

  double Number(std::int32_t number) const;           // 0 when absent
  void SetNumber(std::int32_t number, double value);  // clears a formula

 private:
  std::vector<VarSlot> slots_;
};

Variant SlotValue(const VarSlot& slot);
// Converts to the slot's type (13, 6) and stores it; clears the formula.
void StoreSlotValue(VarSlot& slot, const Variant& value);
// Evaluates a formula for a slot in the context of `shape` (which may be null:
// then only numbers can be used) and stores the result and the formula.
void AssignSlotExpression(VarSlot& slot, VarTable& table, HostShape* shape, const std::string& text);
// Evaluates the slot's formula again; false when it has none.
bool ReevaluateSlot(VarSlot& slot, VarTable& table, HostShape* shape);

// A variable as the caller sees it: Value (the default member), Expression,
// Name and Type.  It keeps its owner alive.
class HostVariable final : public HostDispatch<HostVariable, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Variable";
  static void Describe(ClassBuilder<HostVariable>& b);
  // `curve` is the path curve the variable belongs to (0 the start point), or
  // -1 for a component's variable.
  HostVariable(Ref<HostObject> owner, VarTable* table, std::int32_t number, std::int32_t curve = -1);

  Variant Value() const;
  void LetValue(const Variant& v);
  std::string Expression() const;
  void LetExpression(std::string text);
  std::string Name() const;
  std::int32_t Type() const;

  std::string JournalName() const override;
  HostShape* ContextShape() const override { return owner_->ContextShape(); }

 private:
  VarSlot& Slot() const;
  Ref<HostObject> owner_;
  VarTable* table_;
  std::int32_t number_;
  std::int32_t curve_;
};

// ---------------------------------------------------------------------------
// Objects that carry typed components: shapes, and the profile object of a
// profile component (which holds paths).

class ComponentHolder : public HostObject {
 public:
  ~ComponentHolder() override;
  std::vector<Ref<HostComponent>>& ComponentList() { return components_; }
  const std::vector<Ref<HostComponent>>& ComponentList() const { return components_; }
  std::int32_t CountOf(std::int32_t type) const;
  HostComponent* ItemOf(std::int32_t type, std::int32_t index) const;  // 1-based; null when none
  HostComponent* First(std::int32_t type) const { return ItemOf(type, 1); }
  // Creates a component of `type` with the host's initial values; 5 for a
  // type the host does not know or that cannot be added here.
  Ref<HostComponent> AddComponent(std::int32_t type);
  // The 1-based position of `c` among the components of its type.
  std::int32_t IndexOf(const HostComponent* c) const;

  Ref<Object> Components(std::int32_t type);

 private:
  std::vector<Ref<HostComponent>> components_;
};

// `Components(type)`: Count, Item(i) (the default member), Add().
class HostComponentList final : public HostDispatch<HostComponentList, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Components";
  static void Describe(ClassBuilder<HostComponentList>& b);
  HostComponentList(Ref<ComponentHolder> holder, std::int32_t type)
      : holder_(std::move(holder)), type_(type) {}

  std::int32_t Count() const { return holder_->CountOf(type_); }
  Ref<Object> Item(std::int32_t index) const;
  Ref<Object> Add();

  std::string JournalName() const override;
  HostShape* ContextShape() const override { return holder_->ContextShape(); }

 private:
  Ref<ComponentHolder> holder_;
  std::int32_t type_;
};

// ---------------------------------------------------------------------------
// Application, pages, selection.

class HostApplication final : public HostDispatch<HostApplication, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Application";
  static void Describe(ClassBuilder<HostApplication>& b);
  ~HostApplication() override;

  Ref<Object> Pages();
  Ref<Object> ActivePage() const;
  void SetActivePage(Ref<Object> page);
  std::string Name() const { return "Tessark"; }

  std::vector<Ref<HostPage>>& PageList() { return pages_; }
  Ref<HostPage> AddPage(std::string name);
  HostPage* Active() const { return active_; }
  void SetActive(HostPage* page) { active_ = page; }
  std::int32_t NextSystemID();
  std::int32_t PeekSystemID() const { return nextId_; }
  void SetNextSystemID(std::int32_t id) { nextId_ = id; }

  std::string JournalName() const override { return "Application"; }

 private:
  std::vector<Ref<HostPage>> pages_;
  HostPage* active_ = nullptr;
  std::int32_t nextId_ = 1;
};

class HostPageList final : public HostDispatch<HostPageList, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Pages";
  static void Describe(ClassBuilder<HostPageList>& b);
  explicit HostPageList(Ref<HostApplication> app) : app_(std::move(app)) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(app_->PageList().size()); }
  Ref<Object> Item(const Variant& indexOrName) const;
  Ref<Object> Add(const Variant& name);

  std::string JournalName() const override { return "Application.Pages"; }

 private:
  Ref<HostApplication> app_;
};

class HostPage final : public HostDispatch<HostPage, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Page";
  static void Describe(ClassBuilder<HostPage>& b);
  HostPage(HostApplication* app, std::string name);
  ~HostPage() override;

  std::string Name() const { return name_; }
  void LetName(std::string name) { name_ = std::move(name); }
  Ref<Object> Shape() const;
  double UnitsScale(std::int32_t kind) const;
  void LetUnitsScale(std::int32_t kind, double scale);
  Ref<Object> SelectedItems();
  void Update();
  Ref<Object> Application() const;

  HostApplication* App() const { return app_; }
  void Detach() { app_ = nullptr; }
  HostShape* Root() const { return root_.get(); }
  void SetRoot(Ref<HostShape> root);
  double LengthScale() const { return lengthScale_; }  // page length unit in metres
  double AngleScale() const { return angleScale_; }    // page angle unit in radians
  std::vector<Ref<HostShape>>& Selection() { return selection_; }
  void Unselect(const HostShape* shape);

  std::string JournalName() const override { return name_; }
  HostShape* ContextShape() const override { return root_.get(); }

 private:
  HostApplication* app_;
  std::string name_;
  Ref<HostShape> root_;
  double lengthScale_ = 0.001;                // millimetres
  double angleScale_ = 0.017453292519943295;  // degrees
  std::vector<Ref<HostShape>> selection_;
  std::uint64_t updates_ = 0;
};

class HostSelection final : public HostDispatch<HostSelection, HostObject> {
 public:
  static constexpr std::string_view kClassName = "SelectedItems";
  static void Describe(ClassBuilder<HostSelection>& b);
  explicit HostSelection(Ref<HostPage> page) : page_(std::move(page)) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(page_->Selection().size()); }
  Ref<Object> Item(std::int32_t index) const;
  void Add(Ref<Object> shape);
  void Remove(std::int32_t index);
  void Clear();

  std::string JournalName() const override { return page_->Name() + ".SelectedItems"; }

 private:
  Ref<HostPage> page_;
};

// ---------------------------------------------------------------------------
// Shapes.

class HostShape final : public HostDispatch<HostShape, ComponentHolder> {
 public:
  static constexpr std::string_view kClassName = "Shape";
  static void Describe(ClassBuilder<HostShape>& b);
  HostShape(std::int32_t type, std::int32_t systemId, std::string name);
  ~HostShape() override;

  // Members, in the host's order.
  std::string Name() const { return name_; }
  void LetName(std::string name) { name_ = std::move(name); }
  std::int32_t SystemID() const { return systemId_; }
  std::int32_t Type() const { return type_; }
  Ref<Object> Parent() const;
  Ref<Object> Page() const;
  Ref<Object> Application() const;
  Ref<Object> BoundingBox();
  void GetLocalToParentXform(Variant& values) const;
  void GetPointTransformUp(double& x, double& y, double& z, double& rx, double& ry, double& rz,
                           double& angle) const;
  void GetPointTransformDown(Ref<Object>& child, double& x, double& y, double& z, double& rx, double& ry,
                             double& rz, double& angle) const;
  void Rotate(std::int32_t axis, double angle);
  void Shift(double& dx, double& dy, double& dz, bool& useParent);
  void GetNormal(double& x, double& y, double& z) const;
  void ResetSizeBox();
  void RealignAnchor();
  void Update();
  void Initialize(const Variant& a1, const Variant& a2, const Variant& a3, const Variant& a4);

  // Model access.
  HostComponent* Container() const { return container_; }  // the group / history holding it
  HostShape* ParentShape() const;
  HostPage* OwningPage() const;
  void AttachTo(HostComponent* container) { container_ = container; }
  void SetPage(HostPage* page) { page_ = page; }
  void SetSystemID(std::int32_t id) { systemId_ = id; }
  // Where the shape sits in its parent, in centimetres and radians (the
  // page's units scale converts; a shape off any page uses millimetres and degrees).
  Placement LocalPlacement() const;
  // The same transform with translation in page units.
  Placement PagePlacement() const;
  // Whether `d` is this shape or lies below it.
  bool Contains(const HostShape* d) const;
  // Re-evaluates every formula of the shape's components and paths.
  void Reevaluate();

  std::string JournalName() const override;
  HostShape* ContextShape() const override { return const_cast<HostShape*>(this); }

 private:
  double LengthScale() const;
  double AngleScale() const;
  Placement MakeLocalPlacement(bool internalUnits) const;
  void WritePosition(Vec3 positionCm, const Mat3* rotation);

  std::int32_t type_;
  std::int32_t systemId_;
  std::string name_;
  HostComponent* container_ = nullptr;  // null for a page's root and detached shapes
  HostPage* page_ = nullptr;            // set on a page's root only
};

// `BoundingBox`: MinX .. MaxZ of the shape's size box as placed in its
// parent, in page units, computed at each read.
class HostBoundingBox final : public HostDispatch<HostBoundingBox, HostObject> {
 public:
  static constexpr std::string_view kClassName = "BoundingBox";
  static void Describe(ClassBuilder<HostBoundingBox>& b);
  explicit HostBoundingBox(Ref<HostShape> shape) : shape_(std::move(shape)) {}
  template <int I>
  double Extent() const;
  std::string JournalName() const override { return shape_->JournalName() + ".BoundingBox"; }

 private:
  Ref<HostShape> shape_;
};

// ---------------------------------------------------------------------------
// Components.

class HostComponent : public HostObject {
 public:
  HostComponent(std::int32_t type, std::span<const VarDef> defs) : type_(type), vars_(defs) {}

  std::int32_t Type() const { return type_; }
  std::string Name() const;
  void LetName(std::string name) { name_ = std::move(name); }
  Ref<Object> Variable(std::int32_t number);
  Ref<Object> Variables();

  VarTable& Vars() { return vars_; }
  const VarTable& Vars() const { return vars_; }
  ComponentHolder* Holder() const { return holder_; }
  void SetHolder(ComponentHolder* h) { holder_ = h; }
  const std::string& CustomName() const { return name_; }
  // Variable access by number for the typed members below.
  template <std::int32_t N>
  Variant GetVar() const {
    return SlotValue(const_cast<VarTable&>(vars_).At(N));
  }
  template <std::int32_t N>
  void LetVar(const Variant& v) {
    StoreSlotValue(vars_.At(N), v);
  }

  std::string JournalName() const override;
  HostShape* ContextShape() const override { return holder_ ? holder_->ContextShape() : nullptr; }

  // The members every component has, for the subclasses' tables.
  template <class C>
  static void DescribeCommon(ClassBuilder<C>& b) {
    b.template Get<&HostComponent::Type>("Type")
        .template Property<&HostComponent::Name, &HostComponent::LetName>("Name")
        .template Method<&HostComponent::Variable>("Variable", Names{"Index"})
        .template Get<&HostComponent::Variables>("Variables");
  }

 private:
  std::int32_t type_;
  VarTable vars_;
  std::string name_;  // empty: the type's display name
  ComponentHolder* holder_ = nullptr;
};

// Components without members of their own (position, anchor, size box, ...).
class HostPlainComponent final : public HostDispatch<HostPlainComponent, HostComponent> {
 public:
  static constexpr std::string_view kClassName = "Component";
  static void Describe(ClassBuilder<HostPlainComponent>& b) { DescribeCommon(b); }
  using HostDispatch::HostDispatch;
};

// `Variables`: Count and Item(i), the component's variables in number order.
class HostVariableList final : public HostDispatch<HostVariableList, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Variables";
  static void Describe(ClassBuilder<HostVariableList>& b);
  explicit HostVariableList(Ref<HostComponent> c) : component_(std::move(c)) {}
  std::int32_t Count() const { return static_cast<std::int32_t>(component_->Vars().Slots().size()); }
  Ref<Object> Item(std::int32_t index) const;
  std::string JournalName() const override { return component_->JournalName() + ".Variables"; }

 private:
  Ref<HostComponent> component_;
};

// Group (2) and history (23): `Shapes`, the child shapes.
class HostContainerComponent final : public HostDispatch<HostContainerComponent, HostComponent> {
 public:
  static constexpr std::string_view kClassName = "ShapeContainer";
  static void Describe(ClassBuilder<HostContainerComponent>& b);
  using HostDispatch::HostDispatch;
  ~HostContainerComponent() override;

  Ref<Object> Shapes(const Variant& kind);

  std::vector<Ref<HostShape>>& Children() { return children_; }
  // Creates a shape of `kind` at the end (5 for a kind the host does not know).
  Ref<HostShape> AddShape(std::int32_t kind);
  void Adopt(Ref<HostShape> shape);
  void RemoveShape(HostShape* shape);  // 5 when it is not a child

 private:
  std::vector<Ref<HostShape>> children_;
};

class HostShapeList final : public HostDispatch<HostShapeList, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Shapes";
  static void Describe(ClassBuilder<HostShapeList>& b);
  HostShapeList(Ref<HostContainerComponent> c, std::int32_t kind) : container_(std::move(c)), kind_(kind) {}

  std::int32_t Count() const { return static_cast<std::int32_t>(container_->Children().size()); }
  Ref<Object> Item(std::int32_t& index) const;
  Ref<Object> Add(const Variant& kind);
  void Remove(Ref<Object>& shape);

  std::string JournalName() const override;

 private:
  Ref<HostContainerComponent> container_;
  std::int32_t kind_;  // 0: Add needs the kind as its argument
};

// Profile (15): `Profile`, the object whose Components(3) are the paths.
class HostProfileObject;
class HostProfileComponent final : public HostDispatch<HostProfileComponent, HostComponent> {
 public:
  static constexpr std::string_view kClassName = "ProfileComponent";
  static void Describe(ClassBuilder<HostProfileComponent>& b);
  HostProfileComponent(std::int32_t type, std::span<const VarDef> defs);
  ~HostProfileComponent() override;
  Ref<Object> Profile() const;
  HostProfileObject& ProfileObject() const { return *profile_; }

 private:
  Ref<HostProfileObject> profile_;
};

class HostProfileObject final : public HostDispatch<HostProfileObject, ComponentHolder> {
 public:
  static constexpr std::string_view kClassName = "Profile";
  static void Describe(ClassBuilder<HostProfileObject>& b);
  explicit HostProfileObject(HostProfileComponent* owner) : owner_(owner) {}
  void Detach() { owner_ = nullptr; }
  std::string JournalName() const override;
  HostShape* ContextShape() const override { return owner_ ? owner_->ContextShape() : nullptr; }

 private:
  HostProfileComponent* owner_;
};

// Surface finish (7): `SurfaceFinish`, whose twelve members are variables 1
// to 12 of the component.
class HostFinishComponent final : public HostDispatch<HostFinishComponent, HostComponent> {
 public:
  static constexpr std::string_view kClassName = "SurfaceFinishComponent";
  static void Describe(ClassBuilder<HostFinishComponent>& b);
  using HostDispatch::HostDispatch;
  Ref<Object> SurfaceFinish();
};

class HostSurfaceFinish final : public HostDispatch<HostSurfaceFinish, HostObject> {
 public:
  static constexpr std::string_view kClassName = "SurfaceFinish";
  static void Describe(ClassBuilder<HostSurfaceFinish>& b);
  explicit HostSurfaceFinish(Ref<HostComponent> c) : component_(std::move(c)) {}
  template <std::int32_t N>
  Variant Get() const {
    return component_->GetVar<N>();
  }
  template <std::int32_t N>
  void Let(const Variant& v);
  std::string JournalName() const override { return component_->JournalName() + ".SurfaceFinish"; }

 private:
  Ref<HostComponent> component_;
};

// Face-bearing geometry (10): `Faces` with Count, Item, Add and IsMember.
class HostFace final : public HostDispatch<HostFace, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Face";
  static void Describe(ClassBuilder<HostFace>& b);
  std::int32_t Index() const;
  void Attach(HostComponent* c) { component_ = c; }
  HostComponent* Owner() const { return component_; }
  std::string JournalName() const override;

 private:
  HostComponent* component_ = nullptr;
};

class HostFacetComponent final : public HostDispatch<HostFacetComponent, HostComponent> {
 public:
  static constexpr std::string_view kClassName = "FacetComponent";
  static void Describe(ClassBuilder<HostFacetComponent>& b);
  using HostDispatch::HostDispatch;
  ~HostFacetComponent() override;
  Ref<Object> Faces();
  std::vector<Ref<HostFace>>& FaceList() { return faces_; }
  Ref<HostFace> AddFace();

 private:
  std::vector<Ref<HostFace>> faces_;
};

class HostFaceList final : public HostDispatch<HostFaceList, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Faces";
  static void Describe(ClassBuilder<HostFaceList>& b);
  explicit HostFaceList(Ref<HostFacetComponent> c) : component_(std::move(c)) {}
  std::int32_t Count() const { return static_cast<std::int32_t>(component_->FaceList().size()); }
  Ref<Object> Item(std::int32_t index) const;
  Ref<Object> Add() { return component_->AddFace(); }
  bool IsMember(Ref<Object>& face) const;
  std::string JournalName() const override { return component_->JournalName() + ".Faces"; }

 private:
  Ref<HostFacetComponent> component_;
};

// Sheet-metal bend (66): named members over its variables.
class HostBendComponent final : public HostDispatch<HostBendComponent, HostComponent> {
 public:
  static constexpr std::string_view kClassName = "BendComponent";
  static void Describe(ClassBuilder<HostBendComponent>& b);
  using HostDispatch::HostDispatch;

  void LetDirection(const Variant& v);
  void LetDropFlags(const Variant& v);
  void LetReliefType(const Variant& v);
  void LetSuppressedReliefs(const Variant& v);
  void SetExtrudeDistance(std::int32_t& index, double& value);
  double GetExtrudeDistance(std::int32_t index);
  void SetStockSegmentLength(std::int16_t& index, double& value);
  double GetStockSegmentLength(std::int16_t index);
  void SetCornerReliefDepth(std::int32_t& index, double& value);
  double GetCornerReliefDepth(std::int32_t index);
  void SetCornerReliefType(std::int32_t& index, std::int32_t& value);
  std::int32_t GetCornerReliefType(std::int32_t index);
  void SetCornerReliefOrientation(std::int32_t& index, std::int32_t& value);
  std::int32_t GetCornerReliefOrientation(std::int32_t index);
  void Initialize();
  bool Initialized() const { return Vars().Number(19) != 0.0; }

 private:
  std::int32_t SegmentVar(std::int32_t index, std::int32_t first, std::int32_t base);
};

// ---------------------------------------------------------------------------
// Paths (component type 3) and curves.

class HostPath final : public HostDispatch<HostPath, HostComponent> {
 public:
  static constexpr std::string_view kClassName = "Path";
  static void Describe(ClassBuilder<HostPath>& b);
  HostPath();
  ~HostPath() override;

  bool Closed() const { return closed_; }
  void LetClosed(bool c) { closed_ = c; }
  std::int32_t Construction() const { return construction_; }
  void LetConstruction(std::int32_t c) { construction_ = c; }
  Ref<Object> PathVariable(std::int32_t curve, std::int32_t number);
  Ref<Object> Curves();
  void SetStartPoint(double& x, double& y);
  Ref<Object> AddLineTo(double& x, double& y);
  Ref<Object> AddArcTo(double& x, double& y, double& hFactor);
  Ref<Object> AddSplineTo(double& x, double& y, double& t1x, double& t1y, double& t2x, double& t2y);
  Ref<Object> AddEllipse(double& cx, double& cy, double& a, const Variant& b, const Variant& c);
  Ref<Object> AddBSplineTo(double& x, double& y);
  Ref<Object> AddFilletAt(std::int32_t& position, double& radius);

  VarTable& Start() { return start_; }
  std::vector<Ref<HostCurve>>& CurveList() { return curves_; }
  Ref<HostCurve> AppendCurve(std::int32_t type);
  // The end point of curve `j` (0: the start point), in page units.
  Vec3 EndOf(std::size_t j) const;
  // Extends [lo, hi] by every point that defines the path.
  void Extend(Vec3& lo, Vec3& hi, bool& any) const;
  void Reevaluate(HostShape* shape);

 private:
  Ref<HostCurve> InsertCurve(std::size_t at, std::int32_t type);
  bool closed_ = false;
  std::int32_t construction_ = 0;
  VarTable start_;
  std::vector<Ref<HostCurve>> curves_;
};

class HostCurveList final : public HostDispatch<HostCurveList, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Curves";
  static void Describe(ClassBuilder<HostCurveList>& b);
  explicit HostCurveList(Ref<HostPath> path) : path_(std::move(path)) {}
  std::int32_t Count() const { return static_cast<std::int32_t>(path_->CurveList().size()); }
  Ref<Object> Item(std::int32_t index) const;
  std::string JournalName() const override { return path_->JournalName() + ".Curves"; }

 private:
  Ref<HostPath> path_;
};

struct Point2 {
  double x = 0.0, y = 0.0;
  friend bool operator==(Point2, Point2) = default;
};

struct BSplineData {
  std::int32_t degree = 3;
  bool periodic = false;
  bool closed = false;
  std::vector<Point2> control;
  std::vector<double> weights;
  std::vector<double> knots;
  std::vector<Point2> fit;
};

class HostCurve final : public HostDispatch<HostCurve, HostObject> {
 public:
  static constexpr std::string_view kClassName = "Curve";
  static void Describe(ClassBuilder<HostCurve>& b);
  explicit HostCurve(std::int32_t type);

  std::int32_t Type() const { return type_; }
  Ref<Object> Variable(std::int32_t number);
  // B-spline members (438 on other curve kinds, as the host's curve of that
  // kind has no such member).
  bool Closed() const;
  bool Periodic() const;
  std::int32_t Degree() const;
  std::int32_t ControlPoints() const;
  void GetControlPoint(std::int32_t index, double& x, double& y) const;
  std::int32_t FitPoints() const;
  void GetFitPoint(std::int32_t index, double& x, double& y) const;
  std::int32_t Knots() const;
  double GetKnot(std::int32_t index) const;
  std::int32_t Weights() const;
  double GetWeight(std::int32_t index) const;
  void SetDefinition(std::int32_t degree, bool periodic, bool closed, const Variant& controlPoints,
                     const Variant& weights, const Variant& knots);
  void SetDefinitionByFitPoints(std::int32_t degree, bool periodic, bool closed, const Variant& fitPoints,
                                const Variant& startTangent, const Variant& endTangent);

  VarTable& Vars() { return vars_; }
  BSplineData& Spline() { return spline_; }
  const BSplineData& Spline() const { return spline_; }
  void Attach(HostPath* path) { path_ = path; }
  HostPath* Path() const { return path_; }

  std::string JournalName() const override;
  HostShape* ContextShape() const override { return path_ ? path_->ContextShape() : nullptr; }

 private:
  void RequireBSpline() const;
  std::int32_t type_;
  VarTable vars_;
  BSplineData spline_;
  HostPath* path_ = nullptr;
};

// The variables each curve kind carries, and those of a path's start point.
std::span<const VarDef> CurveVarDefs(std::int32_t curveType);
std::span<const VarDef> StartVarDefs();
// The variables a component type carries; empty for types without host variables.
std::span<const VarDef> ComponentVarDefs(std::int32_t type);
// Creates a component object of `type` (5 when the host has no such type).
Ref<HostComponent> MakeComponent(std::int32_t type);

// Interpolating B-spline through fit points (clamped, chord-length parameters,
// knots by averaging): fills control points, knots and unit weights.
void InterpolateBSpline(BSplineData& s);

// The application of an Object, or null.
HostApplication* AsApplication(Object* o);

}  // namespace TessarkAO::RefHost
