// The font the library's dialogs give their controls: each dialog hands its
// controls, as a form object with a Controls collection, to
// TKSystemUtils.SetDefaultSystemFont(form, true) when it loads, exactly as a
// host tool's form does, and the windows use what that leaves on them.
#pragma once

#include <string>
#include <vector>

#include "platform/DialogForms.hpp"

namespace TessarkAO {

// Applies the system's default font to a form of the named controls, which
// start with the dialogs' design font (8-point regular), and returns the
// font the first control ends up with.
FormFont ApplyDefaultSystemFont(const std::vector<std::string>& controls);

}  // namespace TessarkAO
