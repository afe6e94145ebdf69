// Declarative member tables.
//
// Each class declares its members once, in its documented slot order:
//
//     void TKVector4d::Describe(ClassBuilder<TKVector4d>& b) {
//       b.Property<&TKVector4d::GetX, &TKVector4d::LetX>("X")
//        .Method<&TKVector4d::Normalize>("Normalize")
//        .Method<&TKVector4d::GetPosition>("GetPosition", Names{"X", "Y", "Z"})
//        .Get<&TKVector4d::Value>("Value").Let<&TKVector4d::LetValue>("Value");
//     }
//
// and the runtime derives everything else from that table: case-insensitive
// lookup by name, dispatch ids (slot n has id n, id 0 names the default
// member), argument count checks (449 argument not optional, 450 wrong number
// of arguments), argument conversion (13), write-back of by-reference
// outputs, and the descriptions that the Python module and the Windows type
// library are generated from.  No class writes its own name dispatch.
//
// Parameter types and what the caller's argument becomes:
//   double, float, int32_t, int16_t, uint8_t, bool, std::string, Currency,
//   Date, Decimal, enums (as Long)   converted by value (Convert.hpp);
//   Ref<Object>                      an object or Nothing (424 otherwise);
//   Ref<T>                           an object of class T or Nothing (13 otherwise);
//   Variant / const Variant&         the argument as it is (a missing optional
//                                    argument arrives as Variant::Missing());
//   T& (non-const)                   a by-reference output: converted in,
//                                    written back after a successful call;
//   Variant&                         the caller's own variant, read and written
//                                    in place (arrays that a member fills);
//   ParamArray (last parameter)      a trailing variable-length argument list:
//                                    every argument from its position on.
// Return types: the same value types, Ref<T> (an object), Variant, or void.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "automation/Object.hpp"
#include "automation/Variant.hpp"

namespace TessarkAO {

// ---------------------------------------------------------------------------
// Converters: one per C++ parameter type.

template <class T, class = void>
struct Converter;

#define TK_SCALAR_CONVERTER(TYPE, VT, LOAD)                            \
  template <>                                                          \
  struct Converter<TYPE> {                                             \
    static constexpr VarType kType = VT;                               \
    static TYPE Load(const Variant& v) { return LOAD(v); }             \
    static Variant Store(TYPE x) { return Variant(std::move(x)); }     \
  };
TK_SCALAR_CONVERTER(double, VarType::Double, ToDouble)
TK_SCALAR_CONVERTER(float, VarType::Single, ToSingle)
TK_SCALAR_CONVERTER(std::int32_t, VarType::Long, ToLong)
TK_SCALAR_CONVERTER(std::int16_t, VarType::Integer, ToInteger)
TK_SCALAR_CONVERTER(std::uint8_t, VarType::Byte, ToByte)
TK_SCALAR_CONVERTER(bool, VarType::Boolean, ToBoolean)
TK_SCALAR_CONVERTER(std::string, VarType::String, ToString)
TK_SCALAR_CONVERTER(Currency, VarType::Currency, ToCurrency)
TK_SCALAR_CONVERTER(Date, VarType::Date, ToDate)
TK_SCALAR_CONVERTER(Decimal, VarType::Decimal, ToDecimal)
#undef TK_SCALAR_CONVERTER

template <>
struct Converter<Variant> {
  static constexpr VarType kType = VarType::Variant;
  static Variant Load(const Variant& v) { return v.Deref(); }
  static Variant Store(Variant x) { return x; }
};

template <class E>
struct Converter<E, std::enable_if_t<std::is_enum_v<E>>> {
  static constexpr VarType kType = VarType::Long;
  static E Load(const Variant& v) { return static_cast<E>(ToLong(v)); }
  static Variant Store(E x) { return Variant(static_cast<std::int32_t>(x)); }
};

template <class T>
struct Converter<Ref<T>> {
  static constexpr VarType kType = VarType::Object;
  static Ref<T> Load(const Variant& v) {
    Ref<Object> o = ToObject(v);
    if constexpr (std::is_same_v<T, Object>) {
      return o;
    } else {
      if (!o) return Ref<T>();
      Ref<T> t = RefCast<T>(o);
      if (!t) Raise(Err::TypeMismatch);
      return t;
    }
  }
  static Variant Store(Ref<T> x) { return Variant(std::move(x)); }
};

// A trailing variable-length argument list, as the classic ParamArray hands it
// over: the caller's arguments from this position on, in order, as a
// one-dimensional array of Variant with lower bound 0 (bounds 0 to -1 when no
// argument is given).  Only the last parameter of a member may be one.
struct ParamArray {
  SafeArray items = SafeArray::Vector(VarType::Variant, 0, -1);
};

template <>
struct Converter<ParamArray> {
  static constexpr VarType kType = VarType::Variant;
  static ParamArray Load(const Variant& v) {
    if (!v.IsArray()) Raise(Err::TypeMismatch);
    return ParamArray{v.AsArray()};
  }
  static Variant Store(ParamArray x) { return Variant(std::move(x.items)); }
};

// ---------------------------------------------------------------------------
// Argument holders: how one argument is loaded before the call and written
// back after it.

// An argument that does not convert: the error goes on with the argument's
// 0-based position, for the call's error description (Members.cpp).
[[noreturn]] void RaiseArgumentError(const AutomationError& e, std::size_t position);

template <class T>
T LoadArgument(const Variant& v, std::size_t position) {
  try {
    return Converter<T>::Load(v);
  } catch (const AutomationError& e) {
    RaiseArgumentError(e, position);
  }
}

template <class P>
struct ArgHolder {  // by value (and const T&)
  using T = std::remove_cv_t<std::remove_reference_t<P>>;
  T value;
  ArgHolder(Variant& v, std::size_t position) : value(LoadArgument<T>(v, position)) {}
  T& get() { return value; }
  void WriteBack(Variant&) {}
};

template <class T>
struct ArgHolder<T&> {  // by-reference output
  T value;
  ArgHolder(Variant& v, std::size_t position) : value(LoadOrDefault(v, position)) {}
  static T LoadOrDefault(const Variant& v, std::size_t position) {
    if (v.IsMissing()) return T{};
    return LoadArgument<T>(v, position);
  }
  T& get() { return value; }
  void WriteBack(Variant& v) { v.Deref() = Converter<T>::Store(std::move(value)); }
};

template <class T>
struct ArgHolder<const T&> : ArgHolder<T> {  // read-only reference: loaded by value
  using ArgHolder<T>::ArgHolder;
};

template <>
struct ArgHolder<Variant&> {
  Variant* target;
  ArgHolder(Variant& v, std::size_t) : target(&v.Deref()) {}
  Variant& get() { return *target; }
  void WriteBack(Variant&) {}
};

template <>
struct ArgHolder<const Variant&> {
  const Variant* target;
  ArgHolder(Variant& v, std::size_t) : target(&v.Deref()) {}
  const Variant& get() { return *target; }
  void WriteBack(Variant&) {}
};

template <class P>
constexpr bool kIsOutput =
    std::is_lvalue_reference_v<P> && !std::is_const_v<std::remove_reference_t<P>>;

template <class P>
constexpr VarType ParamType() {
  return Converter<std::remove_cv_t<std::remove_reference_t<P>>>::kType;
}

// ---------------------------------------------------------------------------
// Member function traits.

template <class F>
struct MemFn;
template <class C, class R, class... A>
struct MemFn<R (C::*)(A...)> {
  using Class = C;
  using Ret = R;
  using Args = std::tuple<A...>;
  static constexpr std::size_t kArity = sizeof...(A);
};
template <class C, class R, class... A>
struct MemFn<R (C::*)(A...) const> : MemFn<R (C::*)(A...)> {};
template <class C, class R, class... A>
struct MemFn<R (C::*)(A...) noexcept> : MemFn<R (C::*)(A...)> {};
template <class C, class R, class... A>
struct MemFn<R (C::*)(A...) const noexcept> : MemFn<R (C::*)(A...)> {};

using Thunk = Variant (*)(Object* self, std::span<Variant> args);

template <auto Fn, class C, class R, class... A, std::size_t... I>
Variant CallMember(C* self, std::span<Variant> args, std::index_sequence<I...>) {
  std::tuple<ArgHolder<A>...> held{ArgHolder<A>(args[I], I)...};
  if constexpr (std::is_void_v<R>) {
    (self->*Fn)(std::get<I>(held).get()...);
    (std::get<I>(held).WriteBack(args[I]), ...);
    return Variant();
  } else {
    Variant r = Converter<std::remove_cv_t<std::remove_reference_t<R>>>::Store(
        (self->*Fn)(std::get<I>(held).get()...));
    (std::get<I>(held).WriteBack(args[I]), ...);
    return r;
  }
}

template <auto Fn, class C, class R, class... A>
Variant ThunkImpl(Object* self, std::span<Variant> args, R (*)(A...)) {
  return CallMember<Fn, C, R, A...>(static_cast<C*>(self), args, std::index_sequence_for<A...>{});
}

template <class R, class... A>
R (*PlainSignature(std::tuple<A...>*))(A...);

template <auto Fn>
Variant MemberThunk(Object* self, std::span<Variant> args) {
  using T = MemFn<decltype(Fn)>;
  using Sig = decltype(PlainSignature<typename T::Ret>(static_cast<typename T::Args*>(nullptr)));
  return ThunkImpl<Fn, typename T::Class>(self, args, Sig{});
}

// Ends a failed call of a member without parameters made on the short path
// of Dispatch::InvokeId: the exception being handled leaves as the
// AutomationError that ClassInfo::Fail makes of it.  Only inside a catch block.
[[noreturn]] void FailPlainCall(const Object& self);

// ---------------------------------------------------------------------------
// The type-erased table.

struct ParamInfo {
  std::string name;
  VarType type = VarType::Variant;
  bool output = false;    // written back to the caller
  bool optional = false;
  Variant defaultValue;   // Missing when the member sees the omission itself
  bool paramArray = false;  // takes every remaining argument (last parameter only)
};

// One call kind of a member: its thunk and its parameters.
struct Accessor {
  Thunk thunk = nullptr;
  std::vector<ParamInfo> params;
  std::uint8_t required = 0;  // leading parameters that must be given
  VarType result = VarType::Empty;  // Empty: no result
  bool paramArray = false;    // the last parameter collects the remaining arguments
  explicit operator bool() const noexcept { return thunk != nullptr; }
};

struct MemberInfo {
  std::string name;
  DispId id = DispIdUnknown;
  bool isMethod = false;  // `get` holds a method rather than a property get
  Accessor get;           // property get or method
  Accessor let;           // property let (value last)
  Accessor set;           // property set (object last)
  std::string doc;
};

class ClassInfo {
 public:
  ClassInfo() = default;
  ClassInfo(std::string name, std::vector<MemberInfo> members, DispId defaultMember);

  const std::string& Name() const noexcept { return name_; }
  std::span<const MemberInfo> Members() const noexcept { return members_; }
  DispId DefaultMember() const noexcept { return default_; }

  // Case-insensitive lookup; DispIdUnknown when absent.
  DispId Find(std::string_view name) const noexcept;
  // The thunk of the parameterless property get or method of slot
  // `id` (1-based, not the default member), or nullptr: the common call that
  // needs no checks.
  Thunk PlainGetter(DispId id) const noexcept {
    const auto i = static_cast<std::uint32_t>(id);
    return i < plain_.size() ? plain_[i] : nullptr;
  }
  // The member of a dispatch id (0 is the default member); nullptr when none.
  const MemberInfo* Member(DispId id) const noexcept;

  // Checks the call against the member's table entry, fills omitted optional
  // arguments and calls the thunk.
  Variant Invoke(Object* self, DispId id, CallKind kind, std::span<Variant> args) const;

  // The accessor of `m` that a call of `kind` with `args` reaches: the get
  // (or method) for a read or a call; for a let the let, or the set when the
  // property has no let and the value is an object; for a set the set, or
  // the let when it has none.  It may be empty (no such accessor: 438).
  static const Accessor& AccessorFor(const MemberInfo& m, CallKind kind,
                                     std::span<const Variant> args) noexcept;

  // The ProgID of the class when the catalogue has it, else its name: the
  // source of the errors its members raise.
  std::string Source() const;

  // Ends a failed call of member `id`: rethrows the exception being handled
  // as an AutomationError (see CurrentError) with this class as its source
  // and, for an argument that did not convert, the argument's position and
  // the member's name in its description.  Only inside a catch block.
  [[noreturn]] void Fail(DispId id) const;

 private:
  std::string name_;
  std::vector<MemberInfo> members_;
  DispId default_ = DispIdUnknown;
  std::vector<Thunk> plain_;         // by dispatch id: PlainGetter's answers
  std::vector<std::int32_t> slots_;  // open-addressing hash of lower-cased names
  std::uint64_t mask_ = 0;
};

// FNV-1a over the ASCII-lower-cased bytes of a name.  Inline with Find:
// a call by name is a lookup of a short name, and the calls cost as much as
// the hashing.
inline std::uint64_t HashNameNoCase(std::string_view name) noexcept {
  std::uint64_t h = 1469598103934665603ull;
  for (const char ch : name) {
    const unsigned char c = static_cast<unsigned char>(ch);
    h ^= (c >= 'A' && c <= 'Z') ? (c | 0x20u) : c;
    h *= 1099511628211ull;
  }
  return h ^ (h >> 29);
}

inline bool EqualsNoCase(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    unsigned char x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
    if (x >= 'A' && x <= 'Z') x |= 0x20;
    if (y >= 'A' && y <= 'Z') y |= 0x20;
    if (x != y) return false;
  }
  return true;
}

inline DispId ClassInfo::Find(std::string_view name) const noexcept {
  if (slots_.empty()) return DispIdUnknown;
  std::uint64_t h = HashNameNoCase(name) & mask_;
  for (;;) {
    const std::int32_t s = slots_[h];
    if (s == 0) return DispIdUnknown;
    const MemberInfo& m = members_[static_cast<std::size_t>(s - 1)];
    if (EqualsNoCase(m.name, name)) return m.id;
    h = (h + 1) & mask_;
  }
}

// ---------------------------------------------------------------------------
// Annotations accepted by the builder after the member's name.

// Parameter names, one per parameter of the accessor they annotate.
template <std::size_t N>
struct Names {
  static constexpr std::size_t kNames = N;
  std::array<std::string_view, N> names;
  template <class... S>
  constexpr Names(S... s) : names{std::string_view(s)...} {}
};
template <class... S>
Names(S...) -> Names<sizeof...(S)>;

// Defaults of the trailing parameters, last parameter last.
template <std::size_t N>
struct Opt {
  static constexpr std::size_t kDefaults = N;
  std::array<Variant, N> values;
  template <class... V>
  Opt(V&&... v) : values{Variant(std::forward<V>(v))...} {}
};
template <class... V>
Opt(V&&...) -> Opt<sizeof...(V)>;

// The by-reference outputs, by 1-based parameter position: exactly the
// parameters that are non-const references, so that a reference parameter
// never becomes an output by accident and an output is never forgotten.
template <std::size_t... P>
struct Out {
  static constexpr std::uint32_t kOutputs = (0u | ... | (1u << (P - 1)));
  static_assert(((P >= 1 && P <= 16) && ...), "Out<>: positions count from 1");
};

// What the member does, what it writes back and the errors it raises; the
// names, types and defaults of its arguments come from the table itself.  The
// Python help texts, the type library's help strings and the reference pages
// are made from it.
struct Doc {
  std::string text;
};

// Compile-time view of one accessor's parameters and annotations.
template <class Args, class... Ann>
struct TableCheck;
template <class... A, class... Ann>
struct TableCheck<std::tuple<A...>, Ann...> {
  static constexpr std::size_t kArity = sizeof...(A);
  template <class X>
  static constexpr std::size_t NamesOf() {
    if constexpr (requires { std::decay_t<X>::kNames; }) return std::decay_t<X>::kNames;
    else return 0;
  }
  template <class X>
  static constexpr std::size_t DefaultsOf() {
    if constexpr (requires { std::decay_t<X>::kDefaults; }) return std::decay_t<X>::kDefaults;
    else return 0;
  }
  template <class X>
  static constexpr std::uint32_t OutputsOf() {
    if constexpr (requires { std::decay_t<X>::kOutputs; }) return std::decay_t<X>::kOutputs;
    else return 0;
  }
  template <class X>
  static constexpr bool kIsParamArray = std::is_same_v<std::remove_cvref_t<X>, ParamArray>;

  static constexpr std::size_t kNamesGiven = (0 + ... + (requires { std::decay_t<Ann>::kNames; } ? 1 : 0));
  static constexpr std::size_t kNamesCount = (0 + ... + NamesOf<Ann>());
  static constexpr std::size_t kDefaultsGiven = (0 + ... + (requires { std::decay_t<Ann>::kDefaults; } ? 1 : 0));
  static constexpr std::size_t kDefaults = (0 + ... + DefaultsOf<Ann>());
  static constexpr std::uint32_t kDeclaredOutputs = (0u | ... | OutputsOf<Ann>());
  static constexpr std::uint32_t OutputMask() {
    std::uint32_t mask = 0, bit = 1;
    ((mask |= (std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>>) ? bit : 0,
      bit <<= 1),
     ...);
    return mask;
  }
  static constexpr std::size_t kParamArrays = (0 + ... + (kIsParamArray<A> ? 1 : 0));
  static constexpr bool kParamArrayLast = kParamArrays == 0 || (kParamArrays == 1 && [] {
    bool last = false;
    ((last = kIsParamArray<A>), ...);
    return last;
  }());

  static_assert(kArity <= 16, "too many parameters");
  static_assert(kNamesGiven <= 1 && kDefaultsGiven <= 1, "one Names and one Opt per accessor");
  static_assert(kNamesGiven == 0 || kNamesCount == kArity, "Names: exactly one name per parameter");
  static_assert(kDefaults + (kParamArrays ? 1 : 0) <= kArity,
                "Opt: more defaults than parameters (a ParamArray takes none)");
  static_assert(kParamArrayLast, "ParamArray: only the last parameter");
  static_assert(kDeclaredOutputs == OutputMask(),
                "Out<...>: list exactly the non-const reference parameters (1-based)");
  static constexpr bool kOk = true;
};

template <class C>
class ClassBuilder {
 public:
  explicit ClassBuilder(std::string name) : name_(std::move(name)) {}

  template <auto Fn, class... Ann>
  ClassBuilder& Method(std::string_view name, Ann&&... ann) {
    MemberInfo& m = Slot(name);
    m.isMethod = true;
    m.get = MakeAccessor<Fn>(ann...);
    ApplyDoc(m, ann...);
    return *this;
  }
  template <auto Fn, class... Ann>
  ClassBuilder& Get(std::string_view name, Ann&&... ann) {
    MemberInfo& m = Slot(name);
    m.get = MakeAccessor<Fn>(ann...);
    ApplyDoc(m, ann...);
    return *this;
  }
  template <auto Fn, class... Ann>
  ClassBuilder& Let(std::string_view name, Ann&&... ann) {
    MemberInfo& m = Slot(name);
    m.let = MakeAccessor<Fn>(ann...);
    ApplyDoc(m, ann...);
    return *this;
  }
  template <auto Fn, class... Ann>
  ClassBuilder& Set(std::string_view name, Ann&&... ann) {
    MemberInfo& m = Slot(name);
    m.set = MakeAccessor<Fn>(ann...);
    ApplyDoc(m, ann...);
    return *this;
  }
  template <auto G, auto L, class... Ann>
  ClassBuilder& Property(std::string_view name, Ann&&... ann) {
    Get<G>(name, ann...);
    return Let<L>(name);
  }
  template <auto G, auto S, class... Ann>
  ClassBuilder& PropertyRef(std::string_view name, Ann&&... ann) {
    Get<G>(name, ann...);
    return Set<S>(name);
  }
  // Marks the member added last as the default member (dispatch id 0).
  ClassBuilder& Default() {
    default_ = static_cast<DispId>(members_.size());
    return *this;
  }

  ClassInfo Build() { return ClassInfo(name_, std::move(members_), default_); }

 private:
  MemberInfo& Slot(std::string_view name) {
    for (auto& m : members_)
      if (EqualsNoCase(m.name, name)) return m;
    MemberInfo& m = members_.emplace_back();
    m.name = std::string(name);
    m.id = static_cast<DispId>(members_.size());
    return m;
  }

  template <class... Ann>
  static void ApplyDoc(MemberInfo& m, Ann&... ann) {
    (
        [&] {
          if constexpr (std::is_same_v<std::decay_t<Ann>, Doc>) m.doc = ann.text;
        }(),
        ...);
  }

  template <auto Fn, class... Ann>
  static Accessor MakeAccessor(Ann&... ann) {
    using T = MemFn<decltype(Fn)>;
    static_assert(std::is_base_of_v<typename T::Class, C> || std::is_same_v<typename T::Class, C>,
                  "member function of another class");
    static_assert(TableCheck<typename T::Args, Ann...>::kOk);
    Accessor a;
    a.thunk = &MemberThunk<Fn>;
    FillParams(a, static_cast<typename T::Args*>(nullptr));
    using R = typename T::Ret;
    if constexpr (!std::is_void_v<R>) a.result = ParamType<R>();
    a.required = static_cast<std::uint8_t>(a.params.size());
    if constexpr (T::kArity > 0) {
      using Last = std::remove_cvref_t<std::tuple_element_t<T::kArity - 1, typename T::Args>>;
      if constexpr (std::is_same_v<Last, ParamArray>) {
        a.paramArray = true;
        a.params.back().paramArray = true;
        a.required = static_cast<std::uint8_t>(a.params.size() - 1);
      }
    }
    (
        [&] {
          using AT = std::decay_t<Ann>;
          if constexpr (requires { AT::kNames; }) {
            for (std::size_t i = 0; i < AT::kNames; ++i) a.params[i].name = std::string(ann.names[i]);
          } else if constexpr (requires { AT::kDefaults; }) {
            const std::size_t fixed = a.params.size() - (a.paramArray ? 1 : 0);
            a.required = static_cast<std::uint8_t>(fixed - AT::kDefaults);
            for (std::size_t i = 0; i < AT::kDefaults; ++i) {
              ParamInfo& p = a.params[a.required + i];
              p.optional = true;
              p.defaultValue = ann.values[i];
            }
          }
        }(),
        ...);
    return a;
  }

  template <class... A>
  static void FillParams(Accessor& a, std::tuple<A...>*) {
    (a.params.push_back(ParamInfo{std::string("arg") + std::to_string(a.params.size() + 1),
                                  ParamType<A>(), kIsOutput<A>, false, Variant()}),
     ...);
  }

  std::string name_;
  std::vector<MemberInfo> members_;
  DispId default_ = DispIdUnknown;
};

// ---------------------------------------------------------------------------
// Base for native classes: provides Class() from the class's Describe.
//
//     class TKVector4d final : public Dispatch<TKVector4d> {
//      public:
//       static constexpr std::string_view kClassName = "TKVector4d";
//       static void Describe(ClassBuilder<TKVector4d>& b);
//     };
template <class C, class Base = Object>
class Dispatch : public Base {
 public:
  using Base::Base;
  static const ClassInfo& StaticClass() {
    if (const ClassInfo* c = built_.load(std::memory_order_acquire)) [[likely]]
      return *c;
    return BuildClass();
  }
  const ClassInfo* Class() const noexcept override { return &StaticClass(); }

  // Over a base of its own (a host object that records its calls, say) the
  // base keeps control of every call; over Object itself the calls take the
  // direct routes below.
  DispId GetDispId(std::string_view name) const override {
    if constexpr (std::is_same_v<Base, Object>) return StaticClass().Find(name);
    else return Base::GetDispId(name);
  }

  // Property gets and methods without arguments, by far the most frequent
  // calls, go straight to their thunk; everything else through the checks.
  Variant InvokeId(DispId id, CallKind kind, std::span<Variant> args) override {
    if constexpr (std::is_same_v<Base, Object>) {
      // Nothing but loads and tests before the thunk: the short path keeps
      // no frame beyond what the call and its failure need.
      if (args.empty() && (kind == CallKind::Get || kind == CallKind::Method)) [[likely]] {
        if (const ClassInfo* c = built_.load(std::memory_order_acquire)) [[likely]] {
          if (Thunk t = c->PlainGetter(id)) {
            try {
              return t(this, args);
            } catch (...) {
              FailPlainCall(*this);
            }
          }
        }
      }
      return InvokeChecked(id, kind, args);
    } else {
      return Base::InvokeId(id, kind, args);
    }
  }

  Variant Invoke(std::string_view name, CallKind kind, std::span<Variant> args) override {
    if constexpr (std::is_same_v<Base, Object>) {
      const DispId id = StaticClass().Find(name);
      if (id == DispIdUnknown) Raise(Err::NoSuchMember);
      return Dispatch::InvokeId(id, kind, args);
    } else {
      return Base::Invoke(name, kind, args);
    }
  }

 private:
  [[gnu::noinline]] Variant InvokeChecked(DispId id, CallKind kind, std::span<Variant> args) {
    return StaticClass().Invoke(this, id, kind, args);
  }
  [[gnu::noinline, gnu::cold]] static const ClassInfo& BuildClass() {
    static const ClassInfo info = [] {
      ClassBuilder<C> b{std::string(C::kClassName)};
      C::Describe(b);
      return b.Build();
    }();
    built_.store(&info, std::memory_order_release);
    return info;
  }
  static inline std::atomic<const ClassInfo*> built_{nullptr};
};

}  // namespace TessarkAO
