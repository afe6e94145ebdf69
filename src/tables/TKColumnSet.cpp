#include "tables/TKColumnSet.hpp"

#include <algorithm>

#include "automation/Catalogue.hpp"
#include "automation/Enumerations.hpp"
#include "tables/TableLimits.hpp"

namespace TessarkAO {

using Tables::SpanTable;

void TKColumnSet::Describe(ClassBuilder<TKColumnSet>& b) {
  b.Method<&TKColumnSet::GetElementAt>(
       "GetElementAt", Names{"Column", "Row"},
       Doc{"GetAt(Row) of column Column; Empty for a column outside 1 to NumberOfColumns."})
      .Method<&TKColumnSet::Item>("Item", Names{"Index"},
                                  Doc{"Column Index (from 1), or Nothing for an invalid index."})
      .Default()
      .Property<&TKColumnSet::NumberOfRows, &TKColumnSet::LetNumberOfRows>(
          "NumberOfRows", Doc{"The number of rows; assigning gives every column that many elements."})
      .Get<&TKColumnSet::NumberOfColumns>("NumberOfColumns", Doc{"The number of columns."})
      .Method<&TKColumnSet::AddColumn>("AddColumn", Names{"ColumnType"},
                                       Doc{"Appends a new TKColumn of ColumnType (TKColumnTypes) with "
                                           "NumberOfRows elements and returns it."})
      .Method<&TKColumnSet::AddRow>("AddRow", Doc{"Appends a row to every column."})
      .Method<&TKColumnSet::GetSpanInformationForColumns>(
          "GetSpanInformationForColumns", Names{"Columns"},
          Doc{"The groups of rows in which all listed columns are equal, as a span table (TK2DArray of first "
              "and last rows); Nothing for an empty list."})
      .Method<&TKColumnSet::GetSpanInformationWithSpanContext>(
          "GetSpanInformationWithSpanContext", Names{"Column", "Span"},
          Doc{"The runs of equal values of column Column inside each span of SpanContext, as a span table; a "
              "run never crosses a span's end. 91 for a Nothing span table."})
      .Method<&TKColumnSet::GetSpanInformation>("GetSpanInformation", Names{"Column"},
                                                Doc{"The spans (runs of equal values) of column Column as a "
                                                    "span table; an empty table for an invalid column."})
      .Method<&TKColumnSet::SortWithSpanContext>(
          "SortWithSpanContext", Names{"SpanContext", "SortType", "ColumnOrder"},
          Doc{"Sorts the rows inside each span of SpanContext on the listed columns (TKColumnSetSort order; "
              "a column list or one array of column numbers). 9 for a column out of range, 91 for a Nothing "
              "context."})
      .Method<&TKColumnSet::Sort>("Sort", Names{"SortType", "ColumnOrder"},
                                  Doc{"Sorts all rows on the listed columns (TKColumnSetSort order), as "
                                      "SortWithSpanContext over one span."})
      .Method<&TKColumnSet::CreateColumnSetFromRows>(
          "CreateColumnSetFromRows", Names{"StartRow", "EndingRow"},
          Doc{"A new set with the same column types holding rows StartRow to EndingRow."})
      .Method<&TKColumnSet::MergeColumnSet>(
          "MergeColumnSet", Names{"pColumnSet", "StartRow"},
          Doc{"Overwrites rows from StartRow on with pColumnSet's cells (values of another type are "
              "skipped); False, with nothing changed, unless its rows fit. 91 when it lacks one of this "
              "set's columns."});
}

TKColumnSet::~TKColumnSet() { columns_.clear(); }

// ---- Cells, rows and columns ----------------------------------------------------

TKColumn& TKColumnSet::Column(std::int32_t column) const {
  if (!ValidColumn(column)) Raise(Err::SubscriptOutOfRange);
  return *columns_[static_cast<std::size_t>(column - 1)];
}

Variant TKColumnSet::GetElementAt(std::int32_t column, std::int32_t row) const {
  if (!ValidColumn(column)) return Variant();
  return Column(column).GetAt(row);
}

Ref<TKColumn> TKColumnSet::Item(std::int32_t index) const {
  if (!ValidColumn(index)) return Ref<TKColumn>();
  return columns_[static_cast<std::size_t>(index - 1)];
}

void TKColumnSet::LetNumberOfRows(std::int32_t n) {
  if (!columns_.empty() && n > 0) Tables::CheckElementCount(n);
  rows_ = n;
  for (auto& c : columns_) c->LetNumberOfElements(n);
}

Ref<TKColumn> TKColumnSet::AddColumn(std::int32_t columnType) {
  auto column = MakeRef<TKColumn>();
  column->LetColumnType(columnType);
  if (rows_ > 0) column->LetNumberOfElements(rows_);
  columns_.push_back(column);
  return column;
}

void TKColumnSet::AddRow() {
  rows_ = Tables::AddLong(rows_, 1);
  for (auto& c : columns_) c->LetNumberOfElements(rows_);
}

bool TKColumnSet::SwapRows(std::int32_t row1, std::int32_t row2) {
  if (row1 < 1 || row1 > rows_ || row2 < 1 || row2 > rows_) return false;
  for (auto& c : columns_) c->Swap(row1, row2);
  return true;
}

// ---- Span information --------------------------------------------------------------

SpanTable TKColumnSet::SpansOf(std::int32_t column) const {
  SpanTable table;
  if (!ValidColumn(column)) return table;
  const TKColumn& c = Column(column);
  const std::int32_t spans = c.Spans();
  table.reserve(static_cast<std::size_t>(spans));
  for (std::int32_t s = 1; s <= spans; ++s) {
    const std::int32_t first = c.SpanIndex(s);
    const std::int32_t last = s < spans ? c.SpanIndex(s + 1) - 1 : c.NumberOfElements();
    table.push_back({static_cast<double>(first), static_cast<double>(last)});
  }
  return table;
}

SpanTable TKColumnSet::RefineBy(std::int32_t column, const SpanTable& table) const {
  if (!ValidColumn(column)) return {};
  const TKColumn& c = Column(column);
  return Tables::RefineSpans(
      table, c.NumberOfElements(),
      [&c](std::int64_t p, std::int64_t cap) { return c.RunLength(static_cast<std::int32_t>(p), cap); },
      false);
}

namespace {

Ref<TK2DArray> ToArray(const SpanTable& table) {
  auto out = MakeRef<TK2DArray>();
  out->AssignSpans(table);
  return out;
}

// The span table a caller passes, as a sort copies it: Rows x Columns of
// it, reading 0 for a second column it lacks.
SpanTable ContextOf(const Ref<TK2DArray>& context) {
  if (!context) Raise(Err::ObjectNotSet);
  const std::int32_t rows = context->Rows(), cols = context->Columns();
  // The copy is dimensioned like the context: without rows or columns it
  // cannot be.
  if (rows < 1 || cols < 1) Raise(Err::SubscriptOutOfRange);
  Tables::CheckElementCount(std::int64_t{rows} * 2);
  SpanTable table(static_cast<std::size_t>(rows));
  for (std::int32_t r = 1; r <= rows; ++r)
    table[static_cast<std::size_t>(r - 1)] = {context->GetValue(r, 1), context->GetValue(r, 2)};
  return table;
}

// The column numbers of a sort: the entries of the list, or the elements of
// the one array it holds (an array of Integer, Long or Variant), each as a
// Long.  Sort hands its own list on as one entry, so an array passed to Sort
// is unwrapped twice.
std::vector<std::int32_t> ColumnNumbers(const SafeArray& list, bool unwrap) {
  SafeArray items = list;
  while (unwrap && items.Dims() == 1 && items.Size() == 1 && items.Data()[0].IsArray()) {
    const SafeArray& inner = items.Data()[0].AsArray();
    const VarType t = inner.ElementType();
    if (inner.Dims() != 1 || (t != VarType::Integer && t != VarType::Long && t != VarType::Variant)) break;
    SafeArray next = inner;
    items = std::move(next);
  }
  std::vector<std::int32_t> out;
  out.reserve(items.Size());
  for (const Variant& v : items.Data()) out.push_back(ToLong(v));
  return out;
}

}  // namespace

Ref<TK2DArray> TKColumnSet::GetSpanInformation(std::int32_t column) { return ToArray(SpansOf(column)); }

Ref<TK2DArray> TKColumnSet::GetSpanInformationWithSpanContext(std::int32_t column, Ref<TK2DArray> span) {
  if (!ValidColumn(column)) return MakeRef<TK2DArray>();
  if (!span) Raise(Err::ObjectNotSet);
  const std::int32_t rows = span->Rows();
  if (rows > 0) Tables::CheckElementCount(std::int64_t{rows} * 2);  // a row count without values
  SpanTable context(static_cast<std::size_t>(std::max(rows, 0)));
  for (std::int32_t r = 1; r <= rows; ++r)
    context[static_cast<std::size_t>(r - 1)] = {span->GetValue(r, 1), span->GetValue(r, 2)};
  return ToArray(RefineBy(column, context));
}

Ref<TK2DArray> TKColumnSet::GetSpanInformationForColumns(const ParamArray& columns) {
  const std::vector<std::int32_t> numbers = ColumnNumbers(columns.items, false);
  if (numbers.empty()) return Ref<TK2DArray>();
  SpanTable table = SpansOf(numbers[0]);
  for (std::size_t i = 1; i < numbers.size(); ++i) table = RefineBy(numbers[i], table);
  return ToArray(table);
}

// ---- Sorting ---------------------------------------------------------------------

bool TKColumnSet::Consistent() const noexcept {
  for (const auto& c : columns_)
    if (c->NumberOfElements() != rows_) return false;
  return true;
}

bool TKColumnSet::Sort(std::int32_t sortType, const ParamArray& columnOrder) {
  auto context = MakeRef<TK2DArray>();
  context->SetDimensions(1, 2, false);
  context->SetValue(1, 1, 1.0);
  context->SetValue(1, 2, static_cast<double>(rows_));
  // The list goes on as the single entry of a one-entry list.
  ParamArray wrapped;
  wrapped.items = SafeArray::Vector(VarType::Variant, 0, 0);
  wrapped.items.Data()[0] = Variant(columnOrder.items);
  return SortWithSpanContext(context, sortType, wrapped);
}

bool TKColumnSet::SortWithSpanContext(Ref<TK2DArray> spanContext, std::int32_t sortType,
                                      const ParamArray& columnOrder) {
  const std::vector<std::int32_t> order = ColumnNumbers(columnOrder.items, true);
  if (!Consistent()) return SortStepByStep(spanContext, sortType, order);
  const bool compares = sortType == TKColumnSetSort_Ascending || sortType == TKColumnSetSort_Descending;
  std::vector<TKColumn*> columns;
  for (auto& c : columns_) columns.push_back(c.get());
  Tables::SortEngine engine(std::move(columns), rows_);
  bool result = false;
  try {
    for (std::size_t k = 0; k < order.size(); ++k) {
      // The context refined by every earlier key, on the rows as they are now.
      SpanTable table = ContextOf(spanContext);
      for (std::size_t j = 0; j < k; ++j) table = engine.Refine(order[j], table);
      for (const Tables::SpanRow& span : table) {
        // A span's rows are its table values rounded to whole rows; its
        // passes run from the first row to the last row - 1.
        const std::int64_t start = Tables::RoundSpanValue(span[0]);
        const std::int64_t end = Tables::RoundSpanValue(span[1]);
        if (end - start < 1 || !compares) continue;
        if (!engine.ValidColumn(order[k])) Raise(Err::SubscriptOutOfRange);
        engine.SortSpan(order[k], start, end, sortType == TKColumnSetSort_Descending, result);
      }
    }
  } catch (...) {
    engine.Apply();  // what was sorted before the error stays sorted
    throw;
  }
  engine.Apply();
  return result;
}

// The passes one by one, for a set whose columns no longer match its row
// count (comparisons then see each column's own length, exchanges the set's).
bool TKColumnSet::SortStepByStep(const Ref<TK2DArray>& spanContext, std::int32_t sortType,
                                 const std::vector<std::int32_t>& order) {
  bool result = false;
  for (std::size_t k = 0; k < order.size(); ++k) {
    SpanTable table = ContextOf(spanContext);
    for (std::size_t j = 0; j < k; ++j) table = RefineBy(order[j], table);
    for (const Tables::SpanRow& span : table) {
      const std::int64_t start = Tables::RoundSpanValue(span[0]);
      const std::int64_t end = Tables::RoundSpanValue(span[1]);
      if (sortType != TKColumnSetSort_Ascending && sortType != TKColumnSetSort_Descending) continue;
      for (std::int64_t pass = start; pass <= end - 1; ++pass) {
        bool exchanged = false;
        for (std::int64_t m = start; m <= end - 1; ++m) {
          const auto row = static_cast<std::int32_t>(std::clamp<std::int64_t>(m, INT32_MIN, INT32_MAX - 1));
          const bool greater = Column(order[k]).IsFirstValueGreater(row, row + 1);
          if (greater == (sortType == TKColumnSetSort_Ascending)) {
            result = SwapRows(row, row + 1);
            exchanged = true;
          }
        }
        // An ascending pass that exchanges nothing leaves nothing for the
        // next one either.
        if (!exchanged && sortType == TKColumnSetSort_Ascending) break;
      }
    }
  }
  return result;
}

// ---- Copies ------------------------------------------------------------------------

Ref<TKColumnSet> TKColumnSet::CreateColumnSetFromRows(std::int32_t startRow, std::int32_t endingRow) {
  auto out = MakeRef<TKColumnSet>();
  out->LetNumberOfRows(Tables::AddLong(std::int64_t{endingRow} - startRow, 1));
  for (const auto& source : columns_) {
    Ref<TKColumn> target = out->AddColumn(source->ColumnType());
    // Rows outside this set read as Empty, which SetAt refuses: only the
    // rows both sets have are copied.
    const std::int64_t first = std::max<std::int64_t>(startRow, 1);
    const std::int64_t last = std::min<std::int64_t>(endingRow, source->NumberOfElements());
    for (std::int64_t r = first; r <= last; ++r)
      target->SetAt(static_cast<std::int32_t>(r - startRow + 1), source->GetAt(static_cast<std::int32_t>(r)));
  }
  return out;
}

bool TKColumnSet::MergeColumnSet(Ref<TKColumnSet> pColumnSet, std::int32_t startRow) {
  if (!pColumnSet) Raise(Err::ObjectNotSet);
  // (The column counts and types of the two sets are not required to match.)
  const std::int32_t otherRows = pColumnSet->rows_;
  if (startRow < 1 || std::int64_t{startRow} > std::int64_t{rows_} - otherRows + 1) return false;
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    if (otherRows < 1) break;
    Ref<TKColumn> source = pColumnSet->Item(static_cast<std::int32_t>(c + 1));
    if (!source) Raise(Err::ObjectNotSet);  // the other set lacks this column
    for (std::int32_t r = 1; r <= otherRows; ++r)
      columns_[c]->SetAt(static_cast<std::int32_t>(std::int64_t{startRow} + r - 1), source->GetAt(r));
  }
  return true;
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKColumnSet)

// The enumeration of the class's interface, for scripts and the type library.
TK_REGISTER_ENUMERATION(TessarkAO::TKColumnSetSort, "TKColumnSet", TKColumnSetSort_Ascending,
                        TKColumnSetSort_Descending)
