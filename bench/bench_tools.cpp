// Import and export speed against plain baselines measured in the same run:
//  - reading a 1,000,000-line fit-point file into a point table, against a
//    bare std::from_chars loop over the same bytes (goal: at least half its
//    speed, i.e. a time ratio of at most 2);
//  - exporting 100,000 styled cells through the exporter and the spreadsheet
//    object into an .xlsx file, against writing the same cells and formats
//    directly with libxlsxwriter (goal: a time ratio of at most 2).
#include <benchmark/benchmark.h>
#include <unistd.h>
#include <xlsxwriter.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "RatioReporter.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"
#include "platform/UserInterface.hpp"
#include "refhost/BomData.hpp"
#include "tools/PointFile.hpp"

using namespace TessarkAO;

namespace {

const std::filesystem::path& Dir() {
  static const std::filesystem::path dir = [] {
    std::filesystem::path d = std::filesystem::temp_directory_path() / ("tk-bench-tools-" + std::to_string(::getpid()));
    std::filesystem::create_directories(d);
    return d;
  }();
  return dir;
}

const std::string& PointFilePath() {
  static const std::string path = [] {
    const std::string p = (Dir() / "points.txt").string();
    std::ofstream out(p, std::ios::binary);
    char line[64];
    for (int i = 0; i < 1'000'000; ++i) {
      const int n = std::snprintf(line, sizeof line, "%.4f,%.4f\n", i * 0.0137 - 500.0, (i % 977) * 1.0001);
      out.write(line, n);
    }
    return p;
  }();
  return path;
}

void BM_ReadPointFile(benchmark::State& state) {
  const std::string& path = PointFilePath();
  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
  for (auto _ : state) {
    Ref<TK2DArray> t = PointFile::ReadPointFile(path);
    benchmark::DoNotOptimize(t->Rows());
  }
  state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(BM_ReadPointFile)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The baseline: read the same bytes and parse every number with from_chars.
void BM_FromCharsLoop(benchmark::State& state) {
  const std::string& path = PointFilePath();
  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
  for (auto _ : state) {
    std::ifstream in(path, std::ios::binary);
    std::string text(static_cast<std::size_t>(bytes), '\0');
    in.read(text.data(), bytes);
    std::vector<double> values;
    const char* p = text.data();
    const char* end = p + text.size();
    while (p < end) {
      double v;
      auto [next, ec] = std::from_chars(p, end, v);
      if (ec == std::errc()) values.push_back(v);
      p = next + 1;
    }
    benchmark::DoNotOptimize(values.data());
  }
  state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(BM_FromCharsLoop)->Unit(benchmark::kMillisecond)->MinTime(2.0);

constexpr std::int32_t kRows = 10'000, kColumns = 10;  // 100,000 cells

std::string CellText(std::int32_t r, std::int32_t c) { return "Part " + std::to_string(r) + "-" + std::to_string(c); }

Ref<RefHost::BomData> BomTable() {
  RefHost::BomData::Source source;
  source.filename = (Dir() / "export.xlsx").string();
  source.rows = kRows;
  source.columns = kColumns;
  source.cell = [](std::int32_t r, std::int32_t c) { return c % 2 ? Variant(CellText(r, c)) : Variant(r * 0.25 + c); };
  source.fontName = [](std::int32_t, std::int32_t c) { return std::string(c == 1 ? "Arial" : "Calibri"); };
  source.fontSize = [](std::int32_t r, std::int32_t) { return r == 1 ? 12.0 : 10.0; };
  source.fontFormat = [](std::int32_t r, std::int32_t c) { return (r + c) % 4; };
  return MakeRef<RefHost::BomData>(std::move(source));
}

void BM_ExportThroughExporter(benchmark::State& state) {
  GetHeadlessUserInterface()->SetEcho(false);
  Ref<Object> exports = CreateObject("TessarkAO.TKExports");
  Ref<RefHost::BomData> table = BomTable();
  for (auto _ : state) {
    Variant args[] = {Variant(table)};
    exports->Invoke("ExportBOMToExcel", CallKind::Method, args);
  }
  state.SetItemsProcessed(state.iterations() * kRows * kColumns);
}
BENCHMARK(BM_ExportThroughExporter)->Unit(benchmark::kMillisecond)->MinTime(3.0);

// The baseline: the same cells, fonts and widths written with libxlsxwriter.
void BM_DirectLibxlsxwriter(benchmark::State& state) {
  const std::string path = (Dir() / "direct.xlsx").string();
  for (auto _ : state) {
    lxw_workbook* wb = workbook_new(path.c_str());
    lxw_worksheet* ws = workbook_add_worksheet(wb, "Sheet1");
    std::map<std::tuple<std::string, double, int>, lxw_format*> formats;
    for (std::int32_t r = 1; r <= kRows; ++r)
      for (std::int32_t c = 1; c <= kColumns; ++c) {
        const std::string font = c == 1 ? "Arial" : "Calibri";
        const double size = r == 1 ? 12.0 : 10.0;
        const int flags = (r + c) % 4;
        lxw_format*& f = formats[{font, size, flags}];
        if (!f) {
          f = workbook_add_format(wb);
          format_set_font_name(f, font.c_str());
          format_set_font_size(f, size);
          if (flags & 1) format_set_bold(f);
          if (flags & 2) format_set_italic(f);
        }
        if (c % 2)
          worksheet_write_string(ws, static_cast<lxw_row_t>(r - 1), static_cast<lxw_col_t>(c - 1),
                                 CellText(r, c).c_str(), f);
        else
          worksheet_write_number(ws, static_cast<lxw_row_t>(r - 1), static_cast<lxw_col_t>(c - 1), r * 0.25 + c, f);
      }
    for (lxw_col_t c = 0; c < kColumns; ++c) worksheet_set_column(ws, c, c, 12.0, nullptr);
    workbook_close(wb);
  }
  state.SetItemsProcessed(state.iterations() * kRows * kColumns);
}
BENCHMARK(BM_DirectLibxlsxwriter)->Unit(benchmark::kMillisecond)->MinTime(3.0);

}  // namespace

int main(int argc, char** argv) {
  const int rc = Bench::RunWithRatios(argc, argv, [](const Bench::RatioReporter& r) {
    r.PrintRatio("point file read / from_chars loop", "BM_ReadPointFile/min_time:2.000",
                 "BM_FromCharsLoop/min_time:2.000", "<= 2");
    r.PrintRatio("export / direct libxlsxwriter", "BM_ExportThroughExporter/min_time:3.000",
                 "BM_DirectLibxlsxwriter/min_time:3.000", "<= 2");
  });
  std::filesystem::remove_all(Dir());
  return rc;
}
