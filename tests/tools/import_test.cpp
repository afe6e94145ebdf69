// B-spline import: the point-file reader against a literal model of its line
// splitting, and the whole import against the reference host with the
// headless dialog, checking the messages shown and the host calls made.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

#include "ToolsTestSupport.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"
#include "refhost/RefHost.hpp"
#include "tables/TK2DArray.hpp"
#include "tools/PointFile.hpp"
#include "tools/TKImports.hpp"

using namespace TessarkAO;
using namespace ToolsTest;

namespace {

// ---------------------------------------------------------------------------
// The line splitting as the import tool has always done it, literally: the
// line's separator chosen by priority (tab, comma, blank), the next one
// searched again from p for every token, the table grown row by row and
// column by column, and the runtime's own numeric test and conversion.
std::size_t InStr(std::string_view s, std::size_t from, char c) {
  for (std::size_t i = from; i < s.size(); ++i)
    if (s[i] == c) return i;
  return std::string_view::npos;
}

void LiteralParseLine(std::string_view line, TK2DArray& t) {
  if (line.empty()) return;
  const char sepChar = InStr(line, 0, '\t') != std::string_view::npos ? '\t'
                       : InStr(line, 0, ',') != std::string_view::npos ? ','
                                                                        : ' ';
  std::size_t p = 0;
  std::int32_t c = 0;
  bool added = false;
  while (true) {
    const std::size_t sep = InStr(line, p, sepChar);
    const std::string token(line.substr(p, sep == std::string_view::npos ? std::string_view::npos : sep - p));
    if (IsNumeric(Variant(token))) {
      if (!added) {
        t.AddRow();
        added = true;
      }
      ++c;
      while (t.Columns() < c) t.AddColumn();
      t.SetValue(t.Rows(), c, ToDouble(Variant(token)));
    }
    if (sep == std::string_view::npos) return;
    p = sep + 1;
  }
}

Ref<TK2DArray> Parse(std::string_view text) {
  PointFile::PointRows rows;
  PointFile::ParseFitPointText(text, rows);
  return rows.ToTable();
}

// Every cell of a table, bit for bit (a negative zero differs from zero).
std::vector<std::vector<std::uint64_t>> Cells(const TK2DArray& t) {
  std::vector<std::vector<std::uint64_t>> out(static_cast<std::size_t>(std::max(t.Rows(), 0)));
  for (std::int32_t r = 1; r <= t.Rows(); ++r)
    for (std::int32_t c = 1; c <= t.Columns(); ++c)
      out[static_cast<std::size_t>(r - 1)].push_back(std::bit_cast<std::uint64_t>(t.GetValue(r, c)));
  return out;
}

TEST(PointFile, FastReaderMatchesTheLiteralModel) {
  std::mt19937 rng(20240611);
  const char* pieces[] = {"0", "1", "-2.5", "1e3", "1E-2", "+4", "3.", ".5", "1,000", "abc", "",  " ",
                          "\t", ",", "1e", "-", "1.2.3", "&H10", "1d2", "  7  ", "nan", "inf", "1e400", "0x1A",
                          "12345678901234567890", "-0", "9.999999999999999e22"};
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    const int lines = 1 + static_cast<int>(rng() % 5);
    for (int l = 0; l < lines; ++l) {
      const int n = static_cast<int>(rng() % 9);
      for (int k = 0; k < n; ++k) {
        text += pieces[rng() % std::size(pieces)];
        const char seps[] = {'\t', ',', ' ', ' '};
        if (rng() % 4) text += seps[rng() % 4];
      }
      const char* ends[] = {"\n", "\n", "\r\n", "\r"};
      text += ends[rng() % 4];
    }
    Ref<TK2DArray> model = MakeRef<TK2DArray>();
    std::string_view rest = text;
    while (!rest.empty()) {
      const std::size_t end = rest.find_first_of("\r\n");
      LiteralParseLine(rest.substr(0, end), *model);
      if (end == std::string_view::npos) break;
      rest.remove_prefix(end + 1);
    }
    ASSERT_EQ(Cells(*Parse(text)), Cells(*model)) << text;
  }
}

// One line of 300,000 numbers among 2,000 short ones would make a table of
// 600 million cells, nearly all empty: refused with 7 before it is allocated.
// The same line alone is a table the file fills, and reads.
TEST(PointFile, SparseTablesOfAbsurdSizeAreRefused) {
  std::string wide;
  for (int i = 0; i < 300'000; ++i) wide += "1 ";
  std::string text;
  for (int i = 0; i < 2'000; ++i) text += "1 2\n";
  EXPECT_EQ(ErrorOf([&] { PointFile::ReadPointFile(WriteFile("wide.txt", text + wide + "\n")); }), 7);
  const Ref<TK2DArray> alone = PointFile::ReadPointFile(WriteFile("wide-alone.txt", wide + "\n" + wide));
  ASSERT_TRUE(alone);
  EXPECT_EQ(alone->Columns(), 300'000);
}

TEST(PointFile, MillionLinesAcrossReadBlocks) {
  std::string text;
  text.reserve(24'000'000);
  for (int i = 0; i < 1'000'000; ++i) {
    text += std::to_string(i * 0.001);
    text += i % 2 ? "\t" : ",";
    text += std::to_string(-i);
    text += "\n";
  }
  Ref<TK2DArray> t = PointFile::ReadPointFile(WriteFile("million.txt", text));
  ASSERT_TRUE(t);
  ASSERT_EQ(t->Rows(), 1'000'000);
  ASSERT_EQ(t->Columns(), 2);
  EXPECT_EQ(t->GetValue(777'777, 2), -777'776.0);
  EXPECT_EQ(t->GetValue(1'000'000, 1), std::stod(std::to_string(999'999 * 0.001)));
}

// ---------------------------------------------------------------------------
// The import against the reference host.

class Import : public ::testing::Test {
 protected:
  void SetUp() override {
    app_ = RefHost::NewApplication();
    page_ = Variant(app_).Get("ActivePage");
    part_ = page_.Get("Shape").Get("Components", 2).Call("Item", 1).Get("Shapes", 3).Call("Add");
    page_.Get("SelectedItems").Call("Add", part_);
    RefHost::StartJournal();
  }
  void TearDown() override {
    RefHost::StopJournal();
    RefHost::ClearJournal();
    Ui().Clear();
  }
  // With fresh messages and journal, chooses each file in the dialog, then
  // presses `button`.
  void Run(const std::vector<std::string>& files, const std::string& button = "Import") {
    Ui().Clear();
    RefHost::ClearJournal();
    for (const std::string& f : files) Ui().QueueFile(f);
    if (!button.empty()) Ui().QueueButton(button);
    Ref<Object> imports = CreateObject("TessarkAO.TKImports");
    Variant args[] = {Variant(app_)};
    imports->Invoke("ImportBSpline", CallKind::Method, args);
  }
  // The calls that build the B-spline, as journal lines from the member on.
  std::vector<std::string> SplineCalls() const {
    std::vector<std::string> out;
    for (const RefHost::JournalEntry& e : RefHost::Journal()) {
      if (e.member == "SetStartPoint" || e.member == "AddBSplineTo" || e.member == "SetDefinitionByFitPoints" ||
          e.member == "Closed" || e.member == "Update" ||
          (e.member == "Add" && e.object.find("Components(3)") != std::string::npos)) {
        const std::string line = RefHost::FormatJournal({e});
        out.push_back(line.substr(line.rfind("." + e.member) + 1, line.size() - line.rfind("." + e.member) - 2));
      }
    }
    return out;
  }
  std::vector<std::string> Messages() const {
    std::vector<std::string> out;
    for (const MessageRecord& m : Ui().Messages())
      out.push_back(std::string(MessageIconName(m.icon)) + "|" + m.title + "|" + m.text);
    return out;
  }
  Variant Path() const { return part_.Get("Components", 3).Call("Item", 1); }

  Ref<Object> app_;
  Variant page_, part_;
};

const std::string kDone = "information|B-Spline Import|Import of B-Spline completed successfully.";
const std::string kInvalid = "exclamation|B-Spline Import|The file does not contain valid B-Spline point data.";

TEST_F(Import, OpenSplineThroughThreePoints) {
  Run({WriteFile("three.txt", "0,0\n10,5\n20,0\n")});
  EXPECT_EQ(Messages(), std::vector<std::string>{kDone});
  std::vector<std::string> calls = SplineCalls();
  ASSERT_EQ(calls.size(), 6u) << RefHost::FormatJournal(RefHost::Journal());
  EXPECT_EQ(calls[3].rfind("SetDefinitionByFitPoints(3%, False, False, ", 0), 0u) << calls[3];
  calls.erase(calls.begin() + 3);
  EXPECT_EQ(calls, (std::vector<std::string>{"Add()", "SetStartPoint(0, 0)", "AddBSplineTo(20, 0)",
                                             "Closed = False", "Update()"}));
  EXPECT_FALSE(ToBoolean(Path().Get("Closed")));
  // The dialog asked for a text file and showed the chosen one.
  EXPECT_EQ(Ui().LastFileRequest().at(1), "Text Files (*.txt)|*.txt|All Files (*.*)|*.*");
  EXPECT_EQ(Ui().LastFileRequest().at(2), "txt");
  ASSERT_EQ(Ui().Shown().size(), 1u);
  EXPECT_EQ(Ui().Shown()[0].name, "frmImportBSpline");
  EXPECT_NE(Ui().Shown()[0].text.find("three.txt"), std::string::npos);
}

TEST_F(Import, EqualEndsCloseTheSplineAndHeadersAreSkipped) {
  Run({WriteFile("closed.txt", "X Y\n1 1\n5 3\n1 1\n")});
  EXPECT_EQ(Messages(), std::vector<std::string>{kDone});
  ASSERT_EQ(SplineCalls().size(), 6u);
  EXPECT_EQ(SplineCalls()[3].rfind("SetDefinitionByFitPoints(3%, False, True, ", 0), 0u) << SplineCalls()[3];
  EXPECT_TRUE(ToBoolean(Path().Get("Closed")));
}

TEST_F(Import, LimitIsInclusiveAndScaled) {
  page_.Let("UnitsScale", 2, 1.0);
  Run({WriteFile("edge.txt", "0 0\n1000 -1000\n")});
  EXPECT_EQ(Messages(), std::vector<std::string>{kDone});
  Run({WriteFile("over.txt", "0 0\n1000.0000000001 0\n5 5\n")});
  EXPECT_EQ(Messages(), std::vector<std::string>{
                            "exclamation|B-Spline Import|Coordinate values for the B-Spline fit points are larger "
                            "than acceptable limits.\r\nImport will be canceled.  Please refer to help for further "
                            "instructions."});
  EXPECT_TRUE(SplineCalls().empty());
  EXPECT_EQ(ToLong(part_.Get("Components", 3).Get("Count")), 1);  // only the first import's path

  // The page's length scale enters the test, but the host gets the file's values.
  page_.Let("UnitsScale", 2, 10.0);
  Run({WriteFile("scaled.txt", "0 0\n100 50\n")});
  EXPECT_EQ(Messages(), std::vector<std::string>{kDone});
  EXPECT_EQ(SplineCalls().at(2), "AddBSplineTo(100, 50)");
  Run({WriteFile("scaled-over.txt", "0 0\n100.5 50\n")});
  EXPECT_EQ(Messages().size(), 1u);
  EXPECT_TRUE(SplineCalls().empty());
}

// What the dialog says and does for each choice of files and the button
// pressed at the end.  An invalid file keeps Import disabled: pressing it
// closes without importing; choosing again validates the new file.
TEST_F(Import, ChoicesMessagesAndWhetherItImports) {
  const std::string good = WriteFile("good.txt", "0 0\n1 1\n"), bad = WriteFile("bad.txt", "7\n");
  const std::string binary =
      WriteFile("binary.bin", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\xff\xfe", 18));
  const struct {
    std::vector<std::string> files;
    std::string button;
    std::vector<std::string> messages;
  } rows[] = {
      {{WriteFile("single.txt", "1 2\n")}, "Import", {kInvalid}},
      {{WriteFile("column.txt", "1\n2\n3\n")}, "Import", {kInvalid}},
      {{WriteFile("blank.txt", "")}, "Import", {kInvalid}},
      {{binary}, "Import", {kInvalid}},
      {{(TempDir() / "nowhere.txt").string()}, "Import", {}},
      {{TempDir().string()}, "Import", {}},
      {{good, bad}, "Import", {kInvalid}},
      {{bad, good}, "Import", {kInvalid, kDone}},
      {{good}, "Cancel", {}},
      {{good}, "Close", {}},
      {{good}, "", {}},
  };
  for (const auto& row : rows) {
    Run(row.files, row.button);
    const bool imports = !row.messages.empty() && row.messages.back() == kDone;
    EXPECT_EQ(Messages(), row.messages) << row.files.back() << " " << row.button;
    EXPECT_EQ(SplineCalls().empty(), !imports) << row.files.back() << " " << row.button;
    if (row.button == "Import" && !imports) {
      EXPECT_NE(Ui().Shown().at(0).text.find("(disabled)"), std::string::npos) << row.files.back();
    }
  }
  // No shape selected: nothing is said or done.
  page_.Get("SelectedItems").Call("Clear");
  Run({good});
  EXPECT_TRUE(Messages().empty());
  EXPECT_TRUE(SplineCalls().empty());
}

TEST(ImportWithoutScene, SaysSoAndShowsNoDialog) {
  Ui().Clear();
  Ref<Object> imports = CreateObject("TessarkAO.TKImports");
  // An application without open scenes.
  auto pages = MakeRef<Testing::FakeObject>();
  pages->Value("Count", 0);
  auto app = MakeRef<Testing::FakeObject>();
  app->Value("Pages", Variant(pages));
  Variant args[] = {Variant(app)};
  imports->Invoke("ImportBSpline", CallKind::Method, args);
  ASSERT_EQ(Ui().Messages().size(), 1u);
  EXPECT_EQ(Ui().Messages()[0].text, "There must be a scene open to import the B-Spline to.");
  EXPECT_EQ(Ui().Messages()[0].title, "B-Spline Import");
  EXPECT_EQ(Ui().Messages()[0].icon, MessageIcon::Exclamation);
  EXPECT_TRUE(Ui().Shown().empty());
  // Nothing for an application is the classic "object not set".
  Variant nothing[] = {Variant::Nothing()};
  EXPECT_EQ(ErrorOf([&] { imports->Invoke("ImportBSpline", CallKind::Method, nothing); }), Err::ObjectNotSet);
  Ui().Clear();
}

}  // namespace
