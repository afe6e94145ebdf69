// Text rules of the runtime: UTF-8 and UTF-16, case mapping, blanks and
// code-unit comparison.
#include <string>

#include "automation/Convert.hpp"
#include "automation/Members.hpp"

namespace TessarkAO {

namespace {
// Decodes one code point; invalid bytes read as U+FFFD one byte at a time.
char32_t Decode(std::string_view s, std::size_t& i) noexcept {
  const unsigned char c = static_cast<unsigned char>(s[i]);
  auto cont = [&](std::size_t k) {
    return i + k < s.size() && (static_cast<unsigned char>(s[i + k]) & 0xC0) == 0x80;
  };
  if (c < 0x80) {
    ++i;
    return c;
  }
  if (c >= 0xC2 && c < 0xE0 && cont(1)) {
    char32_t cp = ((c & 0x1Fu) << 6) | (static_cast<unsigned char>(s[i + 1]) & 0x3Fu);
    i += 2;
    return cp;
  }
  if (c >= 0xE0 && c < 0xF0 && cont(1) && cont(2)) {
    char32_t cp = ((c & 0x0Fu) << 12) | ((static_cast<unsigned char>(s[i + 1]) & 0x3Fu) << 6) |
                  (static_cast<unsigned char>(s[i + 2]) & 0x3Fu);
    if (cp >= 0x800) {
      i += 3;
      return cp;
    }
  }
  if (c >= 0xF0 && c < 0xF5 && cont(1) && cont(2) && cont(3)) {
    char32_t cp = ((c & 0x07u) << 18) | ((static_cast<unsigned char>(s[i + 1]) & 0x3Fu) << 12) |
                  ((static_cast<unsigned char>(s[i + 2]) & 0x3Fu) << 6) |
                  (static_cast<unsigned char>(s[i + 3]) & 0x3Fu);
    if (cp >= 0x10000 && cp <= 0x10FFFF) {
      i += 4;
      return cp;
    }
  }
  ++i;
  return 0xFFFD;
}

void Encode(char32_t cp, std::string& out) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

char32_t LowerCp(char32_t c) noexcept {
  if (c >= 'A' && c <= 'Z') return c + 32;
  if (c < 0xC0) return c;
  if ((c >= 0xC0 && c <= 0xDE && c != 0xD7)) return c + 32;
  if (c >= 0x100 && c <= 0x17F) {
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return (c & 1) ? c + 1 : c;
    if (c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F) return c;
    return (c & 1) ? c : c + 1;
  }
  if (c >= 0x391 && c <= 0x3AB && c != 0x3A2) return c + 32;
  if (c >= 0x410 && c <= 0x42F) return c + 32;
  if (c >= 0x400 && c <= 0x40F) return c + 80;
  if (c >= 0xFF21 && c <= 0xFF3A) return c + 32;
  return c;
}

char32_t UpperCp(char32_t c) noexcept {
  if (c >= 'a' && c <= 'z') return c - 32;
  if (c < 0xE0) return c;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 32;
  if (c >= 0x100 && c <= 0x17F) {
    if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return (c & 1) ? c : c - 1;
    if (c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F) return c;
    return (c & 1) ? c - 1 : c;
  }
  if (c >= 0x3B1 && c <= 0x3CB && c != 0x3C2) return c - 32;
  if (c >= 0x430 && c <= 0x44F) return c - 32;
  if (c >= 0x450 && c <= 0x45F) return c - 80;
  if (c >= 0xFF41 && c <= 0xFF5A) return c - 32;
  return c;
}
}  // namespace

// The one case-insensitive comparison of ASCII names (Members.hpp).
bool EqualsNoCaseAscii(std::string_view a, std::string_view b) noexcept { return EqualsNoCase(a, b); }

std::u16string ToUtf16(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const char32_t cp = Decode(utf8, i);
    if (cp >= 0x10000) {
      out.push_back(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(cp));
    }
  }
  return out;
}

std::string ToUtf8(std::u16string_view utf16) {
  std::string out;
  out.reserve(utf16.size());
  for (std::size_t i = 0; i < utf16.size(); ++i) {
    char32_t c = utf16[i];
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
        utf16[i + 1] < 0xE000) {
      c = 0x10000 + ((c - 0xD800) << 10) + (utf16[i + 1] - 0xDC00);
      ++i;
    }
    // A lone surrogate keeps its three-byte form, so that any sequence of
    // code units comes back unchanged from ToUtf16.
    Encode(c, out);
  }
  return out;
}

std::size_t Utf16Length(std::string_view utf8) {
  std::size_t n = 0;
  for (std::size_t i = 0; i < utf8.size();) n += Decode(utf8, i) >= 0x10000 ? 2 : 1;
  return n;
}

std::string LowerCase(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c < 0x80) {
      out.push_back(static_cast<char>(c >= 'A' && c <= 'Z' ? c | 0x20 : c));
      ++i;
    } else {
      Encode(LowerCp(Decode(text, i)), out);
    }
  }
  return out;
}

std::string UpperCase(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c < 0x80) {
      out.push_back(static_cast<char>(c >= 'a' && c <= 'z' ? c & ~0x20 : c));
      ++i;
    } else {
      Encode(UpperCp(Decode(text, i)), out);
    }
  }
  return out;
}

std::string_view TrimBlanks(std::string_view text) noexcept {
  std::size_t b = 0, e = text.size();
  while (b < e && text[b] == ' ') ++b;
  while (e > b && text[e - 1] == ' ') --e;
  return text.substr(b, e - b);
}

int CompareCodeUnits(std::string_view a, std::string_view b) noexcept {
  // UTF-8 byte order is code-point order; it differs from UTF-16 code-unit
  // order only where a supplementary character (4-byte form, a surrogate pair
  // in UTF-16) meets a character from U+E000 to U+FFFF.
  const std::size_t n = std::min(a.size(), b.size());
  std::size_t i = 0;
  while (i < n && a[i] == b[i]) ++i;
  if (i == n) return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
  std::size_t start = i;
  while (start > 0 && (static_cast<unsigned char>(a[start]) & 0xC0) == 0x80) --start;
  const unsigned char la = static_cast<unsigned char>(a[start]);
  const unsigned char lb = static_cast<unsigned char>(b[start]);
  const bool aSupp = la >= 0xF0, bSupp = lb >= 0xF0;
  const bool aHigh = la == 0xEE || la == 0xEF, bHigh = lb == 0xEE || lb == 0xEF;
  if (aSupp && bHigh) return -1;
  if (bSupp && aHigh) return 1;
  return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[i]) ? -1 : 1;
}

}  // namespace TessarkAO
