#include "com/Guid.hpp"

namespace TessarkAO::Com {

namespace {

int HexDigit(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Reads `digits` hex digits at `pos`; false on anything else.
bool ReadHex(std::string_view s, std::size_t pos, std::size_t digits, std::uint64_t& out) noexcept {
  out = 0;
  for (std::size_t i = 0; i < digits; ++i) {
    const int d = HexDigit(s[pos + i]);
    if (d < 0) return false;
    out = (out << 4) | static_cast<std::uint64_t>(d);
  }
  return true;
}

}  // namespace

std::optional<Guid> ParseGuid(std::string_view s) noexcept {
  if (s.size() == 38) {
    if (s.front() != '{' || s.back() != '}') return std::nullopt;
    s = s.substr(1, 36);
  }
  if (s.size() != 36 || s[8] != '-' || s[13] != '-' || s[18] != '-' || s[23] != '-') return std::nullopt;
  Guid g;
  std::uint64_t v = 0;
  if (!ReadHex(s, 0, 8, v)) return std::nullopt;
  g.data1 = static_cast<std::uint32_t>(v);
  if (!ReadHex(s, 9, 4, v)) return std::nullopt;
  g.data2 = static_cast<std::uint16_t>(v);
  if (!ReadHex(s, 14, 4, v)) return std::nullopt;
  g.data3 = static_cast<std::uint16_t>(v);
  static constexpr std::size_t kBytePos[8] = {19, 21, 24, 26, 28, 30, 32, 34};
  for (std::size_t i = 0; i < 8; ++i) {
    if (!ReadHex(s, kBytePos[i], 2, v)) return std::nullopt;
    g.data4[i] = static_cast<std::uint8_t>(v);
  }
  return g;
}

std::string FormatGuid(const Guid& g) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out = "{";
  auto put = [&](std::uint64_t v, int digits) {
    for (int i = digits - 1; i >= 0; --i) out += kHex[(v >> (4 * i)) & 0xF];
  };
  put(g.data1, 8);
  out += '-';
  put(g.data2, 4);
  out += '-';
  put(g.data3, 4);
  out += '-';
  put(g.data4[0], 2);
  put(g.data4[1], 2);
  out += '-';
  for (std::size_t i = 2; i < 8; ++i) put(g.data4[i], 2);
  out += '}';
  return out;
}

std::string_view StripBraces(std::string_view s) noexcept {
  if (s.size() >= 2 && s.front() == '{' && s.back() == '}') return s.substr(1, s.size() - 2);
  return s;
}

}  // namespace TessarkAO::Com
