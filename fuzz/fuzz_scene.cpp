// The reference host's JSON scene loader: any text loads or is refused with
// an automation error; a scene that loads saves, loads back, and saves again
// to the same text.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FuzzSupport.hpp"
#include "automation/Variant.hpp"
#include "refhost/RefHost.hpp"

using namespace TessarkAO;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  Ref<Object> app;
  Fuzz::Accepting("scene load", [&] { app = RefHost::LoadSceneFromString(text); });
  if (!app) return 0;
  std::string saved;
  Fuzz::Accepting("scene save", [&] { saved = RefHost::SaveSceneToString(app); });
  if (saved.empty()) {
    std::fprintf(stderr, "a loaded scene could not be saved\n");
    std::abort();
  }
  try {
    Ref<Object> back = RefHost::LoadSceneFromString(saved);
    if (RefHost::SaveSceneToString(back) != saved) {
      std::fprintf(stderr, "the saved scene loads back differently\n");
      std::abort();
    }
  } catch (const AutomationError& e) {
    std::fprintf(stderr, "a saved scene is refused: %d %s\n", e.Number(), e.Description().c_str());
    std::abort();
  }
  return 0;
}
