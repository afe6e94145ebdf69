// Registration files of the registry editor, in both of its formats:
// parsing and writing, apart from any store.
//
//     Windows Registry Editor Version 5.00      (or REGEDIT4)
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
// with everything below it and `"name"=-` a value.
//
// The two formats differ in their encoding: a REGEDIT4 file is in the ANSI
// code page (Windows-1252 unless told otherwise), and so are the bytes of
// its hex(1), hex(2) and hex(7) string data; a version 5.00 file is UTF-16LE
// with a byte-order mark (UTF-8 with or without one is read too), and its
// string data in hex is UTF-16LE.  Inside the library, names and string data
// are in the store's own text encoding (UTF-8 off Windows, the ANSI code
// page on Windows); parsing and writing convert, and refuse what the target
// encoding cannot hold instead of changing it.
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

// Parses a .reg file as it lies on disk, either format (the header decides;
// a byte-order mark decides the encoding).  `codePage` is the encoding of a
// REGEDIT4 file without a byte-order mark.  On failure returns false and
// `error` names the line and what is wrong with it.
bool ParseRegFile(std::string_view file, std::vector<RegFileKey>& keys, std::string& error,
                  unsigned codePage = kRegFileCodePage);

// Writes the sections as a whole file: REGEDIT4 in `codePage`, or version
// 5.00 in UTF-16LE with its byte-order mark.  False, with `error` naming the
// key or value, when a name or text cannot be written in that encoding.
bool WriteRegFile(const std::vector<RegFileKey>& keys, RegFileFormat format, unsigned codePage,
                  std::string& file, std::string& error);

// Whether the code page can be used for REGEDIT4 files here.
bool RegFileCodePageSupported(unsigned codePage);

}  // namespace TessarkAO
