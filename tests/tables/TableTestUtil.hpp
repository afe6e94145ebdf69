// Helpers shared by the table tests: late-bound calls, error numbers, random
// column sets with many ties, and cell-by-cell comparison.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "automation/Catalogue.hpp"
#include "tables/TK2DArray.hpp"
#include "tables/TKColumn.hpp"
#include "tables/TKColumnSet.hpp"
#include "TestSupport.hpp"

namespace TessarkAO::TestUtil {

using Testing::ErrorOf;

inline Variant Invoke(const Ref<Object>& o, std::string_view name, CallKind kind, std::vector<Variant> args = {}) {
  return o->Invoke(name, kind, args);
}

inline ParamArray List(const std::vector<std::int32_t>& numbers) {
  ParamArray p{SafeArray::Vector(VarType::Variant, 0, static_cast<std::int32_t>(numbers.size()) - 1)};
  for (std::size_t i = 0; i < numbers.size(); ++i) p.items.Data()[i] = Variant(numbers[i]);
  return p;
}

inline Ref<TK2DArray> Spans(const std::vector<std::array<double, 2>>& rows) {
  auto t = MakeRef<TK2DArray>();
  t->AssignSpans(rows);
  return t;
}

using Table = std::vector<std::vector<double>>;

inline Table RowsOf(const TK2DArray& t) {
  Table out;
  for (std::int32_t r = 1; r <= t.Rows(); ++r) {
    out.emplace_back();
    for (std::int32_t c = 1; c <= t.Columns(); ++c) out.back().push_back(t.GetValue(r, c));
  }
  return out;
}

// Identical values: Doubles bit for bit (NaN included), objects by identity.
inline bool SameCell(const Variant& a, const Variant& b) {
  if (a.Type() != b.Type()) return false;
  if (a.Type() == VarType::Double)
    return std::bit_cast<std::uint64_t>(a.AsDouble()) == std::bit_cast<std::uint64_t>(b.AsDouble());
  return SameValue(a, b);
}

inline ::testing::AssertionResult SameCells(const TKColumnSet& x, const TKColumnSet& y) {
  if (x.NumberOfRows() != y.NumberOfRows() || x.NumberOfColumns() != y.NumberOfColumns())
    return ::testing::AssertionFailure() << "shapes differ";
  for (std::int32_t c = 1; c <= x.NumberOfColumns(); ++c) {
    const TKColumn& a = *x.Item(c);
    const TKColumn& b = *y.Item(c);
    if (a.NumberOfElements() != b.NumberOfElements()) return ::testing::AssertionFailure() << "column " << c;
    for (std::int32_t r = 1; r <= a.NumberOfElements(); ++r)
      if (!SameCell(a.GetAt(r), b.GetAt(r)))
        return ::testing::AssertionFailure() << "cell (" << r << ", " << c << "): " << ToString(a.GetAt(r).IsObject() ? Variant("obj") : a.GetAt(r))
                                             << " vs " << ToString(b.GetAt(r).IsObject() ? Variant("obj") : b.GetAt(r));
  }
  return ::testing::AssertionSuccess();
}

// The same rows and cells, each column keeping its own length.
inline Ref<TKColumnSet> Clone(const TKColumnSet& s) {
  auto out = MakeRef<TKColumnSet>();
  out->LetNumberOfRows(s.NumberOfRows());
  for (std::int32_t c = 1; c <= s.NumberOfColumns(); ++c) {
    const TKColumn& from = *s.Item(c);
    Ref<TKColumn> to = out->AddColumn(from.ColumnType());
    to->LetNumberOfElements(from.NumberOfElements());
    for (std::int32_t r = 1; r <= from.NumberOfElements(); ++r) to->SetAt(r, from.GetAt(r));
  }
  return out;
}

// Values drawn from small pools so that ties, values equal within 1e-10,
// texts differing only in case or blanks, and shared objects are common.
class Values {
 public:
  explicit Values(bool withNaN = false) : withNaN_(withNaN) {
    for (int i = 0; i < 4; ++i) objects_.push_back(MakeRef<TKColumn>());
  }
  Variant Double(std::mt19937& rng) const {
    static const double pool[] = {0.0, -0.0, 1.0, 1.0 + 5e-11, 1.0 - 5e-11, 1.0 + 1.5e-10, 2.0, 2.0 + 1e-10,
                                  -3.5, 1e300, -1e300, 3.0, 3.0, 1.0, 2.0};
    if (withNaN_ && rng() % 12 == 0) return Variant(std::numeric_limits<double>::quiet_NaN());
    return Variant(pool[rng() % std::size(pool)]);
  }
  Variant String(std::mt19937& rng) const {
    static const char* pool[] = {"a", "A", "b", " a", "a ", "B", "ab", "Ab", "", "\xC3\xA9", "\xC3\x89", "z", "a"};
    return Variant(pool[rng() % std::size(pool)]);
  }
  Variant Object(std::mt19937& rng) const {
    const std::size_t i = rng() % (objects_.size() + 1);
    return i == objects_.size() ? Variant::Nothing() : Variant(objects_[i]);
  }
  Variant Of(std::int32_t type, std::mt19937& rng) const {
    switch (type) {
      case TKColumnType_Double: return Double(rng);
      case TKColumnType_String: return String(rng);
      case TKColumnType_Object: return Object(rng);
      default: return Variant();
    }
  }
  static std::int32_t RandomType(std::mt19937& rng) {
    static const std::int32_t types[] = {TKColumnType_Double, TKColumnType_Double, TKColumnType_String,
                                         TKColumnType_String, TKColumnType_Object, TKColumnType_None};
    return types[rng() % std::size(types)];
  }

 private:
  bool withNaN_;
  std::vector<Ref<TessarkAO::Object>> objects_;
};

inline Ref<TKColumnSet> RandomSet(std::mt19937& rng, const Values& values, std::int32_t rows, std::int32_t cols) {
  auto set = MakeRef<TKColumnSet>();
  set->LetNumberOfRows(rows);
  for (std::int32_t c = 0; c < cols; ++c) {
    Ref<TKColumn> col = set->AddColumn(Values::RandomType(rng));
    for (std::int32_t r = 1; r <= rows; ++r) col->SetAt(r, values.Of(col->ColumnType(), rng));
  }
  return set;
}

}  // namespace TessarkAO::TestUtil
