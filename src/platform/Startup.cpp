// Work done once when the library loads.
#include "automation/Convert.hpp"
#include "platform/SystemInfo.hpp"

namespace TessarkAO {

namespace {

// Text-to-number conversions follow the system's locale, as they do on the
// host's platform: the decimal and group separators come from the system's
// default locale identifier.
[[maybe_unused]] const bool kNumberLocaleSet = [] {
  SetNumberLocale(NumberLocaleForLcid(GetSystemDefaultLcid()));
  return true;
}();

}  // namespace

}  // namespace TessarkAO
