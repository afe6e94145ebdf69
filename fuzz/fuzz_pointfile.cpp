// The fit-point reader: any text gives a table or an automation error, and
// the table has the documented shape (rows with numbers, columns of the
// widest row).
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "FuzzSupport.hpp"
#include "tools/PointFile.hpp"

using namespace TessarkAO;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Fuzz::Accepting("point file", [&] {
    PointFile::PointRows rows;
    PointFile::ParseFitPointText(text, rows);
    Ref<TK2DArray> table = rows.ToTable();
    if (table->Rows() != rows.Rows()) std::abort();
    if (rows.Rows() > 0 && table->Columns() != rows.columns) std::abort();
  });
  return 0;
}
