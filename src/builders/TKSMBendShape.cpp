#include "builders/TKSMBendShape.hpp"

#include "automation/Catalogue.hpp"
#include "builders/BuilderSteps.hpp"
#include "host/HostAccess.hpp"

namespace TessarkAO {

void TKSMBendShape::Describe(ClassBuilder<TKSMBendShape>& b) {
  using C = TKSMBendShape;
  b.Let<&C::LetSuppressedReliefs>("SuppressedReliefs")
      .Get<&C::GetSuppressedReliefs>("SuppressedReliefs")
      .Let<&C::LetReliefDepth>("ReliefDepth")
      .Get<&C::GetReliefDepth>("ReliefDepth")
      .Let<&C::LetReliefWidth>("ReliefWidth")
      .Get<&C::GetReliefWidth>("ReliefWidth")
      .Property<&C::GetReliefType, &C::LetReliefType>("ReliefType")
      .Property<&C::GetDropFlags, &C::LetDropFlags>("DropFlags")
      .Property<&C::GetStockSegmentLength, &C::LetStockSegmentLength>("StockSegmentLength", Names{"Index"})
      .Property<&C::GetExtrudeDistance, &C::LetExtrudeDistance>("ExtrudeDistance", Names{"Index"})
      .Property<&C::GetDirection, &C::LetDirection>("Direction")
      .Property<&C::GetInsideRadius, &C::LetInsideRadius>("InsideRadius")
      .Property<&C::GetAngle, &C::LetAngle>("Angle")
      .Property<&C::GetUserName, &C::LetUserName>("UserName")
      .Get<&C::GetBendComponent>("BendComponent")
      .Get<&C::GetPart>("Part")
      .Method<&C::Finish>("Finish")
      .Method<&C::Create>("Create", Names{"Parent"})
      .Property<&C::GetCornerReliefDepth, &C::LetCornerReliefDepth>("CornerReliefDepth", Names{"Index"})
      .Property<&C::GetCornerReliefType, &C::LetCornerReliefType>("CornerReliefType", Names{"Index"})
      .Property<&C::GetCornerReliefOrientation, &C::LetCornerReliefOrientation>("CornerReliefOrientation",
                                                                               Names{"Index"});
}

namespace {
// Calls member(index, value) with the value passed by reference; what the
// host writes back is kept, as the builder's own field was handed over.
template <class T>
void SendIndexed(const Variant& bend, std::string_view member, std::int32_t index, T& value) {
  Variant args[2] = {Variant(index), Variant(value)};
  Host::CallByRef(bend, member, args);
  value = Converter<T>::Load(args[1]);
}
}  // namespace

Variant TKSMBendShape::Create(Variant parent) {
  using namespace BuilderSteps;
  Variant container = parent;
  if (Host::TypeOf(parent) == 1) {
    container = AddShape(parent, ShapeKind::Part);
    if (Host::CountOf(Host::Components(container, Component::SheetMetalPart)) == 0)
      Host::Components(container, Component::SheetMetalPart).Call("Add");
    container.Call("Initialize");
  }
  part_ = container;
  Variant shape = AddShape(container, ShapeKind::SheetMetalBend);
  const Variant bend = Host::Components(shape, Component::SheetMetalBend).Call("Item", std::int16_t{1});
  bendComponent_ = bend;

  bend.Let("Angle", angle_);
  bend.Let("Radius", insideRadius_);
  bend.Let("Direction", direction_);
  bend.Let("DropFlags", dropFlags_);
  // The host numbers the two relief shapes the other way round.
  switch (reliefType_) {
    case SheetMetalBendRelief_None: bend.Let("ReliefType", std::int32_t{0}); break;
    case SheetMetalBendRelief_Rectangular: bend.Let("ReliefType", std::int32_t{2}); break;
    case SheetMetalBendRelief_Circular: bend.Let("ReliefType", std::int32_t{1}); break;
    default: break;  // an unknown type is not sent at all
  }
  bend.Let("ReliefWidth", reliefWidth_);
  bend.Let("ReliefDepth", reliefDepth_);
  bend.Call("SetExtrudeDistance", std::int16_t{1}, extrudeDistance_[0]);
  bend.Call("SetExtrudeDistance", std::int16_t{2}, extrudeDistance_[1]);
  // Stock segments are numbered from 0 here, unlike every other segment call.
  bend.Call("SetStockSegmentLength", std::int16_t{0}, stockSegmentLength_[0]);
  bend.Call("SetStockSegmentLength", std::int16_t{1}, stockSegmentLength_[1]);
  SendIndexed(bend, "SetCornerReliefDepth", 1, cornerReliefDepth_[0]);
  SendIndexed(bend, "SetCornerReliefDepth", 2, cornerReliefDepth_[1]);
  SendIndexed(bend, "SetCornerReliefType", 1, cornerReliefType_[0]);
  SendIndexed(bend, "SetCornerReliefType", 2, cornerReliefType_[1]);
  SendIndexed(bend, "SetCornerReliefOrientation", 1, cornerReliefOrientation_[0]);
  SendIndexed(bend, "SetCornerReliefOrientation", 2, cornerReliefOrientation_[1]);
  bend.Call("Initialize");
  shape.Let("Name", userName_);
  shape.Call("Update");
  // Sent after the update on purpose: the host recomputes reliefs on update.
  bend.Let("SuppressedReliefs", suppressedReliefs_);
  shape_ = shape;
  created_ = true;
  return shape;
}

void TKSMBendShape::Finish() {
  if (!created_) return;
  shape_.Call("Update");
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKSMBendShape)
