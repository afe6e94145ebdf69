// The bill-of-materials export and the built-in spreadsheet object it drives.
// (The written workbooks are read back independently in the Python tests.)
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "ToolsTestSupport.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"
#include "platform/Spreadsheet.hpp"
#include "refhost/BomData.hpp"
#include "tools/TKExports.hpp"

using namespace TessarkAO;
using namespace ToolsTest;

namespace {

// A table as the host supplies one: cell (r, c) holds "r:c" text in odd
// columns and r * c in even ones, and row `failAt` raises 9; every cell
// read is counted.
struct Bom {
  Bom(std::string file, std::int32_t rows, std::int32_t columns, std::int32_t failAt = -1) {
    RefHost::BomData::Source s;
    s.filename = std::move(file);
    s.rows = rows;
    s.columns = columns;
    s.cell = [this, failAt](std::int32_t r, std::int32_t c) {
      ++cellCalls;
      if (failAt == r) Raise(Err::SubscriptOutOfRange);
      return c % 2 ? Variant(std::to_string(r) + ":" + std::to_string(c)) : Variant(static_cast<double>(r * c));
    };
    s.fontSize = [](std::int32_t r, std::int32_t) { return 9.0 + r; };
    s.fontFormat = [](std::int32_t r, std::int32_t) { return r % 4; };
    table = MakeRef<RefHost::BomData>(std::move(s));
  }
  Bom(const Bom&) = delete;
  void Export() {
    Ref<Object> exports = CreateObject("TessarkAO.TKExports");
    Variant args[] = {Variant(table)};
    exports->Invoke("ExportBOMToExcel", CallKind::Method, args);
  }
  int cellCalls = 0;
  Ref<RefHost::BomData> table;
};

bool IsZipFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  char magic[2] = {};
  in.read(magic, 2);
  return magic[0] == 'P' && magic[1] == 'K';
}

TEST(Export, CellAddresses) {
  EXPECT_EQ(TKExports::GetCellAddress(3, 2), "B3");
  EXPECT_EQ(TKExports::GetCellAddress(12, 26), "Z12");
  EXPECT_EQ(TKExports::GetCellAddress(1, 27), "[1");  // one character only, deliberately
  // Chr(64 - 32) is a blank, which the trim removes.
  EXPECT_EQ(TKExports::GetCellAddress(4, -32), "4");
}

TEST(Export, WritesAWorkbookAndAnyFlagsIsThePlainLayout) {
  Ui().Clear();
  for (std::int32_t flags : {1, 2, 0}) {
    const std::string file = (TempDir() / ("bom" + std::to_string(flags) + ".xlsx")).string();
    Bom bom(file, 5, 3);
    bom.table->Data().flags = flags;
    bom.Export();
    EXPECT_TRUE(IsZipFile(file)) << flags;
    EXPECT_EQ(bom.cellCalls, 15);
  }
  EXPECT_TRUE(Ui().Messages().empty());
}

TEST(Export, FailuresReachTheCaller) {
  // Column 27's address is refused by the spreadsheet.
  const std::string wide = (TempDir() / "wide.xlsx").string();
  std::string description;
  EXPECT_EQ(ErrorOf([&] { Bom(wide, 1, 27).Export(); }, &description), Spreadsheet::kMethodFailed);
  EXPECT_NE(description.find("[1"), std::string::npos) << description;
  EXPECT_FALSE(std::filesystem::exists(wide));
  // A failing table member: its own error, nothing saved.
  const std::string failing = (TempDir() / "failing.xlsx").string();
  EXPECT_EQ(ErrorOf([&] { Bom(failing, 3, 2, 2).Export(); }), Err::SubscriptOutOfRange);
  EXPECT_FALSE(std::filesystem::exists(failing));
}

TEST(SpreadsheetObject, AddressesTypesFontsAndWidths) {
  std::int32_t r = 0, c = 0;
  EXPECT_TRUE(Spreadsheet::ParseCellAddress("B3", r, c));
  EXPECT_EQ(std::make_pair(r, c), std::make_pair(3, 2));
  EXPECT_TRUE(Spreadsheet::ParseCellAddress("$xfd$1048576", r, c));
  EXPECT_EQ(std::make_pair(r, c), std::make_pair(1048576, 16384));
  for (const char* bad : {"[1", "A0", "XFE1", "A1048577", "1A", "A", "", "A1 ", "B-3"})
    EXPECT_FALSE(Spreadsheet::ParseCellAddress(bad, r, c)) << bad;

  const Variant app(CreateObject("Excel.Application"));
  const Variant sheet = app.Get("Workbooks").Call("Add").Get("Worksheets").Get("Item", 1);
  const Variant cells = sheet.Get("Cells");
  cells.Get("Range", "A1").Let("Value", std::int16_t{7});
  cells.Get("Range", "A2").Let("Value", "7");
  cells.Get("Range", "A3").Let("Value", true);
  EXPECT_EQ(cells.Get("Range", "A1").Get("Value").Type(), VarType::Integer);
  EXPECT_EQ(cells.Get("Range", "A2").Get("Value").Type(), VarType::String);
  EXPECT_EQ(cells.Get("Range", "A3").Get("Text").AsString(), "TRUE");
  EXPECT_EQ(cells.Get("Range", "A4").Get("Value").Type(), VarType::Empty);
  EXPECT_EQ(ErrorOf([&] { cells.Get("Range", "[1"); }), 1004);
  const Variant font = cells.Get("Range", "B2").Get("Font");
  font.Let("Bold", 2);
  font.Let("Size", 14.0);
  EXPECT_TRUE(ToBoolean(sheet.Get("Range", "B2").Get("Font").Get("Bold")));
  EXPECT_EQ(ToDouble(sheet.Get("Range", "B2").Get("Font").Get("Size")), 14.0);

  // Auto-fit: wider for longer texts, for bigger and bolder fonts; an empty column keeps its width.
  const double shortText = Spreadsheet::FitWidth("Bolt", "Arial", 10, false, false);
  EXPECT_GT(Spreadsheet::FitWidth("Hexagon bolt M8 x 40", "Arial", 10, false, false), shortText);
  EXPECT_GT(Spreadsheet::FitWidth("Bolt", "Arial", 16, false, false), shortText);
  EXPECT_GT(Spreadsheet::FitWidth("Bolt", "Arial", 10, true, false), shortText);
  cells.Get("Range", "C1").Let("Value", "A rather long description");
  cells.Get("Range", "D1").Let("Value", "x");
  for (int col : {3, 4, 5}) sheet.Get("Columns").Get("Item", col).Call("AutoFit");
  const double wideWidth = ToDouble(sheet.Get("Columns").Get("Item", 3).Get("ColumnWidth"));
  const double narrowWidth = ToDouble(sheet.Get("Columns").Get("Item", 4).Get("ColumnWidth"));
  EXPECT_GT(wideWidth, narrowWidth);
  EXPECT_EQ(ToDouble(sheet.Get("Columns").Get("Item", 5).Get("ColumnWidth")), 8.43);
  app.Call("Quit");
}

}  // namespace
