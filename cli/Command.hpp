// The subcommands of tktools: each is a name, a one-line summary, its usage
// text and a function that runs it.  A new subcommand is one more Command in
// the table of main.cpp and its --help text in usage/<name>.txt.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "automation/Object.hpp"

namespace TessarkAO::Cli {

// A mistake in how the command was called: reported as one line, exit 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A failure while running: reported as one line, exit 1.
class CommandError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Command {
  std::string_view name;
  std::string_view summary;
  std::string_view usage;  // the full --help text, starting with the usage line
  int (*run)(const std::vector<std::string>& args);
};

// Splits a subcommand's arguments into positionals and --options that take
// a value; "--opt=value" and "--opt value" both work, "--" ends the options.
class Arguments {
 public:
  Arguments(const std::vector<std::string>& args, std::vector<std::string_view> valueOptions,
            std::vector<std::string_view> flagOptions = {});
  const std::vector<std::string>& Positionals() const noexcept { return positionals_; }
  // Everything after "--".
  const std::vector<std::string>& Rest() const noexcept { return rest_; }
  bool Has(std::string_view option) const;
  // The option's value, or `fallback` when it was not given.
  std::string Value(std::string_view option, std::string fallback = {}) const;

 private:
  std::vector<std::string> positionals_;
  std::vector<std::string> rest_;
  std::vector<std::pair<std::string, std::string>> options_;
};

// The folder the running executable lives in.
std::string ExecutableDir();

// The reference-host application of a scene file; a file that cannot be
// loaded is a CommandError naming why.
Ref<Object> LoadSceneOrFail(const std::string& path);

}  // namespace TessarkAO::Cli
