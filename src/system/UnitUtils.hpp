// UnitUtils: converts lengths and angles between the fixed units of TKUnit
// and a host page's units, and names the fixed unit a page uses (see
// Units.hpp for the arithmetic).  Takes part in the instance count.
#pragma once

#include <cstdint>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "system/Units.hpp"

namespace TessarkAO {

class UnitUtils final : public Dispatch<UnitUtils> {
 public:
  static constexpr std::string_view kClassName = "UnitUtils";
  static void Describe(ClassBuilder<UnitUtils>& b);

  Ref<Object> GetPage() const { return page_; }
  void SetPage(Ref<Object> page) { page_ = std::move(page); }
  // ConvertValue with objPage, or with Page when objPage is Nothing.
  double ConvertUnits(Ref<Object> objPage, double dblValue, std::int32_t lngFromUnits, std::int32_t lngToUnits);
  // The page given (not Page): 91 for Nothing.
  std::int32_t GetPageLengthUnits(Ref<Object> objPage);
  std::int32_t GetPageAngleUnits(Ref<Object> objPage);

 private:
  InstanceRegistration registration_;
  Ref<Object> page_;
};

}  // namespace TessarkAO
