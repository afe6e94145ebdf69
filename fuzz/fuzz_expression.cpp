// The host's formula language: any text evaluates or raises an automation
// error, and the syntax check agrees with the evaluation about what parses.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "FuzzSupport.hpp"
#include "refhost/Expression.hpp"

using namespace TessarkAO;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  // References resolve to a value made from their names, or raise.
  const RefHost::ReferenceResolver resolve = [](std::string_view component, std::string_view variable) {
    if (variable.size() > 3) Raise(Err::InvalidCall, "no such variable");
    return static_cast<double>(component.size()) + static_cast<double>(variable.size()) * 0.5;
  };
  bool parses = true;
  Fuzz::Accepting("syntax", [&] {
    try {
      RefHost::CheckExpressionSyntax(text);
    } catch (const AutomationError&) {
      parses = false;
      throw;
    }
  });
  Fuzz::Accepting("evaluation", [&] {
    try {
      RefHost::EvaluateExpression(text, resolve);
    } catch (const AutomationError& e) {
      // A formula the check accepts fails only in its arithmetic or its references.
      if (parses && e.Number() != 5 && e.Number() != 6 && e.Number() != 11) {
        std::fprintf(stderr, "accepted, then error %d: %s\n", e.Number(), e.Description().c_str());
        std::abort();
      }
      throw;
    }
  });
  return 0;
}
