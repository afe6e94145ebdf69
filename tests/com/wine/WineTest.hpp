// A small test harness for the programs that run under Wine (GoogleTest is
// not built for Windows here).  Each check prints one line; a test is a
// named group of checks; the program ends with "N passed, M failed" and
// exits non-zero on any failure.
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace WineTest {

struct Case {
  const char* name;
  std::function<void()> body;
};

// Defined ahead of every case that registers itself, so initialised first.
inline std::vector<Case> g_cases;
inline int g_failures = 0;

struct Register {
  Register(const char* name, std::function<void()> body) { g_cases.push_back({name, std::move(body)}); }
};

inline void Fail(const char* file, int line, const std::string& what) {
  ++g_failures;
  std::printf("  check failed at %s:%d: %s\n", file, line, what.c_str());
}

// Runs every case (or those whose names contain argv[1]); returns the exit code.
inline int RunAll(int argc, char** argv) {
  int passed = 0, failed = 0;
  for (const Case& c : g_cases) {
    if (argc > 1 && std::string(c.name).find(argv[1]) == std::string::npos) continue;
    const int before = g_failures;
    try {
      c.body();
    } catch (const std::exception& e) {
      Fail(__FILE__, __LINE__, std::string("exception: ") + e.what());
    } catch (...) {
      Fail(__FILE__, __LINE__, "unknown exception");
    }
    const bool ok = g_failures == before;
    std::printf("%s %s\n", ok ? "PASS" : "FAIL", c.name);
    (ok ? passed : failed)++;
  }
  std::printf("%d passed, %d failed\n", passed, failed);
  std::fflush(stdout);
  return failed == 0 ? 0 : 1;
}

}  // namespace WineTest

#define WT_CAT2(a, b) a##b
#define WT_CAT(a, b) WT_CAT2(a, b)
#define TEST_CASE(name)                                                               \
  static void WT_CAT(wt_case_, __LINE__)();                                           \
  static const WineTest::Register WT_CAT(wt_reg_, __LINE__)(name, &WT_CAT(wt_case_, __LINE__)); \
  static void WT_CAT(wt_case_, __LINE__)()
#define CHECK(cond) do { if (!(cond)) WineTest::Fail(__FILE__, __LINE__, #cond); } while (0)
#define CHECK_EQ(a, b) CHECK((a) == (b))
#define CHECK_HR(expr, expected)                                                                       \
  do {                                                                                                 \
    const HRESULT wt_hr = (expr);                                                                      \
    if (wt_hr != static_cast<HRESULT>(expected)) {                                                     \
      char wt_buf[160];                                                                                \
      std::snprintf(wt_buf, sizeof wt_buf, "%s gave 0x%08lX, expected 0x%08lX", #expr,                 \
                    static_cast<unsigned long>(wt_hr), static_cast<unsigned long>(expected));          \
      WineTest::Fail(__FILE__, __LINE__, wt_buf);                                                      \
    }                                                                                                  \
  } while (0)
