// ClassFactory: creates the native object of one catalogued class through
// the runtime's CreateObject and hands out its dispatch adapter.
#pragma once

#ifdef _WIN32

#include "automation/Catalogue.hpp"
#include "platform/win32/Windows.hpp"

namespace TessarkAO::Com {

// A new factory for `record` (count 1).
IClassFactory* NewClassFactory(const ClassRecord& record);

}  // namespace TessarkAO::Com

#endif  // _WIN32
