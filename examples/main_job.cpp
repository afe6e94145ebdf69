// The main job's C++ session: creates library classes by identifier and
// drives them late-bound, as an add-on tool does, printing what it gets.
#include <cstdio>
#include <string>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "automation/Variant.hpp"
#include "frame/ClassCatalogue.hpp"

using namespace TessarkAO;

int main(int argc, char** argv) {
  const std::string out = argc > 1 ? argv[1] : "out";
  std::printf("TessarkAO session (output folder %s)\n", out.c_str());
  std::printf("catalogue: %zu classes\n", LibraryClasses().size());
  int creatable = 0;
  for (const ClassRecord& r : LibraryClasses()) {
    try {
      Ref<Object> o = CreateObject(r.progId);
      ++creatable;
      std::printf("  %-24s %s  created (%s)\n", std::string(r.progId).c_str(), std::string(r.clsid).c_str(),
                  o->TypeName().c_str());
    } catch (const AutomationError& e) {
      std::printf("  %-24s %s  error %d: %s\n", std::string(r.progId).c_str(), std::string(r.clsid).c_str(),
                  e.Number(), e.Description().c_str());
    }
  }
  std::printf("%d of %zu classes creatable\n", creatable, LibraryClasses().size());
  Variant localizer(CreateObject("TessarkAO.Localizer"));
  for (int id = 101; id <= 124; ++id)
    std::printf("  string %d: %s\n", id, ToString(localizer.Call("LoadString", id)).c_str());
  return 0;
}
