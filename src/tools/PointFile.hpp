// PointFile: reading a B-spline fit-point file into a point table.
//
// A fit-point file is plain text with one point per line; the numbers of a
// line are separated by tabs, commas or blanks.  Lines end with a line feed,
// a carriage return or both.  Each line that holds at least one number
// becomes one row of the table; the k-th number of a line goes to column k;
// lines without numbers (headers, comments, empty lines) add nothing.  The
// table has as many columns as the line with the most numbers, and cells a
// shorter line does not reach stay 0.
//
// The separator of a line is chosen by priority, not by nearness: a tab
// when the line holds one, else a comma when it holds one, else a blank; the
// other characters are then part of the tokens.  So "3<tab>4,5" gives the
// tokens "3" and "4,5", and "1 2,3" gives "1 2" (not a number, skipped) and
// "3".  The import tool has always split lines this way and files are
// written for it.
//
// A token is a number when the automation runtime's text-to-number parser
// accepts it (blanks around it, a sign, the locale's decimal and group
// separators, an exponent); an empty token between two adjacent separators
// and a word are skipped without using up a column.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tables/TK2DArray.hpp"

namespace TessarkAO::PointFile {

// A table of more cells than this, most of them not filled by the file, is
// refused with 7 (Out of memory) before it is allocated.
inline constexpr std::int64_t kMaxSparseCells = std::int64_t{1} << 24;

// The numbers read so far, row by row.
struct PointRows {
  std::vector<double> values;            // every row's numbers, one row after the other
  std::vector<std::size_t> rowStarts;    // where each row begins in `values`
  std::int32_t columns = 0;              // the most numbers on one row

  std::int32_t Rows() const noexcept { return static_cast<std::int32_t>(rowStarts.size()); }
  // The table these rows make (no rows: a table of 0 x 0).
  Ref<TK2DArray> ToTable() const;
};

// The numeric test and value of one token; false when it is not a number.
bool ReadNumber(std::string_view token, double& value) noexcept;

// Adds the numbers of one line (without its line end) to `rows`.
void ParseFitPointLine(std::string_view line, PointRows& rows);

// Adds the numbers of every line of `text`.
void ParseFitPointText(std::string_view text, PointRows& rows);

// Reads a fit-point file.  Nothing (an empty reference) when the file cannot
// be opened (missing, a folder, no permission); once it is open, a read
// error ends the reading and keeps what was read.
Ref<TK2DArray> ReadPointFile(const std::string& path);

}  // namespace TessarkAO::PointFile
