#include "host/HostAccess.hpp"

#include <array>
#include <utility>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO::Host {

Variant Components(const Variant& shape, std::int32_t type) { return shape.Get("Components", type); }

Variant FindComponent(const Variant& shape, std::int32_t type, bool create) {
  const Variant components = Components(shape, type);
  if (CountOf(components) == 0) {
    if (!create) return Variant::Nothing();
    return components.Call("Add");
  }
  return components.Call("Item", std::int16_t{1});
}

double VariableValue(const Variant& component, std::int32_t number) {
  return ToDouble(VariableRaw(component, number));
}

Variant VariableRaw(const Variant& component, std::int32_t number) {
  return component.Get("Variable", number).Get("Value");
}

void LetVariableValue(const Variant& component, std::int32_t number, Variant value) {
  component.Get("Variable", number).Let("Value", std::move(value));
}

void LetVariableExpression(const Variant& component, std::int32_t number, std::string text) {
  component.Get("Variable", number).Let("Expression", std::move(text));
}

Variant CallByRef(const Variant& object, std::string_view name, std::span<Variant> values) {
  constexpr std::size_t kMax = 16;
  if (values.size() > kMax) Raise(Err::WrongArgumentCount);
  std::array<Variant, kMax> refs;
  for (std::size_t i = 0; i < values.size(); ++i) refs[i] = Variant::ByRef(values[i]);
  return object.Invoke(name, CallKind::Method, std::span<Variant>(refs.data(), values.size()));
}

std::string NameOf(const Variant& object) { return ToString(object.Get("Name")); }

std::int32_t TypeOf(const Variant& object) { return ToLong(object.Get("Type")); }

std::int32_t CountOf(const Variant& collection) { return ToLong(collection.Get("Count")); }

Variant FindVariable(const Variant& component, std::string_view name) {
  const Variant variables = component.Get("Variables");
  const std::int32_t count = ToLong(variables.Get("Count"));
  for (std::int32_t i = 1; i <= count; ++i) {
    Variant variable = variables.Call("Item", i);
    if (EqualsNoCaseAscii(ToString(variable.Get("Name")), name)) return variable;
  }
  return Variant::Nothing();
}

}  // namespace TessarkAO::Host
