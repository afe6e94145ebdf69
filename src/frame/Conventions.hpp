// The numeric conventions every layer of the library shares.
#pragma once

#include <cstdint>

#include "frame/PublishedEnums.hpp"  // the unit codes, TKUnit

namespace TessarkAO {

// The library's value of pi: these 15 significant digits, never a more
// precise one.  Every degree conversion uses it, so results such as
// AngleBetween((1,0,0), (0,1,0)) = 90.00000000000009 depend on it.
inline constexpr double kPi = 3.14159265358979;
// One degree in radians with that pi (0.017453292519943278).
inline constexpr double kDegree = kPi / 180;

}  // namespace TessarkAO
