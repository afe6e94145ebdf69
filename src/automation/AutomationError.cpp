#include "automation/AutomationError.hpp"

#include <array>
#include <new>
#include <utility>

namespace TessarkAO {

namespace {
struct Entry {
  int32_t number;
  std::string_view text;
};
// The classic runtime's texts for the numbers this library can raise or pass on.
constexpr std::array<Entry, 47> kDescriptions = {{
    {3, "Return without GoSub"},
    {5, "Invalid procedure call or argument"},
    {6, "Overflow"},
    {7, "Out of memory"},
    {9, "Subscript out of range"},
    {10, "This array is fixed or temporarily locked"},
    {11, "Division by zero"},
    {13, "Type mismatch"},
    {14, "Out of string space"},
    {16, "Expression too complex"},
    {17, "Can't perform requested operation"},
    {18, "User interrupt occurred"},
    {20, "Resume without error"},
    {28, "Out of stack space"},
    {35, "Sub or Function not defined"},
    {47, "Too many DLL application clients"},
    {48, "Error in loading DLL"},
    {49, "Bad DLL calling convention"},
    {51, "Internal error"},
    {52, "Bad file name or number"},
    {53, "File not found"},
    {54, "Bad file mode"},
    {55, "File already open"},
    {57, "Device I/O error"},
    {58, "File already exists"},
    {61, "Disk full"},
    {62, "Input past end of file"},
    {67, "Too many files"},
    {68, "Device unavailable"},
    {70, "Permission denied"},
    {71, "Disk not ready"},
    {75, "Path/File access error"},
    {76, "Path not found"},
    {91, "Object variable or With block variable not set"},
    {92, "For loop not initialized"},
    {94, "Invalid use of Null"},
    {326, "Resource with identifier not found"},
    {380, "Invalid property value"},
    {424, "Object required"},
    {429, "ActiveX component can't create object"},
    {430, "Class does not support Automation or does not support expected interface"},
    {438, "Object doesn't support this property or method"},
    {440, "Automation error"},
    {448, "Named argument not found"},
    {449, "Argument not optional"},
    {450, "Wrong number of arguments or invalid property assignment"},
    {451, "Property let procedure not defined and property get procedure did not return an object"},
}};

constexpr uint32_t kControlFacility = 0x800A0000u;
}  // namespace

std::string_view StandardDescription(int32_t number) noexcept {
  for (const auto& e : kDescriptions)
    if (e.number == number) return e.text;
  return "Application-defined or object-defined error";
}

AutomationError::AutomationError(int32_t number)
    : AutomationError(number, std::string(StandardDescription(number))) {}

AutomationError::AutomationError(int32_t number, std::string description, std::string source)
    : std::runtime_error(description),
      number_(number),
      hresult_(kControlFacility | (static_cast<uint32_t>(number) & 0xFFFFu)),
      description_(std::move(description)),
      source_(std::move(source)) {}

AutomationError::AutomationError(int32_t number, uint32_t hresult, std::string description,
                                 std::string source)
    : std::runtime_error(description),
      number_(number),
      hresult_(hresult),
      description_(std::move(description)),
      source_(std::move(source)) {}

int32_t AutomationError::NumberFromHResult(uint32_t hresult) noexcept {
  if ((hresult & 0xFFFF0000u) == kControlFacility) return static_cast<int32_t>(hresult & 0xFFFFu);
  return static_cast<int32_t>(hresult);
}

void Raise(int32_t number) { throw AutomationError(number); }
void Raise(int32_t number, std::string description) {
  throw AutomationError(number, std::move(description));
}

AutomationError CurrentError(std::string_view source) {
  try {
    throw;
  } catch (AutomationError& e) {
    if (e.Source().empty() && !source.empty()) e.SetSource(std::string(source));
    return e;
  } catch (const std::bad_alloc&) {
    return AutomationError(Err::OutOfMemory, std::string(StandardDescription(Err::OutOfMemory)),
                           std::string(source));
  } catch (const std::exception& e) {
    return AutomationError(Err::AutomationFailure, ValidUtf8(e.what()), std::string(source));
  } catch (...) {
    return AutomationError(Err::AutomationFailure,
                           std::string(StandardDescription(Err::AutomationFailure)), std::string(source));
  }
}

std::string ValidUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  const auto* p = reinterpret_cast<const unsigned char*>(text.data());
  const std::size_t n = text.size();
  for (std::size_t i = 0; i < n;) {
    const unsigned char c = p[i];
    std::size_t len = 0;
    std::uint32_t cp = 0, min = 0;
    if (c < 0x80) len = 1, cp = c;
    else if ((c & 0xE0) == 0xC0) len = 2, cp = c & 0x1F, min = 0x80;
    else if ((c & 0xF0) == 0xE0) len = 3, cp = c & 0x0F, min = 0x800;
    else if ((c & 0xF8) == 0xF0) len = 4, cp = c & 0x07, min = 0x10000;
    bool ok = len != 0 && i + len <= n;
    for (std::size_t k = 1; ok && k < len; ++k) {
      if ((p[i + k] & 0xC0) != 0x80) ok = false;
      else cp = (cp << 6) | (p[i + k] & 0x3F);
    }
    // Overlong forms, UTF-16 surrogates and values past U+10FFFF are not UTF-8.
    if (ok && (cp < min || (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF)) ok = false;
    if (ok) {
      out.append(text.substr(i, len));
      i += len;
    } else {
      out += "\xEF\xBF\xBD";
      ++i;
    }
  }
  return out;
}

}  // namespace TessarkAO
