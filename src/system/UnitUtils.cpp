#include "system/UnitUtils.hpp"

#include "automation/Catalogue.hpp"
#include "automation/Enumerations.hpp"

namespace TessarkAO {

void UnitUtils::Describe(ClassBuilder<UnitUtils>& b) {
  b.PropertyRef<&UnitUtils::GetPage, &UnitUtils::SetPage>(
       "Page", Doc{"The page used when a member's page argument is Nothing."})
      .Method<&UnitUtils::ConvertUnits>("ConvertUnits",
                                        Names{"objPage", "dblValue", "lngFromUnits", "lngToUnits"},
                                        Doc{"Converts dblValue from unit lngFromUnits to lngToUnits "
                                            "(TKUnit), page units by objPage or else Page."})
      .Method<&UnitUtils::GetPageLengthUnits>("GetPageLengthUnits", Names{"objPage"},
                                              Doc{"The TKUnit of objPage's length unit; 91 for Nothing."})
      .Method<&UnitUtils::GetPageAngleUnits>("GetPageAngleUnits", Names{"objPage"},
                                             Doc{"The TKUnit of objPage's angle unit; 91 for Nothing."});
}

double UnitUtils::ConvertUnits(Ref<Object> objPage, double dblValue, std::int32_t lngFromUnits,
                               std::int32_t lngToUnits) {
  return Units::ConvertValue(objPage ? objPage : page_, dblValue, lngFromUnits, lngToUnits);
}

std::int32_t UnitUtils::GetPageLengthUnits(Ref<Object> objPage) { return Units::PageLengthUnits(objPage); }

std::int32_t UnitUtils::GetPageAngleUnits(Ref<Object> objPage) { return Units::PageAngleUnits(objPage); }

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::UnitUtils)

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKUnit, "UnitUtils", UNIT_MILLIMETERS, UNIT_CENTIMETERS, UNIT_METERS,
                        UNIT_INCHES, UNIT_FEET, UNIT_YARDS, UNIT_PAGEUNITS, UNIT_PAGEANGLEUNITS, UNIT_DEGREES,
                        UNIT_RADIANS, UNIT_SYSTEM_LENGTH_UNITS, UNIT_SYSTEM_ANGLE_UNITS)
