#include "frame/StringTable.hpp"

#include <array>

#ifdef _WIN32
#include "platform/win32/Windows.hpp"
#endif

namespace TessarkAO {

namespace {
// The double blanks after full stops (111, 116, 124) and the spelling
// "deliminated" (111) are part of the texts callers see and compare.
constexpr std::array<std::pair<std::int32_t, std::string_view>, 24> kStrings = {{
    {101, "millimeters"},
    {102, "centimeters"},
    {103, "meters"},
    {104, "inches"},
    {105, "feet"},
    {106, "yards"},
    {107, "degrees"},
    {108, "radians"},
    {109, "B-Spline Import"},
    {110, "File"},
    {111, "Specify the file that contains the fit points for the B-Spline.  The file should either be "
          "comma, tab or space deliminated and have one fit point per line with an X and Y value."},
    {112, "Import"},
    {113, "Cancel"},
    {114, "Text Files (*.txt)|*.txt|All Files (*.*)|*.*"},
    {115, "Export BOM to Excel"},
    {116, "Excel does not seem to be installed on this system.  Unable to export."},
    {117, "Extrude"},
    {118, "There must be a scene open to import the B-Spline to."},
    {119, "B-Spline Import"},
    {120, "The file does not contain valid B-Spline point data."},
    {121, "Import of B-Spline completed successfully."},
    {122, "Sheet Metal"},
    {123, "Coordinate values for the B-Spline fit points are larger than acceptable limits."},
    {124, "Import will be canceled.  Please refer to help for further instructions."},
}};
}  // namespace

std::optional<std::string_view> LookupString(std::int32_t id) noexcept {
  if (id < kStrings.front().first || id > kStrings.back().first) return std::nullopt;
  return kStrings[static_cast<std::size_t>(id - kStrings.front().first)].second;
}

std::optional<std::string> LoadStringResource(std::int32_t id) {
#ifdef _WIN32
  // The server DLL carries the table as its string resource (blocks of 16
  // ids).  A program built from the same sources without the resource (the
  // build's own generator, the test programs) reads the table itself.
  const HMODULE module = Win32::ThisModule();
  if (id < 0) return std::nullopt;
  if (!FindResourceW(module, MAKEINTRESOURCEW(id / 16 + 1), MAKEINTRESOURCEW(6))) {  // RT_STRING
    if (auto text = LookupString(id)) return std::string(*text);
    return std::nullopt;
  }
  // LoadStringW with a zero buffer size hands out the resource's own text,
  // which is not terminated; a length of 0 means there is no such string.
  const wchar_t* text = nullptr;
  const int length = LoadStringW(module, static_cast<UINT>(id), reinterpret_cast<LPWSTR>(&text), 0);
  if (length <= 0 || !text) return std::nullopt;
  return Win32::Narrow(text, static_cast<std::size_t>(length));
#else
  if (auto text = LookupString(id)) return std::string(*text);
  return std::nullopt;
#endif
}

std::span<const std::pair<std::int32_t, std::string_view>> StringTableEntries() noexcept {
  return kStrings;
}

}  // namespace TessarkAO
