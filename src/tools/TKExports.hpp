// TKExports: writes a bill-of-materials table into a new workbook of the
// spreadsheet application ("Excel.Application") and saves it.
//
// The table is a late-bound object supplied by the caller, offering
// Filename, Flags, Rows, Columns and, per cell (row, column, both from 1),
// GetCellData, GetFontName, GetFontSize and GetFontFormat (bit 1 bold,
// bit 2 italic).
#pragma once

#include <string>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"

namespace TessarkAO {

class TKExports final : public Dispatch<TKExports> {
 public:
  static constexpr std::string_view kClassName = "TKExports";
  static void Describe(ClassBuilder<TKExports>& b);

  // Creates the spreadsheet application, fills the first worksheet of a new
  // workbook cell by cell, auto-fits the columns, saves the workbook under
  // BOMData.Filename and quits the application.  When the application cannot
  // be created the user is told (text 116, title 115) and nothing else
  // happens.  Any other failure (of the table or of the spreadsheet) is
  // raised to the caller, and the application is then not told to quit.
  void ExportBOMToExcel(Ref<Object> BOMData);

  // The address of a cell: the character 64 + column, then the row ("B3").
  // Only one character is made, so column 27 becomes "[": the spreadsheet
  // refuses such an address.  Tables wider than 26 columns are not part of
  // the design.
  static std::string GetCellAddress(std::int32_t row, std::int32_t column);

 private:
  static void ExportCells(const Variant& worksheet, const Variant& bom);

  InstanceRegistration registration_;
};

}  // namespace TessarkAO
