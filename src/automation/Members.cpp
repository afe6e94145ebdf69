#include "automation/Members.hpp"

#include <array>
#include <bit>
#include <new>
#include <stdexcept>

#include "automation/Catalogue.hpp"

namespace TessarkAO {

namespace {
constexpr std::size_t kMaxArgs = 16;
}  // namespace

ClassInfo::ClassInfo(std::string name, std::vector<MemberInfo> members, DispId defaultMember)
    : name_(std::move(name)), members_(std::move(members)), default_(defaultMember) {
  std::size_t size = 8;
  while (size < members_.size() * 2) size *= 2;
  plain_.assign(members_.size() + 1, nullptr);
  for (const MemberInfo& m : members_)
    plain_[static_cast<std::size_t>(m.id)] = m.get.params.empty() ? m.get.thunk : nullptr;
  slots_.assign(size, 0);
  mask_ = size - 1;
  for (std::size_t i = 0; i < members_.size(); ++i) {
    std::uint64_t h = HashNameNoCase(members_[i].name) & mask_;
    while (slots_[h] != 0) {
      if (EqualsNoCase(members_[slots_[h] - 1].name, members_[i].name))
        throw std::logic_error("member declared twice: " + members_[i].name);
      h = (h + 1) & mask_;
    }
    slots_[h] = static_cast<std::int32_t>(i + 1);
  }
}

const MemberInfo* ClassInfo::Member(DispId id) const noexcept {
  if (id == DispIdValue) id = default_;
  if (id < 1 || static_cast<std::size_t>(id) > members_.size()) return nullptr;
  return &members_[static_cast<std::size_t>(id - 1)];
}

namespace {

// An argument that did not convert, on its way to the call that names it.
class ArgumentError : public AutomationError {
 public:
  ArgumentError(const AutomationError& e, std::size_t position) : AutomationError(e), position_(position) {}
  std::size_t Position() const noexcept { return position_; }

 private:
  std::size_t position_;
};

// "Type mismatch: argument 2 of TessarkAO.TKVector4d.SetPosition".
std::string CallDescription(std::int32_t number, const std::string& source, const MemberInfo* m,
                            std::size_t position) {
  std::string d(StandardDescription(number));
  d += ": argument " + std::to_string(position + 1) + " of " + source;
  if (m) d += "." + m->name;
  return d;
}

}  // namespace

void RaiseArgumentError(const AutomationError& e, std::size_t position) { throw ArgumentError(e, position); }

std::string ClassInfo::Source() const {
  for (const ClassRecord& r : Catalogue())
    if (r.name == name_) return std::string(r.progId);
  return name_;
}

void ClassInfo::Fail(DispId id) const {
  try {
    throw;
  } catch (const ArgumentError& e) {
    const std::string source = Source();
    // Only the runtime's own classic errors get the call's details; an
    // error that came from elsewhere keeps its text.
    if (e.HResult() == (0x800A0000u | static_cast<std::uint32_t>(e.Number())) &&
        e.Description() == StandardDescription(e.Number()))
      throw AutomationError(e.Number(), CallDescription(e.Number(), source, Member(id), e.Position()),
                            e.Source().empty() ? source : e.Source());
    throw AutomationError(e.Number(), e.HResult(), e.Description(), e.Source().empty() ? source : e.Source());
  } catch (...) {
    throw CurrentError(Source());
  }
}

void FailPlainCall(const Object& self) {
  const ClassInfo* info = self.Class();
  if (!info) throw CurrentError(std::string());
  info->Fail(DispIdUnknown);
}

const Accessor& ClassInfo::AccessorFor(const MemberInfo& m, CallKind kind,
                                       std::span<const Variant> args) noexcept {
  switch (kind) {
    case CallKind::Let:
      // A let of an object onto a property that only has a set is the same
      // assignment made without the Set keyword.
      if (!m.let && !args.empty() && args.back().IsObject()) return m.set;
      return m.let;
    case CallKind::Set: return m.set ? m.set : m.let;
    default: return m.get;
  }
}

Variant ClassInfo::Invoke(Object* self, DispId id, CallKind kind, std::span<Variant> args) const {
  const MemberInfo* m = Member(id);
  if (!m) Raise(Err::NoSuchMember);
  const Accessor* acc = &AccessorFor(*m, kind, args);
  if (!*acc) Raise(Err::NoSuchMember);
  const bool put = kind == CallKind::Let || kind == CallKind::Set;

  auto call = [&](std::span<Variant> placed) -> Variant {
    try {
      return acc->thunk(self, placed);
    } catch (...) {
      Fail(id);
    }
  };
  auto fail = [&](std::int32_t number, std::size_t position) {
    const std::string source = Source();
    throw AutomationError(number, CallDescription(number, source, m, position), source);
  };

  const std::size_t n = args.size();
  const std::size_t total = acc->params.size();

  // A parameterless get called with arguments applies them to the default
  // member of its result, as `obj.Items(3)` does for a collection property.
  if (!put && total == 0 && n > 0) {
    Variant r = call({});
    const Variant& inner = r.Deref();
    if (!inner.IsObject()) fail(Err::WrongArgumentCount, 0);
    Ref<Object> o = inner.AsObject();
    if (!o) Raise(Err::ObjectNotSet);
    return o->InvokeId(DispIdValue, kind, args);
  }

  if (acc->paramArray && !put) {
    // The fixed parameters as usual, then every remaining argument packed
    // into one array of Variant with lower bound 0.
    const std::size_t fixed = total - 1;
    std::array<Variant, kMaxArgs> local;
    for (std::size_t i = 0; i < fixed; ++i) {
      if (i < n && !args[i].IsMissing()) {
        local[i] = Variant::ByRef(args[i]);
      } else {
        if (i < acc->required) fail(Err::ArgumentNotOptional, i);
        local[i] = acc->params[i].defaultValue;
      }
    }
    const std::size_t extra = n > fixed ? n - fixed : 0;
    SafeArray list = SafeArray::Vector(VarType::Variant, 0, static_cast<std::int32_t>(extra) - 1);
    for (std::size_t i = 0; i < extra; ++i) list.Data()[i] = args[fixed + i].Deref();
    local[fixed] = Variant(std::move(list));
    return call(std::span<Variant>(local.data(), total));
  }

  if (n > total) fail(Err::WrongArgumentCount, total);
  if (put && n != total) fail(Err::WrongArgumentCount, n);
  if (n < acc->required) fail(Err::ArgumentNotOptional, n);

  bool fill = n < total;
  for (std::size_t i = 0; i < n; ++i) {
    if (args[i].IsMissing()) {
      if (i < acc->required) fail(Err::ArgumentNotOptional, i);
      if (!acc->params[i].defaultValue.IsMissing()) fill = true;
    }
  }
  if (!fill) return call(args);

  // Omitted optional arguments take their defaults; the given ones are
  // passed by reference so that outputs still reach the caller.
  std::array<Variant, kMaxArgs> local;
  for (std::size_t i = 0; i < total; ++i) {
    if (i < n && !args[i].IsMissing())
      local[i] = Variant::ByRef(args[i]);
    else
      local[i] = acc->params[i].defaultValue;
  }
  return call(std::span<Variant>(local.data(), total));
}

}  // namespace TessarkAO
