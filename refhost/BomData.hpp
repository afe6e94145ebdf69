// A bill-of-materials table as the host hands one to
// TKExports.ExportBOMToExcel: Filename, Flags, Rows and Columns, and for
// each cell (1-based row and column, passed by reference as the host does)
// its value and font.  What the cells hold comes from the functions of a
// Source, so a command line, a test or a benchmark supplies only its cells.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "automation/Members.hpp"

namespace TessarkAO::RefHost {

class BomData final : public Dispatch<BomData> {
 public:
  static constexpr std::string_view kClassName = "BOMData";
  static void Describe(ClassBuilder<BomData>& b);

  using Cell = std::function<Variant(std::int32_t row, std::int32_t column)>;
  struct Source {
    std::string filename;
    std::int32_t flags = 1;
    std::int32_t rows = 0;
    std::int32_t columns = 0;
    Cell cell;  // may raise: the exporter sees the host's error
    // The fonts: "Arial" at 10 points, regular, when not given.
    std::function<std::string(std::int32_t row, std::int32_t column)> fontName;
    std::function<double(std::int32_t row, std::int32_t column)> fontSize;
    std::function<std::int32_t(std::int32_t row, std::int32_t column)> fontFormat;
  };

  explicit BomData(Source source) : source_(std::move(source)) {}
  Source& Data() noexcept { return source_; }

  std::string Filename() { return source_.filename; }
  std::int32_t Flags() { return source_.flags; }
  std::int32_t Rows() { return source_.rows; }
  std::int32_t Columns() { return source_.columns; }
  Variant GetCellData(std::int32_t& row, std::int32_t& column);
  std::string GetFontName(std::int32_t& row, std::int32_t& column);
  double GetFontSize(std::int32_t& row, std::int32_t& column);
  std::int32_t GetFontFormat(std::int32_t& row, std::int32_t& column);

 private:
  Source source_;
};

}  // namespace TessarkAO::RefHost
