#include "tools/PointFile.hpp"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "automation/Convert.hpp"

namespace TessarkAO::PointFile {

namespace {

// Tokens made only of these characters, read whole by from_chars, have the
// value the runtime's parser gives them when the decimal separator is '.'
// (and '.' is not the group separator); every other token goes to the parser.
bool IsPlainNumberChar(char c) noexcept {
  return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == 'e' || c == 'E' || c == '+';
}

}  // namespace

bool ReadNumber(std::string_view token, double& value) noexcept {
  if (token.empty()) return false;
  const NumberLocale locale = GetNumberLocale();
  if (locale.decimal == '.' && locale.group != '.' && token[0] != '+') {
    bool plain = true;
    for (char c : token) plain = plain && IsPlainNumberChar(c);
    if (plain) {
      double v;
      const auto [end, ec] = std::from_chars(token.data(), token.data() + token.size(), v);
      if (ec == std::errc() && end == token.data() + token.size()) {
        value = v;
        return true;
      }
    }
  }
  return ParseNumber(token, locale, value) == 0;
}

// The separator of a line is chosen once, by priority: a tab when the line
// holds one, else a comma when it holds one, else a blank.  This is the
// reading under which "3<tab>4,5" gives the two tokens "3" and "4,5", as the
// tool's files rely on; searching the priority again after each token would
// split "4,5" at its comma.
void ParseFitPointLine(std::string_view line, PointRows& rows) {
  if (line.empty()) return;
  constexpr std::size_t npos = std::string_view::npos;
  char separator = ' ';
  if (line.find('\t') != npos) {
    separator = '\t';
  } else if (line.find(',') != npos) {
    separator = ',';
  }
  std::int32_t c = 0;
  std::size_t p = 0;
  while (true) {
    const std::size_t sep = line.find(separator, p);
    const std::string_view token = line.substr(p, sep == npos ? npos : sep - p);
    double v;
    if (ReadNumber(token, v)) {
      if (c == 0) rows.rowStarts.push_back(rows.values.size());
      ++c;
      if (c > rows.columns) rows.columns = c;
      rows.values.push_back(v);
    }
    if (sep == npos) return;
    p = sep + 1;
  }
}

void ParseFitPointText(std::string_view text, PointRows& rows) {
  while (!text.empty()) {
    const std::size_t end = text.find_first_of("\r\n");
    ParseFitPointLine(text.substr(0, end), rows);
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

Ref<TK2DArray> PointRows::ToTable() const {
  Ref<TK2DArray> table = MakeRef<TK2DArray>();
  const std::int32_t n = Rows();
  if (n == 0) return table;
  table->SetDimensions(n, columns, false);
  for (std::int32_t r = 0; r < n; ++r) {
    const std::size_t begin = rowStarts[static_cast<std::size_t>(r)];
    const std::size_t end = r + 1 < n ? rowStarts[static_cast<std::size_t>(r) + 1] : values.size();
    for (std::size_t k = begin; k < end; ++k)
      table->SetValue(r + 1, static_cast<std::int32_t>(k - begin + 1), values[k]);
  }
  return table;
}

Ref<TK2DArray> ReadPointFile(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos) return nullptr;
  // Standard streams keep this the same on every platform; the blocks are
  // large enough that the library's own buffering costs nothing measurable.
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) return nullptr;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!file) return nullptr;
  PointRows rows;
  // Read in blocks; a line split across two blocks is carried over whole.
  std::string buffer;
  constexpr std::size_t kBlock = 1 << 20;
  std::size_t kept = 0;
  while (true) {
    buffer.resize(kept + kBlock);
    const std::size_t got = std::fread(buffer.data() + kept, 1, kBlock, file.get());
    if (got == 0) break;  // end of file, or a read error: keep what was read
    const std::size_t filled = kept + got;
    std::string_view text(buffer.data(), filled);
    const std::size_t lastEnd = text.find_last_of("\r\n");
    if (lastEnd == std::string_view::npos) {
      kept = filled;
      continue;
    }
    ParseFitPointText(text.substr(0, lastEnd + 1), rows);
    kept = filled - (lastEnd + 1);
    std::memmove(buffer.data(), buffer.data() + lastEnd + 1, kept);
  }
  file.reset();
  ParseFitPointText(std::string_view(buffer.data(), kept), rows);
  return rows.ToTable();
}

}  // namespace TessarkAO::PointFile
