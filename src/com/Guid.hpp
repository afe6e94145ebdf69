// Class and interface identifiers as the catalogue writes them
// ("{47ACD072-AF38-11D2-99DB-00A0244EC406}") and as the system lays them out
// in memory (the GUID structure), without the system headers.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace TessarkAO::Com {

struct Guid {
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0;
  std::uint16_t data3 = 0;
  std::array<std::uint8_t, 8> data4{};
  friend bool operator==(const Guid&, const Guid&) = default;
};

// Parses "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}", braces optional, hex digits
// in either case; nothing for any other text.
std::optional<Guid> ParseGuid(std::string_view text) noexcept;
// The registry form: upper-case hex digits in braces.
std::string FormatGuid(const Guid& guid);
// The identifier without its braces, as IDL's uuid() attribute takes it.
std::string_view StripBraces(std::string_view text) noexcept;

}  // namespace TessarkAO::Com
