#include "system/UnitUtils.hpp"

#include "automation/Catalogue.hpp"

namespace TessarkAO {

void UnitUtils::Describe(ClassBuilder<UnitUtils>& b) {
  b.PropertyRef<&UnitUtils::GetPage, &UnitUtils::SetPage>("Page")
      .Method<&UnitUtils::ConvertUnits>("ConvertUnits", Names{"objPage", "dblValue", "lngFromUnits", "lngToUnits"})
      .Method<&UnitUtils::GetPageLengthUnits>("GetPageLengthUnits", Names{"objPage"})
      .Method<&UnitUtils::GetPageAngleUnits>("GetPageAngleUnits", Names{"objPage"});
}

double UnitUtils::ConvertUnits(Ref<Object> objPage, double dblValue, std::int32_t lngFromUnits,
                               std::int32_t lngToUnits) {
  return Units::ConvertValue(objPage ? objPage : page_, dblValue, lngFromUnits, lngToUnits);
}

std::int32_t UnitUtils::GetPageLengthUnits(Ref<Object> objPage) { return Units::PageLengthUnits(objPage); }

std::int32_t UnitUtils::GetPageAngleUnits(Ref<Object> objPage) { return Units::PageAngleUnits(objPage); }

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::UnitUtils)
