// TKColumnSet: a table of TKColumns that all have the same number of rows.
//
// It adds rows and columns, reads cells, copies and merges row ranges,
// reports span information (groups of consecutive rows with equal values in
// one or several columns) as TK2DArray span tables (column 1 the first row,
// column 2 the last row of a span, one row per span, top to bottom), and
// sorts its rows on several keys.
//
// The sort is defined as a key-by-key bubble sort inside spans: for each key
// in turn, the context spans are refined by every earlier key and each
// resulting span is bubble-sorted on the key, exchanging rows m and m + 1
// when row m is greater (ascending) or when it is *not* greater (descending:
// tied rows are exchanged at every comparison, so they end in a rotated
// order; this is intended and callers rely on it).  The result is that of the
// last exchange attempted.  SpanSort computes exactly that outcome without
// running the passes.
//
// Invariant kept by the set's own operations: every column holds
// NumberOfRows elements.  A caller who resizes a column taken out with Item
// breaks it; the set does not re-check, and a sort of such a set runs the
// passes one by one as they are defined.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/Members.hpp"
#include "frame/PublishedEnums.hpp"
#include "tables/SpanSort.hpp"
#include "tables/TK2DArray.hpp"
#include "tables/TKColumn.hpp"

namespace TessarkAO {

class TKColumnSet final : public Dispatch<TKColumnSet> {
 public:
  static constexpr std::string_view kClassName = "TKColumnSet";
  static void Describe(ClassBuilder<TKColumnSet>& b);

  TKColumnSet() = default;
  ~TKColumnSet() override;

  // GetAt(row) of the column; Empty for a column outside 1..NumberOfColumns.
  Variant GetElementAt(std::int32_t column, std::int32_t row) const;
  // The column, or Nothing for an invalid index.
  Ref<TKColumn> Item(std::int32_t index) const;
  std::int32_t NumberOfRows() const noexcept { return rows_; }
  // Stores the count and gives every column that many elements.
  void LetNumberOfRows(std::int32_t n);
  std::int32_t NumberOfColumns() const noexcept { return static_cast<std::int32_t>(columns_.size()); }
  Ref<TKColumn> AddColumn(std::int32_t columnType);
  void AddRow();
  // The groups of rows in which all listed columns are equal (the first
  // column's spans refined by each further one); Nothing for an empty list.
  // Each entry is converted to a Long: an array is not accepted here.
  Ref<TK2DArray> GetSpanInformationForColumns(const ParamArray& columns);
  // The runs of equal values of the column inside each span of `span`, in
  // its order; a run never crosses a span's end.  An empty table for an
  // invalid column; 91 for a Nothing span table.
  Ref<TK2DArray> GetSpanInformationWithSpanContext(std::int32_t column, Ref<TK2DArray> span);
  // The column's spans; an empty table for an invalid column.
  Ref<TK2DArray> GetSpanInformation(std::int32_t column);
  // Sorts the rows of each span of SpanContext on the listed columns (rows
  // never cross a span's bounds).  ColumnOrder is the column numbers, or one
  // array of them.  A sort type other than Ascending or Descending compares
  // nothing.  9 when a comparison on a column number out of range is due;
  // 91 for a Nothing context, 9 for a context without rows or columns.
  bool SortWithSpanContext(Ref<TK2DArray> spanContext, std::int32_t sortType, const ParamArray& columnOrder);
  // SortWithSpanContext over the span of all rows.
  bool Sort(std::int32_t sortType, const ParamArray& columnOrder);
  // A new set with the same column types holding rows StartRow..EndingRow;
  // rows outside this set keep the columns' default values.
  Ref<TKColumnSet> CreateColumnSetFromRows(std::int32_t startRow, std::int32_t endingRow);
  // Overwrites rows StartRow.. with the other set's cells (values of another
  // type are skipped); False, with nothing changed, unless the other set's
  // rows fit from StartRow on.  91 when the other set lacks one of this
  // set's columns (and has rows).
  bool MergeColumnSet(Ref<TKColumnSet> pColumnSet, std::int32_t startRow);

 private:
  bool ValidColumn(std::int32_t column) const noexcept {
    return column >= 1 && static_cast<std::size_t>(column) <= columns_.size();
  }
  TKColumn& Column(std::int32_t column) const;  // 9 when invalid
  bool SwapRows(std::int32_t row1, std::int32_t row2);
  Tables::SpanTable SpansOf(std::int32_t column) const;
  Tables::SpanTable RefineBy(std::int32_t column, const Tables::SpanTable& table) const;
  bool Consistent() const noexcept;
  bool SortStepByStep(const Ref<TK2DArray>& spanContext, std::int32_t sortType,
                      const std::vector<std::int32_t>& order);

  std::vector<Ref<TKColumn>> columns_;
  std::int32_t rows_ = 0;
};

}  // namespace TessarkAO
