// REGEDIT4 registration files: parsing and writing, apart from any store.
//
//     REGEDIT4
//
//     [HKEY_CURRENT_USER\SOFTWARE\Tessark\VelloraSuite\AddOns]
//     "LastRunProductName"="TESSARK"
//     @="default value"
//     "Count"=dword:0000000c
//     "Raw"=hex:01,02,03
//     "Unterminated"=hex(1):61,62,63
//     "Gone"=-
//
//     [-HKEY_CURRENT_USER\SOFTWARE\Old]
//
// Quoted strings are REG_SZ with their terminating NUL, as the registry
// editor writes them; `hex(n):` carries any type byte for byte, which is how
// data that a quoted string cannot represent exactly (a string without its
// NUL, with line breaks or embedded NULs) is written.  Long hex lists are
// continued with a backslash at the end of the line.  `[-key]` deletes a key
// with everything below it and `"name"=-` a value.  Text is kept as bytes
// (UTF-8 on this platform).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.hpp"

namespace TessarkAO {

struct RegFileValue {
  std::string name;  // "" is the default value (@)
  bool remove = false;
  std::uint32_t type = RegType::String;
  std::vector<std::uint8_t> data;
};

struct RegFileKey {
  RegHandle root = 0;
  std::string path;  // below the root, without leading or trailing backslash
  bool remove = false;
  std::vector<RegFileValue> values;
};

// Parses a REGEDIT4 text.  On failure returns false and `error` names the
// line and what is wrong with it.
bool ParseRegFile(std::string_view text, std::vector<RegFileKey>& keys, std::string& error);

// The first line of every file written.
inline constexpr std::string_view kRegFileHeader = "REGEDIT4\r\n";
// Appends one key section (a blank line, the key line, its values).
void AppendRegFileKey(std::string& out, const RegFileKey& key);

}  // namespace TessarkAO
