// A hostile caller: 100,000 seeded random late-bound calls over every class,
// with arguments of every type and host objects that misbehave.  Each call
// ends in success or an automation error (the driver stops the program on
// anything else), and under the sanitizers nothing leaks.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "../fuzz/CallDriver.hpp"
#include "automation/Catalogue.hpp"

using namespace TessarkAO;

TEST(RandomCalls, EveryCallEndsInSuccessOrAnAutomationError) {
  ASSERT_EQ(Catalogue().size(), 31u);
  // Members that write files get texts for names: they write into a folder of their own.
  namespace fs = std::filesystem;
  const fs::path home = fs::current_path();
  const fs::path work = fs::temp_directory_path() / ("tk-random-calls-" + std::to_string(::getpid()));
  fs::create_directories(work);
  fs::current_path(work);
  std::size_t made = 0, errors = 0;
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    Fuzz::SeededChoices choices(seed);
    Fuzz::CallDriver driver(choices);
    made += driver.Run(5'000, errors);
    // Whatever the calls did to the reference host's scene, it saves and loads back.
    const std::string saved = RefHost::SaveSceneToString(driver.Application());
    EXPECT_EQ(RefHost::SaveSceneToString(RefHost::LoadSceneFromString(saved)), saved) << "seed " << seed;
  }
  fs::current_path(home);
  fs::remove_all(work);
  EXPECT_EQ(made, 100'000u);
  // Both ends are reached often: the calls are neither all refused nor all accepted.
  EXPECT_GT(errors, made / 10);
  EXPECT_LT(errors, made - made / 10);
}
