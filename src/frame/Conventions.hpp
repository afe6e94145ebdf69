// The numeric conventions every layer of the library shares.
#pragma once

#include <cstdint>

namespace TessarkAO {

// The library's value of pi: these 15 significant digits, never a more
// precise one.  Every degree conversion uses it, so results such as
// AngleBetween((1,0,0), (0,1,0)) = 90.00000000000009 depend on it.
inline constexpr double kPi = 3.14159265358979;
// One degree in radians with that pi (0.017453292519943278).
inline constexpr double kDegree = kPi / 180;

// Unit codes (TKUnit), as UnitUtils.ConvertUnits and the unit-aware reads
// of profiles take them.
enum TKUnit : std::int32_t {
  UNIT_MILLIMETERS = 1,
  UNIT_CENTIMETERS = 2,
  UNIT_METERS = 3,
  UNIT_INCHES = 4,
  UNIT_FEET = 5,
  UNIT_YARDS = 6,
  UNIT_PAGEUNITS = 7,
  UNIT_PAGEANGLEUNITS = 8,
  UNIT_DEGREES = 9,
  UNIT_RADIANS = 10,
  UNIT_SYSTEM_LENGTH_UNITS = 11,
  UNIT_SYSTEM_ANGLE_UNITS = 12,
};

}  // namespace TessarkAO
