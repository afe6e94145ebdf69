// Localizer: hands out the texts of the library's string table.
//
// The library keeps one shared Localizer (see Globals) and calls its
// LoadString by name, late-bound, so a satellite localizer of another
// language can stand in its place.  Not part of the instance count: it is
// what the shared reference points at.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/Members.hpp"

namespace TessarkAO {

class Localizer final : public Dispatch<Localizer> {
 public:
  static constexpr std::string_view kClassName = "Localizer";
  static void Describe(ClassBuilder<Localizer>& b);

  // The text of string-table entry `id`.  An id the table lacks raises
  // 326 ("Resource with identifier 'id' not found").
  std::string LoadString(std::int32_t id);
};

}  // namespace TessarkAO
