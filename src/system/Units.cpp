#include "system/Units.hpp"

#include <cmath>

#include "automation/Checked.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO::Units {

namespace {

// "UnitsScale" arguments: what the page's scale is asked for.
constexpr std::int32_t kAngleScale = 1;
constexpr std::int32_t kLengthScale = 2;

double PageScale(const Ref<Object>& page, std::int32_t which) {
  return ToDouble(Variant(page).Get("UnitsScale", which));
}

bool IsLength(std::int32_t unit) noexcept {
  return (unit >= UNIT_MILLIMETERS && unit <= UNIT_PAGEUNITS) || unit == UNIT_SYSTEM_LENGTH_UNITS;
}
bool IsAngle(std::int32_t unit) noexcept {
  return (unit >= UNIT_PAGEANGLEUNITS && unit <= UNIT_RADIANS) || unit == UNIT_SYSTEM_ANGLE_UNITS;
}

double Factor(const Ref<Object>& page, std::int32_t unit) {
  switch (unit) {
    case UNIT_MILLIMETERS: return kMillimeter;
    case UNIT_CENTIMETERS: return kCentimeter;
    case UNIT_METERS: return kMeter;
    case UNIT_INCHES: return kInch;
    case UNIT_FEET: return kFoot;
    case UNIT_YARDS: return kYard;
    case UNIT_PAGEUNITS: return PageScale(page, kLengthScale);
    case UNIT_PAGEANGLEUNITS: return PageScale(page, kAngleScale);
    case UNIT_DEGREES: return kDegree;
    default: return 1;  // radians and the system units
  }
}

}  // namespace

double ConvertValue(const Ref<Object>& page, double value, std::int32_t fromUnits, std::int32_t toUnits) {
  double length = 0;
  double angle = 0;
  if (IsLength(fromUnits))
    length = Checked::Mul(value, Factor(page, fromUnits));
  else if (IsAngle(fromUnits))
    angle = Checked::Mul(value, Factor(page, fromUnits));
  if (IsLength(toUnits)) return Checked::Div(length, Factor(page, toUnits));
  if (IsAngle(toUnits)) return Checked::Div(angle, Factor(page, toUnits));
  return 0;
}

bool IsScaleMatch(double x) noexcept { return std::fabs(x) <= kScaleTolerance; }

std::int32_t PageLengthUnits(const Ref<Object>& page) {
  const double s = PageScale(page, kLengthScale);
  if (IsScaleMatch(kMillimeter - s)) return UNIT_MILLIMETERS;
  if (IsScaleMatch(kCentimeter - s)) return UNIT_CENTIMETERS;
  if (IsScaleMatch(kMeter - s)) return UNIT_METERS;
  if (IsScaleMatch(kInch - s)) return UNIT_INCHES;
  if (IsScaleMatch(kFoot - s)) return UNIT_FEET;
  if (IsScaleMatch(kYard - s)) return UNIT_YARDS;
  return UNIT_METERS;
}

std::int32_t PageAngleUnits(const Ref<Object>& page) {
  return IsScaleMatch(kDegree - PageScale(page, kAngleScale)) ? UNIT_DEGREES : UNIT_RADIANS;
}

}  // namespace TessarkAO::Units
