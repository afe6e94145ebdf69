// The spreadsheet application ("Excel.Application") as the platform offers it.
//
// On Windows the ProgID resolves through the system to the installed
// spreadsheet program.  Elsewhere the library brings a built-in spreadsheet
// automation object (posix/Spreadsheet.cpp) with the members the exporter
// and scripts use:
//
//     Application  Workbooks, Worksheets, ActiveWorkbook, ActiveSheet,
//                  Visible, DisplayAlerts, Quit
//     Workbooks    Add, Count, Item(i)
//     Workbook     Worksheets, Sheets, Name, FullName, SaveAs(Filename), Close
//     Worksheets   Add, Count, Item(i or name)
//     Worksheet    Name, Cells([row, column]), Range(address), Columns([c]),
//                  UsedRange
//     Range        Value (default), Text, Font, Row, Column, Count, Address,
//                  Range(address), Cells([row, column]), Item(row, column),
//                  Columns, AutoFit, ColumnWidth
//     Font         Name, Size, Bold, Italic
//
// It behaves as the spreadsheet application does where callers can tell:
// numbers, texts and Booleans keep their types; an address it cannot read
// (such as "[1") raises 1004; SaveAs writes a real .xlsx workbook (with
// ".xlsx" appended to a name without an extension); AutoFit sets a column's
// width from the texts of its cells as displayed and their fonts.
//
// It is registered for "Excel.Application" when the library loads, unless
// the environment holds TESSARKAO_SPREADSHEET=off, in which case creating it
// fails with 429 as on a machine without a spreadsheet program.
#pragma once

#include <cstdint>
#include <string_view>

namespace TessarkAO::Spreadsheet {

// The ProgID the object answers to.
inline constexpr std::string_view kProgId = "Excel.Application";

// The error the spreadsheet raises for a member that fails
// ("Application-defined or object-defined error").
inline constexpr std::int32_t kMethodFailed = 1004;

// Registers (true) or removes (false) the built-in object for kProgId.
void SetAvailable(bool available);

// Reads an A1-style cell address ("B3", "$AA$10", lower case accepted) into
// a 1-based row and column; false when it is not one or lies outside the
// sheet (1,048,576 rows, 16,384 columns).
bool ParseCellAddress(std::string_view text, std::int32_t& row, std::int32_t& column) noexcept;

// The width, in characters of the standard font (as column widths are
// measured), that a column needs to show `text` in the given font: the
// text's advance in the face fontconfig matches for the name, weight and
// slant, measured with FreeType at 96 pixels per inch.
double FitWidth(std::string_view text, std::string_view fontName, double size, bool bold, bool italic) noexcept;

}  // namespace TessarkAO::Spreadsheet
