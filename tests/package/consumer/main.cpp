// A program written against the installed library: creates a class by
// ProgID and calls it late-bound, as a tool writer's program would.
#include <tessarkao/TessarkAO.hpp>

#include <cstdio>

int main() {
  try {
    TessarkAO::Variant v(TessarkAO::CreateObject("TessarkAO.TKVector4d"));
    v.Call("SetPosition", 3.0, 4.0, 12.0);
    std::printf("%s %g\n", TESSARKAO_VERSION_STRING, TessarkAO::ToDouble(v.Get("Length")));
    return 0;
  } catch (const TessarkAO::AutomationError& e) {
    std::printf("error %d\n", static_cast<int>(e.Number()));
    return 1;
  }
}
