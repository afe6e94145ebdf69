#include "tools/TKExports.hpp"

#include "automation/Catalogue.hpp"
#include "frame/StringTable.hpp"
#include "platform/UserInterface.hpp"

namespace TessarkAO {

void TKExports::Describe(ClassBuilder<TKExports>& b) {
  b.Method<&TKExports::ExportBOMToExcel>(
      "ExportBOMToExcel", Names{"BOMData"},
      Doc{"Writes the table BOMData to a new spreadsheet workbook saved under BOMData.Filename. When no "
          "spreadsheet application can be created the user is told and nothing else happens; other failures "
          "are raised."});
}

std::string TKExports::GetCellAddress(std::int32_t row, std::int32_t column) {
  // Chr(64 + column): a code outside 0 to 255 is an invalid argument (5).
  const std::int32_t code = 64 + column;
  if (code < 0 || code > 255) Raise(Err::InvalidCall);
  if (code > ' ' && code < 0x80) return static_cast<char>(code) + std::to_string(row);  // nothing to trim
  std::string letter(1, static_cast<char>(code));
  if (code >= 0x80) letter = ToUtf8(std::u16string(1, static_cast<char16_t>(code)));  // Latin-1 character
  return std::string(TrimBlanks(letter)) + std::to_string(row);
}

void TKExports::ExportBOMToExcel(Ref<Object> BOMData) {
  const Variant bom(BOMData);
  const std::string fileName = ToString(bom.Get("Filename"));

  Ref<Object> application;
  try {
    application = CreateObject("Excel.Application");
  } catch (const AutomationError&) {
  }
  if (!application) {
    GetUserInterface().MessageBox(Globals::LoadString(StringId::SpreadsheetMissing),
                                  Globals::LoadString(StringId::ExportTitle), MessageStyle::Exclamation);
    return;
  }
  const Variant excel(application);
  const Variant workbook = excel.Get("Workbooks").Call("Add");
  const Variant worksheet = workbook.Get("Worksheets").Get("Item", 1);

  // Flags 1 selects the plain cell-by-cell layout.  The grouped layout of
  // the other values has never been defined, so every value is exported
  // the plain way; Flags is still read, as callers' tables expect.
  (void)bom.Get("Flags");
  ExportCells(worksheet, bom);

  workbook.Call("SaveAs", fileName);
  excel.Call("Quit");
}

void TKExports::ExportCells(const Variant& worksheet, const Variant& bom) {
  const std::int32_t rows = ToLong(bom.Get("Rows"));
  const std::int32_t cols = ToLong(bom.Get("Columns"));
  const Variant cells = worksheet.Get("Cells");
  for (std::int32_t r = 1; r <= rows; ++r) {
    for (std::int32_t c = 1; c <= cols; ++c) {
      const Variant cell = cells.Get("Range", GetCellAddress(r, c));
      // The table's members take the row and column by reference.
      Variant row(r), column(c);
      Variant args[] = {Variant::ByRef(row), Variant::ByRef(column)};
      auto fromTable = [&](std::string_view member) {
        row = Variant(r), column = Variant(c);
        return bom.Invoke(member, CallKind::Method, args);
      };
      cell.Let("Value", fromTable("GetCellData"));
      const Variant font = cell.Get("Font");
      font.Let("Name", fromTable("GetFontName"));
      font.Let("Size", fromTable("GetFontSize"));
      const std::int32_t format = ToLong(fromTable("GetFontFormat"));
      // The masked values 0/1 and 0/2 are written as they are.
      font.Let("Bold", format & 1);
      font.Let("Italic", format & 2);
    }
  }
  for (std::int32_t c = 1; c <= cols; ++c) worksheet.Get("Columns").Get("Item", c).Call("AutoFit");
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKExports)
