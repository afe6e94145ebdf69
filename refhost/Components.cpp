// Components: the members every component has, and the typed components with
// members of their own (profile, surface finish, faces, sheet-metal bend).
#include "automation/Convert.hpp"
#include "refhost/HostModel.hpp"

namespace TessarkAO::RefHost {

Ref<HostComponent> MakeComponent(std::int32_t type) {
  if (ComponentTypeName(type).empty())
    Raise(Err::InvalidCall, "The host has no component type " + std::to_string(type));
  const std::span<const VarDef> defs = ComponentVarDefs(type);
  switch (type) {
    case ComponentType::Group:
    case ComponentType::History: return MakeRef<HostContainerComponent>(type, defs);
    case ComponentType::Path: return MakeRef<HostPath>();
    case ComponentType::SurfaceFinish: return MakeRef<HostFinishComponent>(type, defs);
    case ComponentType::Facet: return MakeRef<HostFacetComponent>(type, defs);
    case ComponentType::Profile: return MakeRef<HostProfileComponent>(type, defs);
    case ComponentType::SMBend: return MakeRef<HostBendComponent>(type, defs);
    default: return MakeRef<HostPlainComponent>(type, defs);
  }
}

// ---------------------------------------------------------------------------

std::string HostComponent::Name() const {
  return name_.empty() ? std::string(ComponentTypeName(type_)) : name_;
}

Ref<Object> HostComponent::Variable(std::int32_t number) {
  vars_.At(number);
  return MakeRef<HostVariable>(Ref<HostObject>(this), &vars_, number);
}

Ref<Object> HostComponent::Variables() { return MakeRef<HostVariableList>(Ref<HostComponent>(this)); }

std::string HostComponent::JournalName() const {
  if (!holder_) return "(" + Name() + " of a deleted shape)";
  return holder_->JournalName() + ".Components(" + std::to_string(type_) + ").Item(" +
         std::to_string(holder_->IndexOf(this)) + ")";
}

void HostVariableList::Describe(ClassBuilder<HostVariableList>& b) {
  b.Get<&HostVariableList::Count>("Count").Method<&HostVariableList::Item>("Item", Names{"Index"}).Default();
}

Ref<Object> HostVariableList::Item(std::int32_t index) const {
  if (index < 1 || index > Count()) Raise(Err::SubscriptOutOfRange);
  VarTable& t = component_->Vars();
  return MakeRef<HostVariable>(component_, &t, t.Slots()[static_cast<std::size_t>(index - 1)].number);
}

// ---------------------------------------------------------------------------
// Profile

void HostProfileComponent::Describe(ClassBuilder<HostProfileComponent>& b) {
  DescribeCommon(b);
  b.Get<&HostProfileComponent::Profile>("Profile");
}

HostProfileComponent::HostProfileComponent(std::int32_t type, std::span<const VarDef> defs)
    : HostDispatch(type, defs), profile_(MakeRef<HostProfileObject>(this)) {}

HostProfileComponent::~HostProfileComponent() { profile_->Detach(); }

Ref<Object> HostProfileComponent::Profile() const { return profile_; }

void HostProfileObject::Describe(ClassBuilder<HostProfileObject>& b) {
  b.Get<&ComponentHolder::Components>("Components", Names{"Type"});
}

std::string HostProfileObject::JournalName() const {
  return owner_ ? owner_->JournalName() + ".Profile" : "(profile of a deleted shape)";
}

// ---------------------------------------------------------------------------
// Surface finish: the host's member names, variables 1 to 12 in this order.

void HostFinishComponent::Describe(ClassBuilder<HostFinishComponent>& b) {
  DescribeCommon(b);
  b.Get<&HostFinishComponent::SurfaceFinish>("SurfaceFinish");
}

Ref<Object> HostFinishComponent::SurfaceFinish() {
  return MakeRef<HostSurfaceFinish>(Ref<HostComponent>(this));
}

void HostSurfaceFinish::Describe(ClassBuilder<HostSurfaceFinish>& b) {
  using F = HostSurfaceFinish;
  b.Property<&F::Get<1>, &F::Let<1>>("AmbientIntensity")
      .Property<&F::Get<2>, &F::Let<2>>("EdgeTransparency")
      .Property<&F::Get<3>, &F::Let<3>>("EdgeTransparencyOn")
      .Property<&F::Get<4>, &F::Let<4>>("EmissionIntensity")
      .Property<&F::Get<5>, &F::Let<5>>("HighlightsColor")
      .Property<&F::Get<6>, &F::Let<6>>("HighlightsIntensity")
      .Property<&F::Get<7>, &F::Let<7>>("HighlightsShininess")
      .Property<&F::Get<8>, &F::Let<8>>("IndexOfRefraction")
      .Property<&F::Get<9>, &F::Let<9>>("Metallic")
      .Property<&F::Get<10>, &F::Let<10>>("SurfaceColor")
      .Property<&F::Get<11>, &F::Let<11>>("SurfaceColorIntensity")
      .Property<&F::Get<12>, &F::Let<12>>("Transparency");
}

// Colours (5 and 10) are RGB values with red in the low byte; anything
// outside 0 to &HFFFFFF is refused.
template <std::int32_t N>
void HostSurfaceFinish::Let(const Variant& v) {
  if constexpr (N == 5 || N == 10) {
    const std::int32_t c = ToLong(v);
    if (c < 0 || c > 0xFFFFFF) Raise(Err::InvalidCall, "A colour is an RGB value from 0 to 16777215");
  }
  component_->LetVar<N>(v);
}

// ---------------------------------------------------------------------------
// Faces

void HostFace::Describe(ClassBuilder<HostFace>& b) { b.Get<&HostFace::Index>("Index"); }

std::int32_t HostFace::Index() const {
  auto* c = static_cast<HostFacetComponent*>(component_);
  if (!c) return 0;
  std::int32_t i = 0;
  for (const Ref<HostFace>& f : c->FaceList()) {
    ++i;
    if (f.get() == this) return i;
  }
  return 0;
}

std::string HostFace::JournalName() const {
  if (!component_) return "(face of a deleted shape)";
  return component_->JournalName() + ".Faces.Item(" + std::to_string(Index()) + ")";
}

void HostFacetComponent::Describe(ClassBuilder<HostFacetComponent>& b) {
  DescribeCommon(b);
  b.Get<&HostFacetComponent::Faces>("Faces");
}

HostFacetComponent::~HostFacetComponent() {
  for (Ref<HostFace>& f : faces_) f->Attach(nullptr);
}

Ref<Object> HostFacetComponent::Faces() { return MakeRef<HostFaceList>(Ref<HostFacetComponent>(this)); }

Ref<HostFace> HostFacetComponent::AddFace() {
  auto f = MakeRef<HostFace>();
  f->Attach(this);
  faces_.push_back(f);
  return f;
}

void HostFaceList::Describe(ClassBuilder<HostFaceList>& b) {
  b.Get<&HostFaceList::Count>("Count")
      .Method<&HostFaceList::Item>("Item", Names{"Index"})
      .Default()
      .Method<&HostFaceList::Add>("Add")
      .Method<&HostFaceList::IsMember>("IsMember", Names{"Face"}, Out<1>{});
}

Ref<Object> HostFaceList::Item(std::int32_t index) const {
  if (index < 1 || index > Count()) Raise(Err::SubscriptOutOfRange);
  return component_->FaceList()[static_cast<std::size_t>(index - 1)];
}

// Nothing is no member; an object that is not a face is a type mismatch.
bool HostFaceList::IsMember(Ref<Object>& face) const {
  if (!face) return false;
  auto* f = dynamic_cast<HostFace*>(face.get());
  if (!f) Raise(Err::TypeMismatch);
  return f->Owner() == component_.get();
}

// ---------------------------------------------------------------------------
// Sheet-metal bend.  Segment members count their segments from 1, except
// SetStockSegmentLength, whose segments are 0 and 1.

namespace {

template <std::int32_t N, std::int32_t Lo, std::int32_t Hi>
void LetRanged(HostComponent& c, const Variant& v, const char* what) {
  const std::int32_t x = ToLong(v);
  if (x < Lo || x > Hi) {
    Raise(Err::InvalidCall,
          std::string(what) + " must lie from " + std::to_string(Lo) + " to " + std::to_string(Hi));
  }
  StoreSlotValue(c.Vars().At(N), Variant(x));
}

}  // namespace

void HostBendComponent::Describe(ClassBuilder<HostBendComponent>& b) {
  using C = HostBendComponent;
  DescribeCommon(b);
  b.Property<&C::GetVar<1>, &C::LetVar<1>>("Angle")
      .Property<&C::GetVar<2>, &C::LetVar<2>>("Radius")
      .Property<&C::GetVar<3>, &C::LetDirection>("Direction")
      .Property<&C::GetVar<4>, &C::LetDropFlags>("DropFlags")
      .Property<&C::GetVar<5>, &C::LetReliefType>("ReliefType")
      .Property<&C::GetVar<6>, &C::LetVar<6>>("ReliefWidth")
      .Property<&C::GetVar<7>, &C::LetVar<7>>("ReliefDepth")
      .Property<&C::GetVar<8>, &C::LetSuppressedReliefs>("SuppressedReliefs")
      .Method<&C::SetExtrudeDistance>("SetExtrudeDistance", Names{"Index", "Distance"}, Out<1, 2>{})
      .Method<&C::GetExtrudeDistance>("GetExtrudeDistance", Names{"Index"})
      .Method<&C::SetStockSegmentLength>("SetStockSegmentLength", Names{"Index", "Length"}, Out<1, 2>{})
      .Method<&C::GetStockSegmentLength>("GetStockSegmentLength", Names{"Index"})
      .Method<&C::SetCornerReliefDepth>("SetCornerReliefDepth", Names{"Index", "Depth"}, Out<1, 2>{})
      .Method<&C::GetCornerReliefDepth>("GetCornerReliefDepth", Names{"Index"})
      .Method<&C::SetCornerReliefType>("SetCornerReliefType", Names{"Index", "Type"}, Out<1, 2>{})
      .Method<&C::GetCornerReliefType>("GetCornerReliefType", Names{"Index"})
      .Method<&C::SetCornerReliefOrientation>("SetCornerReliefOrientation", Names{"Index", "Orientation"}, Out<1, 2>{})
      .Method<&C::GetCornerReliefOrientation>("GetCornerReliefOrientation", Names{"Index"})
      .Method<&C::Initialize>("Initialize")
      .Get<&C::Initialized>("Initialized");
}

void HostBendComponent::LetDirection(const Variant& v) { LetRanged<3, 1, 2>(*this, v, "Direction"); }
void HostBendComponent::LetDropFlags(const Variant& v) { LetRanged<4, 0, 255>(*this, v, "DropFlags"); }
void HostBendComponent::LetReliefType(const Variant& v) { LetRanged<5, 0, 2>(*this, v, "ReliefType"); }
void HostBendComponent::LetSuppressedReliefs(const Variant& v) {
  LetRanged<8, 0, 15>(*this, v, "SuppressedReliefs");
}

std::int32_t HostBendComponent::SegmentVar(std::int32_t index, std::int32_t first, std::int32_t base) {
  if (index != first && index != first + 1) {
    Raise(Err::InvalidCall, "The bend has segments " + std::to_string(first) + " and " +
                                std::to_string(first + 1) + ", not " + std::to_string(index));
  }
  return base + (index - first);
}

void HostBendComponent::SetExtrudeDistance(std::int32_t& index, double& value) {
  StoreSlotValue(Vars().At(SegmentVar(index, 1, 9)), Variant(value));
}
double HostBendComponent::GetExtrudeDistance(std::int32_t index) {
  return Vars().Number(SegmentVar(index, 1, 9));
}
void HostBendComponent::SetStockSegmentLength(std::int16_t& index, double& value) {
  StoreSlotValue(Vars().At(SegmentVar(index, 0, 11)), Variant(value));
}
double HostBendComponent::GetStockSegmentLength(std::int16_t index) {
  return Vars().Number(SegmentVar(index, 0, 11));
}
void HostBendComponent::SetCornerReliefDepth(std::int32_t& index, double& value) {
  StoreSlotValue(Vars().At(SegmentVar(index, 1, 13)), Variant(value));
}
double HostBendComponent::GetCornerReliefDepth(std::int32_t index) {
  return Vars().Number(SegmentVar(index, 1, 13));
}
void HostBendComponent::SetCornerReliefType(std::int32_t& index, std::int32_t& value) {
  StoreSlotValue(Vars().At(SegmentVar(index, 1, 15)), Variant(value));
}
std::int32_t HostBendComponent::GetCornerReliefType(std::int32_t index) {
  return static_cast<std::int32_t>(Vars().Number(SegmentVar(index, 1, 15)));
}
void HostBendComponent::SetCornerReliefOrientation(std::int32_t& index, std::int32_t& value) {
  StoreSlotValue(Vars().At(SegmentVar(index, 1, 17)), Variant(value));
}
std::int32_t HostBendComponent::GetCornerReliefOrientation(std::int32_t index) {
  return static_cast<std::int32_t>(Vars().Number(SegmentVar(index, 1, 17)));
}
void HostBendComponent::Initialize() { Vars().SetNumber(19, 1.0); }

}  // namespace TessarkAO::RefHost
