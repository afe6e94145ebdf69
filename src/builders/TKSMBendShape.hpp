// TKSMBendShape: builds one sheet-metal bend in the host's scene and writes
// its parameters to the host's bend component (66) by member name.
//
// Host numbering the builder keeps exactly as the host expects it:
//   - the relief type is sent with 1 and 2 exchanged (rectangular 1 goes out
//     as 2, circular 2 as 1);
//   - SetExtrudeDistance takes segments 1 and 2, SetStockSegmentLength takes
//     0 and 1;
//   - SuppressedReliefs is sent after the shape's Update.
// Indexed properties take 1 or 2; any other index reads 0 and is ignored on
// assignment.  Angle is in radians.
#pragma once

#include <cstdint>
#include <string>

#include "automation/Members.hpp"
#include "frame/Conventions.hpp"
#include "frame/Globals.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

class TKSMBendShape final : public Dispatch<TKSMBendShape> {
 public:
  static constexpr std::string_view kClassName = "TKSMBendShape";
  static void Describe(ClassBuilder<TKSMBendShape>& b);

  std::int32_t GetSuppressedReliefs() const { return suppressedReliefs_; }
  void LetSuppressedReliefs(std::int32_t v) { suppressedReliefs_ = v; }
  double GetReliefDepth() const { return reliefDepth_; }
  void LetReliefDepth(double v) { reliefDepth_ = v; }
  double GetReliefWidth() const { return reliefWidth_; }
  void LetReliefWidth(double v) { reliefWidth_ = v; }
  std::int32_t GetReliefType() const { return reliefType_; }
  void LetReliefType(std::int32_t v) { reliefType_ = v; }
  std::int32_t GetDropFlags() const { return dropFlags_; }
  void LetDropFlags(std::int32_t v) { dropFlags_ = v; }
  double GetStockSegmentLength(std::int32_t index) const { return Pick(stockSegmentLength_, index); }
  void LetStockSegmentLength(std::int32_t index, double v) { Store(stockSegmentLength_, index, v); }
  double GetExtrudeDistance(std::int32_t index) const { return Pick(extrudeDistance_, index); }
  void LetExtrudeDistance(std::int32_t index, double v) { Store(extrudeDistance_, index, v); }
  std::int32_t GetDirection() const { return direction_; }
  void LetDirection(std::int32_t v) { direction_ = v; }
  double GetInsideRadius() const { return insideRadius_; }
  void LetInsideRadius(double v) { insideRadius_ = v; }
  double GetAngle() const { return angle_; }
  void LetAngle(double v) { angle_ = v; }
  std::string GetUserName() const { return userName_; }
  void LetUserName(std::string v) { userName_ = std::move(v); }
  // The host's bend component of the created shape; Nothing before Create.
  Variant GetBendComponent() const { return bendComponent_; }
  // The sheet-metal part made by Create for an assembly parent, else the
  // parent Create was given; Nothing before Create.
  Variant GetPart() const { return part_; }
  void Finish();
  Variant Create(Variant parent);
  double GetCornerReliefDepth(std::int32_t index) const { return Pick(cornerReliefDepth_, index); }
  void LetCornerReliefDepth(std::int32_t index, double v) { Store(cornerReliefDepth_, index, v); }
  std::int32_t GetCornerReliefType(std::int32_t index) const { return Pick(cornerReliefType_, index); }
  void LetCornerReliefType(std::int32_t index, std::int32_t v) { Store(cornerReliefType_, index, v); }
  std::int32_t GetCornerReliefOrientation(std::int32_t index) const {
    return Pick(cornerReliefOrientation_, index);
  }
  void LetCornerReliefOrientation(std::int32_t index, std::int32_t v) {
    Store(cornerReliefOrientation_, index, v);
  }

 private:
  template <class T>
  static T Pick(const T (&values)[2], std::int32_t index) {
    return index == 1 || index == 2 ? values[index - 1] : T{};
  }
  template <class T>
  static void Store(T (&values)[2], std::int32_t index, T v) {
    if (index == 1 || index == 2) values[index - 1] = v;
  }

  InstanceRegistration registration_;
  // Pi as the 15-digit literal the library uses for every angle.
  double angle_ = kPi / 180.0 * 90.0;
  double insideRadius_ = 0.001;
  std::int32_t direction_ = SheetMetalBendDirection_Up;
  std::int32_t dropFlags_ = SheetMetalBendDropFlag_Autosize + SheetMetalBendDropFlag_AlignOutside;
  std::int32_t reliefType_ = SheetMetalBendRelief_None;
  double extrudeDistance_[2] = {1.0, 1.0};
  // Computed once from the first extrude distance; later changes of the
  // distance do not move them.
  double reliefWidth_ = 1.0 / 8.0;
  double reliefDepth_ = 1.0 / 4.0;
  std::int32_t suppressedReliefs_ = SheetMetalRelief_All;
  double stockSegmentLength_[2] = {3.0 / 8.0, 3.0 / 8.0};
  double cornerReliefDepth_[2] = {0.0, 0.0};
  std::int32_t cornerReliefType_[2] = {0, 0};
  std::int32_t cornerReliefOrientation_[2] = {0, 0};
  std::string userName_;
  Variant shape_ = Variant::Nothing();
  Variant bendComponent_ = Variant::Nothing();
  Variant part_ = Variant::Nothing();
  bool created_ = false;
};

}  // namespace TessarkAO
