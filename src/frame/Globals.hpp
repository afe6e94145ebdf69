// Globals: the library-wide state, one copy per loaded library.
//
// The instance count guards the shared localizer: the first participating
// instance builds it (through TKSystemUtils.SetLocaleDLL), the last one to
// go releases it, so the next creation builds a fresh one.  Which classes
// take part is the catalogue's `counted` flag; they hold an
// InstanceRegistration as their first member.  All calls arrive on the
// creating thread (apartment rules), so no locking is needed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/Variant.hpp"

namespace TessarkAO::Globals {

// Adds one to the instance count; builds the shared localizer when it is empty.
void RegisterInstance(std::string_view mainDllName, std::string_view projectName);
// Subtracts one; at zero (or below) resets the count and drops the localizer.
void ReleaseInstance();

std::int32_t InstanceCount() noexcept;
// The shared localizer; Nothing while none is built.
Ref<Object> SharedLocalizer() noexcept;
// LoadString(id) called late-bound on the shared localizer: 91 when it is
// empty, the localizer's own error for an unknown id.
std::string LoadString(std::int32_t id);

}  // namespace TessarkAO::Globals

namespace TessarkAO {

// Membership in the instance count for the lifetime of the holder.  Declare
// it as the first data member so it registers before anything else is built
// and releases after everything else is gone.
class InstanceRegistration {
 public:
  InstanceRegistration();
  ~InstanceRegistration();
  InstanceRegistration(const InstanceRegistration&) = delete;
  InstanceRegistration& operator=(const InstanceRegistration&) = delete;
};

}  // namespace TessarkAO
