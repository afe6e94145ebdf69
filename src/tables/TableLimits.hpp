// Size limit shared by the table classes.
#pragma once

#include <cstdint>

#include "automation/AutomationError.hpp"

namespace TessarkAO::Tables {

// The most elements a column or cells a 2D array holds.  Larger requests
// raise 7 (Out of memory) before anything is allocated, so that an absurd
// count from a caller fails cleanly instead of exhausting the machine.
inline constexpr std::int64_t kMaxElements = std::int64_t{1} << 28;

inline void CheckElementCount(std::int64_t count) {
  if (count > kMaxElements) Raise(Err::OutOfMemory);
}

// Long addition as the classic runtime does it: 6 (Overflow) out of range.
inline std::int32_t AddLong(std::int64_t a, std::int64_t b) {
  const std::int64_t r = a + b;
  if (r > INT32_MAX || r < INT32_MIN) Raise(Err::Overflow);
  return static_cast<std::int32_t>(r);
}

}  // namespace TessarkAO::Tables
