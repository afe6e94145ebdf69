#include "platform/RegFile.hpp"

#include <cstdio>

#include "automation/Convert.hpp"

namespace TessarkAO {

namespace {

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
// the closing quote, or npos when it is not closed.
std::size_t ReadQuoted(std::string_view s, std::string& out) {
  out.clear();
  for (std::size_t i = 1; i < s.size(); ++i) {
    if (s[i] == '\\' && i + 1 < s.size()) {
      out.push_back(s[++i]);
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

bool ParseRegFile(std::string_view text, std::vector<RegFileKey>& keys, std::string& error) {
  keys.clear();
  error.clear();
  if (text.size() >= 3 && static_cast<unsigned char>(text[0]) == 0xEF &&
      static_cast<unsigned char>(text[1]) == 0xBB && static_cast<unsigned char>(text[2]) == 0xBF)
    text.remove_prefix(3);  // a UTF-8 byte-order mark

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
      if (line != "REGEDIT4") return fail(no, "not a REGEDIT4 file (the first line must be REGEDIT4)");
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
      if (slash != std::string_view::npos) key.path = std::string(name.substr(slash + 1));
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
      value.type = RegType::String;
      value.data.assign(s.begin(), s.end());
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
    } else {
      return fail(no, "unknown value data (expected a string, dword:, hex: or -)");
    }
    keys.back().values.push_back(std::move(value));
  }
  if (!headerSeen) return fail(lineNo, "empty file: the first line must be REGEDIT4");
  return true;
}

void AppendRegFileKey(std::string& out, const RegFileKey& key) {
  out += "\r\n[";
  if (key.remove) out += '-';
  out += RegistryRootName(key.root);
  if (!key.path.empty()) {
    out += '\\';
    out += key.path;
  }
  out += "]\r\n";
  for (const RegFileValue& v : key.values) {
    std::string line;
    if (v.name.empty())
      line = "@";
    else
      AppendQuoted(line, v.name);
    line += '=';
    if (v.remove) {
      line += '-';
    } else if (QuotedStringFits(v)) {
      AppendQuoted(line, std::string_view(reinterpret_cast<const char*>(v.data.data()), v.data.size() - 1));
    } else if (v.type == RegType::Dword && v.data.size() == 4) {
      char buf[16];
      const std::uint32_t n = v.data[0] | (v.data[1] << 8) | (v.data[2] << 16) |
                              (static_cast<std::uint32_t>(v.data[3]) << 24);
      std::snprintf(buf, sizeof buf, "dword:%08x", n);
      line += buf;
    } else {
      char buf[16];
      if (v.type == RegType::Binary)
        line += "hex:";
      else {
        std::snprintf(buf, sizeof buf, "hex(%x):", v.type);
        line += buf;
      }
      // Bytes as "xx," wrapped before 80 columns with a backslash, the
      // continuation indented by two blanks.
      for (std::size_t i = 0; i < v.data.size(); ++i) {
        std::snprintf(buf, sizeof buf, "%02x", v.data[i]);
        line += buf;
        if (i + 1 < v.data.size()) {
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
}

}  // namespace TessarkAO
