#include "tools/PointFile.hpp"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO::PointFile {

namespace {

// Whether plain decimal tokens may be read by from_chars: the decimal
// separator is '.' and '.' is not the group separator.
bool PlainDecimals(NumberLocale locale) noexcept { return locale.decimal == '.' && locale.group != '.'; }

// A token that from_chars reads whole and that starts with a digit, a point,
// or a minus before a digit or a point holds only digits, '.', '-', '+' and
// e/E: such a token has the value the runtime's parser gives it under plain
// decimals.  (The first-character test keeps out "inf" and "nan", the only
// other forms from_chars takes.)  Every other token goes to the parser.
bool ReadNumber(std::string_view token, bool plainDecimals, NumberLocale locale, double& value) noexcept {
  if (token.empty()) return false;
  if (plainDecimals) {
    const char first = token[0];
    const char next = token.size() > 1 ? token[1] : '\0';
    const bool numeric = (first >= '0' && first <= '9') || first == '.' ||
                         (first == '-' && ((next >= '0' && next <= '9') || next == '.'));
    if (numeric) {
      const auto [end, ec] = std::from_chars(token.data(), token.data() + token.size(), value);
      if (ec == std::errc() && end == token.data() + token.size()) return true;
    }
  }
  return ParseNumber(token, locale, value) == 0;
}

void ParseLine(std::string_view line, bool plainDecimals, NumberLocale locale, PointRows& rows) {
  if (line.empty()) return;
  // The separator of a line is chosen once, by priority: a tab when the line
  // holds one, else a comma when it holds one, else a blank.  This is the
  // reading under which "3<tab>4,5" gives the two tokens "3" and "4,5", as
  // the tool's files rely on; searching the priority again after each token
  // would split "4,5" at its comma.
  bool comma = false;
  char separator = 0;
  for (const char ch : line) {
    if (ch == '\t') {
      separator = '\t';
      break;
    }
    comma = comma || ch == ',';
  }
  if (separator == 0) separator = comma ? ',' : ' ';
  std::int32_t c = 0;
  const char* p = line.data();
  const char* const end = p + line.size();
  while (true) {
    const char* sep = p;
    while (sep != end && *sep != separator) ++sep;
    double v;
    if (ReadNumber(std::string_view(p, static_cast<std::size_t>(sep - p)), plainDecimals, locale, v)) {
      if (c == 0) rows.rowStarts.push_back(rows.values.size());
      ++c;
      if (c > rows.columns) rows.columns = c;
      rows.values.push_back(v);
    }
    if (sep == end) return;
    p = sep + 1;
  }
}

}  // namespace

bool ReadNumber(std::string_view token, double& value) noexcept {
  const NumberLocale locale = GetNumberLocale();
  return ReadNumber(token, PlainDecimals(locale), locale, value);
}

void ParseFitPointLine(std::string_view line, PointRows& rows) {
  const NumberLocale locale = GetNumberLocale();
  ParseLine(line, PlainDecimals(locale), locale, rows);
}

// A line ends at the first CR or LF, so CRLF, CR and LF files all read, and
// the empty "line" between CR and LF adds nothing.
void ParseFitPointText(std::string_view text, PointRows& rows) {
  const NumberLocale locale = GetNumberLocale();
  const bool plain = PlainDecimals(locale);
  const char* p = text.data();
  const char* const end = p + text.size();
  while (p != end) {
    const char* eol = p;
    while (eol != end && *eol != '\n' && *eol != '\r') ++eol;
    ParseLine(std::string_view(p, static_cast<std::size_t>(eol - p)), plain, locale, rows);
    if (eol == end) return;
    p = eol + 1;
  }
}

Ref<TK2DArray> PointRows::ToTable() const {
  Ref<TK2DArray> table = MakeRef<TK2DArray>();
  const std::int32_t n = Rows();
  if (n == 0) return table;
  // The table is dense: one very long line among many short ones asks for
  // rows x columns cells that are nearly all zero.  Such a shape is refused
  // with 7 before it is allocated; a table mostly filled by the file's own
  // numbers is left to the table's own limit.
  const std::int64_t cells = std::int64_t{n} * columns;
  if (cells > kMaxSparseCells && cells > 4 * static_cast<std::int64_t>(values.size()))
    Raise(Err::OutOfMemory);
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
