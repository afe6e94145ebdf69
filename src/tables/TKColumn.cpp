#include "tables/TKColumn.hpp"

#include <algorithm>
#include <cmath>

#include "automation/Catalogue.hpp"
#include "automation/Enumerations.hpp"
#include "tables/TableLimits.hpp"

namespace TessarkAO {

void TKColumn::Describe(ClassBuilder<TKColumn>& b) {
  b.Method<&TKColumn::Find>("Find", Names{"Value", "StartingIndex"}, Opt{Variant(1)},
                            Doc{"The index of the first element from StartingIndex on equal to Value "
                                "(converted to the column's type; 13 when it does not convert); 0 when none. "
                                "Strings compare trimmed and lower-cased; a StartingIndex below 1 raises 9."})
      .Method<&TKColumn::IsFirstValueGreater>("IsFirstValueGreater", Names{"Index1", "Index2"},
                                              Doc{"Whether element Index1 is greater than element Index2 in "
                                                  "the column's order (False for an invalid index)."})
      .Get<&TKColumn::SpanIndex>(
          "SpanIndex", Names{"Index"},
          Doc{"The first element index of span Index (a span is a run of equal values), or 0."})
      .Get<&TKColumn::SpanValue>("SpanValue", Names{"Index"},
                                 Doc{"The value of span Index's first element; Empty outside 1 to Spans."})
      .Get<&TKColumn::Spans>("Spans", Doc{"The number of spans (runs of equal values)."})
      .Method<&TKColumn::GetSpanLength>("GetSpanLength", Names{"Index", "Down"},
                                        Doc{"The length of the run of elements equal to element Index, "
                                            "counted down or up from it; at least 1."})
      .Property<&TKColumn::ColumnType, &TKColumn::LetColumnType>(
          "ColumnType",
          Doc{"The column's type (TKColumnTypes); the let takes effect only while the type is None."})
      .Method<&TKColumn::Swap>("Swap", Names{"Index1", "Index2"},
                               Doc{"Exchanges two elements. Deliberately True when either index is invalid "
                                   "(nothing changes); False on a None column."})
      .Property<&TKColumn::NumberOfElements, &TKColumn::LetNumberOfElements>(
          "NumberOfElements", Doc{"The number of elements; assigning resizes the column keeping the values "
                                  "(7 for a count too large)."})
      .Method<&TKColumn::GetObjectValues>(
          "GetObjectValues", Names{"pValues"}, Out<1>{},
          Doc{"Fills pValues with the elements (bounds 1 to count) and returns the count; with no elements "
              "pValues is left as it is. 9 on a column of another type."})
      .Method<&TKColumn::GetDoubleValues>(
          "GetDoubleValues", Names{"pValues"}, Out<1>{},
          Doc{"Fills pValues with the elements (bounds 1 to count) and returns the count; with no elements "
              "pValues is left as it is. 9 on a column of another type."})
      .Method<&TKColumn::GetStringValues>(
          "GetStringValues", Names{"pValues"}, Out<1>{},
          Doc{"Fills pValues with the elements (bounds 1 to count) and returns the count; with no elements "
              "pValues is left as it is. 9 on a column of another type."})
      .Method<&TKColumn::SetDoubleValues>("SetDoubleValues", Names{"Values"},
                                          Doc{"SetAt for every position of the array Values (shifted by its "
                                              "lower bound minus 1); results ignored."})
      .Method<&TKColumn::SetObjectValues>("SetObjectValues", Names{"Values"},
                                          Doc{"SetAt for every position of the array Values (shifted by its "
                                              "lower bound minus 1); results ignored."})
      .Method<&TKColumn::SetStringValues>("SetStringValues", Names{"Values"},
                                          Doc{"SetAt for every position of the array Values (shifted by its "
                                              "lower bound minus 1); results ignored."})
      .Method<&TKColumn::GetAt>("GetAt", Names{"Index"},
                                Doc{"Element Index (from 1); Empty outside the column."})
      .Default()
      .Method<&TKColumn::SetAt>(
          "SetAt", Names{"Index", "Element"},
          Doc{"Stores Element at Index when the index is valid and the type fits the column (a Double column "
              "takes Double, Decimal, Integer, Long, Single and Byte); returns whether it was stored."})
      .Method<&TKColumn::Add>(
          "Add", Names{"Element"},
          Doc{"Appends Element when its type fits the column; returns whether it was added."})
      .Method<&TKColumn::SetAtGrow>("SetAtGrow", Names{"Index", "Element"},
                                    Doc{"Grows the column to Index when it is larger, then SetAt."})
      .Method<&TKColumn::RemoveAt>(
          "RemoveAt", Names{"Index"},
          Doc{"Removes element Index. Always returns False, also after a successful removal, deliberately."})
      .Get<&TKColumn::IndexSpan>("IndexSpan", Names{"Index"},
                                 Doc{"The number of the span that contains element Index, or 0."});
}

TKColumn::~TKColumn() {
  // Object references go first, then the store of the column's type.
  objects_.clear();
  doubles_.clear();
  strings_.clear();
}

bool TKColumn::AreDoublesEqual(double a, double b) noexcept {
  // Written as the tolerance test is defined; a difference too large for a
  // Double is infinite and so never equal.
  return std::fabs(b - a) - 1e-10 <= 0.0;
}

std::int32_t TKColumn::ObjectOrderKey(const Object* o) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(o)));
}

// ---- Type and size ---------------------------------------------------------

void TKColumn::LetColumnType(std::int32_t type) {
  if (type_ != TKColumnType_None) return;
  if (type != TKColumnType_Double && type != TKColumnType_Object && type != TKColumnType_String) return;
  // A count given while the type was open gets its store now, so that the
  // store always covers 1..count.
  if (count_ > 0) Tables::CheckElementCount(count_);
  const std::size_t n = count_ > 0 ? static_cast<std::size_t>(count_) : 0;
  if (type == TKColumnType_Double) doubles_.assign(n, 0.0);
  if (type == TKColumnType_Object) objects_.assign(n, Ref<Object>());
  if (type == TKColumnType_String) strings_.assign(n, std::string());
  type_ = type;
  Changed();
}

void TKColumn::LetNumberOfElements(std::int32_t n) {
  const bool typed =
      type_ == TKColumnType_Double || type_ == TKColumnType_Object || type_ == TKColumnType_String;
  if (typed && n > 0) Tables::CheckElementCount(n);
  count_ = n;
  Changed();
  if (!typed) return;
  if (n <= 0) {
    std::vector<double>().swap(doubles_);
    std::vector<std::string>().swap(strings_);
    std::vector<Ref<Object>>().swap(objects_);
    return;
  }
  // Vectors keep spare capacity, so growing one element at a time (Add,
  // the column set's AddRow) is amortised constant time.
  const auto size = static_cast<std::size_t>(n);
  if (type_ == TKColumnType_Double) doubles_.resize(size, 0.0);
  if (type_ == TKColumnType_Object) objects_.resize(size);
  if (type_ == TKColumnType_String) strings_.resize(size);
}

// ---- Element access ---------------------------------------------------------

Variant TKColumn::GetAt(std::int32_t index) const {
  if (!Valid(index)) return Variant();
  const auto i = static_cast<std::size_t>(index - 1);
  switch (type_) {
    case TKColumnType_Double: return Variant(doubles_[i]);
    case TKColumnType_Object: return Variant(objects_[i]);
    case TKColumnType_String: return Variant(strings_[i]);
    default: return Variant();
  }
}

bool TKColumn::SetAt(std::int32_t index, const Variant& element) {
  if (!Valid(index)) return false;
  const Variant& e = element.Deref();
  if (e.IsArray()) return false;
  const auto i = static_cast<std::size_t>(index - 1);
  switch (type_) {
    case TKColumnType_Double:
      switch (e.Type()) {
        // Exactly these types; Currency, Boolean, Date and text are refused.
        case VarType::Double:
        case VarType::Decimal:
        case VarType::Integer:
        case VarType::Long:
        case VarType::Single:
        case VarType::Byte: doubles_[i] = ToDouble(e); break;
        default: return false;
      }
      break;
    case TKColumnType_Object:
      if (e.Type() != VarType::Object) return false;
      objects_[i] = e.AsObject();
      break;
    case TKColumnType_String:
      if (e.Type() != VarType::String) return false;
      strings_[i] = e.AsString();
      break;
    default: return false;
  }
  Changed();
  return true;
}

bool TKColumn::SetAtGrow(std::int32_t index, const Variant& element) {
  if (index > count_) LetNumberOfElements(index);
  return SetAt(index, element);
}

bool TKColumn::Add(const Variant& element) { return SetAtGrow(Tables::AddLong(count_, 1), element); }

bool TKColumn::Swap(std::int32_t index1, std::int32_t index2) {
  // Deliberately True for an invalid index: callers treat it as nothing to do.
  if (!Valid(index1) || !Valid(index2)) return true;
  const auto a = static_cast<std::size_t>(index1 - 1), b = static_cast<std::size_t>(index2 - 1);
  switch (type_) {
    case TKColumnType_Double: std::swap(doubles_[a], doubles_[b]); break;
    case TKColumnType_Object: objects_[a].swap(objects_[b]); break;
    case TKColumnType_String: strings_[a].swap(strings_[b]); break;
    default: return false;  // a None column stores nothing
  }
  Changed();
  return true;
}

bool TKColumn::RemoveAt(std::int32_t index) {
  if (!Valid(index)) return false;
  if (count_ == 1) {
    LetNumberOfElements(0);
    return false;
  }
  const auto i = static_cast<std::ptrdiff_t>(index - 1);
  switch (type_) {
    case TKColumnType_Double:
      // A Double column fills its shortened copy from that (zeroed) copy
      // rather than from its values: removing the last element leaves every
      // remaining value 0.0, and removing any other element runs past the
      // copy's end and raises 9 with the column unchanged.  Kept as it
      // stands: callers depend on it.
      if (index != count_) Raise(Err::SubscriptOutOfRange);
      LetNumberOfElements(count_ - 1);
      std::fill(doubles_.begin(), doubles_.end(), 0.0);
      break;
    case TKColumnType_Object:
      objects_.erase(objects_.begin() + i);
      --count_;
      break;
    case TKColumnType_String:
      strings_.erase(strings_.begin() + i);
      --count_;
      break;
    default: LetNumberOfElements(count_ - 1); break;
  }
  Changed();
  // Always False: callers cannot rely on the result, and that is kept.
  return false;
}

// ---- Whole-column transfer ----------------------------------------------------

namespace {

template <class Store, class Make>
std::int32_t FillArray(std::int32_t count, bool matches, VarType type, const Store& store, Variant& out,
                       Make make) {
  if (count <= 0) return count;
  // Reading the store of another type fails as reading an absent array does.
  if (!matches) Raise(Err::SubscriptOutOfRange);
  if (out.IsArray() && out.AsArray().Fixed()) Raise(Err::ArrayFixed);
  SafeArray a = SafeArray::Vector(type, 1, count);
  for (std::size_t i = 0; i < store.size(); ++i) a.Data()[i] = make(store[i]);
  out = Variant(std::move(a));
  return count;
}

}  // namespace

std::int32_t TKColumn::GetObjectValues(Variant& pValues) const {
  return FillArray(count_, type_ == TKColumnType_Object, VarType::Object, objects_, pValues,
                   [](const Ref<Object>& o) { return Variant(o); });
}

std::int32_t TKColumn::GetDoubleValues(Variant& pValues) const {
  return FillArray(count_, type_ == TKColumnType_Double, VarType::Double, doubles_, pValues,
                   [](double d) { return Variant(d); });
}

std::int32_t TKColumn::GetStringValues(Variant& pValues) const {
  return FillArray(count_, type_ == TKColumnType_String, VarType::String, strings_, pValues,
                   [](const std::string& s) { return Variant(s); });
}

void TKColumn::SetValues(const Variant& values) {
  if (!values.IsArray()) Raise(Err::TypeMismatch);
  const SafeArray array = values.AsArray();  // a copy: SetAt may release what the caller passed
  const std::int64_t lower = array.LBound(1), upper = array.UBound(1);
  for (std::int64_t p = lower; p <= upper; ++p) {
    // The target is shifted by the lower bound (p + lowerBound - 1): with a
    // 1-based array that is p; other bases drop what lands outside 1..count.
    const Variant& element = array.Get(static_cast<std::int32_t>(p));  // 9 for more dimensions
    const std::int64_t target = p + lower - 1;
    if (target >= 1 && target <= count_) SetAt(static_cast<std::int32_t>(target), element);
  }
}

void TKColumn::SetDoubleValues(const Variant& values) { SetValues(values); }
void TKColumn::SetObjectValues(const Variant& values) { SetValues(values); }
void TKColumn::SetStringValues(const Variant& values) { SetValues(values); }

void TKColumn::Permute(const std::vector<std::int32_t>& order) {
  auto apply = [&order](auto& store) {
    if (store.empty()) return;
    std::remove_reference_t<decltype(store)> out(store.size());
    for (std::size_t i = 0; i < order.size(); ++i)
      out[i] = std::move(store[static_cast<std::size_t>(order[i])]);
    store.swap(out);
  };
  apply(doubles_);
  apply(strings_);
  apply(objects_);
  Changed();
}

// ---- Comparison and search ----------------------------------------------------

bool TKColumn::IsFirstValueGreater(std::int32_t index1, std::int32_t index2) const {
  if (!Valid(index1) || !Valid(index2)) return false;
  const auto a = static_cast<std::size_t>(index1 - 1), b = static_cast<std::size_t>(index2 - 1);
  switch (type_) {
    case TKColumnType_Double: return doubles_[a] > doubles_[b];
    case TKColumnType_Object: return ObjectOrderKey(objects_[a].get()) > ObjectOrderKey(objects_[b].get());
    case TKColumnType_String: return CompareCodeUnits(LowerCase(strings_[a]), LowerCase(strings_[b])) > 0;
    default: return false;
  }
}

bool TKColumn::AreElementsEqual(std::int32_t index1, std::int32_t index2) const {
  if (!Valid(index1) || !Valid(index2)) return false;
  const auto a = static_cast<std::size_t>(index1 - 1), b = static_cast<std::size_t>(index2 - 1);
  switch (type_) {
    case TKColumnType_Double: return AreDoublesEqual(doubles_[a], doubles_[b]);
    case TKColumnType_Object: return objects_[a] == objects_[b];
    case TKColumnType_String: return LowerCase(strings_[a]) == LowerCase(strings_[b]);
    default: return false;
  }
}

std::int32_t TKColumn::Find(const Variant& value, std::int32_t startingIndex) {
  const bool typed =
      type_ == TKColumnType_Double || type_ == TKColumnType_Object || type_ == TKColumnType_String;
  if (!typed || count_ < 1 || startingIndex > count_) return 0;  // nothing is visited
  if (startingIndex < 1) Raise(Err::SubscriptOutOfRange);
  const auto first = static_cast<std::size_t>(startingIndex - 1);
  const auto n = static_cast<std::size_t>(count_);
  switch (type_) {
    case TKColumnType_Double: {
      const double v = ToDouble(value);
      for (std::size_t i = first; i < n; ++i)
        if (AreDoublesEqual(doubles_[i], v)) return static_cast<std::int32_t>(i + 1);
      break;
    }
    case TKColumnType_Object: {
      if (!value.IsObject()) Raise(Err::TypeMismatch);
      const Ref<Object>& v = value.AsObject();
      for (std::size_t i = first; i < n; ++i)
        if (objects_[i] == v) return static_cast<std::int32_t>(i + 1);
      break;
    }
    default: {
      // Find alone trims blanks on both sides before comparing.
      const std::string v = LowerCase(TrimBlanks(ToString(value)));
      for (std::size_t i = first; i < n; ++i)
        if (LowerCase(TrimBlanks(strings_[i])) == v) return static_cast<std::int32_t>(i + 1);
      break;
    }
  }
  return 0;
}

// ---- Spans ---------------------------------------------------------------------

std::int64_t TKColumn::Run(std::int32_t index, std::int64_t step, std::int64_t cap) const {
  // Every neighbour is compared with the element at `index`, not with the
  // previous neighbour: with the Double tolerance that is not the same.
  std::int64_t k = 1;
  if (!Valid(index)) return 1;
  const auto at = static_cast<std::size_t>(index - 1);
  auto scan = [&](auto&& equal) {
    for (std::int64_t j = index + step; k < cap && j >= 1 && j <= count_; j += step, ++k)
      if (!equal(static_cast<std::size_t>(j - 1))) break;
  };
  switch (type_) {
    case TKColumnType_Double:
      scan([&](std::size_t j) { return AreDoublesEqual(doubles_[at], doubles_[j]); });
      break;
    case TKColumnType_Object: scan([&](std::size_t j) { return objects_[at] == objects_[j]; }); break;
    case TKColumnType_String: {
      const std::string v = LowerCase(strings_[at]);
      scan([&](std::size_t j) { return LowerCase(strings_[j]) == v; });
      break;
    }
    default: break;
  }
  return k;
}

std::int32_t TKColumn::GetSpanLength(std::int32_t index, bool down) const {
  return static_cast<std::int32_t>(Run(index, down ? 1 : -1, INT64_MAX));
}

std::int64_t TKColumn::RunLength(std::int32_t index, std::int64_t cap) const { return Run(index, 1, cap); }

const std::vector<std::int32_t>& TKColumn::SpanStarts() const {
  if (!spansBuilt_) {
    // A column of type None keeps a count without a store, so SetAtGrow can
    // make it absurdly long: the table of span starts could then not be
    // held, which is 7 before anything is allocated.  A table that runs out
    // of memory half-way is released, not kept.
    Tables::CheckElementCount(count_);
    spanStarts_.clear();
    try {
      for (std::int64_t p = 1; p <= count_; p += GetSpanLength(static_cast<std::int32_t>(p), true))
        spanStarts_.push_back(static_cast<std::int32_t>(p));
    } catch (...) {
      std::vector<std::int32_t>().swap(spanStarts_);
      throw;
    }
    spansBuilt_ = true;
  }
  return spanStarts_;
}

std::int32_t TKColumn::Spans() const { return static_cast<std::int32_t>(SpanStarts().size()); }

std::int32_t TKColumn::SpanIndex(std::int32_t index) const {
  const auto& starts = SpanStarts();
  if (index < 1 || static_cast<std::size_t>(index) > starts.size()) return 0;
  return starts[static_cast<std::size_t>(index - 1)];
}

Variant TKColumn::SpanValue(std::int32_t index) const {
  const std::int32_t first = SpanIndex(index);
  return first == 0 ? Variant() : GetAt(first);
}

std::int32_t TKColumn::IndexSpan(std::int32_t index) const {
  if (!Valid(index)) return 0;
  const auto& starts = SpanStarts();
  // Spans cover 1..count without gaps: the span of `index` is the last one
  // starting at or before it.
  return static_cast<std::int32_t>(std::upper_bound(starts.begin(), starts.end(), index) - starts.begin());
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKColumn)

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKColumnTypes, "TKColumn", TKColumnType_None, TKColumnType_Double,
                        TKColumnType_Object, TKColumnType_String)
