#include "automation/AutomationError.hpp"

#include <array>
#include <utility>

namespace TessarkAO {

namespace {
struct Entry {
  int32_t number;
  std::string_view text;
};
// The classic runtime's texts for the numbers this library can raise or pass on.
constexpr std::array<Entry, 44> kDescriptions = {{
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
    {424, "Object required"},
    {429, "ActiveX component can't create object"},
    {430, "Class does not support Automation or does not support expected interface"},
    {438, "Object doesn't support this property or method"},
    {440, "Automation error"},
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

}  // namespace TessarkAO
