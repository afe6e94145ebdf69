#include "refhost/BomData.hpp"

namespace TessarkAO::RefHost {

void BomData::Describe(ClassBuilder<BomData>& b) {
  using C = BomData;
  b.Get<&C::Filename>("Filename")
      .Get<&C::Flags>("Flags")
      .Get<&C::Rows>("Rows")
      .Get<&C::Columns>("Columns")
      .Method<&C::GetCellData>("GetCellData", Names{"Row", "Column"}, Out<1, 2>{})
      .Method<&C::GetFontName>("GetFontName", Names{"Row", "Column"}, Out<1, 2>{})
      .Method<&C::GetFontSize>("GetFontSize", Names{"Row", "Column"}, Out<1, 2>{})
      .Method<&C::GetFontFormat>("GetFontFormat", Names{"Row", "Column"}, Out<1, 2>{});
}

Variant BomData::GetCellData(std::int32_t& row, std::int32_t& column) {
  return source_.cell ? source_.cell(row, column) : Variant();
}

std::string BomData::GetFontName(std::int32_t& row, std::int32_t& column) {
  return source_.fontName ? source_.fontName(row, column) : "Arial";
}

double BomData::GetFontSize(std::int32_t& row, std::int32_t& column) {
  return source_.fontSize ? source_.fontSize(row, column) : 10.0;
}

std::int32_t BomData::GetFontFormat(std::int32_t& row, std::int32_t& column) {
  return source_.fontFormat ? source_.fontFormat(row, column) : 0;
}

}  // namespace TessarkAO::RefHost
