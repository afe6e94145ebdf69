#include "automation/Call.hpp"

namespace TessarkAO {

CallKind ResolveKind(const MemberInfo* m, CallKind written) noexcept {
  if (!m || written == CallKind::Let || written == CallKind::Set) return written;
  return m->isMethod ? CallKind::Method : CallKind::Get;
}

const Accessor& PutAccessor(const MemberInfo& m) noexcept { return m.let ? m.let : m.set; }

bool IsPlainProperty(const MemberInfo& m) noexcept {
  if (m.isMethod) return false;
  if (m.get) return m.get.params.empty();
  return PutAccessor(m).params.size() <= 1;
}

CallKind AssignmentKind(const Variant& value) noexcept {
  return value.IsObject() ? CallKind::Set : CallKind::Let;
}

std::size_t ParameterIndex(const MemberInfo& m, CallKind kind, std::string_view name) noexcept {
  const Accessor& first = ClassInfo::AccessorFor(m, kind, {});
  for (const Accessor* a : {&first, &m.get, &m.let, &m.set})
    for (std::size_t p = 0; p < a->params.size(); ++p)
      if (EqualsNoCase(a->params[p].name, name)) return p;
  return kNoParameter;
}

std::size_t NamedPosition(const MemberInfo* m, CallKind kind, std::string_view name) {
  const std::size_t p = m ? ParameterIndex(*m, kind, name) : kNoParameter;
  if (p == kNoParameter)
    throw AutomationError(Err::NamedArgumentNotFound,
                          std::string(StandardDescription(Err::NamedArgumentNotFound)) + ": " + std::string(name));
  return p;
}

bool WritesBack(const MemberInfo* m, CallKind kind, std::span<const Variant> args, std::size_t i) noexcept {
  if (!m) return true;
  const Accessor& a = ClassInfo::AccessorFor(*m, kind, args);
  return i < a.params.size() && a.params[i].output;
}

std::string SourceOf(const Object& o) {
  const ClassInfo* c = o.Class();
  return c ? c->Source() : o.TypeName();
}

namespace {

template <class Member>
Variant CallWith(Object& o, Member member, CallKind kind, std::span<Variant> args) {
  Ref<Object> keep(&o);
  try {
    if constexpr (std::is_same_v<Member, DispId>) return o.InvokeId(member, kind, args);
    else return o.Invoke(member, kind, args);
  } catch (...) {
    AutomationError e = CurrentError();
    if (e.Source().empty()) e.SetSource(SourceOf(o));
    throw e;
  }
}

}  // namespace

Variant Call(Object& o, DispId id, CallKind kind, std::span<Variant> args) {
  return CallWith(o, id, kind, args);
}

Variant Call(Object& o, std::string_view name, CallKind kind, std::span<Variant> args) {
  return CallWith(o, name, kind, args);
}

}  // namespace TessarkAO
