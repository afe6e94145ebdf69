#include "Command.hpp"

#include <unistd.h>

#include <algorithm>
#include <climits>

#include "automation/AutomationError.hpp"
#include "refhost/RefHost.hpp"

namespace TessarkAO::Cli {

Arguments::Arguments(const std::vector<std::string>& args, std::vector<std::string_view> valueOptions,
                     std::vector<std::string_view> flagOptions) {
  auto known = [](const std::vector<std::string_view>& list, std::string_view name) {
    return std::find(list.begin(), list.end(), name) != list.end();
  };
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--") {
      rest_.assign(args.begin() + static_cast<std::ptrdiff_t>(i) + 1, args.end());
      break;
    }
    if (a.size() < 2 || a[0] != '-' || a == "-") {
      positionals_.push_back(a);
      continue;
    }
    const std::size_t eq = a.find('=');
    const std::string name = a.substr(0, eq);
    if (known(flagOptions, name)) {
      if (eq != std::string::npos) throw UsageError("option " + name + " takes no value");
      options_.emplace_back(name, std::string());
    } else if (known(valueOptions, name)) {
      std::string value;
      if (eq != std::string::npos) {
        value = a.substr(eq + 1);
      } else {
        if (i + 1 >= args.size()) throw UsageError("option " + name + " needs a value");
        value = args[++i];
      }
      if (value.empty()) throw UsageError("option " + name + " needs a value");
      options_.emplace_back(name, value);
    } else {
      throw UsageError("unknown option " + name);
    }
  }
}

bool Arguments::Has(std::string_view option) const {
  return std::any_of(options_.begin(), options_.end(), [&](const auto& o) { return o.first == option; });
}

std::string Arguments::Value(std::string_view option, std::string fallback) const {
  for (auto it = options_.rbegin(); it != options_.rend(); ++it)
    if (it->first == option) return it->second;
  return fallback;
}

std::string ExecutableDir() {
  char buf[PATH_MAX];
  const ssize_t n = readlink("/proc/self/exe", buf, sizeof buf - 1);
  if (n <= 0) return ".";
  std::string path(buf, static_cast<std::size_t>(n));
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash);
}

Ref<Object> LoadSceneOrFail(const std::string& path) {
  try {
    return RefHost::LoadScene(path);
  } catch (const AutomationError& e) {
    throw CommandError("cannot load the scene: " + e.Description());
  }
}

}  // namespace TessarkAO::Cli
