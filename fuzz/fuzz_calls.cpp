// Random late-bound calls over every class, with misbehaving host objects:
// every call ends in success or an automation error.
#include <cstdint>

#include "CallDriver.hpp"
#include "FuzzSupport.hpp"

using namespace TessarkAO;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Fuzz::UsePrivateFolder();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::ByteChoices choices({data, size});
  Fuzz::CallDriver driver(choices);
  std::size_t errors = 0;
  driver.Run(size, errors);
  // Whatever the calls did to the reference host's scene, it saves and loads back.
  std::string saved;
  Fuzz::Accepting("save", [&] { saved = RefHost::SaveSceneToString(driver.Application()); });
  try {
    if (saved.empty() || RefHost::SaveSceneToString(RefHost::LoadSceneFromString(saved)) != saved)
      std::abort();
  } catch (const AutomationError& e) {
    std::fprintf(stderr, "a saved scene is refused: %d %s\n", e.Number(), e.Description().c_str());
    std::abort();
  }
  return 0;
}
