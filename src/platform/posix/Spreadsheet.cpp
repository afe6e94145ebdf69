// The built-in spreadsheet automation object ("Excel.Application") of the
// POSIX platform, writing .xlsx workbooks through libxlsxwriter.
//
// Division:
//   1. addresses and widths (ParseCellAddress, FitWidth)
//   2. the data: a sheet's cells per column, each with its value and font
//   3. the automation classes: Application, Workbooks, Workbook, Worksheets,
//      Worksheet, Range, Font
//   4. saving a workbook
//   5. registration at load
#ifndef _WIN32

#include "platform/Spreadsheet.hpp"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H
#include <unistd.h>
#include <xlsxwriter.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>
#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"

namespace TessarkAO::Spreadsheet {

namespace {

constexpr std::int32_t kMaxRows = 1048576;
constexpr std::int32_t kMaxColumns = 16384;
constexpr std::size_t kMaxTextLength = 32767;  // UTF-16 code units in one cell
constexpr double kStandardWidth = 8.43;        // a new column, in characters
constexpr double kMaxWidth = 255.0;
constexpr double kDigitPixels = 7.0;           // the standard font's digit at 11 points
constexpr double kPaddingPixels = 5.0;

[[noreturn]] void Fail(std::string what) { Raise(kMethodFailed, std::move(what)); }

}  // namespace

// ---------------------------------------------------------------------------
// 1. Addresses and widths.

bool ParseCellAddress(std::string_view text, std::int32_t& row, std::int32_t& column) noexcept {
  std::size_t i = 0;
  if (i < text.size() && text[i] == '$') ++i;
  std::int64_t c = 0;
  std::size_t letters = 0;
  while (i < text.size() && letters < 4) {
    const char ch = static_cast<char>(text[i] & ~0x20);
    if (ch < 'A' || ch > 'Z') break;
    c = c * 26 + (ch - 'A' + 1);
    ++letters;
    ++i;
  }
  if (letters == 0) return false;
  if (i < text.size() && text[i] == '$') ++i;
  std::int64_t r = 0;
  std::size_t digits = 0;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9' && digits < 8) {
    r = r * 10 + (text[i] - '0');
    ++digits;
    ++i;
  }
  if (digits == 0 || i != text.size() || r < 1 || r > kMaxRows || c > kMaxColumns) return false;
  row = static_cast<std::int32_t>(r);
  column = static_cast<std::int32_t>(c);
  return true;
}

namespace {

// Text is measured as the spreadsheet application measures it on screen:
// the glyph advances of the cell's font (the face fontconfig picks for its
// name, weight and slant, read by FreeType) at 96 pixels per inch, the sum
// in whole pixels plus the cell's padding, over the digit width of the
// workbook's standard font (7 pixels), in 1/256 of a character.
constexpr double kScreenDpi = 96.0;

class TextMeasure {
 public:
  static TextMeasure& Get() {
    static TextMeasure measure;
    return measure;
  }
  TextMeasure(const TextMeasure&) = delete;
  TextMeasure& operator=(const TextMeasure&) = delete;

  // The text's advance in pixels; false when no face can be loaded.
  bool Pixels(std::string_view text, std::string_view fontName, double size, bool bold, bool italic,
              double& pixels) {
    std::lock_guard lock(mutex_);
    Face* face = FaceFor(std::string(fontName), bold, italic);
    if (!face) return false;
    if (FT_Set_Char_Size(face->face, 0, static_cast<FT_F26Dot6>(std::lround(size * 64.0)),
                         static_cast<FT_UInt>(kScreenDpi), static_cast<FT_UInt>(kScreenDpi)) != 0)
      return false;
    FT_Fixed total = 0;
    for (std::size_t i = 0; i < text.size();) {
      const char32_t ch = NextCharacter(text, i);
      FT_Fixed advance = 0;
      // A character the face lacks takes the width of its missing-glyph box.
      if (FT_Get_Advance(face->face, FT_Get_Char_Index(face->face, ch), FT_LOAD_NO_HINTING, &advance) == 0)
        total += advance;
      // A weight the face does not have is drawn emboldened, a pixel wider.
      if (face->emboldened) total += 0x10000;
    }
    pixels = static_cast<double>(total) / 65536.0;
    return true;
  }

 private:
  struct Face {
    FT_Face face = nullptr;
    bool emboldened = false;
  };

  TextMeasure() {
    config_ = FcInitLoadConfigAndFonts();
    if (FT_Init_FreeType(&library_) != 0) library_ = nullptr;
  }
  ~TextMeasure() {
    for (auto& [key, face] : faces_)
      if (face.face) FT_Done_Face(face.face);
    if (library_) FT_Done_FreeType(library_);
    if (config_) FcConfigDestroy(config_);
  }

  static char32_t NextCharacter(std::string_view text, std::size_t& i) {
    const unsigned char b = static_cast<unsigned char>(text[i]);
    std::size_t n = b >= 0xF0 ? 4 : b >= 0xE0 ? 3 : b >= 0xC0 ? 2 : 1;
    char32_t ch = n == 4 ? b & 0x07 : n == 3 ? b & 0x0F : n == 2 ? b & 0x1F : b;
    if (i + n > text.size()) n = 1, ch = b;  // a stray byte counts as one character
    for (std::size_t k = 1; k < n; ++k) ch = (ch << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
    i += n;
    return ch;
  }

  Face* FaceFor(const std::string& name, bool bold, bool italic) {
    const std::string key = name + (bold ? "\1b" : "\1") + (italic ? "i" : "");
    if (auto it = faces_.find(key); it != faces_.end()) return it->second.face ? &it->second : nullptr;
    Face& face = faces_[key];
    if (!config_ || !library_) return nullptr;
    FcPattern* pattern = FcPatternCreate();
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(name.empty() ? "sans-serif" : name.c_str()));
    FcPatternAddInteger(pattern, FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern, FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcConfigSubstitute(config_, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    if (FcPattern* match = FcFontMatch(config_, pattern, &result)) {
      FcChar8* file = nullptr;
      int index = 0;
      FcBool embolden = FcFalse;
      FcPatternGetInteger(match, FC_INDEX, 0, &index);
      FcPatternGetBool(match, FC_EMBOLDEN, 0, &embolden);
      if (FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch && file &&
          FT_New_Face(library_, reinterpret_cast<const char*>(file), index, &face.face) != 0)
        face.face = nullptr;
      face.emboldened = embolden == FcTrue;
      FcPatternDestroy(match);
    }
    FcPatternDestroy(pattern);
    return face.face ? &face : nullptr;
  }

  std::mutex mutex_;
  FcConfig* config_ = nullptr;
  FT_Library library_ = nullptr;
  std::unordered_map<std::string, Face> faces_;
};

}  // namespace

double FitWidth(std::string_view text, std::string_view fontName, double size, bool bold, bool italic) noexcept {
  if (text.empty()) return 0.0;
  if (!(size > 0.0) || size > 409.0) size = 11.0;
  double pixels = 0.0;
  try {
    if (!TextMeasure::Get().Pixels(text, fontName, size, bold, italic, pixels)) {
      // No font on the machine at all: an average character of 0.6 em.
      std::size_t characters = 0;
      for (char c : text) characters += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
      pixels = static_cast<double>(characters) * 0.6 * size * kScreenDpi / 72.0;
    }
  } catch (...) {
    return kStandardWidth;  // out of memory while caching a face
  }
  const double width = std::floor((std::ceil(pixels) + kPaddingPixels) / kDigitPixels * 256.0) / 256.0;
  return std::min(width, kMaxWidth);
}

namespace {

// ---------------------------------------------------------------------------
// 2. The data.

struct CellFont {
  std::string name = "Calibri";
  double size = 11.0;
  bool bold = false;
  bool italic = false;
  bool IsStandard() const { return name == "Calibri" && size == 11.0 && !bold && !italic; }
};

struct Cell {
  Variant value;  // Empty, Boolean, a number, Date or String
  CellFont font;
};

// A date serial (days since 1899-12-30) as the yyyy-mm-dd its cell shows.
std::string DateText(double serial) {
  if (!(std::fabs(serial) < 3e6)) return "#######";
  const CivilDay c = CivilDayOfSerial(static_cast<std::int64_t>(std::floor(serial)));
  char buf[80];
  std::snprintf(buf, sizeof buf, "%04lld-%02d-%02d", static_cast<long long>(c.year), c.month, c.day);
  return buf;
}

// The text a cell shows in the General format.
std::string DisplayText(const Variant& v) {
  switch (v.Type()) {
    case VarType::Empty: return std::string();
    case VarType::Boolean: return v.AsBoolean() ? "TRUE" : "FALSE";
    case VarType::String: return v.AsString();
    case VarType::Date: return DateText(v.AsDate().serial);
    default: return ToString(v);
  }
}

class SheetData final : public Object {
 public:
  explicit SheetData(std::string name) : name(std::move(name)) {}
  Cell& At(std::int32_t row, std::int32_t column) { return columns[column][row]; }
  const Cell* Find(std::int32_t row, std::int32_t column) const {
    auto c = columns.find(column);
    if (c == columns.end()) return nullptr;
    auto r = c->second.find(row);
    return r == c->second.end() ? nullptr : &r->second;
  }
  std::string name;
  std::map<std::int32_t, std::unordered_map<std::int32_t, Cell>> columns;
  std::map<std::int32_t, double> widths;
};

// ---------------------------------------------------------------------------
// 3. The automation classes.

class SheetRange;

// A block of cells: rows r1..r2, columns c1..c2 of one sheet.
struct Block {
  Ref<SheetData> sheet;
  std::int32_t r1 = 1, c1 = 1, r2 = 1, c2 = 1;
  // The cell of a one-cell block once it has been written: a caller writing
  // a cell's value and then its font properties looks the cell up once.
  // Cells are never removed and the maps keep their nodes in place, so the
  // pointer stays valid while the sheet lives (the block holds the sheet).
  mutable Cell* written = nullptr;
  bool Single() const { return r1 == r2 && c1 == c2; }
  template <class F>
  void ForEach(F f) const {
    if (Single()) {
      if (!written) written = &sheet->At(r1, c1);
      f(*written);
      return;
    }
    for (std::int32_t c = c1; c <= c2; ++c)
      for (std::int32_t r = r1; r <= r2; ++r) f(sheet->At(r, c));
  }
};

class SheetFont final : public Dispatch<SheetFont> {
 public:
  static constexpr std::string_view kClassName = "Font";
  static void Describe(ClassBuilder<SheetFont>& b) {
    b.Property<&SheetFont::GetName, &SheetFont::LetName>("Name")
        .Property<&SheetFont::GetSize, &SheetFont::LetSize>("Size")
        .Property<&SheetFont::GetBold, &SheetFont::LetBold>("Bold")
        .Property<&SheetFont::GetItalic, &SheetFont::LetItalic>("Italic");
  }
  explicit SheetFont(Block block) : block_(std::move(block)) {}

  std::string GetName() const { return Top().name; }
  void LetName(std::string name) {
    if (name.empty() || name.size() > 255) Fail("Unable to set the Name property of the Font class");
    block_.ForEach([&](Cell& c) { c.font.name = name; });
  }
  double GetSize() const { return Top().size; }
  void LetSize(double size) {
    if (!(size >= 1.0 && size <= 409.0)) Fail("Unable to set the Size property of the Font class");
    block_.ForEach([&](Cell& c) { c.font.size = size; });
  }
  bool GetBold() const { return Top().bold; }
  void LetBold(bool v) { block_.ForEach([&](Cell& c) { c.font.bold = v; }); }
  bool GetItalic() const { return Top().italic; }
  void LetItalic(bool v) { block_.ForEach([&](Cell& c) { c.font.italic = v; }); }

 private:
  CellFont Top() const {
    const Cell* c = block_.written ? block_.written : block_.sheet->Find(block_.r1, block_.c1);
    return c ? c->font : CellFont{};
  }
  Block block_;
};

class SheetRange final : public Dispatch<SheetRange> {
 public:
  static constexpr std::string_view kClassName = "Range";
  static void Describe(ClassBuilder<SheetRange>& b) {
    b.Property<&SheetRange::GetValue, &SheetRange::LetValue>("Value")
        .Default()
        .Get<&SheetRange::Text>("Text")
        .Get<&SheetRange::Font>("Font")
        .Get<&SheetRange::Row>("Row")
        .Get<&SheetRange::Column>("Column")
        .Get<&SheetRange::Count>("Count")
        .Get<&SheetRange::Address>("Address")
        .Get<&SheetRange::Range>("Range", Names{"Cell1"})
        .Get<&SheetRange::Cells>("Cells", Names{"RowIndex", "ColumnIndex"},
                                 Opt{Variant::Missing(), Variant::Missing()})
        .Get<&SheetRange::Item>("Item", Names{"RowIndex", "ColumnIndex"}, Opt{Variant::Missing()})
        .Get<&SheetRange::Columns>("Columns", Names{"Index"}, Opt{Variant::Missing()})
        .Method<&SheetRange::AutoFit>("AutoFit")
        .Property<&SheetRange::GetColumnWidth, &SheetRange::LetColumnWidth>("ColumnWidth");
  }
  // `columns`: the block seen as its columns (what Columns hands out), so
  // that Item(i) is the i-th column.
  explicit SheetRange(Block block, bool columns = false) : block_(std::move(block)), columns_(columns) {}

  Variant GetValue() const {
    if (block_.Single()) return TopValue(block_.r1, block_.c1);
    const std::int32_t rows = block_.r2 - block_.r1 + 1, cols = block_.c2 - block_.c1 + 1;
    if (static_cast<std::int64_t>(rows) * cols > 10000000) Raise(Err::OutOfMemory);
    SafeArray a = SafeArray::Matrix(VarType::Variant, 1, rows, 1, cols);
    for (std::int32_t r = 1; r <= rows; ++r)
      for (std::int32_t c = 1; c <= cols; ++c) a.Put(r, c, TopValue(block_.r1 + r - 1, block_.c1 + c - 1));
    return Variant(std::move(a));
  }
  // Numbers, texts, Booleans and dates keep their types; Empty, Null and ""
  // clear the value and keep the font.
  void LetValue(const Variant& value) {
    const Variant& v = value.Deref();
    Variant stored;
    if (v.IsArray() || v.IsObject() || v.Type() == VarType::Error) Raise(Err::TypeMismatch);
    switch (v.Type()) {
      case VarType::Empty:
      case VarType::Null: break;
      case VarType::String:
        if (Utf16Length(v.AsString()) > kMaxTextLength) Fail("A cell holds at most 32767 characters");
        if (!v.AsString().empty()) stored = v;
        break;
      case VarType::Single:
      case VarType::Double:
        if (!std::isfinite(ToDouble(v))) Raise(Err::Overflow);
        stored = v;
        break;
      default: stored = v;
    }
    if (static_cast<std::int64_t>(block_.r2 - block_.r1 + 1) * (block_.c2 - block_.c1 + 1) > 10000000)
      Raise(Err::OutOfMemory);
    if (block_.Single()) {
      block_.ForEach([&](Cell& c) { c.value = std::move(stored); });
      return;
    }
    block_.ForEach([&](Cell& c) { c.value = stored; });
  }
  std::string Text() const { return DisplayText(TopValue(block_.r1, block_.c1)); }
  Ref<Object> Font() const { return MakeRef<SheetFont>(block_); }
  std::int32_t Row() const { return block_.r1; }
  std::int32_t Column() const { return block_.c1; }
  double Count() const {
    return static_cast<double>(block_.r2 - block_.r1 + 1) * static_cast<double>(block_.c2 - block_.c1 + 1);
  }
  std::string Address() const {
    std::string a = "$" + ColumnName(block_.c1) + "$" + std::to_string(block_.r1);
    if (!block_.Single()) a += ":$" + ColumnName(block_.c2) + "$" + std::to_string(block_.r2);
    return a;
  }
  // An address "B3" or "A1:C4", relative to this block's top-left cell.
  Ref<Object> Range(std::string address) const {
    std::int32_t r1, c1, r2, c2;
    const std::size_t colon = address.find(':');
    const std::string_view first = std::string_view(address).substr(0, colon);
    const std::string_view last =
        colon == std::string::npos ? first : std::string_view(address).substr(colon + 1);
    if (!ParseCellAddress(first, r1, c1) || !ParseCellAddress(last, r2, c2))
      Fail("Method 'Range' failed: \"" + address + "\" is not a cell address");
    if (r2 < r1) std::swap(r1, r2);
    if (c2 < c1) std::swap(c1, c2);
    return Offset(r1, c1, r2, c2);
  }
  Ref<Object> Cells(const Variant& row, const Variant& column) const {
    if (row.IsMissing() && column.IsMissing()) return MakeRef<SheetRange>(block_);
    return Item(row, column);
  }
  Ref<Object> Item(const Variant& row, const Variant& column) const {
    if (columns_ && column.IsMissing()) {
      const std::int32_t c = ToLong(row);
      return Offset(1, c, block_.r2 - block_.r1 + 1, c);
    }
    const std::int32_t r = ToLong(row);
    const std::int32_t c = column.IsMissing() ? 1 : ToLong(column);
    return Offset(r, c, r, c);
  }
  Ref<Object> Columns(const Variant& index) const {
    if (index.IsMissing()) return MakeRef<SheetRange>(block_, true);
    const std::int32_t c = ToLong(index);
    return Offset(1, c, block_.r2 - block_.r1 + 1, c);
  }
  // Sets the width of every column of the block from the widest text shown
  // in it; a column without any text keeps its width.
  void AutoFit() {
    for (std::int32_t col = block_.c1; col <= block_.c2; ++col) {
      auto it = block_.sheet->columns.find(col);
      if (it == block_.sheet->columns.end()) continue;
      double width = 0.0;
      for (const auto& [row, cell] : it->second) {
        if (row < block_.r1 || row > block_.r2 || cell.value.IsEmpty()) continue;
        width = std::max(width, FitWidth(DisplayText(cell.value), cell.font.name, cell.font.size,
                                         cell.font.bold, cell.font.italic));
      }
      if (width > 0.0) block_.sheet->widths[col] = width;
    }
  }
  double GetColumnWidth() const {
    auto it = block_.sheet->widths.find(block_.c1);
    return it == block_.sheet->widths.end() ? kStandardWidth : it->second;
  }
  void LetColumnWidth(double width) {
    if (!(width >= 0.0 && width <= kMaxWidth)) Fail("Unable to set the ColumnWidth property of the Range class");
    for (std::int32_t c = block_.c1; c <= block_.c2; ++c) block_.sheet->widths[c] = width;
  }

  static std::string ColumnName(std::int32_t c) {
    std::string s;
    for (; c > 0; c = (c - 1) / 26) s.insert(s.begin(), static_cast<char>('A' + (c - 1) % 26));
    return s;
  }

 private:
  Variant TopValue(std::int32_t r, std::int32_t c) const {
    const Cell* cell = block_.sheet->Find(r, c);
    return cell ? cell->value : Variant();
  }
  Ref<Object> Offset(std::int32_t r1, std::int32_t c1, std::int32_t r2, std::int32_t c2) const {
    const std::int64_t top = std::int64_t{block_.r1} + r1 - 1, left = std::int64_t{block_.c1} + c1 - 1;
    const std::int64_t bottom = std::int64_t{block_.r1} + r2 - 1, right = std::int64_t{block_.c1} + c2 - 1;
    if (top < 1 || left < 1 || bottom > kMaxRows || right > kMaxColumns)
      Fail("The cell lies outside the worksheet");
    return MakeRef<SheetRange>(Block{block_.sheet, static_cast<std::int32_t>(top), static_cast<std::int32_t>(left),
                                     static_cast<std::int32_t>(bottom), static_cast<std::int32_t>(right)});
  }
  Block block_;
  bool columns_ = false;
};

class Worksheet final : public Dispatch<Worksheet> {
 public:
  static constexpr std::string_view kClassName = "Worksheet";
  static void Describe(ClassBuilder<Worksheet>& b) {
    b.Property<&Worksheet::GetName, &Worksheet::LetName>("Name")
        .Get<&Worksheet::Cells>("Cells", Names{"RowIndex", "ColumnIndex"},
                                Opt{Variant::Missing(), Variant::Missing()})
        .Get<&Worksheet::Range>("Range", Names{"Cell1"})
        .Get<&Worksheet::Columns>("Columns", Names{"Index"}, Opt{Variant::Missing()})
        .Get<&Worksheet::UsedRange>("UsedRange");
  }
  explicit Worksheet(Ref<SheetData> data) : data_(std::move(data)) {}

  std::string GetName() const { return data_->name; }
  void LetName(std::string name) {
    if (name.empty() || Utf16Length(name) > 31 || name.find_first_of("[]:*?/\\") != std::string::npos)
      Fail("The sheet name \"" + name + "\" is not allowed");
    data_->name = std::move(name);
  }
  Ref<Object> Cells(const Variant& row, const Variant& column) const { return All()->Cells(row, column); }
  Ref<Object> Range(std::string address) const { return All()->Range(std::move(address)); }
  Ref<Object> Columns(const Variant& index) const { return All()->Columns(index); }
  Ref<Object> UsedRange() const {
    std::int32_t r1 = kMaxRows, c1 = kMaxColumns, r2 = 1, c2 = 1;
    bool any = false;
    for (const auto& [c, cells] : data_->columns)
      for (const auto& [r, cell] : cells)
        if (!cell.value.IsEmpty()) {
          any = true;
          r1 = std::min(r1, r), r2 = std::max(r2, r), c1 = std::min(c1, c), c2 = std::max(c2, c);
        }
    if (!any) r1 = c1 = 1;
    return MakeRef<SheetRange>(Block{data_, r1, c1, r2, c2});
  }
  const Ref<SheetData>& Data() const { return data_; }

 private:
  Ref<SheetRange> All() const { return MakeRef<SheetRange>(Block{data_, 1, 1, kMaxRows, kMaxColumns}); }
  Ref<SheetData> data_;
};

class Worksheets final : public Dispatch<Worksheets> {
 public:
  static constexpr std::string_view kClassName = "Sheets";
  static void Describe(ClassBuilder<Worksheets>& b) {
    b.Get<&Worksheets::Item>("Item", Names{"Index"}).Default()
        .Get<&Worksheets::Count>("Count")
        .Method<&Worksheets::Add>("Add");
  }
  explicit Worksheets(std::vector<Ref<Worksheet>>* sheets, Ref<Object> owner)
      : sheets_(sheets), owner_(std::move(owner)) {}

  Ref<Object> Item(const Variant& index) const {
    if (index.Type() == VarType::String) {
      for (const Ref<Worksheet>& s : *sheets_)
        if (EqualsNoCase(s->GetName(), index.AsString())) return s;
      Raise(Err::SubscriptOutOfRange);
    }
    const std::int32_t i = ToLong(index);
    if (i < 1 || static_cast<std::size_t>(i) > sheets_->size()) Raise(Err::SubscriptOutOfRange);
    return (*sheets_)[static_cast<std::size_t>(i - 1)];
  }
  std::int32_t Count() const { return static_cast<std::int32_t>(sheets_->size()); }
  Ref<Object> Add() {
    std::int32_t n = Count() + 1;
    while (true) {
      const std::string name = "Sheet" + std::to_string(n);
      bool taken = false;
      for (const Ref<Worksheet>& s : *sheets_) taken = taken || EqualsNoCase(s->GetName(), name);
      if (!taken) break;
      ++n;
    }
    sheets_->push_back(MakeRef<Worksheet>(MakeRef<SheetData>("Sheet" + std::to_string(n))));
    return sheets_->back();
  }

 private:
  std::vector<Ref<Worksheet>>* sheets_;  // owned by owner_, kept alive with it
  Ref<Object> owner_;
};

void Save(const std::vector<Ref<Worksheet>>& sheets, const std::string& path);

class Workbook final : public Dispatch<Workbook> {
 public:
  static constexpr std::string_view kClassName = "Workbook";
  static void Describe(ClassBuilder<Workbook>& b) {
    b.Get<&Workbook::Worksheets_>("Worksheets")
        .Get<&Workbook::Worksheets_>("Sheets")
        .Get<&Workbook::Name>("Name")
        .Get<&Workbook::FullName>("FullName")
        .Method<&Workbook::SaveAs>("SaveAs", Names{"Filename", "FileFormat"}, Opt{Variant::Missing()})
        .Method<&Workbook::Close>("Close", Names{"SaveChanges"}, Opt{Variant::Missing()});
  }
  explicit Workbook(std::int32_t number) : name_("Book" + std::to_string(number)) {
    sheets_.push_back(MakeRef<Worksheet>(MakeRef<SheetData>("Sheet1")));
  }

  Ref<Object> Worksheets_() { return MakeRef<Worksheets>(&sheets_, Ref<Object>(this)); }
  std::string Name() const { return name_; }
  std::string FullName() const { return fullName_.empty() ? name_ : fullName_; }
  // Writes the workbook; a name without an extension gets ".xlsx".
  void SaveAs(std::string filename, const Variant& /*format: always the .xlsx workbook*/) {
    if (filename.empty()) Fail("Method 'SaveAs' failed: no file name");
    const std::size_t slash = filename.find_last_of('/');
    const std::size_t dot = filename.find_last_of('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) filename += ".xlsx";
    Save(sheets_, filename);
    fullName_ = filename;
    name_ = slash == std::string::npos ? filename : filename.substr(slash + 1);
  }
  void Close(const Variant&) { closed_ = true; }
  bool Closed() const { return closed_; }

 private:
  std::string name_;
  std::string fullName_;
  std::vector<Ref<Worksheet>> sheets_;
  bool closed_ = false;
};

class Workbooks final : public Dispatch<Workbooks> {
 public:
  static constexpr std::string_view kClassName = "Workbooks";
  static void Describe(ClassBuilder<Workbooks>& b) {
    b.Get<&Workbooks::Item>("Item", Names{"Index"}).Default()
        .Get<&Workbooks::Count>("Count")
        .Method<&Workbooks::Add>("Add", Names{"Template"}, Opt{Variant::Missing()});
  }
  explicit Workbooks(std::vector<Ref<Workbook>>* books, std::int32_t* made, Ref<Object> owner)
      : books_(books), made_(made), owner_(std::move(owner)) {}

  Ref<Object> Item(std::int32_t index) const {
    Prune();
    if (index < 1 || static_cast<std::size_t>(index) > books_->size()) Raise(Err::SubscriptOutOfRange);
    return (*books_)[static_cast<std::size_t>(index - 1)];
  }
  std::int32_t Count() const {
    Prune();
    return static_cast<std::int32_t>(books_->size());
  }
  Ref<Object> Add(const Variant&) {
    books_->push_back(MakeRef<Workbook>(++*made_));
    return books_->back();
  }

 private:
  void Prune() const { std::erase_if(*books_, [](const Ref<Workbook>& b) { return b->Closed(); }); }
  std::vector<Ref<Workbook>>* books_;
  std::int32_t* made_;
  Ref<Object> owner_;
};

class Application final : public Dispatch<Application> {
 public:
  static constexpr std::string_view kClassName = "Application";
  static void Describe(ClassBuilder<Application>& b) {
    b.Get<&Application::Workbooks_>("Workbooks")
        .Get<&Application::Worksheets_>("Worksheets")
        .Get<&Application::ActiveWorkbook>("ActiveWorkbook")
        .Get<&Application::ActiveSheet>("ActiveSheet")
        .Property<&Application::GetVisible, &Application::LetVisible>("Visible")
        .Property<&Application::GetDisplayAlerts, &Application::LetDisplayAlerts>("DisplayAlerts")
        .Method<&Application::Quit>("Quit");
  }

  Ref<Object> Workbooks_() { return MakeRef<Workbooks>(&books_, &made_, Ref<Object>(this)); }
  // The worksheets of the active (most recently added, still open) workbook.
  Ref<Object> Worksheets_() {
    Ref<Workbook> book = Active();
    if (!book) Fail("Method 'Worksheets' failed: no workbook is open");
    return book->Worksheets_();
  }
  Ref<Object> ActiveWorkbook() { return Active(); }
  Ref<Object> ActiveSheet() {
    Ref<Workbook> book = Active();
    if (!book) return nullptr;
    return Variant(book->Worksheets_()).Get("Item", 1).AsObject();
  }
  bool GetVisible() const { return visible_; }
  void LetVisible(bool v) { visible_ = v; }
  bool GetDisplayAlerts() const { return alerts_; }
  void LetDisplayAlerts(bool v) { alerts_ = v; }
  // Closes every workbook without saving.
  void Quit() { books_.clear(); }

 private:
  Ref<Workbook> Active() {
    std::erase_if(books_, [](const Ref<Workbook>& b) { return b->Closed(); });
    return books_.empty() ? Ref<Workbook>() : books_.back();
  }
  std::vector<Ref<Workbook>> books_;
  std::int32_t made_ = 0;
  bool visible_ = false;
  bool alerts_ = true;
};

// ---------------------------------------------------------------------------
// 4. Saving.

struct FormatKey {
  std::string name;
  double size;
  bool bold, italic, date;
  bool operator<(const FormatKey& o) const {
    return std::tie(name, size, bold, italic, date) < std::tie(o.name, o.size, o.bold, o.italic, o.date);
  }
};

// The writer prints its own "[ERROR]" and "[WARNING]" lines on stderr.
// While it works, stderr goes to a temporary file instead; what it said is
// kept for the error the save raises, and never reaches the caller's
// terminal.
class WriterMessages {
 public:
  WriterMessages() {
    std::fflush(stderr);
    capture_ = std::tmpfile();
    saved_ = capture_ ? ::dup(STDERR_FILENO) : -1;
    if (saved_ >= 0) ::dup2(::fileno(capture_), STDERR_FILENO);
  }
  ~WriterMessages() {
    Restore();
    if (capture_) std::fclose(capture_);
  }
  WriterMessages(const WriterMessages&) = delete;
  WriterMessages& operator=(const WriterMessages&) = delete;

  // The first line the writer printed, without its "[ERROR]..." tag.
  std::string First() {
    Restore();
    if (!capture_) return {};
    std::rewind(capture_);
    char line[512] = {};
    if (!std::fgets(line, sizeof line, capture_)) return {};
    std::string text(line);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    if (const std::size_t tag = text.find("]: "); text.rfind('[', 0) == 0 && tag != std::string::npos)
      text.erase(0, tag + 3);
    return text;
  }

 private:
  void Restore() {
    if (saved_ >= 0) {
      std::fflush(stderr);
      ::dup2(saved_, STDERR_FILENO);
      ::close(saved_);
      saved_ = -1;
    }
  }
  std::FILE* capture_ = nullptr;
  int saved_ = -1;
};

void Save(const std::vector<Ref<Worksheet>>& sheets, const std::string& path) {
  WriterMessages messages;
  lxw_workbook* wb = workbook_new(path.c_str());
  if (!wb) Raise(Err::OutOfMemory);
  std::map<FormatKey, lxw_format*> formats;
  // Neighbouring cells mostly share their format: the last one found is
  // tried first, without building a key.
  const FormatKey* lastKey = nullptr;
  lxw_format* lastFormat = nullptr;
  auto formatOf = [&](const Cell& cell) -> lxw_format* {
    const bool date = cell.value.Type() == VarType::Date;
    if (!date && cell.font.IsStandard()) return nullptr;
    if (lastKey && lastKey->date == date && lastKey->size == cell.font.size && lastKey->bold == cell.font.bold &&
        lastKey->italic == cell.font.italic && lastKey->name == cell.font.name)
      return lastFormat;
    FormatKey key{cell.font.name, cell.font.size, cell.font.bold, cell.font.italic, date};
    auto it = formats.find(key);
    if (it == formats.end()) {
      lxw_format* f = workbook_add_format(wb);
      format_set_font_name(f, key.name.c_str());
      format_set_font_size(f, key.size);
      if (key.bold) format_set_bold(f);
      if (key.italic) format_set_italic(f);
      if (date) format_set_num_format(f, "yyyy-mm-dd");
      it = formats.emplace(std::move(key), f).first;
    }
    lastKey = &it->first;
    lastFormat = it->second;
    return lastFormat;
  };
  lxw_error err = LXW_NO_ERROR;
  for (const Ref<Worksheet>& ws : sheets) {
    const SheetData& data = *ws->Data();
    lxw_worksheet* sheet = workbook_add_worksheet(wb, data.name.c_str());
    if (!sheet) {
      workbook_close(wb);
      messages.First();
      Fail("Method 'SaveAs' failed: the sheet \"" + data.name + "\" cannot be written");
    }
    for (const auto& [c, width] : data.widths)
      worksheet_set_column(sheet, static_cast<lxw_col_t>(c - 1), static_cast<lxw_col_t>(c - 1), width, nullptr);
    // Row by row, as the writer lays the sheet out: it files cells by row.
    std::vector<std::tuple<std::int32_t, std::int32_t, const Cell*>> order;
    for (const auto& [c, cells] : data.columns)
      for (const auto& [r, cell] : cells) order.emplace_back(r, c, &cell);
    std::sort(order.begin(), order.end());
    for (const auto& [r, c, cellPointer] : order) {
      const Cell& cell = *cellPointer;
      const lxw_col_t col = static_cast<lxw_col_t>(c - 1);
      const lxw_row_t row = static_cast<lxw_row_t>(r - 1);
      lxw_format* f = formatOf(cell);
      const Variant& v = cell.value;
      lxw_error e = LXW_NO_ERROR;
      switch (v.Type()) {
        case VarType::Empty:
          if (f) e = worksheet_write_blank(sheet, row, col, f);
          break;
        case VarType::String: e = worksheet_write_string(sheet, row, col, v.AsString().c_str(), f); break;
        case VarType::Boolean: e = worksheet_write_boolean(sheet, row, col, v.AsBoolean() ? 1 : 0, f); break;
        case VarType::Date: e = worksheet_write_number(sheet, row, col, v.AsDate().serial, f); break;
        default: e = worksheet_write_number(sheet, row, col, ToDouble(v), f); break;
      }
      if (e != LXW_NO_ERROR && err == LXW_NO_ERROR) err = e;
    }
  }
  const lxw_error closed = workbook_close(wb);
  if (err == LXW_NO_ERROR) err = closed;
  if (err != LXW_NO_ERROR) {
    const std::string said = messages.First();
    Fail("Method 'SaveAs' failed: cannot write \"" + path + "\" (" + (said.empty() ? lxw_strerror(err) : said) + ")");
  }
}

// ---------------------------------------------------------------------------
// 5. Registration.

Ref<Object> MakeApplication() { return MakeRef<Application>(); }

[[maybe_unused]] const bool kRegistered = [] {
  const char* setting = std::getenv("TESSARKAO_SPREADSHEET");
  SetAvailable(!(setting && EqualsNoCaseAscii(setting, "off")));
  return true;
}();

}  // namespace

void SetAvailable(bool available) { RegisterForeignProgId(kProgId, available ? &MakeApplication : nullptr); }

}  // namespace TessarkAO::Spreadsheet

#endif  // _WIN32
