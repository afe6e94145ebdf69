#include "builders/TKSMBendShape.hpp"

#include "automation/Catalogue.hpp"
#include "automation/Enumerations.hpp"
#include "builders/BuilderSteps.hpp"
#include "host/HostAccess.hpp"

namespace TessarkAO {

void TKSMBendShape::Describe(ClassBuilder<TKSMBendShape>& b) {
  using C = TKSMBendShape;
  b.Let<&C::LetSuppressedReliefs>(
       "SuppressedReliefs",
       Doc{"The reliefs not made (ESheetMetalReliefs bits); sent to the host after the shape's Update."})
      .Get<&C::GetSuppressedReliefs>("SuppressedReliefs")
      .Let<&C::LetReliefDepth>("ReliefDepth", Doc{"The depth of the bend relief."})
      .Get<&C::GetReliefDepth>("ReliefDepth")
      .Let<&C::LetReliefWidth>("ReliefWidth", Doc{"The width of the bend relief."})
      .Get<&C::GetReliefWidth>("ReliefWidth")
      .Property<&C::GetReliefType, &C::LetReliefType>(
          "ReliefType", Doc{"The relief shape (ESheetMetalBendReliefTypes); sent with 1 and 2 exchanged, as "
                            "the host numbers them."})
      .Property<&C::GetDropFlags, &C::LetDropFlags>(
          "DropFlags", Doc{"The bend's drop options (ESheetMetalBendDropFlags bits)."})
      .Property<&C::GetStockSegmentLength, &C::LetStockSegmentLength>(
          "StockSegmentLength", Names{"Index"},
          Doc{"The length of stock segment 1 or 2; any other index reads 0 and is ignored on assignment."})
      .Property<&C::GetExtrudeDistance, &C::LetExtrudeDistance>(
          "ExtrudeDistance", Names{"Index"},
          Doc{"The extrude distance of segment 1 or 2; any other index reads 0 and is ignored on "
              "assignment."})
      .Property<&C::GetDirection, &C::LetDirection>("Direction",
                                                    Doc{"The bend direction (ESheetMetalBendDirections)."})
      .Property<&C::GetInsideRadius, &C::LetInsideRadius>("InsideRadius",
                                                          Doc{"The inside radius of the bend."})
      .Property<&C::GetAngle, &C::LetAngle>("Angle", Doc{"The bend angle in radians."})
      .Property<&C::GetUserName, &C::LetUserName>(
          "UserName",
          Doc{"The name the created shape receives; a new builder holds the localized \"Sheet Metal\"."})
      .Get<&C::GetBendComponent>(
          "BendComponent", Doc{"The host's bend component of the created shape; Nothing before Create."})
      .Get<&C::GetPart>("Part", Doc{"The sheet-metal part made by Create for an assembly parent, else the "
                                    "parent Create was given; Nothing before Create."})
      .Method<&C::Finish>("Finish", Doc{"Writes the bend parameters to the bend component and regenerates "
                                        "the shape; before Create it makes no host call."})
      .Method<&C::Create>("Create", Names{"Parent"},
                          Doc{"Adds a bend shape under Parent (inside a new sheet-metal part when Parent is "
                              "an assembly) and returns it. Host errors are raised as they come."})
      .Property<&C::GetCornerReliefDepth, &C::LetCornerReliefDepth>(
          "CornerReliefDepth", Names{"Index"},
          Doc{"The corner relief depth of segment 1 or 2; any other index reads 0 and is ignored on "
              "assignment."})
      .Property<&C::GetCornerReliefType, &C::LetCornerReliefType>(
          "CornerReliefType", Names{"Index"},
          Doc{"The corner relief type of segment 1 or 2; any other index reads 0 and is ignored on "
              "assignment."})
      .Property<&C::GetCornerReliefOrientation, &C::LetCornerReliefOrientation>(
          "CornerReliefOrientation", Names{"Index"},
          Doc{"The corner relief orientation of segment 1 or 2; any other index reads 0 and is ignored on "
              "assignment."});
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

// The enumerations of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::ESheetMetalBendDirections, "TKSMBendShape", SheetMetalBendDirection_Up,
                        SheetMetalBendDirection_Down)
TK_REGISTER_ENUMERATION(TessarkAO::ESheetMetalBendDropFlags, "TKSMBendShape", SheetMetalBendDropFlag_None,
                        SheetMetalBendDropFlag_Autosize, SheetMetalBendDropFlag_AlignInside,
                        SheetMetalBendDropFlag_AlignOutside, SheetMetalBendDropFlag_RadiusSeam,
                        SheetMetalBendDropFlag_RadiusFromPreferences, SheetMetalBendDropFlag_AddFlatStock,
                        SheetMetalBendDropFlag_SegmentOneHandleDisplayed,
                        SheetMetalBendDropFlag_SegmentTwoHandleDisplayed)
TK_REGISTER_ENUMERATION(TessarkAO::ESheetMetalBendReliefTypes, "TKSMBendShape", SheetMetalBendRelief_None,
                        SheetMetalBendRelief_Rectangular, SheetMetalBendRelief_Circular)
TK_REGISTER_ENUMERATION(TessarkAO::ESheetMetalReliefs, "TKSMBendShape", SheetMetalRelief_None,
                        SheetMetalRelief_SegmentOneBelow, SheetMetalRelief_SegmentOneAbove,
                        SheetMetalRelief_SegmentTwoBelow, SheetMetalRelief_SegmentTwoAbove,
                        SheetMetalRelief_All)
