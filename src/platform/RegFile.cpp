#include "platform/RegFile.hpp"

#include <cstdio>
#include <optional>

#include "automation/Convert.hpp"

#ifdef _WIN32
#include "platform/win32/Windows.hpp"
#else
#include <iconv.h>
#endif

namespace TessarkAO {

namespace {

// ---------------------------------------------------------------------------
// Text encodings.  Every conversion goes through code points, so that a
// NUL or a line break inside string data passes like any other character.

using CodePoints = std::u32string;

// Windows-1252 from 0x80 to 0x9F; the five bytes the code page leaves
// unassigned map to the control characters of the same number, as the
// system's own conversion does, so that every byte survives a round trip.
constexpr char32_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool DecodeUtf8(std::string_view s, CodePoints& out) {
  out.clear();
  for (std::size_t i = 0; i < s.size();) {
    const auto b = static_cast<unsigned char>(s[i]);
    const int extra = b < 0x80 ? 0 : (b & 0xE0) == 0xC0 ? 1 : (b & 0xF0) == 0xE0 ? 2 : (b & 0xF8) == 0xF0 ? 3 : -1;
    if (extra < 0 || (extra > 0 && i + static_cast<std::size_t>(extra) >= s.size())) return false;
    char32_t c = extra == 0 ? b : b & (0x3F >> extra);
    for (int k = 1; k <= extra; ++k) {
      const auto n = static_cast<unsigned char>(s[i + static_cast<std::size_t>(k)]);
      if ((n & 0xC0) != 0x80) return false;
      c = (c << 6) | (n & 0x3F);
    }
    constexpr char32_t kMin[4] = {0, 0x80, 0x800, 0x10000};
    if (c < kMin[extra] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return false;
    out.push_back(c);
    i += static_cast<std::size_t>(extra) + 1;
  }
  return true;
}

void EncodeUtf8(const CodePoints& cps, std::string& out) {
  out.clear();
  for (char32_t c : cps) {
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (c >> 12)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (c >> 18)));
      out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
  }
}

bool DecodeUtf16Le(std::string_view s, CodePoints& out) {
  out.clear();
  if (s.size() % 2 != 0) return false;
  for (std::size_t i = 0; i < s.size(); i += 2) {
    char32_t u = static_cast<unsigned char>(s[i]) | (static_cast<unsigned char>(s[i + 1]) << 8);
    if (u >= 0xD800 && u <= 0xDBFF) {
      if (i + 3 >= s.size()) return false;
      const char32_t low = static_cast<unsigned char>(s[i + 2]) | (static_cast<unsigned char>(s[i + 3]) << 8);
      if (low < 0xDC00 || low > 0xDFFF) return false;
      u = 0x10000 + ((u - 0xD800) << 10) + (low - 0xDC00);
      i += 2;
    } else if (u >= 0xDC00 && u <= 0xDFFF) {
      return false;
    }
    out.push_back(u);
  }
  return true;
}

void EncodeUtf16Le(const CodePoints& cps, std::string& out) {
  out.clear();
  auto unit = [&](char32_t u) {
    out.push_back(static_cast<char>(u & 0xFF));
    out.push_back(static_cast<char>(u >> 8));
  };
  for (char32_t c : cps) {
    if (c >= 0x10000) {
      unit(0xD800 + ((c - 0x10000) >> 10));
      unit(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      unit(c);
    }
  }
}

// Any other code page, through the system's converter.
#ifdef _WIN32
bool DecodeOther(unsigned cp, std::string_view s, CodePoints& out) {
  out.clear();
  if (s.empty()) return true;
  const int n = MultiByteToWideChar(cp, MB_ERR_INVALID_CHARS, s.data(), static_cast<int>(s.size()), nullptr, 0);
  if (n <= 0) return false;
  std::wstring w(static_cast<std::size_t>(n), L'\0');
  MultiByteToWideChar(cp, MB_ERR_INVALID_CHARS, s.data(), static_cast<int>(s.size()), w.data(), n);
  return DecodeUtf16Le(std::string_view(reinterpret_cast<const char*>(w.data()), w.size() * 2), out);
}
bool EncodeOther(unsigned cp, const CodePoints& cps, std::string& out) {
  out.clear();
  if (cps.empty()) return true;
  std::string units;
  EncodeUtf16Le(cps, units);
  const auto* w = reinterpret_cast<const wchar_t*>(units.data());
  const int wn = static_cast<int>(units.size() / 2);
  BOOL lossy = FALSE;
  const int n = WideCharToMultiByte(cp, WC_NO_BEST_FIT_CHARS, w, wn, nullptr, 0, nullptr, &lossy);
  if (n <= 0 || lossy) return false;
  out.resize(static_cast<std::size_t>(n));
  WideCharToMultiByte(cp, WC_NO_BEST_FIT_CHARS, w, wn, out.data(), n, nullptr, &lossy);
  return !lossy;
}
bool OtherSupported(unsigned cp) { return IsValidCodePage(cp) != 0; }
#else
// Converts with iconv between "CP<n>" and UTF-32LE; false when the code page
// is unknown or the text does not convert.
bool Iconv(const std::string& to, const std::string& from, std::string_view in, std::string& out) {
  iconv_t cd = iconv_open(to.c_str(), from.c_str());
  if (cd == reinterpret_cast<iconv_t>(-1)) return false;
  out.assign(in.size() * 4 + 16, '\0');
  char* src = const_cast<char*>(in.data());
  std::size_t srcLeft = in.size();
  char* dst = out.data();
  std::size_t dstLeft = out.size();
  const std::size_t rc = iconv(cd, &src, &srcLeft, &dst, &dstLeft);
  iconv_close(cd);
  if (rc == static_cast<std::size_t>(-1) || rc != 0 || srcLeft != 0) return false;
  out.resize(out.size() - dstLeft);
  return true;
}
std::string CodePageName(unsigned cp) { return "CP" + std::to_string(cp); }
bool DecodeOther(unsigned cp, std::string_view s, CodePoints& out) {
  std::string wide;
  if (!Iconv("UTF-32LE", CodePageName(cp), s, wide)) return false;
  out.clear();
  for (std::size_t i = 0; i + 3 < wide.size(); i += 4)
    out.push_back(static_cast<unsigned char>(wide[i]) | (static_cast<unsigned char>(wide[i + 1]) << 8) |
                  (static_cast<unsigned char>(wide[i + 2]) << 16) |
                  (static_cast<char32_t>(static_cast<unsigned char>(wide[i + 3])) << 24));
  return true;
}
bool EncodeOther(unsigned cp, const CodePoints& cps, std::string& out) {
  std::string wide;
  for (char32_t c : cps)
    for (int k = 0; k < 4; ++k) wide.push_back(static_cast<char>((c >> (8 * k)) & 0xFF));
  return Iconv(CodePageName(cp), "UTF-32LE", wide, out);
}
bool OtherSupported(unsigned cp) {
  iconv_t cd = iconv_open("UTF-32LE", CodePageName(cp).c_str());
  if (cd == reinterpret_cast<iconv_t>(-1)) return false;
  iconv_close(cd);
  return true;
}
#endif

// The code page (UTF-16LE is 1200) bytes to code points, and back; false
// for bytes that are not text of the code page, or characters it lacks.
constexpr unsigned kCodePageUtf16 = 1200;

bool Decode(unsigned cp, std::string_view s, CodePoints& out) {
  if (cp == kCodePageUtf8) return DecodeUtf8(s, out);
  if (cp == kCodePageUtf16) return DecodeUtf16Le(s, out);
  if (cp == 1252) {
    out.clear();
    for (char ch : s) {
      const auto b = static_cast<unsigned char>(ch);
      out.push_back(b >= 0x80 && b < 0xA0 ? kCp1252High[b - 0x80] : b);
    }
    return true;
  }
  return DecodeOther(cp, s, out);
}

bool Encode(unsigned cp, const CodePoints& cps, std::string& out) {
  if (cp == kCodePageUtf8) {
    EncodeUtf8(cps, out);
    return true;
  }
  if (cp == kCodePageUtf16) {
    EncodeUtf16Le(cps, out);
    return true;
  }
  if (cp == 1252) {
    out.clear();
    for (char32_t c : cps) {
      if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
        out.push_back(static_cast<char>(c));
        continue;
      }
      int found = -1;
      for (int i = 0; i < 32; ++i)
        if (kCp1252High[i] == c) found = i;
      if (found < 0) return false;
      out.push_back(static_cast<char>(0x80 + found));
    }
    return true;
  }
  return EncodeOther(cp, cps, out);
}

bool Transcode(unsigned from, unsigned to, std::string_view in, std::string& out) {
  if (from == to && from != kCodePageUtf8) {
    out.assign(in);
    return true;
  }
  CodePoints cps;
  return Decode(from, in, cps) && Encode(to, cps, out);
}

// The encoding of names and string data inside the store.
unsigned StoreCodePage() {
#ifdef _WIN32
  return GetACP();
#else
  return kCodePageUtf8;
#endif
}

bool IsStringType(std::uint32_t type) {
  return type == RegType::String || type == RegType::ExpandString || type == RegType::MultiString;
}

constexpr std::string_view kHeader4 = "REGEDIT4";
constexpr std::string_view kHeader5 = "Windows Registry Editor Version 5.00";

struct RootName {
  std::string_view longName;
  std::string_view shortName;
  RegHandle handle;
};
constexpr RootName kRoots[] = {
    {"HKEY_CLASSES_ROOT", "HKCR", kHkeyClassesRoot},
    {"HKEY_CURRENT_USER", "HKCU", kHkeyCurrentUser},
    {"HKEY_LOCAL_MACHINE", "HKLM", kHkeyLocalMachine},
};

int HexDigit(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string_view TrimSpace(std::string_view s) noexcept {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

// Reads a quoted string starting at s[0] == '"'; returns the position after
// the closing quote, or npos when it is not closed.  A backslash takes the
// next character as it is, except for the \n, \r and \0 with which Wine's
// registry editor writes line breaks and NULs inside strings.
std::size_t ReadQuoted(std::string_view s, std::string& out) {
  out.clear();
  for (std::size_t i = 1; i < s.size(); ++i) {
    if (s[i] == '\\' && i + 1 < s.size()) {
      const char c = s[++i];
      out.push_back(c == 'n' ? '\n' : c == 'r' ? '\r' : c == '0' ? '\0' : c);
    } else if (s[i] == '"') {
      return i + 1;
    } else {
      out.push_back(s[i]);
    }
  }
  return std::string_view::npos;
}

// "01,02, 0a" -> bytes; false on anything else.
bool ParseHexList(std::string_view s, std::vector<std::uint8_t>& out) {
  out.clear();
  s = TrimSpace(s);
  if (s.empty()) return true;
  std::size_t i = 0;
  while (true) {
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t')) ++i;
    if (i + 2 > s.size()) return false;
    const int hi = HexDigit(s[i]), lo = HexDigit(s[i + 1]);
    if (hi < 0 || lo < 0) return false;
    out.push_back(static_cast<std::uint8_t>(hi * 16 + lo));
    i += 2;
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t')) ++i;
    if (i == s.size()) return true;
    if (s[i] != ',') return false;
    ++i;
  }
}

void AppendQuoted(std::string& out, std::string_view text) {
  out.push_back('"');
  for (char c : text) {
    if (c == '\\' || c == '"') out.push_back('\\');
    out.push_back(c);
  }
  out.push_back('"');
}

// A REG_SZ that a quoted string writes back byte for byte: its data ends in
// the one NUL and holds no other NUL and no line break.
bool QuotedStringFits(const RegFileValue& v) {
  if (v.type != RegType::String || v.data.empty() || v.data.back() != 0) return false;
  for (std::size_t i = 0; i + 1 < v.data.size(); ++i) {
    const std::uint8_t c = v.data[i];
    if (c == 0 || c == '\n' || c == '\r') return false;
  }
  return true;
}

}  // namespace

std::string_view RegistryRootName(RegHandle root) noexcept {
  for (const RootName& r : kRoots)
    if (r.handle == root) return r.longName;
  return {};
}

RegHandle RegistryRootFromName(std::string_view name) noexcept {
  for (const RootName& r : kRoots)
    if (EqualsNoCaseAscii(r.longName, name) || EqualsNoCaseAscii(r.shortName, name)) return r.handle;
  return 0;
}

bool RegFileCodePageSupported(unsigned codePage) {
  return codePage == 1252 || codePage == kCodePageUtf8 || (codePage != kCodePageUtf16 && OtherSupported(codePage));
}

namespace {

// The text of a file as UTF-8: a byte-order mark decides the encoding;
// without one, a REGEDIT4 file is in `codePage` and anything else UTF-8.
bool DecodeRegFile(std::string_view file, unsigned codePage, std::string& text, std::string& error) {
  auto starts = [&](std::string_view prefix) { return file.substr(0, prefix.size()) == prefix; };
  unsigned from = kCodePageUtf8;
  if (starts("\xFF\xFE")) {
    file.remove_prefix(2);
    from = kCodePageUtf16;
  } else if (starts("\xEF\xBB\xBF")) {
    file.remove_prefix(3);
  } else if (starts("\xFE\xFF")) {
    error = "line 1: UTF-16 big-endian files are not read (save as UTF-16LE or UTF-8)";
    return false;
  } else {
    const std::size_t start = file.find_first_not_of(" \t\r\n");
    if (start != std::string_view::npos && file.substr(start, kHeader4.size()) == kHeader4) from = codePage;
  }
  if (Transcode(from, kCodePageUtf8, file, text)) return true;
  // Name the first line that does not convert.
  int line = 1;
  for (std::size_t pos = 0;; ++line) {
    std::size_t end = file.find(from == kCodePageUtf16 ? std::string_view("\n\0", 2) : "\n", pos);
    if (from == kCodePageUtf16)
      while (end != std::string_view::npos && (end - pos) % 2 != 0) end = file.find(std::string_view("\n\0", 2), end + 1);
    std::string ignored;
    if (end == std::string_view::npos || !Transcode(from, kCodePageUtf8, file.substr(pos, end - pos), ignored)) break;
    pos = end + (from == kCodePageUtf16 ? 2 : 1);
  }
  error = "line " + std::to_string(line) + ": not valid " +
          (from == kCodePageUtf16 ? std::string("UTF-16LE")
           : from == kCodePageUtf8 ? std::string("UTF-8")
                                   : "text of code page " + std::to_string(from));
  return false;
}

}  // namespace

bool ParseRegFile(std::string_view file, std::vector<RegFileKey>& keys, std::string& error, unsigned codePage) {
  keys.clear();
  error.clear();
  std::string decoded;
  if (!DecodeRegFile(file, codePage, decoded, error)) return false;
  const std::string_view text = decoded;
  const unsigned store = StoreCodePage();
  RegFileFormat format = RegFileFormat::Regedit4;

  // Split into logical lines: a line whose data ends in a backslash goes on
  // on the next line (hex lists written across several lines).
  std::vector<std::pair<int, std::string>> lines;
  int lineNo = 0;
  bool continuing = false;
  std::size_t pos = 0;
  while (pos <= text.size()) {
    std::size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) end = text.size();
    std::string_view raw = text.substr(pos, end - pos);
    pos = end + 1;
    ++lineNo;
    if (!raw.empty() && raw.back() == '\r') raw.remove_suffix(1);
    std::string_view t = TrimSpace(raw);
    // Only hex data continues: every other line ends in a quote, a bracket
    // or a data word.
    const bool more = !t.empty() && t.back() == '\\';
    std::string_view body = more ? t.substr(0, t.size() - 1) : t;
    if (continuing)
      lines.back().second += std::string(body);
    else
      lines.emplace_back(lineNo, std::string(body));
    continuing = more;
    if (end == text.size()) break;
  }

  auto fail = [&](int line, std::string_view what) {
    keys.clear();
    error = "line " + std::to_string(line) + ": " + std::string(what);
    return false;
  };

  bool headerSeen = false;
  for (auto& [no, lineText] : lines) {
    std::string_view line = TrimSpace(lineText);
    if (line.empty() || line.front() == ';') continue;
    if (!headerSeen) {
      if (line == kHeader5)
        format = RegFileFormat::Version5;
      else if (line != kHeader4)
        return fail(no, "not a registration file (the first line must be REGEDIT4 or "
                        "Windows Registry Editor Version 5.00)");
      headerSeen = true;
      continue;
    }
    if (line.front() == '[') {
      if (line.back() != ']') return fail(no, "key line without its closing bracket");
      std::string_view name = line.substr(1, line.size() - 2);
      RegFileKey key;
      if (!name.empty() && name.front() == '-') {
        key.remove = true;
        name.remove_prefix(1);
      }
      const std::size_t slash = name.find('\\');
      const std::string_view rootName = name.substr(0, slash);
      key.root = RegistryRootFromName(rootName);
      if (key.root == 0) return fail(no, "unknown root key '" + std::string(rootName) + "'");
      if (slash != std::string_view::npos && !Transcode(kCodePageUtf8, store, name.substr(slash + 1), key.path))
        return fail(no, "the key name cannot be held in the store's code page");
      while (!key.path.empty() && key.path.back() == '\\') key.path.pop_back();
      keys.push_back(std::move(key));
      continue;
    }
    if (keys.empty()) return fail(no, "value line before the first key line");
    if (keys.back().remove) return fail(no, "value line in a section that deletes its key");

    RegFileValue value;
    std::size_t rest;
    if (line.front() == '@') {
      rest = 1;
    } else if (line.front() == '"') {
      rest = ReadQuoted(line, value.name);
      if (rest == std::string_view::npos) return fail(no, "value name without its closing quote");
      if (std::string n; Transcode(kCodePageUtf8, store, value.name, n))
        value.name = std::move(n);
      else
        return fail(no, "the value name cannot be held in the store's code page");
    } else {
      return fail(no, "expected a key in brackets or a value name");
    }
    std::string_view data = TrimSpace(line.substr(rest));
    if (data.empty() || data.front() != '=') return fail(no, "expected '=' after the value name");
    data = TrimSpace(data.substr(1));
    if (data == "-") {
      value.remove = true;
    } else if (!data.empty() && data.front() == '"') {
      std::string s;
      const std::size_t after = ReadQuoted(data, s);
      if (after == std::string_view::npos) return fail(no, "string data without its closing quote");
      if (!TrimSpace(data.substr(after)).empty()) return fail(no, "text after the string data");
      std::string stored;
      if (!Transcode(kCodePageUtf8, store, s, stored))
        return fail(no, "the string cannot be held in the store's code page");
      value.type = RegType::String;
      value.data.assign(stored.begin(), stored.end());
      value.data.push_back(0);
    } else if (data.size() >= 6 && EqualsNoCaseAscii(data.substr(0, 6), "dword:")) {
      const std::string_view digits = data.substr(6);
      if (digits.empty() || digits.size() > 8) return fail(no, "dword data must be 1 to 8 hex digits");
      std::uint32_t n = 0;
      for (char c : digits) {
        const int d = HexDigit(c);
        if (d < 0) return fail(no, "dword data must be 1 to 8 hex digits");
        n = n * 16 + static_cast<std::uint32_t>(d);
      }
      value.type = RegType::Dword;
      for (int i = 0; i < 4; ++i) value.data.push_back(static_cast<std::uint8_t>(n >> (8 * i)));
    } else if (data.size() >= 3 && EqualsNoCaseAscii(data.substr(0, 3), "hex")) {
      std::string_view h = data.substr(3);
      value.type = RegType::Binary;
      if (!h.empty() && h.front() == '(') {
        const std::size_t close = h.find(')');
        if (close == std::string_view::npos || close == 1 || close > 9)
          return fail(no, "hex(type) needs a hex type number");
        std::uint32_t t = 0;
        for (char c : h.substr(1, close - 1)) {
          const int d = HexDigit(c);
          if (d < 0) return fail(no, "hex(type) needs a hex type number");
          t = t * 16 + static_cast<std::uint32_t>(d);
        }
        value.type = t;
        h = h.substr(close + 1);
      }
      if (h.empty() || h.front() != ':') return fail(no, "expected ':' after hex");
      if (!ParseHexList(h.substr(1), value.data)) return fail(no, "hex data must be two-digit bytes separated by commas");
      if (IsStringType(value.type)) {
        // String data in hex is in the file's character set: the code page
        // in REGEDIT4, UTF-16LE in version 5.00.
        const unsigned from = format == RegFileFormat::Regedit4 ? codePage : kCodePageUtf16;
        std::string stored;
        if (!Transcode(from, store,
                       std::string_view(reinterpret_cast<const char*>(value.data.data()), value.data.size()), stored))
          return fail(no, format == RegFileFormat::Regedit4
                              ? "the string data in hex cannot be held in the store's code page"
                              : "string data in hex must be UTF-16LE (pairs of bytes)");
        value.data.assign(stored.begin(), stored.end());
      }
    } else {
      return fail(no, "unknown value data (expected a string, dword:, hex: or -)");
    }
    keys.back().values.push_back(std::move(value));
  }
  if (!headerSeen) return fail(lineNo, "empty file: the first line must be REGEDIT4 or Windows Registry Editor Version 5.00");
  return true;
}

namespace {

// Appends one key section (a blank line, the key line, its values) with its
// text in `cp` (UTF-8 for a version 5.00 file, converted as a whole later);
// false with `error` set when the text does not fit the code page.
bool AppendRegFileKey(std::string& out, const RegFileKey& key, RegFileFormat format, unsigned cp,
                      std::string& error) {
  const unsigned store = StoreCodePage();
  const std::string section = std::string(RegistryRootName(key.root)) + (key.path.empty() ? "" : "\\") + key.path;
  auto text = [&](std::string_view storeText, std::string& converted, std::string_view what) {
    if (Transcode(store, cp, storeText, converted)) return true;
    error = std::string(what) + " of [" + section + "] cannot be written in " +
            (cp == kCodePageUtf8 ? std::string("UTF-8 (it is not valid text)")
                                 : "code page " + std::to_string(cp) + " (export in format 5 instead)");
    return false;
  };
  std::string converted;
  if (!text(key.path, converted, "the key name")) return false;
  out += "\r\n[";
  if (key.remove) out += '-';
  out += RegistryRootName(key.root);
  if (!converted.empty()) {
    out += '\\';
    out += converted;
  }
  out += "]\r\n";
  for (const RegFileValue& v : key.values) {
    const std::string what = v.name.empty() ? "the default value" : "the value \"" + v.name + "\"";
    std::string line;
    if (v.name.empty()) {
      line = "@";
    } else {
      if (!text(v.name, converted, "a value name")) return false;
      AppendQuoted(line, converted);
    }
    line += '=';
    const std::string_view bytes(reinterpret_cast<const char*>(v.data.data()), v.data.size());
    if (v.remove) {
      line += '-';
    } else if (QuotedStringFits(v)) {
      if (!text(bytes.substr(0, bytes.size() - 1), converted, what)) return false;
      AppendQuoted(line, converted);
    } else if (v.type == RegType::Dword && v.data.size() == 4) {
      char buf[16];
      const std::uint32_t n = v.data[0] | (v.data[1] << 8) | (v.data[2] << 16) |
                              (static_cast<std::uint32_t>(v.data[3]) << 24);
      std::snprintf(buf, sizeof buf, "dword:%08x", n);
      line += buf;
    } else {
      // String data in hex is in the file's character set.
      std::string hexBytes(bytes);
      if (IsStringType(v.type)) {
        const unsigned target = format == RegFileFormat::Regedit4 ? cp : kCodePageUtf16;
        if (!Transcode(store, target, bytes, hexBytes)) {
          if (!text(bytes, converted, what)) return false;
        }
      }
      char buf[16];
      if (v.type == RegType::Binary)
        line += "hex:";
      else {
        std::snprintf(buf, sizeof buf, "hex(%x):", v.type);
        line += buf;
      }
      // Bytes as "xx," wrapped before 80 columns with a backslash, the
      // continuation indented by two blanks.
      for (std::size_t i = 0; i < hexBytes.size(); ++i) {
        std::snprintf(buf, sizeof buf, "%02x", static_cast<unsigned char>(hexBytes[i]));
        line += buf;
        if (i + 1 < hexBytes.size()) {
          line += ',';
          if (line.size() > 75) {
            out += line;
            out += "\\\r\n";
            line = "  ";
          }
        }
      }
    }
    out += line;
    out += "\r\n";
  }
  return true;
}

}  // namespace

bool WriteRegFile(const std::vector<RegFileKey>& keys, RegFileFormat format, unsigned codePage, std::string& file,
                  std::string& error) {
  error.clear();
  const bool v4 = format == RegFileFormat::Regedit4;
  if (v4 && !RegFileCodePageSupported(codePage)) {
    error = "code page " + std::to_string(codePage) + " is not known here";
    return false;
  }
  std::string text(v4 ? kHeader4 : kHeader5);
  text += "\r\n";
  for (const RegFileKey& key : keys)
    if (!AppendRegFileKey(text, key, format, v4 ? codePage : kCodePageUtf8, error)) return false;
  if (v4) {
    file = std::move(text);
    return true;
  }
  file = "\xFF\xFE";
  std::string wide;
  Transcode(kCodePageUtf8, kCodePageUtf16, text, wide);
  file += wide;
  return true;
}

}  // namespace TessarkAO
