// The Application module: the host's install and common-binaries folders,
// read from the "Directories" preferences of the running product.
#pragma once

#include <string>

namespace TessarkAO::Application {

// The folder the tools fall back to when no preference names one.
inline constexpr std::string_view kDefaultBinaries = "v:\\bin.32";

// Preference "Install", else "Working", else kDefaultBinaries; "" when the
// "Directories" section cannot be opened.
std::string Path();
// Preference "CommonBinaries", else kDefaultBinaries; "" when the section
// cannot be opened.
std::string CommonBinariesPath();

}  // namespace TessarkAO::Application
