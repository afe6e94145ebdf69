// The same call through the runtime's headers only, as a program that
// names no class does it: linked with --as-needed, the library whose loading
// registers the classes must still be loaded (else CreateObject answers 429).
#include <cstdio>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "automation/Variant.hpp"

int main() {
  try {
    TessarkAO::Variant v(TessarkAO::CreateObject("TessarkAO.TKVector4d"));
    v.Call("SetPosition", 3.0, 4.0, 12.0);
    std::printf("%g\n", TessarkAO::ToDouble(v.Get("Length")));
    return 0;
  } catch (const TessarkAO::AutomationError& e) {
    std::printf("error %d\n", static_cast<int>(e.Number()));
    return 1;
  }
}
