// The .reg reader: any text parses or is refused with a message; what
// parses is written back and parses again to the same keys; and it imports
// into a registry store or is refused, without hanging.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "FuzzSupport.hpp"
#include "platform/RegFile.hpp"
#include "platform/Registry.hpp"

using namespace TessarkAO;

namespace {

bool SameKeys(const std::vector<RegFileKey>& a, const std::vector<RegFileKey>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i].root != b[i].root || a[i].path != b[i].path || a[i].remove != b[i].remove ||
        a[i].values.size() != b[i].values.size())
      return false;
    for (std::size_t j = 0; j < a[i].values.size(); ++j) {
      const RegFileValue& x = a[i].values[j];
      const RegFileValue& y = b[i].values[j];
      if (x.name != y.name || x.remove != y.remove || (!x.remove && (x.type != y.type || x.data != y.data)))
        return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Fuzz::UsePrivateFolder();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Fuzz::Accepting("reg file", [&] {
    std::vector<RegFileKey> keys;
    std::string error;
    if (!ParseRegFile(text, keys, error)) {
      if (error.empty()) std::abort();  // a refusal always says why
      return;
    }
    // Written back in either format (a REGEDIT4 file may refuse text its code
    // page lacks), what was written reads back to the same keys.
    for (const RegFileFormat format : {RegFileFormat::Version5, RegFileFormat::Regedit4}) {
      std::string out;
      if (!WriteRegFile(keys, format, kRegFileCodePage, out, error)) continue;
      std::vector<RegFileKey> again;
      if (!ParseRegFile(out, again, error) || !SameKeys(keys, again)) {
        std::fprintf(stderr, "written back as format %d, the keys read differently: %s\n",
                     static_cast<int>(format), error.c_str());
        std::abort();
      }
    }
    static std::unique_ptr<RegistryStore> store = OpenRegistryStore("registry.sqlite3");
    store->ImportRegText(text);
  });
  return 0;
}
