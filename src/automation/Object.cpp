#include "automation/Object.hpp"

#include "automation/AutomationError.hpp"
#include "automation/Members.hpp"
#include "automation/Variant.hpp"

namespace TessarkAO {

std::string_view CallKindName(CallKind kind) noexcept {
  switch (kind) {
    case CallKind::Method: return "method";
    case CallKind::Get: return "get";
    case CallKind::Let: return "let";
    case CallKind::Set: return "set";
  }
  return "?";
}

Object::~Object() = default;

DispId Object::GetDispId(std::string_view name) const {
  const ClassInfo* info = Class();
  return info ? info->Find(name) : DispIdUnknown;
}

Variant Object::InvokeId(DispId id, CallKind kind, std::span<Variant> args) {
  const ClassInfo* info = Class();
  if (!info) Raise(Err::NoSuchMember);
  return info->Invoke(this, id, kind, args);
}

Variant Object::Invoke(std::string_view name, CallKind kind, std::span<Variant> args) {
  const DispId id = GetDispId(name);
  if (id == DispIdUnknown) Raise(Err::NoSuchMember);
  return InvokeId(id, kind, args);
}

std::string Object::TypeName() const {
  const ClassInfo* info = Class();
  return info ? info->Name() : std::string("Object");
}

}  // namespace TessarkAO
