// What every fuzz target shares: a private working folder (so that members
// which write files or the registry write there), and the rule that a run
// ends in success or an automation error, never another exception.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "automation/AutomationError.hpp"

namespace TessarkAO::Fuzz {

inline void UsePrivateFolder() {
  char pattern[] = "/tmp/tk-fuzz-XXXXXX";
  const char* dir = ::mkdtemp(pattern);
  if (!dir || ::chdir(dir) != 0) std::abort();
  ::setenv("TESSARKAO_REGISTRY", (std::string(dir) + "/registry.sqlite3").c_str(), 1);
  ::setenv("LC_ALL", "C", 1);
}

// Runs `f`; an automation error is an accepted end, anything else aborts so
// that the fuzzer reports the input.
template <class F>
void Accepting(const char* what, F&& f) {
  try {
    f();
  } catch (const AutomationError&) {
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s: foreign exception: %s\n", what, e.what());
    std::abort();
  } catch (...) {
    std::fprintf(stderr, "%s: unknown exception\n", what);
    std::abort();
  }
}

}  // namespace TessarkAO::Fuzz
