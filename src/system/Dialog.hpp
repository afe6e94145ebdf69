// The Dialog module's reads of the host's settings: a value of the running
// product's machine key and a preference of the product family's "AddOns"
// section.  (The tool-dialog position procedures live with DialogUtils.)
#pragma once

#include <string>
#include <string_view>

namespace TessarkAO::Dialog {

// `valueName` of HKEY_LOCAL_MACHINE\SOFTWARE\Tessark\<last-run product name>;
// `defaultValue` when it cannot be read.
std::string ReadProductMachineValue(std::string_view valueName, std::string_view defaultValue);

// `valueName` of the product family's "AddOns" preferences (current user,
// then machine); `defaultValue` when it cannot be read.
std::string ReadAddOnPreference(std::string_view valueName, std::string_view defaultValue);

}  // namespace TessarkAO::Dialog
