// AutomationError: the one exception type that crosses every member boundary.
//
// It carries the classic error number (5, 6, 9, 11, 13, 91, 424, 429, 438,
// 449, 450, ...), its standard description, a source text and the HRESULT.
// For errors raised by the library the HRESULT is 0x800A0000 | number; an
// error that comes from a foreign object keeps the HRESULT and description it
// arrived with, so it reaches the library's caller unchanged.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace TessarkAO {

// Classic error numbers the library raises by name.
namespace Err {
constexpr int32_t InvalidCall = 5;           // Invalid procedure call or argument
constexpr int32_t Overflow = 6;
constexpr int32_t OutOfMemory = 7;
constexpr int32_t SubscriptOutOfRange = 9;
constexpr int32_t ArrayFixed = 10;           // This array is fixed or temporarily locked
constexpr int32_t DivisionByZero = 11;
constexpr int32_t TypeMismatch = 13;
constexpr int32_t FileNotFound = 53;
constexpr int32_t PermissionDenied = 70;
constexpr int32_t PathFileAccess = 75;
constexpr int32_t ResourceNotFound = 326;    // Resource with identifier '...' not found
constexpr int32_t InvalidPropertyValue = 380;
constexpr int32_t ObjectNotSet = 91;         // Object variable or With block variable not set
constexpr int32_t InvalidUseOfNull = 94;
constexpr int32_t ObjectRequired = 424;
constexpr int32_t CannotCreateObject = 429;
constexpr int32_t NoSuchMember = 438;        // Object doesn't support this property or method
constexpr int32_t AutomationFailure = 440;
constexpr int32_t NamedArgumentNotFound = 448;
constexpr int32_t ArgumentNotOptional = 449;
constexpr int32_t WrongArgumentCount = 450;
}  // namespace Err

// The standard description of a classic error number; "Application-defined or
// object-defined error" for numbers without one.
std::string_view StandardDescription(int32_t number) noexcept;

class AutomationError : public std::runtime_error {
 public:
  // A library error: number, standard description, HRESULT 0x800A0000 | number.
  explicit AutomationError(int32_t number);
  AutomationError(int32_t number, std::string description, std::string source = {});
  // An error that arrived from a foreign object with its own HRESULT.
  AutomationError(int32_t number, uint32_t hresult, std::string description, std::string source);

  int32_t Number() const noexcept { return number_; }
  uint32_t HResult() const noexcept { return hresult_; }
  const std::string& Description() const noexcept { return description_; }
  const std::string& Source() const noexcept { return source_; }
  void SetSource(std::string source) { source_ = std::move(source); }

  // The classic number of an HRESULT: its low word for FACILITY_CONTROL
  // (0x800A....) codes, else the HRESULT itself as a signed number.
  static int32_t NumberFromHResult(uint32_t hresult) noexcept;

 private:
  int32_t number_;
  uint32_t hresult_;
  std::string description_;
  std::string source_;
};

[[noreturn]] void Raise(int32_t number);
[[noreturn]] void Raise(int32_t number, std::string description);

// The exception being handled as an AutomationError; only inside a catch
// block.  The one rule for every failure that leaves a call: an
// AutomationError passes through as it is (its source filled in with
// `source` when it has none), std::bad_alloc becomes 7 (Out of memory), any
// other exception becomes 440 with its text (made valid UTF-8) as the
// description.
AutomationError CurrentError(std::string_view source = {});

// `text` with every byte sequence that is not valid UTF-8 replaced by U+FFFD.
std::string ValidUtf8(std::string_view text);

}  // namespace TessarkAO
