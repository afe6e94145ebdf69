// tktools: the library from the shell.
//
//     tktools <command> [arguments]      tktools <command> --help
//
// Exit status: 0 done, 1 the command failed, 2 it was called wrongly.  Every
// failure is reported as one line on stderr, "tktools <command>: <reason>".
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "Command.hpp"
#include "Usage.hpp"
#include "automation/AutomationError.hpp"
#include "platform/Registry.hpp"

namespace TessarkAO::Cli {
int RunScript(const std::vector<std::string>& args);
int ImportBSplineRun(const std::vector<std::string>& args);
int ExportBomRun(const std::vector<std::string>& args);
int TreeRun(const std::vector<std::string>& args);
int RegRun(const std::vector<std::string>& args);
int ViewRun(const std::vector<std::string>& args);
}  // namespace TessarkAO::Cli

namespace {

using namespace TessarkAO::Cli;

const Command kCommands[] = {
    {"run", "run a Python script with the library and a reference-host scene", kUsage_run, &RunScript},
    {"tree", "print the scene viewer's tree of a scene file", kUsage_tree, &TreeRun},
    {"reg", "import, export, read and write the registry store", kUsage_reg, &RegRun},
    {"import-bspline", "import a fit-point file as a B-spline into a scene", kUsage_import_bspline, &ImportBSplineRun},
    {"view", "show the scene viewer on a scene file (needs a display)", kUsage_view, &ViewRun},
    {"export-bom", "write a bill of materials from a CSV file to an .xlsx workbook", kUsage_export_bom, &ExportBomRun},
};

void PrintOverview(std::FILE* out) {
  std::fprintf(out,
               "usage: tktools <command> [arguments]\n"
               "\n"
               "The TessarkAO automation library from the shell.\n"
               "\n"
               "commands:\n");
  for (const Command& c : kCommands)
    std::fprintf(out, "  %-16.*s %.*s\n", static_cast<int>(c.name.size()), c.name.data(),
                 static_cast<int>(c.summary.size()), c.summary.data());
  std::fprintf(out, "\n'tktools <command> --help' describes a command; 'tktools --version' names the version.\n");
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty()) {
    PrintOverview(stderr);
    return 2;
  }
  if (args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
    PrintOverview(stdout);
    return 0;
  }
  if (args[0] == "--version") {
    std::printf("tktools (TessarkAO) %s\n", TK_VERSION);
    return 0;
  }
  const Command* command = nullptr;
  for (const Command& c : kCommands)
    if (c.name == args[0]) command = &c;
  if (!command) {
    std::fprintf(stderr, "tktools: unknown command '%s' (see tktools --help)\n", args[0].c_str());
    return 2;
  }
  args.erase(args.begin());
  for (const std::string& a : args) {
    if (a == "--") break;
    if (a == "--help" || a == "-h") {
      std::printf("%.*s", static_cast<int>(command->usage.size()), command->usage.data());
      return 0;
    }
  }
  const std::string name(command->name);
  // Whatever the command wrote to the registry store is in the store's main
  // file when it ends, even if it fails.
  struct FlushStore {
    ~FlushStore() { TessarkAO::FlushRegistry(); }
  } flushStore;
  try {
    return command->run(args);
  } catch (const UsageError& e) {
    std::fprintf(stderr, "tktools %s: %s (see tktools %s --help)\n", name.c_str(), e.what(), name.c_str());
    return 2;
  } catch (const CommandError& e) {
    std::fprintf(stderr, "tktools %s: %s\n", name.c_str(), TessarkAO::ValidUtf8(e.what()).c_str());
    return 1;
  } catch (...) {
    const TessarkAO::AutomationError e = TessarkAO::CurrentError();
    std::fprintf(stderr, "tktools %s: %s (error %d)\n", name.c_str(), TessarkAO::ValidUtf8(e.Description()).c_str(),
                 static_cast<int>(e.Number()));
    return 1;
  }
}
