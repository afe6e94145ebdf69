#include "frame/Localizer.hpp"

#include "automation/Catalogue.hpp"
#include "frame/StringTable.hpp"

namespace TessarkAO {

void Localizer::Describe(ClassBuilder<Localizer>& b) {
  b.Method<&Localizer::LoadString>(
      "LoadString", Names{"lngStrID"},
      Doc{"The text of string-table entry lngStrID (101 to 124). An id the table lacks raises 326."});
}

std::string Localizer::LoadString(std::int32_t id) {
  if (auto text = LoadStringResource(id)) return std::move(*text);
  throw AutomationError(Err::ResourceNotFound, "Resource with identifier '" + std::to_string(id) + "' not found");
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::Localizer)
