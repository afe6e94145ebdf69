// SpanSort: the span tables and the row sort of TKColumnSet.
//
// A column set sorts its rows key by key: for each key, the rows are grouped
// into the spans of a context table refined by every earlier key, and each
// span is bubble-sorted on the key (see TKColumnSet).  The observable outcome
// of that procedure (the final row order, including the order in which a
// descending sort leaves tied rows, and the Boolean result) is computed here
// directly, in O(n log n) per span and key:
//
//  - Ascending: the bubble sort exchanges only strictly greater neighbours,
//    so a span ends as a stable sort of its rows; extra passes change
//    nothing.
//  - Descending: with the order mirrored, the bubble sort exchanges
//    neighbours that are greater *or equal*.  After its passes the keys are
//    in order (a span gives at least as many passes as it has rows minus
//    one); inside a group of equal keys, the rows that have no smaller key
//    before them form a front run, and every pass moves the first row of
//    that run behind the run's last row, while a row with c smaller keys
//    before it joins the back of the run after c passes.  That queue is
//    replayed for each group from the join times (counted with a Fenwick
//    tree) and the number of passes, without stepping through the passes.
//
// A Double key may hold NaN, which is never greater than anything nor
// anything greater than it.  Ascending, a NaN row never moves and rows never
// pass it.  Descending, every comparison with a NaN exchanges: a NaN on the
// span's first row is carried to its last row (all other rows move up one
// and nothing else changes in that pass), any other NaN moves up one row
// per pass, and the other rows make an ordinary pass among themselves.  So
// the NaN rows rotate up through the span, and the other rows see one pass
// less for every pass that starts with a NaN.
//
// Rows are not moved while a sort runs: the engine keeps the order as a
// permutation and the columns are permuted once at the end (also when an
// error stops the sort part way, so what was sorted stays sorted).
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "tables/TableLimits.hpp"

namespace TessarkAO {
class TKColumn;
}

namespace TessarkAO::Tables {

// One row of a span table: first row and last row, as the table holds them.
using SpanRow = std::array<double, 2>;
using SpanTable = std::vector<SpanRow>;

// Refines the spans of `context` by one column: for every context row, the
// runs of equal elements (each compared with the run's first element) from
// its first row on, a run reaching past the context row's end being cut
// there; rows past `count` end a context row.  `runLength(p, cap)` gives the
// length of the run from element p, counting at most `cap` elements.
//
// The context's values are used as they stand: the first row is rounded to
// a whole row (6 when out of range) and compared with the end as a Double.
// A cut run takes the context row's own length as its step (end - start + 1,
// rounded); the step is kept even though it can end the row early.  With
// `skipBeforeFirst` the one-row spans that rows below 1 give are left out
// (they take part in nothing a sort does).
template <class RunLength>
SpanTable RefineSpans(const SpanTable& context, std::int64_t count, RunLength&& runLength,
                      bool skipBeforeFirst);

// The sort of a column set whose columns all hold `rows` elements.
class SortEngine {
 public:
  SortEngine(std::vector<TKColumn*> columns, std::int32_t rows);
  ~SortEngine();
  SortEngine(const SortEngine&) = delete;
  SortEngine& operator=(const SortEngine&) = delete;

  bool ValidColumn(std::int32_t column) const noexcept;
  // RefineSpans on the current row order; an invalid column gives no spans.
  SpanTable Refine(std::int32_t column, const SpanTable& table);
  // Sorts rows start..end (context rows, possibly reaching outside
  // 1..rows) on `column` as end - start passes of the bubble sort do, and
  // updates `result` with the outcome of the last exchange those passes
  // would attempt.  Requires end > start and a valid column.
  void SortSpan(std::int32_t column, std::int64_t start, std::int64_t end, bool descending, bool& result);
  // Moves the rows of every column into the order reached.
  void Apply();

 private:
  struct Key;
  const Key& KeyOf(std::int32_t column);
  bool Equal(const Key& key, std::int32_t rowA, std::int32_t rowB) const;
  bool Ascend(const Key& key, std::int64_t lo, std::int64_t hi);
  void Descend(const Key& key, std::int64_t lo, std::int64_t hi, std::int64_t passes, bool& attemptedAny,
               bool& attemptedLast);

  std::vector<TKColumn*> columns_;
  std::int32_t rows_;
  std::vector<std::int32_t> perm_;  // position (0-based) -> original row (0-based)
  bool moved_ = false;
  std::vector<std::unique_ptr<Key>> keys_;  // by column, built on first use
};

// ---- template implementation ----------------------------------------------

std::int32_t RoundSpanValue(double v);  // to a Long, half to even; 6 out of range
std::int32_t SpanStep(double first, double last);  // the step of a cut run

template <class RunLength>
SpanTable RefineSpans(const SpanTable& context, std::int64_t count, RunLength&& runLength,
                      bool skipBeforeFirst) {
  SpanTable out;
  for (const SpanRow& row : context) {
    if (out.size() > static_cast<std::size_t>(kMaxElements / 2)) Raise(Err::OutOfMemory);
    const double first = row[0], last = row[1];
    std::int64_t p = RoundSpanValue(first);
    while (static_cast<double>(p) <= last && p <= count) {
      if (p < 1) {
        // No element there: a run of one.
        if (skipBeforeFirst) {
          p = 1;
          continue;
        }
        if (out.size() > static_cast<std::size_t>(kMaxElements / 2)) Raise(Err::OutOfMemory);
        out.push_back({static_cast<double>(p), static_cast<double>(p)});
        ++p;
        continue;
      }
      // The run is cut when it ends past floor(last); count at most one
      // element beyond that point.
      const double bound = last < static_cast<double>(count) ? last : static_cast<double>(count);
      const std::int64_t cap = static_cast<std::int64_t>(bound) - p + 1;  // >= 1 here
      const std::int64_t length = runLength(p, cap + 1);
      if (length <= cap) {
        out.push_back({static_cast<double>(p), static_cast<double>(p + length - 1)});
        p += length;
      } else {
        out.push_back({static_cast<double>(p), last});
        p = AddLong(p, SpanStep(first, last));
      }
    }
  }
  return out;
}

}  // namespace TessarkAO::Tables
