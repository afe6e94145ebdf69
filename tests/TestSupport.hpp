// What the test programs of every folder share.
#pragma once

#include <functional>
#include <string>

#include "automation/AutomationError.hpp"

namespace TessarkAO::Testing {

// The number of the automation error `f` raises, 0 when it raises none; with
// `description`, the error's description is stored there too.
inline int ErrorOf(const std::function<void()>& f, std::string* description = nullptr) {
  try {
    f();
  } catch (const AutomationError& e) {
    if (description) *description = e.Description();
    return e.Number();
  }
  return 0;
}

}  // namespace TessarkAO::Testing
