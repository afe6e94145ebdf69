// TK2DArray: a rectangular table of Doubles with 1-based rows and columns.
//
// Callers pass numeric tables across the automation boundary with it; the
// column set reports its spans in it (two columns: first row, last row).
//
// The row and column counts may be set while no values are held (when the
// other count is below 1); values exist only after SetDimensions or one of
// the growth operations, and whenever both counts are at least 1 the values
// cover exactly rows x columns.  Reads outside the counts give 0.0 and writes
// there are dropped; neither is an error.
//
// Values are held with the rows varying fastest and a row stride that may
// exceed the row count, so that AddRow and AddColumn take amortised constant
// time per cell of the new row or column instead of copying the table.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"

namespace TessarkAO {

class TK2DArray final : public Dispatch<TK2DArray> {
 public:
  static constexpr std::string_view kClassName = "TK2DArray";
  static void Describe(ClassBuilder<TK2DArray>& b);

  TK2DArray() = default;
  ~TK2DArray() override;

  // Takes the dimensions and values of a 1- or 2-dimensional array (a
  // 1-dimensional one becomes a single column); element (first lower bound
  // + r - 1, second lower bound + c - 1) goes to (r, c).  False for any other
  // number of dimensions.  13 when dValues is not an array or an element is
  // not numeric, 9 for an array without elements; nothing changes then.
  bool CopyFromNumericArray(const Variant& dValues);

  std::int32_t Rows() const noexcept { return rows_; }
  std::int32_t Columns() const noexcept { return cols_; }
  // With both counts at least 1 this re-dimensions keeping the values, so a
  // different row count on an array that holds values fails with 9 (rows
  // grow with AddRow); otherwise only the count is stored.
  void LetRows(std::int32_t n);
  void LetColumns(std::int32_t n);

  double GetValue(std::int32_t row, std::int32_t column) const noexcept;
  void SetValue(std::int32_t row, std::int32_t column, double value) noexcept;

  // Sets both counts and re-dimensions the values to rows x columns, zeroed,
  // or with PreserveValues keeping them; keeping values allows only the
  // column count to change (9 otherwise).  Counts below 1 raise 9; a table
  // too large to hold raises 7.  A failed call changes nothing.
  void SetDimensions(std::int32_t rows, std::int32_t columns, bool preserveValues);

  // Re-dimensions to the other object's Rows x Columns and copies its
  // GetValue(row, column) converted to Double.  Any object offering those
  // members will do.  Errors are trapped: the result is False and what was
  // copied so far stays.
  bool CopyFromIUnknown(Ref<Object> array2D);

  // Copies the other array's values into the cells both arrays have; this
  // array is not resized.  91 for Nothing.
  void Copy(Ref<TK2DArray> array2D);

  // One more row (keeping the values; a column count of 0 becomes 1).
  // Returns the new row count.
  std::int32_t AddRow();
  // One more column (keeping the values; a row count of 0 becomes 1).
  // Returns the new column count as a Long in a Variant.
  Variant AddColumn();

  // Library use: makes this (fresh) array the span table of `spans`, one row
  // per (first, last) pair; an empty list leaves it with no rows.
  void AssignSpans(const std::vector<std::array<double, 2>>& spans);

 private:
  // Replaces the values with zeroed storage of rows x columns.
  void Allocate(std::int32_t rows, std::int32_t columns);
  double& Cell(std::int32_t row, std::int32_t column) noexcept {
    return values_[static_cast<std::size_t>(column - 1) * stride_ + static_cast<std::size_t>(row - 1)];
  }

  InstanceRegistration registration_;
  std::int32_t rows_ = 0;
  std::int32_t cols_ = 0;
  // Storage: storeRows_ x storeCols_ (0 x 0 when absent), column c at
  // values_[(c - 1) * stride_]; cells past storeRows_ within a stride are 0.
  std::vector<double> values_;
  std::int32_t storeRows_ = 0;
  std::int32_t storeCols_ = 0;
  std::size_t stride_ = 0;
};

}  // namespace TessarkAO
