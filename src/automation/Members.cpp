#include "automation/Members.hpp"

#include <array>
#include <bit>
#include <new>
#include <stdexcept>

namespace TessarkAO {

namespace {
constexpr std::size_t kMaxArgs = 16;
}  // namespace

ClassInfo::ClassInfo(std::string name, std::vector<MemberInfo> members, DispId defaultMember)
    : name_(std::move(name)), members_(std::move(members)), default_(defaultMember) {
  std::size_t size = 8;
  while (size < members_.size() * 2) size *= 2;
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

// Calls the thunk and turns failures that are not automation errors into them.
Variant CallThunk(const Accessor& acc, Object* self, std::span<Variant> args) {
  try {
    return acc.thunk(self, args);
  } catch (const AutomationError&) {
    throw;
  } catch (const std::bad_alloc&) {
    Raise(Err::OutOfMemory);
  } catch (const std::exception& e) {
    Raise(Err::AutomationFailure, e.what());
  }
}

}  // namespace

Variant ClassInfo::Invoke(Object* self, DispId id, CallKind kind, std::span<Variant> args) const {
  const MemberInfo* m = Member(id);
  if (!m) Raise(Err::NoSuchMember);

  const Accessor* acc = nullptr;
  const bool put = kind == CallKind::Let || kind == CallKind::Set;
  if (!put) {
    acc = &m->get;
  } else if (kind == CallKind::Let) {
    // A let of an object onto a property that only has a set is the same
    // assignment made without the Set keyword.
    acc = m->let ? &m->let
                 : (!args.empty() && args.back().IsObject() ? &m->set : &m->let);
  } else {
    acc = m->set ? &m->set : &m->let;
  }
  if (!*acc) Raise(Err::NoSuchMember);

  const std::size_t n = args.size();
  const std::size_t total = acc->params.size();

  // A parameterless get called with arguments applies them to the default
  // member of its result, as `obj.Items(3)` does for a collection property.
  if (!put && total == 0 && n > 0) {
    Variant r = CallThunk(*acc, self, {});
    const Variant& inner = r.Deref();
    if (!inner.IsObject()) Raise(Err::WrongArgumentCount);
    Ref<Object> o = inner.AsObject();
    if (!o) Raise(Err::ObjectNotSet);
    return o->InvokeId(DispIdValue, kind, args);
  }

  if (acc->paramArray && !put) {
    // The fixed parameters as usual, then every remaining argument packed
    // into one array of Variant with lower bound 0.
    const std::size_t fixed = total - 1;
    if (n < acc->required) Raise(Err::ArgumentNotOptional);
    std::array<Variant, kMaxArgs> local;
    for (std::size_t i = 0; i < fixed; ++i) {
      if (i < n && !args[i].IsMissing()) {
        local[i] = Variant::ByRef(args[i]);
      } else {
        if (i < acc->required) Raise(Err::ArgumentNotOptional);
        local[i] = acc->params[i].defaultValue;
      }
    }
    const std::size_t extra = n > fixed ? n - fixed : 0;
    SafeArray list =
        SafeArray::Vector(VarType::Variant, 0, static_cast<std::int32_t>(extra) - 1);
    for (std::size_t i = 0; i < extra; ++i) list.Data()[i] = args[fixed + i].Deref();
    local[fixed] = Variant(std::move(list));
    return CallThunk(*acc, self, std::span<Variant>(local.data(), total));
  }

  if (n > total) Raise(Err::WrongArgumentCount);
  if (put && n != total) Raise(Err::WrongArgumentCount);
  if (n < acc->required) Raise(Err::ArgumentNotOptional);

  bool fill = n < total;
  for (std::size_t i = 0; i < n; ++i) {
    if (args[i].IsMissing()) {
      if (i < acc->required) Raise(Err::ArgumentNotOptional);
      if (!acc->params[i].defaultValue.IsMissing()) fill = true;
    }
  }
  if (!fill) return CallThunk(*acc, self, args);

  // Omitted optional arguments take their defaults; the given ones are
  // passed by reference so that outputs still reach the caller.
  std::array<Variant, kMaxArgs> local;
  for (std::size_t i = 0; i < total; ++i) {
    if (i < n && !args[i].IsMissing())
      local[i] = Variant::ByRef(args[i]);
    else
      local[i] = acc->params[i].defaultValue;
  }
  return CallThunk(*acc, self, std::span<Variant>(local.data(), total));
}

}  // namespace TessarkAO
