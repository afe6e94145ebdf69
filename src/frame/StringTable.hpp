// The library's string table (language 1033), ids 101 to 124.  Every text a
// user sees comes from here through the shared localizer.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace TessarkAO {

// Ids of the texts the library shows, by what they are for.
namespace StringId {
constexpr std::int32_t Millimeters = 101;
constexpr std::int32_t Centimeters = 102;
constexpr std::int32_t Meters = 103;
constexpr std::int32_t Inches = 104;
constexpr std::int32_t Feet = 105;
constexpr std::int32_t Yards = 106;
constexpr std::int32_t Degrees = 107;
constexpr std::int32_t Radians = 108;
constexpr std::int32_t ImportDialogTitle = 109;
constexpr std::int32_t FileLabel = 110;
constexpr std::int32_t ImportInstructions = 111;
constexpr std::int32_t ImportButton = 112;
constexpr std::int32_t CancelButton = 113;
constexpr std::int32_t TextFileFilter = 114;
constexpr std::int32_t ExportTitle = 115;
constexpr std::int32_t SpreadsheetMissing = 116;
constexpr std::int32_t ExtrudeName = 117;
constexpr std::int32_t NoSceneOpen = 118;
constexpr std::int32_t ImportMessageTitle = 119;
constexpr std::int32_t InvalidPointData = 120;
constexpr std::int32_t ImportCompleted = 121;
constexpr std::int32_t SheetMetalName = 122;
constexpr std::int32_t CoordinatesTooLarge = 123;
constexpr std::int32_t ImportCancelled = 124;
}  // namespace StringId

// The text of `id`, or nothing when the table has no such entry.
std::optional<std::string_view> LookupString(std::int32_t id) noexcept;

// The text of `id` as the library's resources hold it: on Windows the
// string resource built into the server DLL from this table, elsewhere the
// table itself; nothing when there is no such entry.
std::optional<std::string> LoadStringResource(std::int32_t id);

// Every entry in id order (for the Windows string resource and for tests).
std::span<const std::pair<std::int32_t, std::string_view>> StringTableEntries() noexcept;

}  // namespace TessarkAO
