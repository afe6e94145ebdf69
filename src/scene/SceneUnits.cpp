#include "scene/SceneUnits.hpp"

#include <utility>

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO {

UnitConverter::UnitConverter(Variant page, PageUse use)
    : utils_(CreateObject("TessarkAO.UnitUtils")), page_(Variant::Nothing()) {
  if (use == PageUse::AssignPage) {
    utils_.Set("Page", std::move(page));
  } else {
    page_ = std::move(page);
  }
}

double UnitConverter::Convert(double value, std::int32_t fromUnit, std::int32_t toUnit) const {
  return ToDouble(utils_.Call("ConvertUnits", page_, value, fromUnit, toUnit));
}

}  // namespace TessarkAO
