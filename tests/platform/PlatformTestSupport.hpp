// Helpers of the platform tests: a temporary folder and environment
// variables set for the length of a scope.
#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>

namespace TessarkAO::Testing {

class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tk-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& Path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

// Sets (or with nullopt unsets) a variable and restores it on leaving.
class ScopedEnv {
 public:
  ScopedEnv(std::string name, std::optional<std::string> value) : name_(std::move(name)) {
    if (const char* old = getenv(name_.c_str())) old_ = old;
    if (value)
      setenv(name_.c_str(), value->c_str(), 1);
    else
      unsetenv(name_.c_str());
  }
  ~ScopedEnv() {
    if (old_)
      setenv(name_.c_str(), old_->c_str(), 1);
    else
      unsetenv(name_.c_str());
  }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  std::string name_;
  std::optional<std::string> old_;
};

// A stand-in for a system call of PosixCalls() that fails with errno `Error`:
// `PosixCalls().open = &Failing<int, EACCES>;`.
template <class Result, int Error>
Result Failing(auto...) {
  errno = Error;
  return -1;
}

}  // namespace TessarkAO::Testing
