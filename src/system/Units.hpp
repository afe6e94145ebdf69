// The Units module: conversion between the fixed units of TKUnit and the
// units of a host drawing page.
//
// Every unit has a factor that takes a value to the base unit of its kind
// (metres for lengths, radians for angles); a conversion multiplies by the
// source unit's factor and divides by the target unit's.  Page units ask the
// page for their factor ("UnitsScale" with 2 for lengths, 1 for angles) at
// the moment of the conversion.  Degrees use the library's pi (kPi / 180),
// not the full-precision value, so that results agree with the rest of the
// library.
#pragma once

#include <cstdint>

#include "automation/Variant.hpp"
#include "frame/Conventions.hpp"

namespace TessarkAO {

namespace Units {

inline constexpr double kMillimeter = 0.001;
inline constexpr double kCentimeter = 0.01;
inline constexpr double kMeter = 1;
inline constexpr double kInch = 0.0254;
inline constexpr double kFoot = 0.3048;
inline constexpr double kYard = 0.9144;
inline constexpr double kDegree = TessarkAO::kDegree;
inline constexpr double kScaleTolerance = 0.00001;        // 1 / 100000

// Value in `fromUnits` expressed in `toUnits`.  Lengths and angles are
// carried separately: converting between a length and an angle unit, or
// from a unit outside 1 to 12, starts from 0; to a unit outside 1 to 12 the
// result is 0.  Units 7 and 8 call the page (91 when it is Nothing, the
// page's own error when it has no "UnitsScale"); a page factor of 0 raises
// 11 (or 6 for 0 / 0), as the classic division does.
double ConvertValue(const Ref<Object>& page, double value, std::int32_t fromUnits, std::int32_t toUnits);

// True when |x| <= 0.00001 (inclusive).
bool IsScaleMatch(double x) noexcept;

// The length unit whose factor matches the page's length scale (the first
// of millimetres, centimetres, metres, inches, feet, yards within the
// tolerance); metres when none does.
std::int32_t PageLengthUnits(const Ref<Object>& page);
// Degrees when the page's angle scale matches a degree, else radians.
std::int32_t PageAngleUnits(const Ref<Object>& page);

}  // namespace Units

}  // namespace TessarkAO
