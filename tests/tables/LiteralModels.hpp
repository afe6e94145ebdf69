// The table algorithms exactly as they are defined, step by step and slow,
// written only against the classes' elementary members (GetAt, SetAt,
// NumberOfElements, the 2D array's cells).  The tests and the benchmark
// compare the fast implementations with these.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "tables/TK2DArray.hpp"
#include "tables/TKColumn.hpp"
#include "tables/TKColumnSet.hpp"

namespace TessarkAO::Literal {

inline bool Valid(const TKColumn& c, std::int64_t i) { return i >= 1 && i <= c.NumberOfElements(); }

inline bool ElementsEqual(const TKColumn& c, std::int64_t i, std::int64_t j) {
  if (!Valid(c, i) || !Valid(c, j)) return false;
  const Variant a = c.GetAt(static_cast<std::int32_t>(i)), b = c.GetAt(static_cast<std::int32_t>(j));
  switch (c.ColumnType()) {
    case TKColumnType_Double: return std::fabs(b.AsDouble() - a.AsDouble()) - 1e-10 <= 0;
    case TKColumnType_Object: return a.AsObject().get() == b.AsObject().get();
    case TKColumnType_String: return LowerCase(a.AsString()) == LowerCase(b.AsString());
    default: return false;
  }
}

inline bool Greater(const TKColumn& c, std::int64_t i, std::int64_t j) {
  if (!Valid(c, i) || !Valid(c, j)) return false;
  const Variant a = c.GetAt(static_cast<std::int32_t>(i)), b = c.GetAt(static_cast<std::int32_t>(j));
  switch (c.ColumnType()) {
    case TKColumnType_Double: return a.AsDouble() > b.AsDouble();
    case TKColumnType_Object: {
      auto key = [](const Variant& v) {
        return static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(v.AsObject().get()) & 0xFFFFFFFFu);
      };
      return key(a) > key(b);
    }
    case TKColumnType_String: return CompareCodeUnits(LowerCase(a.AsString()), LowerCase(b.AsString())) > 0;
    default: return false;
  }
}

inline std::int32_t SpanLength(const TKColumn& c, std::int64_t index, bool down) {
  std::int32_t k = 1;
  for (;;) {
    const std::int64_t j = down ? index + k : index - k;
    if (down ? j > c.NumberOfElements() : j < 1) break;
    if (!ElementsEqual(c, index, j)) break;
    ++k;
  }
  return k;
}

inline std::int32_t Spans(const TKColumn& c) {
  std::int32_t n = 0;
  for (std::int64_t p = 1; p <= c.NumberOfElements(); p += SpanLength(c, p, true)) ++n;
  return n;
}

inline std::int32_t SpanIndex(const TKColumn& c, std::int32_t s) {
  if (s < 1) return 0;
  std::int32_t number = 1;
  for (std::int64_t p = 1; p <= c.NumberOfElements(); p += SpanLength(c, p, true), ++number)
    if (number == s) return static_cast<std::int32_t>(p);
  return 0;
}

inline std::int32_t IndexSpan(const TKColumn& c, std::int32_t i) {
  for (std::int32_t s = 1; s <= Spans(c); ++s) {
    const std::int32_t start = SpanIndex(c, s), end = start + SpanLength(c, start, true) - 1;
    if (start <= i && i <= end) return s;
  }
  return 0;
}

// A span table kept in a TK2DArray grown row by row.
inline void Append(TK2DArray& t, double first, double last) {
  if (t.Rows() == 0)
    t.SetDimensions(1, 2, false);
  else
    t.AddRow();
  t.SetValue(t.Rows(), 1, first);
  t.SetValue(t.Rows(), 2, last);
}

inline Ref<TK2DArray> SpanInformation(const TKColumnSet& set, std::int32_t column) {
  auto t = MakeRef<TK2DArray>();
  Ref<TKColumn> c = set.Item(column);
  if (!c) return t;
  for (std::int64_t p = 1; p <= c->NumberOfElements();) {
    const std::int32_t length = SpanLength(*c, p, true);
    Append(*t, static_cast<double>(p), static_cast<double>(p + length - 1));
    p += length;
  }
  return t;
}

inline Ref<TK2DArray> SpanInformationWithContext(const TKColumnSet& set, std::int32_t column,
                                                 const TK2DArray& span) {
  auto t = MakeRef<TK2DArray>();
  Ref<TKColumn> c = set.Item(column);
  if (!c) return t;
  for (std::int32_t r = 1; r <= span.Rows(); ++r) {
    std::int64_t p = RoundToLong(span.GetValue(r, 1));
    while (static_cast<double>(p) <= span.GetValue(r, 2) && p <= c->NumberOfElements()) {
      std::int64_t length = SpanLength(*c, p, true);
      const std::int64_t e = p + length - 1;
      if (static_cast<double>(e) <= span.GetValue(r, 2)) {
        Append(*t, static_cast<double>(p), static_cast<double>(e));
      } else {
        Append(*t, static_cast<double>(p), span.GetValue(r, 2));
        length = RoundToLong(span.GetValue(r, 2) - span.GetValue(r, 1) + 1);
        if (length == 0) Raise(Err::OutOfMemory);  // the same span for ever
      }
      p += length;
    }
  }
  return t;
}

inline bool SwapRows(TKColumnSet& set, std::int64_t r1, std::int64_t r2) {
  if (r1 < 1 || r1 > set.NumberOfRows() || r2 < 1 || r2 > set.NumberOfRows()) return false;
  for (std::int32_t c = 1; c <= set.NumberOfColumns(); ++c) {
    TKColumn& col = *set.Item(c);
    const auto a = static_cast<std::int32_t>(r1), b = static_cast<std::int32_t>(r2);
    if (!Valid(col, a) || !Valid(col, b)) continue;
    const Variant copy = col.GetAt(a);
    if (col.SetAt(a, col.GetAt(b))) col.SetAt(b, copy);
  }
  return true;
}

// SortWithSpanContext with the column order already normalised.
inline bool Sort(TKColumnSet& set, const Ref<TK2DArray>& context, std::int32_t sortType,
                 const std::vector<std::int32_t>& order) {
  bool result = false;
  for (std::size_t k = 0; k < order.size(); ++k) {
    if (!context) Raise(Err::ObjectNotSet);
    auto table = MakeRef<TK2DArray>();
    table->SetDimensions(context->Rows(), context->Columns(), false);
    table->Copy(context);
    for (std::size_t j = 0; j < k; ++j) table = SpanInformationWithContext(set, order[j], *table);
    for (std::int32_t s = 1; s <= table->Rows(); ++s) {
      const std::int64_t start = RoundToLong(table->GetValue(s, 1));
      const std::int64_t end = RoundToLong(table->GetValue(s, 2));
      for (std::int64_t i = start; i <= end - 1; ++i) {
        for (std::int64_t m = start; m <= end - 1; ++m) {
          if (sortType != TKColumnSetSort_Ascending && sortType != TKColumnSetSort_Descending) continue;
          Ref<TKColumn> key = set.Item(order[k]);
          if (!key) Raise(Err::SubscriptOutOfRange);
          const bool greater = Greater(*key, m, m + 1);
          if (sortType == TKColumnSetSort_Ascending ? greater : !greater) result = SwapRows(set, m, m + 1);
        }
      }
    }
  }
  return result;
}

}  // namespace TessarkAO::Literal
