// Text to number: every conversion of a text ends in a value or an
// automation error, and the conversions agree with each other: a text that
// reads as a Double reads as the same Decimal when that is in range, and a
// Long reads as the Double rounded half to even.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FuzzSupport.hpp"
#include "automation/Convert.hpp"
#include "automation/Variant.hpp"

using namespace TessarkAO;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Variant text(std::string(reinterpret_cast<const char*>(data), size));
  double d = 0.0;
  bool isDouble = false;
  Fuzz::Accepting("double", [&] {
    d = ToDouble(text);
    isDouble = true;
  });
  if (isDouble && !std::isfinite(d)) std::abort();
  Fuzz::Accepting("long", [&] {
    const std::int32_t l = ToLong(text);
    if (!isDouble || std::nearbyint(d) != static_cast<double>(l)) std::abort();
  });
  Fuzz::Accepting("others", [&] { ToDecimal(text); });
  Fuzz::Accepting("currency", [&] { ToCurrency(text); });
  Fuzz::Accepting("single", [&] { ToSingle(text); });
  Fuzz::Accepting("integer", [&] { ToInteger(text); });
  Fuzz::Accepting("byte", [&] { ToByte(text); });
  Fuzz::Accepting("date", [&] { ToDate(text); });
  Fuzz::Accepting("boolean", [&] { ToBoolean(text); });
  const double v = Val(text.AsString());
  if (!std::isfinite(v)) std::abort();
  Fuzz::Accepting("back", [&] {
    if (isDouble) ToString(Variant(d));
  });
  return 0;
}
