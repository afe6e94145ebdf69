#include "automation/Variant.hpp"

#include <algorithm>
#include <limits>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO {

// ----- Variant ---------------------------------------------------------------

Variant::ArrayBox::ArrayBox(const ArrayBox& o)
    : p(o.p ? std::make_unique<SafeArray>(*o.p) : nullptr) {}
Variant::ArrayBox& Variant::ArrayBox::operator=(const ArrayBox& o) {
  if (this != &o) p = o.p ? std::make_unique<SafeArray>(*o.p) : nullptr;
  return *this;
}
Variant::ArrayBox::~ArrayBox() = default;

Variant::Variant(SafeArray a) : s_(ArrayBox(std::make_unique<SafeArray>(std::move(a)))) {}

Variant Variant::Null() noexcept {
  Variant v;
  v.s_.emplace<NullTag>();
  return v;
}

Variant Variant::ByRef(Variant& target) noexcept {
  Variant v;
  v.s_.emplace<RefTag>(RefTag{&target.Deref()});
  return v;
}

const Variant& Variant::Deref() const noexcept {
  if (s_.index() == kByRef) return *std::get<RefTag>(s_).target;
  return *this;
}
Variant& Variant::Deref() noexcept {
  if (s_.index() == kByRef) return *std::get<RefTag>(s_).target;
  return *this;
}

void Variant::Assign(Variant v) { Deref() = std::move(v); }

VarType Variant::Type() const noexcept {
  const Variant& d = Deref();
  switch (d.s_.index()) {
    case kEmpty: return VarType::Empty;
    case kNull: return VarType::Null;
    case kInteger: return VarType::Integer;
    case kLong: return VarType::Long;
    case kSingle: return VarType::Single;
    case kDouble: return VarType::Double;
    case kCurrency: return VarType::Currency;
    case kDate: return VarType::Date;
    case kString: return VarType::String;
    case kObject: return VarType::Object;
    case kError: return VarType::Error;
    case kBoolean: return VarType::Boolean;
    case kDecimal: return VarType::Decimal;
    case kByte: return VarType::Byte;
    case kArray: return std::get<ArrayBox>(d.s_).p->ElementType();
  }
  return VarType::Empty;
}

bool Variant::IsArray() const noexcept { return Deref().s_.index() == kArray; }

bool Variant::IsMissing() const noexcept {
  const Variant& d = Deref();
  return d.s_.index() == kError && std::get<ErrorCode>(d.s_).scode == kParamNotFound;
}

bool Variant::IsNothing() const noexcept {
  const Variant& d = Deref();
  return d.s_.index() == kObject && !std::get<Ref<Object>>(d.s_);
}

std::string Variant::TypeName() const {
  const Variant& d = Deref();
  if (d.IsArray()) return std::string(TessarkAO::TypeName(d.Type())) + "()";
  if (d.s_.index() == kObject) {
    const Ref<Object>& o = std::get<Ref<Object>>(d.s_);
    return o ? o->TypeName() : std::string("Nothing");
  }
  return std::string(TessarkAO::TypeName(d.Type()));
}

const SafeArray& Variant::AsArray() const { return *std::get<ArrayBox>(Deref().s_).p; }
SafeArray& Variant::AsArray() { return *std::get<ArrayBox>(Deref().s_).p; }

Variant Variant::Invoke(std::string_view name, CallKind kind, std::span<Variant> args) const {
  const Variant& d = Deref();
  if (d.s_.index() != kObject) Raise(Err::ObjectRequired);
  const Ref<Object>& o = std::get<Ref<Object>>(d.s_);
  if (!o) Raise(Err::ObjectNotSet);
  Ref<Object> keep = o;  // the call may drop the caller's last reference
  return keep->Invoke(name, kind, args);
}

bool SameValue(const Variant& a, const Variant& b) {
  const Variant& x = a.Deref();
  const Variant& y = b.Deref();
  if (x.IsArray() != y.IsArray()) return false;
  if (x.IsArray()) return x.AsArray() == y.AsArray();
  if (x.Type() != y.Type()) return false;
  switch (x.Type()) {
    case VarType::Empty:
    case VarType::Null: return true;
    case VarType::Integer: return x.AsInteger() == y.AsInteger();
    case VarType::Long: return x.AsLong() == y.AsLong();
    case VarType::Single: return x.AsSingle() == y.AsSingle();
    case VarType::Double: return x.AsDouble() == y.AsDouble();
    case VarType::Currency: return x.AsCurrency() == y.AsCurrency();
    case VarType::Date: return x.AsDate() == y.AsDate();
    case VarType::String: return x.AsString() == y.AsString();
    case VarType::Object: return x.AsObject() == y.AsObject();
    case VarType::Error: return x.AsError() == y.AsError();
    case VarType::Boolean: return x.AsBoolean() == y.AsBoolean();
    case VarType::Decimal: return x.AsDecimal() == y.AsDecimal();
    case VarType::Byte: return x.AsByte() == y.AsByte();
    case VarType::Variant: return false;
  }
  return false;
}

// ----- SafeArray -------------------------------------------------------------

namespace {
constexpr int kMaxDims = 60;

// The most elements an array holds (the tables' limit too); a larger array
// is "Out of memory" before anything is allocated.
constexpr std::uint64_t kMaxElements = std::uint64_t{1} << 28;

// The number of elements of an array with these bounds.  A negative count is
// 9; an upper bound outside the Long range is 6; too many elements is 7.
std::size_t CountOf(const std::vector<ArrayBound>& bounds) {
  for (const auto& b : bounds) {
    if (b.count < 0) Raise(Err::SubscriptOutOfRange);
    const std::int64_t upper = static_cast<std::int64_t>(b.lower) + b.count - 1;
    if (upper < std::numeric_limits<std::int32_t>::min() || upper > std::numeric_limits<std::int32_t>::max())
      Raise(Err::Overflow);
  }
  std::uint64_t n = 1;
  for (const auto& b : bounds) {
    n *= static_cast<std::uint64_t>(b.count);
    if (n > kMaxElements) Raise(Err::OutOfMemory);
  }
  return static_cast<std::size_t>(n);
}
}  // namespace

Variant SafeArray::DefaultElement(VarType t) {
  switch (t) {
    case VarType::Integer: return Variant(std::int16_t{0});
    case VarType::Long: return Variant(std::int32_t{0});
    case VarType::Single: return Variant(0.0f);
    case VarType::Double: return Variant(0.0);
    case VarType::Currency: return Variant(Currency{});
    case VarType::Date: return Variant(Date{});
    case VarType::String: return Variant(std::string());
    case VarType::Object: return Variant::Nothing();
    case VarType::Error: return Variant(ErrorCode{});
    case VarType::Boolean: return Variant(false);
    case VarType::Decimal: return Variant(Decimal{});
    case VarType::Byte: return Variant(std::uint8_t{0});
    default: return Variant();
  }
}

SafeArray::SafeArray(VarType element, std::vector<ArrayBound> bounds)
    : element_(element), bounds_(std::move(bounds)) {
  if (bounds_.empty() || static_cast<int>(bounds_.size()) > kMaxDims) Raise(Err::SubscriptOutOfRange);
  data_.assign(CountOf(bounds_), DefaultElement(element_));
}

namespace {
// The bound lower..upper (upper < lower: no elements); 6 when the number of
// elements does not fit a Long.
ArrayBound FromTo(std::int32_t lower, std::int32_t upper) {
  const std::int64_t count = std::max<std::int64_t>(0, static_cast<std::int64_t>(upper) - lower + 1);
  if (count > std::numeric_limits<std::int32_t>::max()) Raise(Err::Overflow);
  return ArrayBound{lower, static_cast<std::int32_t>(count)};
}
}  // namespace

SafeArray SafeArray::Vector(VarType element, std::int32_t lower, std::int32_t upper) {
  return SafeArray(element, {FromTo(lower, upper)});
}

SafeArray SafeArray::Matrix(VarType element, std::int32_t lower1, std::int32_t upper1,
                            std::int32_t lower2, std::int32_t upper2) {
  return SafeArray(element, {FromTo(lower1, upper1), FromTo(lower2, upper2)});
}

std::int32_t SafeArray::LBound(int dim) const {
  if (dim < 1 || dim > Dims()) Raise(Err::SubscriptOutOfRange);
  return bounds_[static_cast<std::size_t>(dim - 1)].lower;
}

std::int32_t SafeArray::UBound(int dim) const {
  if (dim < 1 || dim > Dims()) Raise(Err::SubscriptOutOfRange);
  return bounds_[static_cast<std::size_t>(dim - 1)].upper();
}

std::size_t SafeArray::Offset(std::span<const std::int32_t> index) const {
  if (index.size() != bounds_.size()) Raise(Err::SubscriptOutOfRange);
  std::size_t offset = 0, stride = 1;
  for (std::size_t d = 0; d < bounds_.size(); ++d) {
    const std::int64_t rel = static_cast<std::int64_t>(index[d]) - bounds_[d].lower;
    if (rel < 0 || rel >= bounds_[d].count) Raise(Err::SubscriptOutOfRange);
    offset += static_cast<std::size_t>(rel) * stride;
    stride *= static_cast<std::size_t>(bounds_[d].count);
  }
  return offset;
}

const Variant& SafeArray::Get(std::span<const std::int32_t> index) const {
  return data_[Offset(index)];
}

void SafeArray::Put(std::span<const std::int32_t> index, const Variant& v) {
  const std::size_t at = Offset(index);
  if (element_ == VarType::Variant)
    data_[at] = v.Deref();
  else
    data_[at] = ChangeType(v, element_);
}

void SafeArray::Redim(std::vector<ArrayBound> bounds, bool preserve) {
  if (fixed_) Raise(Err::ArrayFixed);
  if (bounds.empty() || static_cast<int>(bounds.size()) > kMaxDims) Raise(Err::SubscriptOutOfRange);
  const std::size_t count = CountOf(bounds);
  if (!preserve) {
    data_.assign(count, DefaultElement(element_));
    bounds_ = std::move(bounds);
    return;
  }
  if (bounds.size() != bounds_.size()) Raise(Err::SubscriptOutOfRange);
  for (std::size_t d = 0; d + 1 < bounds.size(); ++d)
    if (bounds[d].lower != bounds_[d].lower || bounds[d].count != bounds_[d].count)
      Raise(Err::SubscriptOutOfRange);
  if (bounds.back().lower != bounds_.back().lower) Raise(Err::SubscriptOutOfRange);
  // Only the last dimension changes: with the first index fastest, the kept
  // elements are a prefix of the storage.
  data_.resize(count, DefaultElement(element_));
  bounds_ = std::move(bounds);
}

bool operator==(const SafeArray& a, const SafeArray& b) {
  if (a.element_ != b.element_ || a.bounds_.size() != b.bounds_.size()) return false;
  for (std::size_t d = 0; d < a.bounds_.size(); ++d)
    if (a.bounds_[d].lower != b.bounds_[d].lower || a.bounds_[d].count != b.bounds_[d].count)
      return false;
  for (std::size_t i = 0; i < a.data_.size(); ++i)
    if (!SameValue(a.data_[i], b.data_[i])) return false;
  return true;
}

}  // namespace TessarkAO
