// TKColumn: one typed, 1-based, growable column of values.
//
// A column holds Doubles, object references or Strings, chosen once by its
// first ColumnType let.  It is the building block of TKColumnSet and may be
// used on its own.  A valid index is 1 <= index <= NumberOfElements; an
// invalid one gives a neutral result (False, 0 or Empty), not an error.
//
// Two relations between elements, deliberately different:
//  - equal (Find, spans, GetSpanLength): Doubles within 1e-10 of each other,
//    Strings equal after lower-casing (Find also trims blanks), objects by
//    identity;
//  - ordered after (IsFirstValueGreater, the column set's sort): Doubles by
//    exact comparison, Strings by lower-cased UTF-16 code units (no
//    trimming), objects by their address taken as a signed 32-bit number
//    (arbitrary but consistent).
// A span is a maximal run of consecutive elements equal to the run's first
// element; after a sort, spans are the groups of equal values.  The span
// queries are answered from a table of span starts built once after each
// change, instead of walking the column from the top on every call.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "automation/Members.hpp"
#include "frame/PublishedEnums.hpp"

namespace TessarkAO {

class TKColumn final : public Dispatch<TKColumn> {
 public:
  static constexpr std::string_view kClassName = "TKColumn";
  static void Describe(ClassBuilder<TKColumn>& b);

  TKColumn() = default;
  ~TKColumn() override;

  // Index of the first element at or after StartingIndex equal to Value
  // (converted to the column's type: 13 when it does not convert and an
  // element is visited); 0 when none.  Strings are compared trimmed and
  // lower-cased.  A StartingIndex below 1 on a typed column with elements
  // raises 9.
  std::int32_t Find(const Variant& value, std::int32_t startingIndex = 1);
  bool IsFirstValueGreater(std::int32_t index1, std::int32_t index2) const;
  // First element index of span number `index`, or 0.
  std::int32_t SpanIndex(std::int32_t index) const;
  // Value of the first element of span number `index`; Empty outside 1..Spans.
  Variant SpanValue(std::int32_t index) const;
  std::int32_t Spans() const;
  // Length of the run of elements equal to element(index), counted from
  // index towards higher indices (down) or lower ones, index included;
  // always at least 1.
  std::int32_t GetSpanLength(std::int32_t index, bool down) const;
  std::int32_t ColumnType() const noexcept { return type_; }
  // Takes effect only while the type is None; later lets are ignored.  A
  // code outside TKColumnTypes is ignored like 0 and leaves the type open.
  void LetColumnType(std::int32_t type);
  // Exchanges two elements.  Deliberately True when either index is
  // invalid (the column is left as it is); False on a None column.
  bool Swap(std::int32_t index1, std::int32_t index2);
  std::int32_t NumberOfElements() const noexcept { return count_; }
  // Stores the count whatever the type and resizes the store, keeping the
  // values (a count of 0 or less releases it).  7 for an absurd count.
  void LetNumberOfElements(std::int32_t n);
  // Fill pValues with a copy of the elements, bounds 1..count, and return
  // the count; with no elements pValues is left as it is.  The store read is
  // the one the method names: on a column of another type, 9.
  std::int32_t GetObjectValues(Variant& pValues) const;
  std::int32_t GetDoubleValues(Variant& pValues) const;
  std::int32_t GetStringValues(Variant& pValues) const;
  // SetAt(p + lowerBound - 1, Values(p)) for every position p of the array,
  // results ignored: a 1-based array maps position p to index p, any other
  // lower bound shifts the targets by lowerBound - 1 (a 0-based array loses
  // positions 0 and 1).  The count never changes.
  void SetDoubleValues(const Variant& values);
  void SetObjectValues(const Variant& values);
  void SetStringValues(const Variant& values);
  Variant GetAt(std::int32_t index) const;
  // Stores Element when the index is valid and its type fits the column:
  // a Double column takes Double, Decimal, Integer, Long, Single and Byte
  // (exactly these), an Object column an object or Nothing, a String column
  // a String.  False otherwise, with nothing stored.
  bool SetAt(std::int32_t index, const Variant& element);
  bool Add(const Variant& element);
  // Grows the count to Index first when it is larger (also when SetAt then
  // rejects the element, and on a None column), then SetAt.
  bool SetAtGrow(std::int32_t index, const Variant& element);
  // Always False, also after a successful removal.  See the .cpp for what it
  // does to Double columns; callers depend on that as it stands.
  bool RemoveAt(std::int32_t index);
  // Number of the span that contains element `index`, or 0.
  std::int32_t IndexSpan(std::int32_t index) const;

  // ---- Library use (not part of the automation interface) ----------------
  const std::vector<double>& DoubleStore() const noexcept { return doubles_; }
  const std::vector<std::string>& StringStore() const noexcept { return strings_; }
  const std::vector<Ref<Object>>& ObjectStore() const noexcept { return objects_; }
  // GetSpanLength(index, True) counting at most `cap` elements (cap >= 1).
  std::int64_t RunLength(std::int32_t index, std::int64_t cap) const;
  // Reorders the elements: element i (0-based) becomes the old element
  // order[i].  `order` is a permutation of 0..count-1.
  void Permute(const std::vector<std::int32_t>& order);
  // The ordering key of an object: its address as a signed 32-bit number.
  static std::int32_t ObjectOrderKey(const Object* o) noexcept;
  // Double equality of the spans and Find: |b - a| - 1e-10 <= 0.
  static bool AreDoublesEqual(double a, double b) noexcept;

 private:
  bool Valid(std::int32_t index) const noexcept { return index >= 1 && index <= count_; }
  bool AreElementsEqual(std::int32_t index1, std::int32_t index2) const;
  std::int64_t Run(std::int32_t index, std::int64_t step, std::int64_t cap) const;
  void Changed() noexcept { spansBuilt_ = false; }
  const std::vector<std::int32_t>& SpanStarts() const;
  void SetValues(const Variant& values);

  std::int32_t type_ = TKColumnType_None;
  std::int32_t count_ = 0;
  std::vector<double> doubles_;
  std::vector<std::string> strings_;
  std::vector<Ref<Object>> objects_;
  // First index of every span, ascending; valid while spansBuilt_.
  mutable std::vector<std::int32_t> spanStarts_;
  mutable bool spansBuilt_ = false;
};

}  // namespace TessarkAO
