// Variant: the automation value, and SafeArray, its n-dimensional array.
//
// A Variant holds exactly one of the classic automation types (VarType.hpp),
// an array of any element type with 1 to 60 dimensions and lower bounds of
// its own, or a reference to another Variant (a by-reference argument).
// Members of the library behave differently by type (a column accepts exactly
// Double, Decimal, Integer, Long, Single and Byte values), so the type is kept
// exactly as it was given; conversions live in Convert.hpp.
//
// Text is held as UTF-8.  Where the classic semantics count or order UTF-16
// code units, the helpers of Convert.hpp do that on the UTF-8 text.
//
// Variant also carries the fluent late-bound call helpers used by code that
// drives host objects:
//
//     Variant count = shape.Get("Components", 4).Get("Count");
//     shape.Get("Components", 4).Call("Item", 1).Get("Variable", 2).Let("Value", 3.5);
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "automation/Object.hpp"
#include "automation/VarType.hpp"

namespace TessarkAO {

class SafeArray;

struct Currency {
  std::int64_t scaled = 0;  // value times 10000
  friend bool operator==(Currency, Currency) = default;
};

struct Date {
  double serial = 0.0;  // days since 1899-12-30, time as the fraction
  friend bool operator==(Date, Date) = default;
};

// 96-bit unsigned magnitude with a decimal scale of 0 to 28 and a sign.
struct Decimal {
  std::uint32_t hi = 0;
  std::uint64_t lo = 0;
  std::uint8_t scale = 0;
  bool negative = false;
  friend bool operator==(const Decimal&, const Decimal&) = default;
};

struct ErrorCode {
  std::int32_t scode = 0;
  friend bool operator==(ErrorCode, ErrorCode) = default;
};

// DISP_E_PARAMNOTFOUND: the error value that marks an omitted optional argument.
inline constexpr std::int32_t kParamNotFound = static_cast<std::int32_t>(0x80020004u);

class Variant {
 public:
  Variant() noexcept = default;
  Variant(std::int16_t v) noexcept : s_(v) {}
  Variant(std::int32_t v) noexcept : s_(v) {}
  Variant(float v) noexcept : s_(v) {}
  Variant(double v) noexcept : s_(v) {}
  Variant(Currency v) noexcept : s_(v) {}
  Variant(Date v) noexcept : s_(v) {}
  Variant(std::string v) noexcept : s_(std::move(v)) {}
  Variant(std::string_view v) : s_(std::string(v)) {}
  Variant(const char* v) : s_(std::string(v)) {}
  Variant(bool v) noexcept : s_(v) {}
  Variant(Decimal v) noexcept : s_(v) {}
  Variant(std::uint8_t v) noexcept : s_(v) {}
  Variant(ErrorCode v) noexcept : s_(v) {}
  Variant(SafeArray a);
  template <class T, class = std::enable_if_t<std::is_base_of_v<Object, T>>>
  Variant(Ref<T> r) noexcept : s_(Ref<Object>(std::move(r))) {}
  Variant(std::nullptr_t) noexcept : s_(Ref<Object>()) {}  // Nothing
  // A raw pointer would silently become a Boolean: hold objects through Ref.
  template <class T>
  Variant(T*) = delete;

  Variant(const Variant& o) : s_(o.s_) {}
  Variant(Variant&& o) noexcept : s_(std::move(o.s_)) {}
  Variant& operator=(const Variant& o) {
    s_ = o.s_;
    return *this;
  }
  Variant& operator=(Variant&& o) noexcept {
    s_ = std::move(o.s_);
    return *this;
  }
  // Most variants hold a number: those end without the storage's visit (an
  // indirect call through a table), which costs as much as the rest of a
  // property read.
  ~Variant() {
    const std::size_t i = s_.index();  // npos when the storage is valueless
    if (i >= 64 || ((kOwning >> i) & 1)) s_.~Storage();
  }

  static Variant Null() noexcept;
  static Variant Missing() noexcept { return Variant(ErrorCode{kParamNotFound}); }
  static Variant Nothing() noexcept { return Variant(nullptr); }
  // A reference to `target`: reads see it, writes through Assign go to it.
  static Variant ByRef(Variant& target) noexcept;

  // The type of the value, looking through a by-reference variant.  For an
  // array this is the element type; IsArray tells the two apart.
  VarType Type() const noexcept;
  bool IsArray() const noexcept;
  bool IsByRef() const noexcept { return s_.index() == kByRef; }
  bool IsEmpty() const noexcept { return Type() == VarType::Empty && !IsArray(); }
  bool IsNull() const noexcept { return Deref().s_.index() == kNull; }
  bool IsMissing() const noexcept;
  bool IsObject() const noexcept { return Deref().s_.index() == kObject; }
  // An object-typed variant holding no object.
  bool IsNothing() const noexcept;

  // The classic type name: "Double", "Long", "Empty", "Nothing", "Double()".
  std::string TypeName() const;

  const Variant& Deref() const noexcept;
  Variant& Deref() noexcept;
  // Assigns through a by-reference variant, else replaces the value.
  void Assign(Variant v);

  // Unchecked access to a value of the exact type (Type() must match).
  std::int16_t AsInteger() const { return std::get<std::int16_t>(Deref().s_); }
  std::int32_t AsLong() const { return std::get<std::int32_t>(Deref().s_); }
  float AsSingle() const { return std::get<float>(Deref().s_); }
  double AsDouble() const { return std::get<double>(Deref().s_); }
  Currency AsCurrency() const { return std::get<Currency>(Deref().s_); }
  Date AsDate() const { return std::get<Date>(Deref().s_); }
  const std::string& AsString() const { return std::get<std::string>(Deref().s_); }
  const Ref<Object>& AsObject() const { return std::get<Ref<Object>>(Deref().s_); }
  ErrorCode AsError() const { return std::get<ErrorCode>(Deref().s_); }
  bool AsBoolean() const { return std::get<bool>(Deref().s_); }
  const Decimal& AsDecimal() const { return std::get<Decimal>(Deref().s_); }
  std::uint8_t AsByte() const { return std::get<std::uint8_t>(Deref().s_); }
  const SafeArray& AsArray() const;
  SafeArray& AsArray();

  // Fluent late-bound calls on an object-valued variant.  Each raises 91 on
  // Nothing, 424 on a value that is not an object, and whatever the callee
  // raises.  Arguments are taken by value; use Invoke with a span of
  // variants where by-reference outputs must be read back.
  template <class... A>
  Variant Get(std::string_view name, A&&... a) const {
    Variant args[] = {Variant(std::forward<A>(a))..., Variant()};
    return Invoke(name, CallKind::Get, std::span<Variant>(args, sizeof...(A)));
  }
  template <class... A>
  Variant Call(std::string_view name, A&&... a) const {
    Variant args[] = {Variant(std::forward<A>(a))..., Variant()};
    return Invoke(name, CallKind::Method, std::span<Variant>(args, sizeof...(A)));
  }
  // Property let: the last argument is the value.
  template <class... A>
  void Let(std::string_view name, A&&... a) const {
    Variant args[] = {Variant(std::forward<A>(a))...};
    Invoke(name, CallKind::Let, std::span<Variant>(args, sizeof...(A)));
  }
  // Property set (object assignment): the last argument is the object.
  template <class... A>
  void Set(std::string_view name, A&&... a) const {
    Variant args[] = {Variant(std::forward<A>(a))...};
    Invoke(name, CallKind::Set, std::span<Variant>(args, sizeof...(A)));
  }
  Variant Invoke(std::string_view name, CallKind kind, std::span<Variant> args) const;

  // Identity of the stored alternative, for the runtime's own switches.
  std::size_t Index() const noexcept { return s_.index(); }

 private:
  struct EmptyTag {
    friend bool operator==(EmptyTag, EmptyTag) = default;
  };
  struct NullTag {
    friend bool operator==(NullTag, NullTag) = default;
  };
  struct ArrayBox {
    std::unique_ptr<SafeArray> p;
    ArrayBox() = default;
    explicit ArrayBox(std::unique_ptr<SafeArray> q) : p(std::move(q)) {}
    ArrayBox(const ArrayBox& o);
    ArrayBox(ArrayBox&&) noexcept = default;
    ArrayBox& operator=(const ArrayBox& o);
    ArrayBox& operator=(ArrayBox&&) noexcept = default;
    ~ArrayBox();
  };
  struct RefTag {
    Variant* target;
  };
  using Storage = std::variant<EmptyTag, NullTag, std::int16_t, std::int32_t, float, double,
                               Currency, Date, std::string, Ref<Object>, ErrorCode, bool, Decimal,
                               std::uint8_t, ArrayBox, RefTag>;

 public:
  // Alternative indices, in Storage order.
  static constexpr std::size_t kEmpty = 0, kNull = 1, kInteger = 2, kLong = 3, kSingle = 4,
                               kDouble = 5, kCurrency = 6, kDate = 7, kString = 8, kObject = 9,
                               kError = 10, kBoolean = 11, kDecimal = 12, kByte = 13, kArray = 14,
                               kByRef = 15;

 private:
  // The indices above name the Storage alternatives: a reordering of either
  // list fails here rather than in a switch far away.
  template <std::size_t I, class T>
  static constexpr bool kAt = std::is_same_v<std::variant_alternative_t<I, Storage>, T>;
  static_assert(std::variant_size_v<Storage> == kByRef + 1);
  static_assert(kAt<kEmpty, EmptyTag> && kAt<kNull, NullTag> && kAt<kInteger, std::int16_t> &&
                kAt<kLong, std::int32_t> && kAt<kSingle, float> && kAt<kDouble, double> &&
                kAt<kCurrency, Currency> && kAt<kDate, Date> && kAt<kString, std::string> &&
                kAt<kObject, Ref<Object>> && kAt<kError, ErrorCode> && kAt<kBoolean, bool> &&
                kAt<kDecimal, Decimal> && kAt<kByte, std::uint8_t> && kAt<kArray, ArrayBox> &&
                kAt<kByRef, RefTag>);

  // Bit i: alternative i owns something that its destructor releases.
  static constexpr std::uint64_t kOwning = []<std::size_t... I>(std::index_sequence<I...>) {
    return (0ull | ... |
            (std::is_trivially_destructible_v<std::variant_alternative_t<I, Storage>> ? 0ull : 1ull << I));
  }(std::make_index_sequence<std::variant_size_v<Storage>>{});
  static_assert(kOwning == ((1ull << kString) | (1ull << kObject) | (1ull << kArray)));

 private:
  // Held in a union so that ~Variant decides whether the storage's own
  // destructor needs to run.
  union {
    Storage s_{};
  };
};

// Bounds are Longs: every SafeArray keeps its upper bounds within the Long
// range (one that does not fit is refused with 6).  lower + count alone may
// pass it, so the upper bound is computed wide.
struct ArrayBound {
  std::int32_t lower = 0;
  std::int32_t count = 0;  // number of elements; upper bound = lower + count - 1
  std::int32_t upper() const noexcept {
    return static_cast<std::int32_t>(static_cast<std::int64_t>(lower) + count - 1);
  }
};

// An n-dimensional array with its own lower bounds, stored with the first
// index varying fastest (so that only the last dimension can grow in place).
// Elements always hold the array's element type; an array of Variant holds
// anything.  Indices outside the bounds raise 9.
class SafeArray {
 public:
  SafeArray() = default;  // a 1-dimensional, 0-element array of Variant
  SafeArray(VarType element, std::vector<ArrayBound> bounds);
  // A 1-dimensional array with bounds lower to upper (upper < lower: empty).
  static SafeArray Vector(VarType element, std::int32_t lower, std::int32_t upper);
  // A 2-dimensional array (rows lower1..upper1, columns lower2..upper2).
  static SafeArray Matrix(VarType element, std::int32_t lower1, std::int32_t upper1,
                          std::int32_t lower2, std::int32_t upper2);

  VarType ElementType() const noexcept { return element_; }
  int Dims() const noexcept { return static_cast<int>(bounds_.size()); }
  const std::vector<ArrayBound>& Bounds() const noexcept { return bounds_; }
  // Bounds of dimension `dim`, counted from 1 as LBound and UBound count; 9 outside.
  std::int32_t LBound(int dim = 1) const;
  std::int32_t UBound(int dim = 1) const;
  std::size_t Size() const noexcept { return data_.size(); }

  // Element access by the real indices, one per dimension; 9 when the number
  // of indices or an index is out of range.
  const Variant& Get(std::span<const std::int32_t> index) const;
  // Stores `v` converted to the element type (13 or 6 when it does not convert).
  void Put(std::span<const std::int32_t> index, const Variant& v);
  const Variant& Get(std::int32_t i) const { return Get(std::span<const std::int32_t>(&i, 1)); }
  const Variant& Get(std::int32_t i, std::int32_t j) const {
    const std::int32_t ij[] = {i, j};
    return Get(ij);
  }
  void Put(std::int32_t i, const Variant& v) { Put(std::span<const std::int32_t>(&i, 1), v); }
  void Put(std::int32_t i, std::int32_t j, const Variant& v) {
    const std::int32_t ij[] = {i, j};
    Put(ij, v);
  }

  // Linear storage, first index fastest.  Writing through it must keep the
  // element type (use Put, or the element type's own constructor).
  std::vector<Variant>& Data() noexcept { return data_; }
  const std::vector<Variant>& Data() const noexcept { return data_; }
  std::size_t Offset(std::span<const std::int32_t> index) const;  // 9 when out of range

  // ReDim: new bounds; without preserve every element is reset.  With
  // preserve the number of dimensions and every dimension but the last must
  // stay as they are (else 9); the kept elements keep their values.  A fixed
  // array cannot be redimensioned (10).
  void Redim(std::vector<ArrayBound> bounds, bool preserve);
  bool Fixed() const noexcept { return fixed_; }
  void SetFixed(bool f) noexcept { fixed_ = f; }

  // The initial value of an element of type t (0, "", False, Empty, Nothing).
  static Variant DefaultElement(VarType t);

  friend bool operator==(const SafeArray&, const SafeArray&);

 private:
  VarType element_ = VarType::Variant;
  std::vector<ArrayBound> bounds_{ArrayBound{0, 0}};
  std::vector<Variant> data_;
  bool fixed_ = false;
};

// Exact equality of type and value (arrays element by element); objects by identity.
bool SameValue(const Variant& a, const Variant& b);

}  // namespace TessarkAO
