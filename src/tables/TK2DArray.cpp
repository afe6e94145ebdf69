#include "tables/TK2DArray.hpp"

#include <algorithm>
#include <new>

#include "automation/Catalogue.hpp"
#include "tables/TableLimits.hpp"

namespace TessarkAO {

void TK2DArray::Describe(ClassBuilder<TK2DArray>& b) {
  b.Method<&TK2DArray::CopyFromNumericArray>(
       "CopyFromNumericArray", Names{"dValues"},
       Doc{"Takes the dimensions and values of a 1- or 2-dimensional numeric array (a 1-dimensional one "
           "becomes one column); True on success."})
      .Get<&TK2DArray::Rows>("Rows", Doc{"The number of rows; assigning re-dimensions, keeping the values."})
      .Get<&TK2DArray::Columns>("Columns",
                                Doc{"The number of columns; assigning re-dimensions, keeping the values."})
      .Let<&TK2DArray::LetRows>("Rows")
      .Let<&TK2DArray::LetColumns>("Columns")
      .Method<&TK2DArray::GetValue>("GetValue", Names{"Row", "Column"},
                                    Doc{"The value at (Row, Column), both from 1; 0 outside the array."})
      .Method<&TK2DArray::SetValue>(
          "SetValue", Names{"Row", "Column", "Value"},
          Doc{"Sets the value at (Row, Column), both from 1; outside the array nothing changes."})
      .Method<&TK2DArray::SetDimensions>(
          "SetDimensions", Names{"Rows", "Columns", "PreserveValues"},
          Doc{"Sets both counts and zeroes the values, or with PreserveValues keeps them (then only the "
              "column count may change; 9 otherwise)."})
      .Method<&TK2DArray::CopyFromIUnknown>(
          "CopyFromIUnknown", Names{"Array2D"},
          Doc{"Re-dimensions to Array2D's Rows x Columns and copies its GetValue(Row, Column); any object "
              "with those members will do. Errors are trapped: the result tells success."})
      .Method<&TK2DArray::Copy>("Copy", Names{"Array2D"},
                                Doc{"Copies Array2D's values into the cells both arrays have; this array is "
                                    "not resized. 91 for Nothing."})
      .Method<&TK2DArray::AddRow>(
          "AddRow", Doc{"Appends a row (a column count of 0 becomes 1); returns the new row count."})
      .Method<&TK2DArray::AddColumn>(
          "AddColumn", Doc{"Appends a column (a row count of 0 becomes 1); returns the new column count."});
}

TK2DArray::~TK2DArray() {
  rows_ = 0;
  cols_ = 0;
}

void TK2DArray::Allocate(std::int32_t rows, std::int32_t columns) {
  if (rows < 1 || columns < 1) Raise(Err::SubscriptOutOfRange);
  Tables::CheckElementCount(std::int64_t{rows} * columns);
  std::vector<double> fresh(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), 0.0);
  values_.swap(fresh);
  storeRows_ = rows;
  storeCols_ = columns;
  stride_ = static_cast<std::size_t>(rows);
}

void TK2DArray::SetDimensions(std::int32_t rows, std::int32_t columns, bool preserveValues) {
  // A re-dimension that cannot be made changes nothing, counts included, so
  // the array stays usable after the error.
  if (rows < 1 || columns < 1) Raise(Err::SubscriptOutOfRange);
  if (preserveValues && storeRows_ > 0) {
    // Keeping values allows only the last dimension (the columns) to change.
    if (rows != storeRows_) Raise(Err::SubscriptOutOfRange);
    Tables::CheckElementCount(static_cast<std::int64_t>(stride_) * columns);
    values_.resize(stride_ * static_cast<std::size_t>(columns), 0.0);
    storeCols_ = columns;
  } else {
    Allocate(rows, columns);
  }
  rows_ = rows;
  cols_ = columns;
}

void TK2DArray::LetRows(std::int32_t n) {
  if (n >= 1 && cols_ >= 1)
    SetDimensions(n, cols_, true);
  else
    rows_ = n;
}

void TK2DArray::LetColumns(std::int32_t n) {
  if (n >= 1 && rows_ >= 1)
    SetDimensions(rows_, n, true);
  else
    cols_ = n;
}

double TK2DArray::GetValue(std::int32_t row, std::int32_t column) const noexcept {
  if (row < 1 || row > rows_ || column < 1 || column > cols_) return 0.0;
  return values_[static_cast<std::size_t>(column - 1) * stride_ + static_cast<std::size_t>(row - 1)];
}

void TK2DArray::SetValue(std::int32_t row, std::int32_t column, double value) noexcept {
  if (row < 1 || row > rows_ || column < 1 || column > cols_) return;
  Cell(row, column) = value;
}

std::int32_t TK2DArray::AddRow() {
  const std::int32_t newRows = Tables::AddLong(rows_, 1);
  if (rows_ >= 1 && cols_ >= 1) {
    // The values cover rows_ x cols_ here; grow the stride geometrically so
    // that adding rows one at a time stays linear overall.
    if (static_cast<std::size_t>(newRows) > stride_) {
      const std::size_t stride = std::max<std::size_t>(stride_ * 2, 4);
      Tables::CheckElementCount(static_cast<std::int64_t>(stride) * cols_);
      std::vector<double> grown(stride * static_cast<std::size_t>(cols_), 0.0);
      for (std::size_t c = 0; c < static_cast<std::size_t>(cols_); ++c)
        std::copy_n(values_.begin() + static_cast<std::ptrdiff_t>(c * stride_), rows_,
                    grown.begin() + static_cast<std::ptrdiff_t>(c * stride));
      values_.swap(grown);
      stride_ = stride;
    }
    rows_ = newRows;
    storeRows_ = newRows;
    return rows_;
  }
  // No values to keep: fresh zeroed storage of the new size.
  const std::int32_t newCols = cols_ == 0 ? 1 : cols_;
  Allocate(newRows, newCols);
  rows_ = newRows;
  cols_ = newCols;
  return rows_;
}

Variant TK2DArray::AddColumn() {
  const std::int32_t newCols = Tables::AddLong(cols_, 1);
  if (rows_ >= 1 && cols_ >= 1) {
    Tables::CheckElementCount(static_cast<std::int64_t>(stride_) * newCols);
    values_.resize(stride_ * static_cast<std::size_t>(newCols), 0.0);  // amortised by the vector
    cols_ = newCols;
    storeCols_ = newCols;
    return Variant(cols_);
  }
  const std::int32_t newRows = rows_ == 0 ? 1 : rows_;
  Allocate(newRows, newCols);
  rows_ = newRows;
  cols_ = newCols;
  return Variant(cols_);
}

void TK2DArray::Copy(Ref<TK2DArray> array2D) {
  if (!array2D) Raise(Err::ObjectNotSet);
  // Cells outside this array are dropped, so only the common part is walked.
  const std::int32_t rows = std::min(array2D->rows_, rows_);
  const std::int32_t cols = std::min(array2D->cols_, cols_);
  for (std::int32_t c = 1; c <= cols; ++c)
    for (std::int32_t r = 1; r <= rows; ++r) Cell(r, c) = array2D->GetValue(r, c);
}

bool TK2DArray::CopyFromIUnknown(Ref<Object> array2D) {
  try {
    if (Ref<TK2DArray> other = RefCast<TK2DArray>(array2D)) {
      const std::int32_t rows = other->rows_, cols = other->cols_;
      SetDimensions(rows, cols, false);  // when other is this array, its values are now 0
      for (std::int32_t c = 1; c <= cols; ++c)
        for (std::int32_t r = 1; r <= rows; ++r) SetValue(r, c, other->GetValue(r, c));
      return true;
    }
    const Variant source(array2D);
    const std::int32_t rows = ToLong(source.Get("Rows"));
    const std::int32_t cols = ToLong(source.Get("Columns"));
    SetDimensions(rows, cols, false);
    for (std::int32_t r = 1; r <= rows; ++r) {
      for (std::int32_t c = 1; c <= cols; ++c) {
        Variant row(r), column(c);
        Variant args[] = {Variant::ByRef(row), Variant::ByRef(column)};
        SetValue(r, c, ToDouble(source.Invoke("GetValue", CallKind::Method, args)));
      }
    }
    return true;
  } catch (const AutomationError&) {
    return false;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool TK2DArray::CopyFromNumericArray(const Variant& dValues) {
  if (!dValues.IsArray()) Raise(Err::TypeMismatch);
  const SafeArray& a = dValues.AsArray();
  if (a.Dims() != 1 && a.Dims() != 2) return false;
  const std::int32_t rows = a.Bounds()[0].count;
  const std::int32_t cols = a.Dims() == 2 ? a.Bounds()[1].count : 1;
  // Convert first, so that an element that is not numeric changes nothing.
  std::vector<double> converted(a.Size());
  for (std::size_t i = 0; i < converted.size(); ++i) converted[i] = ToDouble(a.Data()[i]);
  SetDimensions(rows, cols, false);
  // Both layouts have the first index varying fastest.
  std::copy(converted.begin(), converted.end(), values_.begin());
  return true;
}

void TK2DArray::AssignSpans(const std::vector<std::array<double, 2>>& spans) {
  if (spans.empty()) return;
  Tables::CheckElementCount(static_cast<std::int64_t>(spans.size()) * 2);
  SetDimensions(static_cast<std::int32_t>(spans.size()), 2, false);
  for (std::size_t i = 0; i < spans.size(); ++i) {
    values_[i] = spans[i][0];
    values_[stride_ + i] = spans[i][1];
  }
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TK2DArray)
