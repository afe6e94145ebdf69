// Unit conversions of the scene classes, made through a UnitUtils created by
// its ProgID and called late-bound, so that the scene services share the one
// conversion of the library (the page's "UnitsScale" for page units).
#pragma once

#include <cstdint>

#include "automation/Variant.hpp"

namespace TessarkAO {

// The TKUnit codes the scene services convert between.
namespace SceneUnit {
constexpr std::int32_t Centimeters = 2;      // the metric length unit of positions
constexpr std::int32_t PageUnits = 7;        // the scene's length unit
constexpr std::int32_t PageAngleUnits = 8;   // the scene's angle unit
constexpr std::int32_t Degrees = 9;
constexpr std::int32_t Radians = 10;         // the metric angle unit of positions
constexpr std::int32_t SystemLengthUnits = 11;
}  // namespace SceneUnit

class UnitConverter {
 public:
  // How the page reaches the UnitUtils: assigned once to its Page property,
  // or handed to every ConvertUnits call.
  enum class PageUse { AssignPage, PassPage };

  // Creates the UnitUtils (429 when it cannot be created); with AssignPage
  // sets its Page at once.
  UnitConverter(Variant page, PageUse use);

  // ConvertUnits(page or Nothing, value, from, to).
  double Convert(double value, std::int32_t fromUnit, std::int32_t toUnit) const;

 private:
  Variant utils_;
  Variant page_;
};

}  // namespace TessarkAO
